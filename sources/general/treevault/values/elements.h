// SPDX-License-Identifier: MIT
// What the conversion engine sees in the bytes of a value: one C++ type for each kind of element,
// and how an element is taken out of a payload. Numbers are the integer types themselves.
#ifndef TREEVAULT_VALUES_ELEMENTS_H
#define TREEVAULT_VALUES_ELEMENTS_H

#include "general/treevault/values/values.h"
#include "platform/widetext.h"

#include <concepts>
#include <cstring>

namespace treevault {

struct Empty {};

// Zero is false, any other value is true.
struct BoolByte {
    uint8_t Value;
};

// `Size` counts code units, with the terminator.
template <class Char>
struct TextElement {
    const Char* Units;
    size_t Size;
};

using NarrowElement = TextElement<char>;
using WideElement = TextElement<WCHAR>;

struct BinaryElement {
    const void* Data;
    uint64_t Size;
};

// An array of elements.
template <class Element>
struct ArrayOf {};

// The tag of a kind.
template <class Type>
inline constexpr ValueType TagOf = VtEmpty;
template <>
inline constexpr ValueType TagOf<NarrowElement> = VtStringA;
template <>
inline constexpr ValueType TagOf<WideElement> = VtStringW;
template <>
inline constexpr ValueType TagOf<int32_t> = VtInt32;
template <>
inline constexpr ValueType TagOf<uint32_t> = VtUInt32;
template <>
inline constexpr ValueType TagOf<int64_t> = VtInt64;
template <>
inline constexpr ValueType TagOf<uint64_t> = VtUInt64;
template <>
inline constexpr ValueType TagOf<BoolByte> = VtBool;
template <>
inline constexpr ValueType TagOf<BinaryElement> = VtBinary;
template <>
inline constexpr ValueType TagOf<GUID> = VtGuid;
template <class Element>
inline constexpr ValueType TagOf<ArrayOf<Element>> = TagOf<Element> | VtArray;

template <class T>
concept NumberElement = std::same_as<T, int32_t> || std::same_as<T, uint32_t> ||
    std::same_as<T, int64_t> || std::same_as<T, uint64_t>;

// An element of fixed size, which may stand at any address.
template <class Element>
Element LoadElement(const void* data) noexcept {
    Element element;
    std::memcpy(&element, data, sizeof element);
    return element;
}

// The element that a scalar is.
template <class Element>
struct ScalarLoader {
    static Element Load(const ValueView& value) noexcept {
        return LoadElement<Element>(value.Data);
    }
};

template <class Char>
struct ScalarLoader<TextElement<Char>> {
    static TextElement<Char> Load(const ValueView& value) noexcept {
        return {static_cast<const Char*>(value.Data), value.Size / sizeof(Char)};
    }
};

template <>
struct ScalarLoader<BinaryElement> {
    static BinaryElement Load(const ValueView& value) noexcept { return {value.Data, value.Size}; }
};

// Calls `use` with every element of an array, until it answers false; gives the last answer, and
// true for an empty array.
template <class Element>
struct ArrayWalker {
    template <class Use>
    static bool Walk(const ValueView& array, Use&& use) {
        const auto* bytes = static_cast<const uint8_t*>(array.Data);
        for (uint64_t at = 0; at < array.Size; at += sizeof(Element)) {
            if (!use(LoadElement<Element>(bytes + at)))
                return false;
        }
        return true;
    }
};

template <class Char>
struct ArrayWalker<TextElement<Char>> {
    template <class Use>
    static bool Walk(const ValueView& array, Use&& use) {
        const Char* text = static_cast<const Char*>(array.Data);
        for (size_t left = array.Size / sizeof(Char); left != 0;) {
            const size_t size = std::char_traits<Char>::length(text) + 1;
            if (!use(TextElement<Char>{text, size}))
                return false;
            text += size;
            left -= size;
        }
        return true;
    }
};

} // namespace treevault

#endif
