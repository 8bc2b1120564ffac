// SPDX-License-Identifier: MIT
// The last error of Windows.
#include "platform/lasterror.h"

#include <treevault/platform.h>

namespace treevault {

LastErrorKeeper::LastErrorKeeper() noexcept : Code(GetLastError()) {}

LastErrorKeeper::~LastErrorKeeper() {
    SetLastError(Code);
}

} // namespace treevault
