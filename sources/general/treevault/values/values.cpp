// SPDX-License-Identifier: MIT
// Checking of tags and of the bytes that come with them.
#include "general/treevault/values/values.h"

#include "common/errorhandling.h"

namespace treevault {

void CheckType(ValueType type) {
    if (!IsSupportedType(type))
        ThrowHr(TREEVAULT_E_UNSUPPORTED_TYPE);
}

bool CheckValueShape(ValueType type, const void* data, uint64_t size) {
    CheckType(type);
    return HasShape(type, data, size);
}

void CheckValue(ValueType type, const void* data, uint64_t size) {
    if (!CheckValueShape(type, data, size))
        ThrowHr(TREEVAULT_E_INVALID_DATA);
}

} // namespace treevault
