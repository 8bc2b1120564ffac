// SPDX-License-Identifier: MIT
// Writing and reading of binaries as text. The decoders run twice, to count and to write, so that
// nothing is allocated and a text that is wrong anywhere writes nothing.
#include "general/treevault/values/vtconvblob.h"

#include "common/errorhandling.h"
#include "common/hextext.h"
#include "common/numbers.h"
#include "general/treevault/values/bytevectors.h"
#include "general/treevault/values/values.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <type_traits>

namespace treevault {

namespace {

template <class Char>
using View = std::basic_string_view<Char>;

constexpr size_t PrefixLength = 4;

// Counts bytes and, where there is a place, writes them.
struct ByteSink {
    uint8_t* Place = nullptr;
    uint64_t Count = 0;

    void Put(uint32_t value) noexcept {
        if (Place)
            Place[Count] = static_cast<uint8_t>(value);
        ++Count;
    }
};

constexpr uint8_t NoDigit = 0xFF;
using DigitTable = std::array<uint8_t, 256>;

constexpr DigitTable MakeDigitTable(std::string_view digits) {
    DigitTable table{};
    table.fill(NoDigit);
    for (size_t digit = 0; digit < digits.size(); ++digit)
        table[static_cast<size_t>(digits[digit])] = static_cast<uint8_t>(digit);
    return table;
}

constexpr DigitTable MakeHexTable() {
    DigitTable table = MakeDigitTable("0123456789abcdef");
    for (size_t letter = 'A'; letter <= 'F'; ++letter)
        table[letter] = table[letter | 0x20];
    return table;
}

constexpr DigitTable HexTable = MakeHexTable();
constexpr DigitTable Base64Table =
    MakeDigitTable("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");

template <class Char>
uint8_t DigitOf(const DigitTable& table, Char c) noexcept {
    const auto unit = static_cast<std::make_unsigned_t<Char>>(c);
    if constexpr (sizeof(Char) > 1) {
        if (unit >= table.size())
            return NoDigit;
    }
    return table[unit];
}

template <class Char>
bool DecodeHex(View<Char> text, ByteSink& sink) noexcept {
    size_t at = 0;
    while (at + 1 < text.size()) {
        const uint8_t high = DigitOf(HexTable, text[at]);
        const uint8_t low = DigitOf(HexTable, text[at + 1]);
        if ((high | low) <= 15) {
            sink.Put(static_cast<uint32_t>(high << 4 | low));
            at += 2;
        } else if (IsSpace(text[at])) {
            ++at;
        } else {
            return false;
        }
    }
    return at == text.size() || IsSpace(text[at]);
}

template <class Char>
bool AreHexDigits(View<Char> text) noexcept {
    ByteVector others{};
    size_t at = 0;
    for (; text.size() - at >= VectorSize; at += VectorSize)
        HexValues(LoadAscii(text.data() + at, others), others);
    uint8_t rest = 0;
    for (; at < text.size(); ++at)
        rest |= DigitOf(HexTable, text[at]);
    return !HasAnyBit(others) && rest <= 15;
}

// Of characters that are digits, in pairs.
template <class Char>
void PutHexBytes(View<Char> text, uint8_t* place) noexcept {
    ByteVector others{}; // there are none
    size_t at = 0;
    for (; text.size() - at >= 2 * VectorSize; at += 2 * VectorSize) {
        const Char* const digits = text.data() + at;
        const ByteVector first = HexValues(LoadAscii(digits, others), others);
        const ByteVector second = HexValues(LoadAscii(digits + VectorSize, others), others);
        StoreBytes(place + at / 2, JoinHexValues(first, second));
    }
    for (; at < text.size(); at += 2)
        place[at / 2] = static_cast<uint8_t>(DigitOf(HexTable, text[at]) << 4 |
                                             DigitOf(HexTable, text[at + 1]));
}

// The form in which this library writes them: pairs of digits and nothing else. False for any other
// text, which may be well-formed all the same.
template <class Char>
bool DecodePlainHex(View<Char> text, OutputCursor& out) {
    if (text.size() % 2 != 0 || !AreHexDigits(text))
        return false;
    if (uint8_t* const place = out.Take(text.size() / 2))
        PutHexBytes(text, place);
    return true;
}

template <class Char>
size_t FindAscii(View<Char> text, std::string_view wanted, size_t from) noexcept {
    for (size_t at = from; at + wanted.size() <= text.size(); ++at) {
        if (std::equal(wanted.begin(), wanted.end(), text.begin() + static_cast<ptrdiff_t>(at)))
            return at;
    }
    return View<Char>::npos;
}

template <class Char>
View<Char> TrimSpace(View<Char> text) noexcept {
    while (!text.empty() && IsSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

// What stands between the lines "-----BEGIN ...-----" and "-----END ...-----", or the text itself.
// Dashes that remain are no digits, so a frame that is incomplete is refused with them.
template <class Char>
View<Char> WithoutFrame(View<Char> text) noexcept {
    constexpr std::string_view begin = "-----BEGIN ", end = "-----END ", dashes = "-----";
    text = TrimSpace(text);
    if (FindAscii(text.substr(0, begin.size()), begin, 0) != 0)
        return text;
    const size_t headEnd = FindAscii(text, dashes, begin.size());
    if (headEnd == View<Char>::npos)
        return text;
    const size_t body = headEnd + dashes.size();
    const size_t foot = FindAscii(text, end, body);
    if (foot == View<Char>::npos)
        return text.substr(body);
    const bool closed = FindAscii(text, dashes, foot + end.size()) == text.size() - dashes.size();
    return closed ? text.substr(body, foot - body) : text;
}

template <class Char>
bool DecodeBase64(View<Char> text, ByteSink& sink) noexcept {
    uint32_t bits = 0;
    unsigned digits = 0, pads = 0; // of the group of four
    for (const Char c : WithoutFrame(text)) {
        if (IsSpace(c))
            continue;
        if (c == '=') {
            if (digits < 2 || digits + ++pads > 4)
                return false;
            continue;
        }
        const uint8_t digit = DigitOf(Base64Table, c);
        if (digit == NoDigit || pads != 0)
            return false;
        bits = bits << 6 | digit;
        if (++digits == 4) {
            for (unsigned shift : {16u, 8u, 0u})
                sink.Put(bits >> shift);
            digits = 0;
        }
    }
    if (digits == 0)
        return true;
    if (digits + pads != 4)
        return false;
    sink.Put(bits >> (digits == 3 ? 10 : 4));
    if (digits == 3)
        sink.Put(bits >> 2);
    return true;
}

template <class Char>
struct Form {
    std::string_view Prefix;
    bool (*Decode)(View<Char> text, ByteSink& sink) noexcept;
};

template <class Char>
constexpr Form<Char> Forms[] = {{"HEX:", &DecodeHex<Char>}, {"B64:", &DecodeBase64<Char>}};

template <class Char>
const Form<Char>& FormOf(View<Char> text) {
    for (const Form<Char>& form : Forms<Char>) {
        if (FindAscii(text.substr(0, PrefixLength), form.Prefix, 0) == 0)
            return form;
    }
    ThrowHr(E_INVALIDARG);
}

template <class Char>
void Decode(View<Char> text, OutputCursor& out) {
    const Form<Char>& form = FormOf(text);
    text.remove_prefix(PrefixLength);
    if (form.Decode == &DecodeHex<Char> && DecodePlainHex(text, out))
        return;
    ByteSink count;
    if (!form.Decode(text, count))
        ThrowHr(TREEVAULT_E_INVALID_DATA);
    ByteSink sink{out.Take(count.Count)};
    if (sink.Place)
        form.Decode(text, sink);
}

} // namespace

namespace {

ByteVector HexDigits(ByteVector values) noexcept {
    const auto isLetter = reinterpret_cast<ByteVector>(values > 9);
    return values + '0' + (isLetter & ('a' - '9' - 1));
}

// Writes two digits for each byte and gives their end.
template <class Char>
uint8_t* PutHex(const uint8_t* bytes, uint64_t size, uint8_t* to) noexcept {
    constexpr size_t pairSize = 2 * sizeof(Char);
    uint64_t at = 0;
    for (; size - at >= VectorSize; at += VectorSize) {
        const ByteVector block = LoadBytes(bytes + at);
        uint8_t digits[2 * VectorSize];
        StoreInTurn(digits, HexDigits(block >> 4), HexDigits(block & 15));
        for (const size_t half : {size_t{0}, VectorSize})
            StoreAscii<Char>(to + at * pairSize + half * sizeof(Char), LoadBytes(digits + half));
    }
    for (; at < size; ++at)
        std::memcpy(to + at * pairSize, LowerHexPairs<Char>[bytes[at]].data(), pairSize);
    return to + size * pairSize;
}

} // namespace

template <class Char>
void BinaryToString(const void* data, uint64_t size, OutputCursor& out) {
    constexpr Char prefix[PrefixLength] = {'H', 'E', 'X', ':'};
    constexpr Char terminator = 0;
    const uint64_t total = (PrefixLength + 2 * size + 1) * sizeof(Char);
    if (total > MaximumValueSize)
        ThrowHr(E_INVALIDARG);
    uint8_t* const place = out.Take(total);
    if (!place)
        return;
    std::memcpy(place, prefix, sizeof prefix);
    uint8_t* const end =
        PutHex<Char>(static_cast<const uint8_t*>(data), size, place + sizeof prefix);
    std::memcpy(end, &terminator, sizeof terminator);
}

template <class Char>
void StringToBinary(const Char* text, OutputCursor& out) {
    try {
        Decode(View<Char>(text), out);
    } catch (const HRX& failure) {
        const auto write = [&](WideStream& line) {
            line << TV_W("StringToBinary failed: ");
            AppendErrorText(line, failure);
        };
        Log(SeverityErr, write, {"sources/general/treevault/vtconvblob", __LINE__});
        ThrowHr(TREEVAULT_E_CANNOT_CONVERT);
    }
}

template void BinaryToString<char>(const void*, uint64_t, OutputCursor&);
template void BinaryToString<WCHAR>(const void*, uint64_t, OutputCursor&);
template void StringToBinary(const char*, OutputCursor&);
template void StringToBinary(const WCHAR*, OutputCursor&);

} // namespace treevault
