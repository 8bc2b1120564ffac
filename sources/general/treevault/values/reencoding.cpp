// SPDX-License-Identifier: MIT
// Re-encoding of text values. ASCII goes straight to its place, many characters at a time and
// without a buffer in between.
#include "general/treevault/values/reencoding.h"

#include "common/errorhandling.h"
#include "general/treevault/values/bytevectors.h"
#include "general/treevault/values/values.h"
#include "platform/encoding.h"

#include <new>
#include <type_traits>

namespace treevault {

namespace {

// Moves as many vectors of characters to `place`, if there is one. False, and nothing is moved,
// where one of them is no ASCII.
template <class To, size_t vectors, class From>
bool MoveVectors(const From* text, uint8_t* place) noexcept {
    ByteVector moved[vectors];
    ByteVector others{};
    for (size_t index = 0; index < vectors; ++index)
        moved[index] = LoadAscii(text + index * VectorSize, others);
    if (HasAnyBit(others))
        return false;
    for (size_t index = 0; place && index < vectors; ++index)
        StoreAscii<To>(place + index * VectorSize * sizeof(To), moved[index]);
    return true;
}

// Moves the ASCII that a text begins with to `place`, if there is one, and tells how much that is.
template <class To, class From>
size_t MoveAscii(std::basic_string_view<From> text, uint8_t* place) noexcept {
    const auto placeOf = [&](size_t at) { return place ? place + at * sizeof(To) : nullptr; };
    size_t at = 0;
    for (; text.size() - at >= 4 * VectorSize; at += 4 * VectorSize)
        if (!MoveVectors<To, 4>(text.data() + at, placeOf(at)))
            break;
    for (; text.size() - at >= VectorSize; at += VectorSize)
        if (!MoveVectors<To, 1>(text.data() + at, placeOf(at)))
            break;
    for (; at < text.size() && (text[at] & ~0x7F) == 0; ++at) {
        const To unit = static_cast<To>(text[at]);
        if (place)
            std::memcpy(place + at * sizeof(To), &unit, sizeof unit);
    }
    return at;
}

// Gives the place of `units` of the target.
template <class To>
uint8_t* TakeText(OutputCursor& out, size_t units) {
    const uint64_t size = uint64_t{units} * sizeof(To);
    if (size > MaximumValueSize)
        ThrowHr(E_INVALIDARG);
    return out.Take(size);
}

// False where the text is not ASCII. In one pass if there is room for whatever the text is: the
// ASCII that it begins with may be written ahead then. `most` is the size that a unit can take.
template <class To, class From>
bool WriteAscii(std::basic_string_view<From> text, size_t most, OutputCursor& out) {
    uint8_t* const ahead = out.Room(text.size() * most);
    if (MoveAscii<To>(text, ahead) != text.size())
        return false;
    uint8_t* const place = TakeText<To>(out, text.size());
    if (place && !ahead)
        MoveAscii<To>(text, place);
    return true;
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
    if (!WriteAscii<WCHAR>(utf8, sizeof(WCHAR), out))
        WriteEncoded<WideText>(out, [&](WideText& text) { AppendWide(utf8, text); });
}

void WriteAsNarrow(WideView wide, OutputCursor& out) {
    if (!WriteAscii<char>(wide, 3, out))
        WriteEncoded<std::string>(out, [&](std::string& text) { AppendUtf8(wide, text); });
}

} // namespace treevault
