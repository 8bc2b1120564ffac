// SPDX-License-Identifier: MIT
// The value model: what a tag means, and whether bytes fit it.
//
// A value is a triple of tag, bytes and size. Nothing here looks inside a text or at more than the
// last element, so that checking costs the same for any length.
#ifndef TREEVAULT_GENERAL_TREEVAULT_VALUES_VALUES_H
#define TREEVAULT_GENERAL_TREEVAULT_VALUES_VALUES_H

#include <treevault/values.h>

namespace treevault {

// A value borrowed from its owner. `Size` is in bytes, terminators included.
struct ValueView {
    ValueType Type = VtEmpty;
    const void* Data = nullptr;
    uint64_t Size = 0;
};

inline constexpr uint64_t MaximumValueSize = 0xFFFFFFFF;

constexpr bool IsArray(ValueType type) noexcept {
    return (type & VtArray) != 0;
}

constexpr ValueType ElementType(ValueType type) noexcept {
    return static_cast<ValueType>(type & ~VtArray);
}

constexpr bool IsSupportedType(ValueType type) noexcept {
    const ValueType element = ElementType(type);
    if (element > VtBool && element != VtBinary && element != VtGuid)
        return false;
    return !IsArray(type) || (element != VtEmpty && element != VtBinary);
}

// Raises 0x80040203 for a tag that is not supported.
void CheckType(ValueType type);

// Whether the bytes fit the tag. Raises 0x80040203 for a tag that is not supported.
bool CheckValueShape(ValueType type, const void* data, uint64_t size);

// Raises 0x8007000D when the bytes don't fit the tag.
void CheckValue(ValueType type, const void* data, uint64_t size);

} // namespace treevault

#endif
