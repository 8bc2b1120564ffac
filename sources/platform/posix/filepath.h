// SPDX-License-Identifier: MIT
// File paths as the disk knows them.
#ifndef TREEVAULT_PLATFORM_POSIX_FILEPATH_H
#define TREEVAULT_PLATFORM_POSIX_FILEPATH_H

#include "platform/encoding.h"

#include <algorithm>

namespace treevault {

// Text keeps paths with "\"; here they have "/".
inline std::string NativePath(WideView path) {
    std::string native = ToUtf8(path);
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

} // namespace treevault

#endif
