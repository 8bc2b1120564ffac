// SPDX-License-Identifier: MIT
// The value model: what a tag means, and whether bytes fit it.
//
// A value is a triple of tag, bytes and size. Nothing here looks inside a text or at more than the
// last element, so that checking costs the same for any length.
#ifndef TREEVAULT_VALUES_VALUES_H
#define TREEVAULT_VALUES_VALUES_H

#include <treevault/values.h>

#include <cstring>

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

// Bytes of one element; 0 where that varies.
inline constexpr uint8_t ElementSizes[] = {0, 0, 0, 4, 4, 8, 8, 1, 0, 0, 0, 0, 0, 16};

constexpr uint64_t ElementSize(ValueType element) noexcept {
    return ElementSizes[element];
}

// Whether the last whole code unit of a text is its terminator.
template <class Char>
bool IsTerminated(const void* data, uint64_t size) noexcept {
    if (!data || size < sizeof(Char))
        return false;
    const uint64_t index = size / sizeof(Char) - 1;
    Char last;
    std::memcpy(&last, static_cast<const char*>(data) + index * sizeof(Char), sizeof(Char));
    return last == 0;
}

// Whether the bytes fit a supported tag. Little is left of it where the tag is known.
[[gnu::always_inline]] inline bool HasShape(ValueType type, const void* data,
                                            uint64_t size) noexcept {
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

// Raises 0x80040203 for a tag that is not supported.
void CheckType(ValueType type);

// Whether the bytes fit the tag. Raises 0x80040203 for a tag that is not supported.
bool CheckValueShape(ValueType type, const void* data, uint64_t size);

// Raises 0x8007000D when the bytes don't fit the tag.
void CheckValue(ValueType type, const void* data, uint64_t size);

} // namespace treevault

#endif
