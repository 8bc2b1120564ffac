// SPDX-License-Identifier: MIT
// Identifiers from libuuid.
#include "platform/guidsource.h"

#include <cstring>
#include <uuid/uuid.h>

namespace treevault {

int32_t GenerateGuid(GUID& guid) noexcept {
    uuid_t bytes;
    uuid_generate_random(bytes);
    // The numeric fields come with their high byte first.
    guid.Data1 = uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 |
                 uint32_t{bytes[3]};
    guid.Data2 = static_cast<uint16_t>(bytes[4] << 8 | bytes[5]);
    guid.Data3 = static_cast<uint16_t>(bytes[6] << 8 | bytes[7]);
    std::memcpy(guid.Data4, bytes + 8, sizeof guid.Data4);
    return 0;
}

} // namespace treevault
