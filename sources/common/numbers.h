// SPDX-License-Identifier: MIT
// Text to integers with base detection, the one rule for values, settings, recorded types and error
// texts. It follows strtol and its family at their widths on Windows, whatever the platform.
#ifndef TREEVAULT_COMMON_NUMBERS_H
#define TREEVAULT_COMMON_NUMBERS_H

#include <cstdint>
#include <limits>
#include <type_traits>

namespace treevault {

// ASCII white space, as the C locale has it.
template <class Char>
constexpr bool IsSpace(Char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

namespace detail {
// The value of a digit, or 99.
template <class Char>
constexpr unsigned DigitValue(Char c) noexcept {
    if (c >= '0' && c <= '9')
        return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f')
        return static_cast<unsigned>(c - 'a') + 10;
    if (c >= 'A' && c <= 'F')
        return static_cast<unsigned>(c - 'A') + 10;
    return 99;
}
} // namespace detail

// Parses the number at the start of a zero-terminated text: white space, a sign, "0x" or "0X" for
// hexadecimal or "0" for octal. `*stop` receives the first character that does not belong to it,
// or `text` when there is no number (the value is then 0). Overflow gives the limit of the type,
// the maximum for an unsigned one; "-" negates an unsigned value in its width.
template <class Integer, class Char>
constexpr Integer ParseInteger(const Char* text, const Char** stop) noexcept {
    using Unsigned = std::make_unsigned_t<Integer>;
    const Char* at = text;
    while (IsSpace(*at))
        ++at;
    const bool negative = *at == '-';
    if (*at == '-' || *at == '+')
        ++at;
    unsigned base = 10;
    if (*at == '0') {
        base = 8;
        if ((at[1] == 'x' || at[1] == 'X') && detail::DigitValue(at[2]) < 16) {
            base = 16;
            at += 2;
        }
    }
    // A signed value may reach one further below zero than above.
    const Unsigned limit =
        std::is_signed_v<Integer>
            ? static_cast<Unsigned>(static_cast<Unsigned>(std::numeric_limits<Integer>::max()) +
                                    (negative ? 1u : 0u))
            : std::numeric_limits<Unsigned>::max();
    const Char* const digits = at;
    Unsigned value = 0;
    bool overflow = false;
    for (unsigned digit; (digit = detail::DigitValue(*at)) < base; ++at) {
        if (overflow || value > (limit - digit) / base)
            overflow = true;
        else
            value = static_cast<Unsigned>(value * base + digit);
    }
    *stop = at == digits ? text : at;
    if (overflow && !std::is_signed_v<Integer>)
        return std::numeric_limits<Integer>::max();
    if (overflow)
        value = limit;
    return static_cast<Integer>(negative ? static_cast<Unsigned>(0 - value) : value);
}

} // namespace treevault

#endif
