// SPDX-License-Identifier: MIT
// Identifiers from the system.
#include "platform/guidsource.h"

#include <rpc.h>

namespace treevault {

int32_t GenerateGuid(GUID& guid) noexcept {
    return static_cast<int32_t>(UuidCreate(&guid));
}

} // namespace treevault
