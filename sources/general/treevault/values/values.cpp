// SPDX-License-Identifier: MIT
// Checking of tags and of the bytes that come with them.
#include "general/treevault/values/values.h"

#include "common/errorhandling.h"

#include <cstring>

namespace treevault {

namespace {

// Bytes of one element; 0 where that varies.
constexpr uint64_t ElementSize(ValueType element) noexcept {
    constexpr uint8_t sizes[] = {0, 0, 0, 4, 4, 8, 8, 1, 0, 0, 0, 0, 0, 16};
    return sizes[element];
}

// Whether the last whole code unit of the text is its terminator.
template <class Char>
bool IsTerminated(const void* data, uint64_t size) noexcept {
    if (!data || size < sizeof(Char))
        return false;
    const uint64_t index = size / sizeof(Char) - 1;
    Char last;
    std::memcpy(&last, static_cast<const char*>(data) + index * sizeof(Char), sizeof(Char));
    return last == 0;
}

} // namespace

void CheckType(ValueType type) {
    if (!IsSupportedType(type))
        ThrowHr(TREEVAULT_E_UNSUPPORTED_TYPE);
}

bool CheckValueShape(ValueType type, const void* data, uint64_t size) {
    CheckType(type);
    const bool array = IsArray(type);
    if (array && size == 0)
        return true;
    const ValueType element = ElementType(type);
    switch (element) {
    case VtEmpty:
        return size == 0;
    case VtStringA:
        return IsTerminated<char>(data, size);
    case VtStringW:
        return IsTerminated<WCHAR>(data, size);
    case VtBinary:
        return data || size == 0;
    default:
        return data && (array ? size % ElementSize(element) == 0 : size == ElementSize(element));
    }
}

void CheckValue(ValueType type, const void* data, uint64_t size) {
    if (!CheckValueShape(type, data, size))
        ThrowHr(TREEVAULT_E_INVALID_DATA);
}

} // namespace treevault
