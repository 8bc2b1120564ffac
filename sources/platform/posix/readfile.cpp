// SPDX-License-Identifier: MIT
// Reading of ordinary files.
#include "platform/posix/readfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace treevault {
namespace {

class File {
public:
    // Opening must not wait for somebody to write, should the path name a pipe.
    explicit File(const char* path) noexcept
        : Descriptor(open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK)) {}
    ~File() {
        if (Descriptor >= 0)
            close(Descriptor);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool IsOrdinary(size_t limit) const noexcept {
        struct stat status;
        return Descriptor >= 0 && fstat(Descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
               status.st_size <= static_cast<off_t>(limit);
    }

    bool ReadAll(size_t limit, std::string& content) const {
        char buffer[8192];
        ssize_t count;
        while ((count = read(Descriptor, buffer, sizeof buffer)) > 0) {
            content.append(buffer, static_cast<size_t>(count));
            if (content.size() > limit)
                return false;
        }
        return count == 0;
    }

private:
    int Descriptor;
};

} // namespace

bool ReadOrdinaryFile(const char* path, size_t limit, std::string& content) {
    const File file(path);
    return file.IsOrdinary(limit) && file.ReadAll(limit, content);
}

} // namespace treevault
