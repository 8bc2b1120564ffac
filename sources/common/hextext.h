// SPDX-License-Identifier: MIT
// Bytes and identifiers as hexadecimal digits, two for each byte at a time.
#ifndef TREEVAULT_COMMON_HEXTEXT_H
#define TREEVAULT_COMMON_HEXTEXT_H

#include <treevault/platform.h>

#include <array>
#include <cstring>

namespace treevault {

// The two digits of every byte value.
template <class Char>
using HexPairs = std::array<std::array<Char, 2>, 256>;

template <class Char>
constexpr HexPairs<Char> MakeHexPairs(const char* digits) {
    HexPairs<Char> pairs{};
    for (size_t value = 0; value < pairs.size(); ++value)
        pairs[value] = {static_cast<Char>(digits[value >> 4]),
                        static_cast<Char>(digits[value & 15])};
    return pairs;
}

template <class Char>
inline constexpr HexPairs<Char> LowerHexPairs = MakeHexPairs<Char>("0123456789abcdef");
template <class Char>
inline constexpr HexPairs<Char> UpperHexPairs = MakeHexPairs<Char>("0123456789ABCDEF");

inline constexpr size_t GuidTextLength = 36; // without braces

// Writes groups of 8, 4, 4, 4 and 12 digits with "-" between, without a terminator, and gives their
// end.
template <class Char>
Char* WriteGuidText(const GUID& guid, const HexPairs<Char>& pairs, Char* at) noexcept {
    const auto put = [&](uint32_t value) {
        std::memcpy(at, pairs[value & 0xFF].data(), 2 * sizeof(Char));
        at += 2;
    };
    put(guid.Data1 >> 24);
    put(guid.Data1 >> 16);
    put(guid.Data1 >> 8);
    put(guid.Data1);
    *at++ = '-';
    put(guid.Data2 >> 8);
    put(guid.Data2);
    *at++ = '-';
    put(guid.Data3 >> 8);
    put(guid.Data3);
    *at++ = '-';
    put(guid.Data4[0]);
    put(guid.Data4[1]);
    *at++ = '-';
    for (size_t index = 2; index < 8; ++index)
        put(guid.Data4[index]);
    return at;
}

} // namespace treevault

#endif
