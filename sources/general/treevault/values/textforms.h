// SPDX-License-Identifier: MIT
// The text forms of numbers, booleans and identifiers. Reading is more tolerant than writing, so a
// written form always reads back. Narrow and wide forms have the same characters; nothing depends
// on a locale.
#ifndef TREEVAULT_VALUES_TEXTFORMS_H
#define TREEVAULT_VALUES_TEXTFORMS_H

#include "common/hextext.h"
#include "common/numbers.h"
#include "general/treevault/values/outputcursor.h"

#include <treevault/platform.h>

#include <charconv>

namespace treevault {

// Each writes the characters with their terminator in one write.

inline constexpr size_t NumberTextSize = 21; // a sign, 19 digits, or 20, and a terminator

// Gives the size.
template <class Integer>
size_t FormatNumber(Integer value, char* text) noexcept {
    char* const end = std::to_chars(text, text + NumberTextSize - 1, value).ptr;
    *end = 0;
    return static_cast<size_t>(end - text) + 1;
}

// Decimal, with "-" in front of a negative value.
template <class Char, class Integer>
void WriteNumber(Integer value, OutputCursor& out) noexcept {
    if constexpr (sizeof(Char) == 1) {
        if (uint8_t* const room = out.Room(NumberTextSize)) {
            out.Used += FormatNumber(value, reinterpret_cast<char*>(room));
            return;
        }
    }
    char digits[NumberTextSize] = {};
    const size_t size = FormatNumber(value, digits);
    Char text[NumberTextSize];
    for (size_t at = 0; at < size; ++at)
        text[at] = static_cast<Char>(digits[at]);
    out.Write(text, size * sizeof(Char));
}

// "True" or "False".
template <class Char>
void WriteBool(bool value, OutputCursor& out) noexcept {
    static constexpr Char trueText[] = {'T', 'r', 'u', 'e', 0};
    static constexpr Char falseText[] = {'F', 'a', 'l', 's', 'e', 0};
    if (value)
        out.WriteObject(trueText);
    else
        out.WriteObject(falseText);
}

// Upper case, in braces.
template <class Char>
void WriteGuid(const GUID& guid, OutputCursor& out) noexcept {
    Char text[GuidTextLength + 3];
    text[0] = '{';
    Char* end = WriteGuidText(guid, UpperHexPairs<Char>, text + 1);
    *end++ = '}';
    *end++ = 0;
    out.WriteObject(text);
}

// Each reads a zero-terminated text and leaves `value` untouched when it is not of the form.

// The whole text is to be a number with base detection, see ParseInteger. The empty text is 0.
template <class Integer, class Char>
bool ParseNumber(const Char* text, Integer& value) noexcept {
    const Char* stop;
    const Integer parsed = ParseInteger<Integer>(text, &stop);
    if (*stop != 0)
        return false;
    value = parsed;
    return true;
}

// "True" or "False" in any case, or a number, which is true when it is not 0.
template <class Char>
bool ParseBool(const Char* text, bool& value) noexcept;

// With braces and dashes, with dashes, or digits alone; what follows the last digit is ignored.
// Each group of digits is read as a scan with a field width reads it: white space, a sign and "0x"
// may stand before the digits. E_INVALIDARG for any other text and for null. Of `size` characters
// the last is NUL, which need not be the first one.
template <class Char>
HRESULT StringToGuid(const Char* text, size_t size, GUID& guid) noexcept;

extern template bool ParseBool(const char*, bool&) noexcept;
extern template bool ParseBool(const WCHAR*, bool&) noexcept;
extern template HRESULT StringToGuid(const char*, size_t, GUID&) noexcept;
extern template HRESULT StringToGuid(const WCHAR*, size_t, GUID&) noexcept;

} // namespace treevault

#endif
