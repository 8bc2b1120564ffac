// SPDX-License-Identifier: MIT
// Reading of booleans and identifiers.
#include "general/treevault/values/textforms.h"

#include "general/treevault/values/bytevectors.h"

namespace treevault {

namespace {

// `lower` has only lower-case letters.
template <class Char>
bool EqualsIgnoringCase(const Char* text, const char* lower) noexcept {
    for (;; ++text, ++lower) {
        const Char folded = *text >= 'A' && *text <= 'Z' ? static_cast<Char>(*text | 0x20) : *text;
        if (folded != static_cast<Char>(*lower))
            return false;
        if (folded == 0)
            return true;
    }
}

template <class Char>
bool Contains(const Char* text, char wanted) noexcept {
    for (; *text != 0; ++text) {
        if (*text == static_cast<Char>(wanted))
            return true;
    }
    return false;
}

// Reads the fields of a text one after the other, by the rules of scanf for a hexadecimal field
// with a width. The first thing that does not match ends it.
template <class Char>
class FieldScanner {
public:
    explicit FieldScanner(const Char* text) noexcept : At(text) {}

    void Literal(char wanted) noexcept {
        Matches = Matches && *At == static_cast<Char>(wanted);
        if (Matches)
            ++At;
    }

    // White space does not count towards `width`, a sign and a prefix do.
    uint32_t Field(unsigned width) noexcept {
        if (!Matches)
            return 0;
        while (IsSpace(*At))
            ++At;
        const bool negative = *At == '-';
        if (negative || *At == '+')
            Skip(1, width);
        if (width >= 2 && *At == '0' && (At[1] == 'x' || At[1] == 'X'))
            Skip(2, width);
        uint32_t value = 0;
        Matches = width != 0 && detail::DigitValue(*At) < 16;
        for (unsigned digit; width != 0 && (digit = detail::DigitValue(*At)) < 16; Skip(1, width))
            value = value * 16 + digit;
        return negative ? 0 - value : value;
    }

    bool AllMatched() const noexcept { return Matches; }

private:
    void Skip(unsigned count, unsigned& width) noexcept {
        At += count;
        width -= count;
    }

    const Char* At;
    bool Matches = true;
};

// The form in which this library writes them, from the first digit on: all digits and dashes where
// they are due. False for any other text.
template <class Char>
bool ReadWrittenGuid(const Char* text, GUID& guid) noexcept {
    if (text[8] != '-' || text[13] != '-' || text[18] != '-' || text[23] != '-')
        return false;
    constexpr size_t group = 4;
    Char digits[2 * VectorSize];
    Char* to = digits;
    for (const size_t from : {0u, 4u, 9u, 14u, 19u, 24u, 28u, 32u}) {
        std::memcpy(to, text + from, group * sizeof(Char));
        to += group;
    }
    ByteVector others{};
    const ByteVector first = HexValues(LoadAscii(digits, others), others);
    const ByteVector second = HexValues(LoadAscii(digits + VectorSize, others), others);
    if (HasAnyBit(others))
        return false;
    uint8_t bytes[sizeof(GUID)];
    StoreBytes(bytes, JoinHexValues(first, second));
    guid.Data1 = static_cast<uint32_t>(bytes[0] << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3]);
    guid.Data2 = static_cast<uint16_t>(bytes[4] << 8 | bytes[5]);
    guid.Data3 = static_cast<uint16_t>(bytes[6] << 8 | bytes[7]);
    std::memcpy(guid.Data4, bytes + 8, sizeof guid.Data4);
    return true;
}

} // namespace

template <class Char>
bool ParseBool(const Char* text, bool& value) noexcept {
    if (EqualsIgnoringCase(text, "true")) {
        value = true;
        return true;
    }
    if (EqualsIgnoringCase(text, "false")) {
        value = false;
        return true;
    }
    int32_t number;
    if (!ParseNumber(text, number))
        return false;
    value = number != 0;
    return true;
}

template <class Char>
HRESULT StringToGuid(const Char* text, size_t size, GUID& guid) noexcept {
    if (!text)
        return E_INVALIDARG;
    const size_t brace = *text == '{' ? 1 : 0;
    if (size > brace + GuidTextLength && ReadWrittenGuid(text + brace, guid))
        return S_OK;
    const bool dashes = Contains(text, '-');
    FieldScanner<Char> scan(text);
    const auto dash = [&] {
        if (dashes)
            scan.Literal('-');
    };
    if (dashes && brace != 0)
        scan.Literal('{');
    GUID read;
    read.Data1 = scan.Field(8);
    dash();
    read.Data2 = static_cast<uint16_t>(scan.Field(4));
    dash();
    read.Data3 = static_cast<uint16_t>(scan.Field(4));
    dash();
    for (size_t index = 0; index < 8; ++index) {
        if (index == 2)
            dash();
        read.Data4[index] = static_cast<uint8_t>(scan.Field(2));
    }
    if (!scan.AllMatched())
        return E_INVALIDARG;
    guid = read;
    return S_OK;
}

template bool ParseBool(const char*, bool&) noexcept;
template bool ParseBool(const WCHAR*, bool&) noexcept;
template HRESULT StringToGuid(const char*, size_t, GUID&) noexcept;
template HRESULT StringToGuid(const WCHAR*, size_t, GUID&) noexcept;

} // namespace treevault
