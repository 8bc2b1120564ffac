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

// The value of a digit of the base, or something that is no less than the base.
template <unsigned base, class Char>
constexpr unsigned DigitOfBase(Char c) noexcept {
    if constexpr (base <= 10)
        return static_cast<unsigned>(c - '0');
    else
        return DigitValue(c);
}

// How many digits of the base never exceed `limit`.
constexpr unsigned SafeDigits(unsigned base, uint64_t limit) noexcept {
    unsigned count = 0;
    for (; limit >= base - 1; limit = (limit - (base - 1)) / base)
        ++count;
    return count;
}

// Parses digits, with the base known so that nothing is divided at run time. What exceeds `limit`
// becomes `limit`, and sets `overflow`.
template <unsigned base, class Unsigned, class Char>
constexpr Unsigned ParseDigits(const Char*& at, Unsigned limit, bool& overflow) noexcept {
    Unsigned value = 0;
    unsigned digit = 0;
    // Signed values have the lower limit, which is as good for unsigned ones here.
    for (unsigned safe = SafeDigits(base, std::numeric_limits<Unsigned>::max() / 2); safe != 0;
         --safe, ++at) {
        if ((digit = DigitOfBase<base>(*at)) >= base)
            return value;
        value = static_cast<Unsigned>(value * base + digit);
    }
    const auto last = static_cast<Unsigned>(limit / base); // one more digit may fit behind it
    const auto lastDigit = static_cast<unsigned>(limit % base);
    for (; (digit = DigitOfBase<base>(*at)) < base; ++at) {
        if (value < last || (value == last && digit <= lastDigit))
            value = static_cast<Unsigned>(value * base + digit);
        else
            overflow = true;
    }
    return overflow ? limit : value;
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
    bool overflow = false;
    const Unsigned value = base == 10   ? detail::ParseDigits<10>(at, limit, overflow)
                           : base == 16 ? detail::ParseDigits<16>(at, limit, overflow)
                                        : detail::ParseDigits<8>(at, limit, overflow);
    *stop = at == digits ? text : at;
    if (overflow && !std::is_signed_v<Integer>)
        return std::numeric_limits<Integer>::max();
    return static_cast<Integer>(negative ? static_cast<Unsigned>(0 - value) : value);
}

} // namespace treevault

#endif
