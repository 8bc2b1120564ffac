// SPDX-License-Identifier: MIT
// Failures of file operations as the codes that Windows has for them.
#ifndef TREEVAULT_PLATFORM_POSIX_SYSTEMCODE_H
#define TREEVAULT_PLATFORM_POSIX_SYSTEMCODE_H

#include <cerrno>
#include <cstdint>

namespace treevault {

inline uint32_t SystemCodeOf(int error) noexcept {
    switch (error) {
    case ENOENT:
        return 2; // the file is not found
    case ENOTDIR:
    case ELOOP:
        return 3; // the path is not found
    case EMFILE:
    case ENFILE:
        return 4; // too many open files
    case EACCES:
    case EPERM:
    case EISDIR:
        return 5; // access is denied
    case EBADF:
        return 6; // invalid handle
    case ENOMEM:
        return 8; // not enough memory
    case EROFS:
        return 19; // write-protected
    case ETXTBSY:
        return 32; // in use by another process
    case EINVAL:
        return 87; // invalid parameter
    case ENOSPC:
    case EDQUOT:
        return 112; // the disk is full
    case ENAMETOOLONG:
        return 206; // the name is too long
    case EFBIG:
        return 223; // the file is too large
    case EIO:
        return 1117; // the device failed
    default:
        return 31; // a general failure
    }
}

} // namespace treevault

#endif
