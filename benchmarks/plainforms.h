// SPDX-License-Identifier: MIT
// The plain reference for conversions: each the shortest straight code for one pair of types, for
// good input alone.
#ifndef TREEVAULT_BENCHMARKS_PLAINFORMS_H
#define TREEVAULT_BENCHMARKS_PLAINFORMS_H

#include <treevault/platform.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>

namespace treevault::benchmarks {

// Terminates the text; gives its length. `text` has room for 16 characters.
inline size_t FormatNumber(int32_t number, char* text) {
    char* end = std::to_chars(text, text + 15, number).ptr;
    *end = 0;
    return static_cast<size_t>(end - text);
}

// For ASCII.
inline void Widen(std::string_view text, WCHAR* wide) {
    for (const char unit : text)
        *wide++ = static_cast<unsigned char>(unit);
}

inline void Narrow(const WCHAR* wide, size_t length, char* text) {
    for (size_t i = 0; i < length; ++i)
        text[i] = static_cast<char>(wide[i]);
}

// The two digits of each byte.
constexpr std::array<char, 512> MakeDigitTable(const char* digits) {
    std::array<char, 512> table{};
    for (size_t byte = 0; byte < 256; ++byte) {
        table[2 * byte] = digits[byte / 16];
        table[2 * byte + 1] = digits[byte % 16];
    }
    return table;
}

// The value of each digit; 0xFF for what is none.
constexpr std::array<uint8_t, 256> MakeValueTable() {
    std::array<uint8_t, 256> table{};
    table.fill(0xFF);
    for (uint8_t i = 0; i < 10; ++i)
        table[static_cast<size_t>('0' + i)] = i;
    for (uint8_t i = 0; i < 6; ++i) {
        table[static_cast<size_t>('a' + i)] = static_cast<uint8_t>(10 + i);
        table[static_cast<size_t>('A' + i)] = static_cast<uint8_t>(10 + i);
    }
    return table;
}

inline constexpr std::array<char, 512> LowerDigits = MakeDigitTable("0123456789abcdef");
inline constexpr std::array<char, 512> UpperDigits = MakeDigitTable("0123456789ABCDEF");
inline constexpr std::array<uint8_t, 256> DigitValues = MakeValueTable();

inline char* AppendByte(char* text, const std::array<char, 512>& digits, unsigned byte) {
    text[0] = digits[2 * byte];
    text[1] = digits[2 * byte + 1];
    return text + 2;
}

inline char* FormatHex(const uint8_t* bytes, size_t size, char* text) {
    for (size_t i = 0; i < size; ++i)
        text = AppendByte(text, LowerDigits, bytes[i]);
    return text;
}

// False for what is no pair of digits. Leaving at once is twice as fast as collecting what was
// seen, which compilers turn into vectors of single table entries.
inline bool ParseHex(const char* text, size_t size, uint8_t* bytes) {
    for (size_t i = 0; i < size; ++i) {
        const unsigned high = DigitValues[static_cast<unsigned char>(text[2 * i])];
        const unsigned low = DigitValues[static_cast<unsigned char>(text[2 * i + 1])];
        if ((high | low) > 15)
            return false;
        bytes[i] = static_cast<uint8_t>(high << 4 | low);
    }
    return true;
}

// The bytes of a GUID in the order of its digits, and the dashes and braces between them.
inline std::array<uint8_t, 16> GuidBytes(const GUID& guid) {
    std::array<uint8_t, 16> bytes{};
    for (unsigned i = 0; i < 4; ++i)
        bytes[i] = static_cast<uint8_t>(guid.Data1 >> (24 - 8 * i));
    for (unsigned i = 0; i < 2; ++i) {
        bytes[4 + i] = static_cast<uint8_t>(guid.Data2 >> (8 - 8 * i));
        bytes[6 + i] = static_cast<uint8_t>(guid.Data3 >> (8 - 8 * i));
    }
    for (unsigned i = 0; i < 8; ++i)
        bytes[8 + i] = guid.Data4[i];
    return bytes;
}

// `text` has room for 39 characters.
inline void FormatGuid(const GUID& guid, char* text) {
    const std::array<uint8_t, 16> bytes = GuidBytes(guid);
    *text++ = '{';
    for (size_t i = 0; i < 16; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            *text++ = '-';
        text = AppendByte(text, UpperDigits, bytes[i]);
    }
    *text++ = '}';
    *text = 0;
}

// False for a wrong digit.
inline bool ParseGuid(const char* text, GUID* guid) {
    std::array<uint8_t, 16> bytes{};
    const bool good = ParseHex(text + 1, 4, &bytes[0]) && ParseHex(text + 10, 2, &bytes[4]) &&
                      ParseHex(text + 15, 2, &bytes[6]) && ParseHex(text + 20, 2, &bytes[8]) &&
                      ParseHex(text + 25, 6, &bytes[10]);
    guid->Data1 = static_cast<uint32_t>(bytes[0] << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3]);
    guid->Data2 = static_cast<uint16_t>(bytes[4] << 8 | bytes[5]);
    guid->Data3 = static_cast<uint16_t>(bytes[6] << 8 | bytes[7]);
    for (size_t i = 0; i < 8; ++i)
        guid->Data4[i] = bytes[8 + i];
    return good;
}

} // namespace treevault::benchmarks

#endif
