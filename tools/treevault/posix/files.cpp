// SPDX-License-Identifier: MIT
// Files by descriptor and inode.
#include "files.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace treevault::program {

namespace {

std::error_code LastError() {
    return {errno, std::generic_category()};
}

std::FILE* Open(const std::string& name, const char* mode, std::error_code& error) {
    std::FILE* file = std::fopen(name.c_str(), mode);
    if (file == nullptr)
        error = LastError();
    return file;
}

// Permissions for the file that replaces `name`: those of the old one, or what the process gives
// new files.
mode_t PermissionsFor(const std::string& name) {
    struct stat status;
    if (stat(name.c_str(), &status) == 0)
        return status.st_mode & 07777;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

std::FILE* OpenForReading(const std::string& name, std::error_code& error) {
    return Open(name, "rbe", error);
}

std::FILE* OpenForWriting(const std::string& name, std::error_code& error) {
    return Open(name, "wbe", error);
}

uint64_t FileSize(std::FILE* file) {
    struct stat status;
    if (fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode))
        return 0;
    return static_cast<uint64_t>(status.st_size);
}

Destination FindDestination(const std::string& name, std::error_code& error) {
    struct stat status;
    if (stat(name.c_str(), &status) != 0)
        return {name, true};
    if (access(name.c_str(), W_OK) != 0)
        error = LastError();
    // A link stays, and the file that it leads to is replaced.
    char* resolved = realpath(name.c_str(), nullptr);
    Destination destination{resolved ? resolved : name, S_ISREG(status.st_mode)};
    std::free(resolved);
    return destination;
}

std::FILE* CreateBeside(const std::string& name, std::string& temporary, std::error_code& error) {
    std::string candidate = name + ".XXXXXX";
    const int descriptor = mkostemp(candidate.data(), O_CLOEXEC);
    if (descriptor < 0) {
        error = LastError();
        return nullptr;
    }
    std::FILE* file = nullptr;
    if (fchmod(descriptor, PermissionsFor(name)) == 0)
        file = fdopen(descriptor, "wb");
    if (file == nullptr) {
        error = LastError();
        close(descriptor);
        unlink(candidate.c_str());
        return nullptr;
    }
    temporary = candidate;
    return file;
}

std::error_code FlushToDisk(std::FILE* file) {
    if (std::fflush(file) != 0 || fsync(fileno(file)) != 0)
        return LastError();
    return {};
}

std::error_code MoveOver(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) != 0)
        return LastError();
    return {};
}

void RemoveFile(const std::string& name) noexcept {
    unlink(name.c_str());
}

} // namespace treevault::program
