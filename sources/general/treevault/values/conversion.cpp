// SPDX-License-Identifier: MIT
// The conversion matrix, made from the rules for elements, and the entries to it.
#include "general/treevault/values/conversion.h"

#include "general/treevault/values/conversionrules.h"

#include <array>
#include <memory>
#include <new>
#include <type_traits>

namespace treevault {

namespace {

// A zero-filled block that raises when memory runs out.
using Block = std::unique_ptr<uint8_t[]>;

Block MakeBlock(uint64_t size) {
    Block block(new (std::nothrow) uint8_t[size]());
    if (!block)
        ThrowOutOfMemory();
    return block;
}

// Raises unless the bytes fit.
template <class Type>
void Check(const ValueView& source) {
    if (!HasShape(TagOf<Type>, source.Data, source.Size))
        ThrowHr(TREEVAULT_E_INVALID_DATA);
}

// The source where the machine may read it: wide text at an odd address is moved.
template <class Element>
struct Readable {
    explicit Readable(const ValueView& source) : View(source) {}

    const ValueView& View;
};

template <>
struct Readable<WideElement> {
    explicit Readable(const ValueView& source) : View(source) {
        if (reinterpret_cast<uintptr_t>(source.Data) % alignof(WCHAR) == 0 || source.Size == 0)
            return;
        Copy = MakeBlock(source.Size);
        std::memcpy(Copy.get(), source.Data, source.Size);
        View.Data = Copy.get();
    }

    ValueView View;
    Block Copy;
};

template <class From, class To>
concept HasRule = requires(From value, OutputCursor& out) {
    Convert(value, Into<To>(), out);
};

template <class Type>
constexpr bool IsArrayType = false;
template <class Element>
constexpr bool IsArrayType<ArrayOf<Element>> = true;

template <class Type>
constexpr bool IsEmptyType = std::is_same_v<Type, Empty>;

template <class Type>
bool CopyValue(const ValueView& source, OutputCursor& out) {
    Check<Type>(source);
    out.Used = 0;
    out.Write(source.Data, source.Size);
    return true;
}

template <class From, class To>
bool ConvertScalar(const ValueView& source, OutputCursor& out) {
    Check<From>(source);
    if constexpr (HasRule<From, To>) {
        const Readable<From> readable(source);
        Convert(ScalarLoader<From>::Load(readable.View), Into<To>(), out);
    }
    return HasRule<From, To>;
}

// A pair without a rule is found out at the first element.
template <class From, class To>
bool ConvertElements(ArrayOf<From>, ArrayOf<To>, const ValueView& source, OutputCursor& out) {
    Check<ArrayOf<From>>(source);
    const Readable<From> readable(source);
    return ArrayWalker<From>::Walk(readable.View, [&]([[maybe_unused]] const From& element) {
        if constexpr (HasRule<From, To>)
            Convert(element, Into<To>(), out);
        return HasRule<From, To>;
    });
}

// One cell of the matrix. False means that the pair has no direct conversion.
template <class From, class To>
bool RunCell(const ValueView& source, [[maybe_unused]] OutputCursor& out) {
    if constexpr (std::is_same_v<From, To>) {
        return CopyValue<From>(source, out);
    } else if constexpr (IsEmptyType<From>) {
        // Nothing is as good from any bytes, so that they are not looked at.
        Convert(Empty(), Into<To>(), out);
        return true;
    } else if constexpr (IsArrayType<From> && IsEmptyType<To>) {
        Check<From>(source);
        Require(source.Size == 0);
        return true;
    } else if constexpr (IsArrayType<From> && IsArrayType<To>) {
        return ConvertElements(From(), To(), source, out);
    } else if constexpr (IsArrayType<From> || IsArrayType<To>) {
        // There is no way, whatever the bytes; those of a boolean are looked at all the same.
        if constexpr (std::is_same_v<From, BoolByte>)
            Check<From>(source);
        return false;
    } else {
        return ConvertScalar<From, To>(source, out);
    }
}

using CellFunction = bool (*)(const ValueView& source, OutputCursor& out);

template <class... Types>
struct TypeList {};

// Rows and columns in the order of the tags.
using AllTypes = TypeList<Empty, NarrowElement, WideElement, int32_t, uint32_t, int64_t, uint64_t,
                          BoolByte, BinaryElement, GUID, ArrayOf<NarrowElement>,
                          ArrayOf<WideElement>, ArrayOf<int32_t>, ArrayOf<uint32_t>,
                          ArrayOf<int64_t>, ArrayOf<uint64_t>, ArrayOf<BoolByte>, ArrayOf<GUID>>;

template <class From, class... To>
constexpr auto MakeRow(TypeList<To...>) {
    return std::array<CellFunction, sizeof...(To)>{&RunCell<From, To>...};
}

template <class... From>
constexpr auto MakeMatrix(TypeList<From...> types) {
    return std::array{MakeRow<From>(types)...};
}

constexpr auto Matrix = MakeMatrix(AllTypes());

// The row or column of a tag. The flag of arrays is moved next to the kinds.
size_t SlotOf(ValueType type) {
    constexpr uint8_t no = 0xFF;
    static constexpr uint8_t slots[] = {0,  1,  2,  3,  4,  5,  6,  7,  no, no, no,
                                        no, 8,  9,  no, no, no, 10, 11, 12, 13, 14,
                                        15, 16, no, no, no, no, no, 17, no, no};
    constexpr ValueType known = VtArray | 0xF;
    const uint8_t slot = (type & ~known) == 0 ? slots[(type & 0xF) | (type & VtArray) >> 4] : no;
    if (slot == no)
        ThrowHr(TREEVAULT_E_UNSUPPORTED_TYPE);
    return slot;
}

constexpr uint64_t FallbackTextSize = 100; // holds the text of any number, VtBool and VtGuid

// The way through text, for a pair without a conversion of its own.
[[gnu::noinline]] bool ConvertThroughText(const ValueView& source, ValueType target,
                                          OutputCursor& out) {
    if (source.Type == VtStringA || target == VtStringA)
        return false;
    uint8_t shortText[FallbackTextSize];
    OutputCursor text{shortText, sizeof shortText};
    if (!ConvertDirect(source, VtStringA, text))
        return false;
    if (text.Used <= sizeof shortText)
        return ConvertDirect({VtStringA, shortText, text.Used}, target, out);
    if (text.Used > MaximumValueSize)
        ThrowHr(E_INVALIDARG);
    const uint64_t size = text.Used;
    const Block longText = MakeBlock(size);
    text = {longText.get(), size};
    return ConvertDirect(source, VtStringA, text) &&
           ConvertDirect({VtStringA, longText.get(), size}, target, out);
}

} // namespace

bool ConvertDirect(const ValueView& source, ValueType target, OutputCursor& out) {
    const size_t row = SlotOf(source.Type);
    return Matrix[row][SlotOf(target)](source, out);
}

bool ConvertWithFallback(const ValueView& source, ValueType target, OutputCursor& out) {
    return ConvertDirect(source, target, out) || ConvertThroughText(source, target, out);
}

void ConvertValue(const ValueView& source, ValueType target, void* buffer, uint64_t capacity,
                  uint64_t* needed) {
    if (source.Size > MaximumValueSize)
        ThrowHr(E_INVALIDARG);
    OutputCursor out{buffer, capacity};
    Require(ConvertWithFallback(source, target, out));
    if (needed)
        *needed = out.Used;
}

void ConvertValueInPlace(ValueView& value, ValueType target, std::vector<uint8_t>& buffer) {
    uint64_t needed = 0;
    const auto convert = [&] {
        ConvertValue(value, target, buffer.empty() ? nullptr : buffer.data(), buffer.size(),
                     &needed);
    };
    convert();
    if (needed > buffer.size()) {
        try {
            buffer.resize(needed);
        } catch (const std::bad_alloc&) {
            ThrowOutOfMemory();
        }
        convert();
        if (needed > buffer.size())
            ThrowHr(E_FAIL);
    }
    value = {target, buffer.empty() ? nullptr : buffer.data(), needed};
}

} // namespace treevault
