// SPDX-License-Identifier: MIT
// Files to which the system appends: it finds the end and writes without letting anybody between.
#include "platform/appendfile.h"

#include "platform/posix/filepath.h"
#include "platform/posix/systemcode.h"
#include "platform/posix/withheldsignal.h"

#include <atomic>
#include <fcntl.h>
#include <new>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace treevault {
namespace {

// What handles of one file share. A descriptor of its own for each of them would cost every line of
// a log two system calls and the host a descriptor; a count keeps the file open just as long.
struct OpenFile {
    const int Descriptor;
    const bool Limited; // the process may write files up to a size only
    std::atomic<uint32_t> Handles{1};
};

OpenFile& FileOf(void* handle) noexcept {
    return *static_cast<OpenFile*>(handle);
}

constexpr mode_t Permissions = 0666; // less what the process masks out

// Nobody should wait for a reader, should the path name a pipe.
constexpr int Flags = O_WRONLY | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

// Tells whether the file was made, which one call cannot.
int OpenOrCreate(const char* path, bool& created) noexcept {
    // Another process may make or delete the file between the two.
    for (int attempt = 0; attempt != 4; ++attempt) {
        created = false;
        int descriptor = open(path, Flags);
        if (descriptor >= 0 || errno != ENOENT)
            return descriptor;
        created = true;
        descriptor = open(path, Flags | O_CREAT | O_EXCL, Permissions);
        if (descriptor >= 0 || errno != EEXIST)
            return descriptor;
    }
    // A link to a file that is not there.
    return open(path, Flags | O_CREAT, Permissions);
}

// In a process that has closed its standard streams, a file must not take their place.
int AwayFromStandardStreams(int descriptor) noexcept {
    if (descriptor < 0 || descriptor > STDERR_FILENO)
        return descriptor;
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    close(descriptor);
    errno = error;
    return moved;
}

// A pipe whose reader is gone would end the process.
bool IsFileOrDevice(int descriptor) noexcept {
    struct stat status;
    return fstat(descriptor, &status) == 0 && (S_ISREG(status.st_mode) || S_ISCHR(status.st_mode));
}

bool IsSizeLimited() noexcept {
    rlimit limit;
    return getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
}

// One call for the whole text as a rule. What a disk that runs full has cut off is tried again, for
// the error.
uint32_t WriteAll(int descriptor, const char* at, size_t left) noexcept {
    while (left != 0) {
        errno = EIO; // for a device that takes nothing
        const ssize_t count = write(descriptor, at, left);
        if (count > 0) {
            at += count;
            left -= static_cast<size_t>(count);
        } else if (errno != EINTR) {
            return SystemCodeOf(errno);
        }
    }
    return 0;
}

} // namespace

uint32_t AppendFile::Open(const WideText& path) {
    const std::string native = NativePath(path);
    bool created = false;
    const int descriptor = AwayFromStandardStreams(OpenOrCreate(native.c_str(), created));
    if (descriptor < 0) // what is not there and cannot be made lacks its folder
        return SystemCodeOf(errno == ENOENT ? ENOTDIR : errno);
    const bool suits = IsFileOrDevice(descriptor);
    if (suits)
        Handle = new (std::nothrow) OpenFile{descriptor, IsSizeLimited()};
    if (!Handle) {
        close(descriptor);
        return SystemCodeOf(suits ? ENOMEM : EACCES);
    }
    Created = created;
    return 0;
}

void AppendFile::Close() noexcept {
    if (!Handle)
        return;
    OpenFile& file = FileOf(std::exchange(Handle, nullptr));
    if (file.Handles.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    close(file.Descriptor);
    delete &file;
}

uint32_t AppendFile::Duplicate(AppendFile& copy) const noexcept {
    FileOf(Handle).Handles.fetch_add(1, std::memory_order_relaxed);
    copy.Handle = Handle;
    copy.Created = Created;
    return 0;
}

uint32_t AppendFile::Append(WideView text) const noexcept {
    const OpenFile& file = FileOf(Handle);
    // A limit that the host sets is seen at the next opening of the file.
    std::optional<WithheldSignal> withheld;
    if (file.Limited)
        withheld.emplace(SIGXFSZ);
    return WriteAll(file.Descriptor, reinterpret_cast<const char*>(text.data()),
                    text.size() * sizeof(WCHAR));
}

uint32_t AppendFile::ReadSize(uint64_t& bytes) const noexcept {
    struct stat status;
    if (fstat(FileOf(Handle).Descriptor, &status) != 0)
        return SystemCodeOf(errno);
    bytes = static_cast<uint64_t>(status.st_size);
    return 0;
}

uint32_t AppendFile::ReadIdentity(FileIdentity& identity) const noexcept {
    struct stat status;
    if (fstat(FileOf(Handle).Descriptor, &status) != 0)
        return SystemCodeOf(errno);
    identity = {static_cast<uint32_t>(status.st_dev), static_cast<uint32_t>(status.st_ino >> 32),
                static_cast<uint32_t>(status.st_ino)};
    return 0;
}

} // namespace treevault
