// SPDX-License-Identifier: MIT
// Re-encoding of text values. ASCII goes straight to its place, without a buffer in between.
#include "general/treevault/values/reencoding.h"

#include "common/errorhandling.h"
#include "general/treevault/values/values.h"
#include "platform/encoding.h"

#include <new>
#include <type_traits>

namespace treevault {

namespace {

constexpr size_t Stride = 32; // units that are looked at or moved together

// In the width of the units, so that the compiler takes many of them at once.
template <class Char>
unsigned AllBits(const Char* text, size_t count) noexcept {
    using Unit = std::make_unsigned_t<Char>;
    Unit bits = 0;
    for (size_t at = 0; at < count; ++at)
        bits = static_cast<Unit>(bits | static_cast<Unit>(text[at]));
    return bits;
}

template <class Char>
bool IsAscii(std::basic_string_view<Char> text) noexcept {
    size_t at = 0;
    for (; text.size() - at >= Stride; at += Stride) {
        if (AllBits(text.data() + at, Stride) > 0x7F)
            return false;
    }
    return AllBits(text.data() + at, text.size() - at) <= 0x7F;
}

template <class To, class From>
void MoveUnits(uint8_t* place, const From* text, size_t count) noexcept {
    for (size_t at = 0; at < count; ++at) {
        const To unit = static_cast<To>(text[at]);
        std::memcpy(place + at * sizeof(To), &unit, sizeof unit);
    }
}

// Goes through local blocks, which the compiler knows to lie apart.
template <class To, class From>
void MoveStride(uint8_t* place, const From* text) noexcept {
    From block[Stride];
    std::memcpy(block, text, sizeof block);
    To moved[Stride];
    for (size_t at = 0; at < Stride; ++at)
        moved[at] = static_cast<To>(block[at]);
    std::memcpy(place, moved, sizeof moved);
}

// Gives the place of `units` of the target.
template <class To>
uint8_t* TakeText(OutputCursor& out, size_t units) {
    const uint64_t size = uint64_t{units} * sizeof(To);
    if (size > MaximumValueSize)
        ThrowHr(E_INVALIDARG);
    return out.Take(size);
}

template <class To, class From>
void WriteAscii(std::basic_string_view<From> text, OutputCursor& out) {
    uint8_t* const place = TakeText<To>(out, text.size());
    if (!place)
        return;
    size_t at = 0;
    for (; text.size() - at >= Stride; at += Stride)
        MoveStride<To>(place + at * sizeof(To), text.data() + at);
    MoveUnits<To>(place + at * sizeof(To), text.data() + at, text.size() - at);
}

// `append` encodes into a string of the target.
template <class String, class Append>
void WriteEncoded(OutputCursor& out, Append&& append) {
    using To = typename String::value_type;
    try {
        String text;
        append(text);
        if (uint8_t* const place = TakeText<To>(out, text.size()))
            std::memcpy(place, text.data(), text.size() * sizeof(To));
    } catch (const std::bad_alloc&) {
        ThrowOutOfMemory();
    }
}

} // namespace

void WriteAsWide(std::string_view utf8, OutputCursor& out) {
    if (IsAscii(utf8))
        WriteAscii<WCHAR>(utf8, out);
    else
        WriteEncoded<WideText>(out, [&](WideText& text) { AppendWide(utf8, text); });
}

void WriteAsNarrow(WideView wide, OutputCursor& out) {
    if (IsAscii(wide))
        WriteAscii<char>(wide, out);
    else
        WriteEncoded<std::string>(out, [&](std::string& text) { AppendUtf8(wide, text); });
}

} // namespace treevault
