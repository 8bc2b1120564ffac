// SPDX-License-Identifier: MIT
// The error number of C.
#include "platform/lasterror.h"

#include <cerrno>

namespace treevault {

LastErrorKeeper::LastErrorKeeper() noexcept : Code(static_cast<unsigned long>(errno)) {}

LastErrorKeeper::~LastErrorKeeper() {
    errno = static_cast<int>(Code);
}

} // namespace treevault
