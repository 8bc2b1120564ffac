// SPDX-License-Identifier: MIT
// Writing and reading of binaries as text. The decoders run twice, to count and to write, so that
// nothing is allocated and a text that is wrong anywhere writes nothing.
#include "general/treevault/values/vtconvblob.h"

#include "common/errorhandling.h"
#include "common/hextext.h"
#include "common/numbers.h"
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

// Digits of which nothing needs to be looked up, as many as the compiler likes to take at once.
constexpr size_t HexBlock = 32;

template <class Char>
bool AreHexDigits(const Char* text, size_t count) noexcept {
    using Unit = std::make_unsigned_t<Char>;
    Unit others = 0;
    for (size_t at = 0; at < count; ++at) {
        const auto unit = static_cast<Unit>(text[at]);
        const auto decimal = static_cast<Unit>(unit - '0');
        const auto letter = static_cast<Unit>((unit | 0x20) - 'a');
        others = static_cast<Unit>(others | static_cast<Unit>(decimal > 9 && letter > 5));
    }
    return others == 0;
}

// Of characters that are digits.
template <class Char>
void PutHexBytes(const Char* text, size_t count, uint8_t* place) noexcept {
    const auto value = [](Char c) { return static_cast<uint8_t>((c & 15) + 9 * (c >> 6)); };
    for (size_t at = 0; at < count; ++at)
        place[at] = static_cast<uint8_t>(value(text[2 * at]) << 4 | value(text[2 * at + 1]));
}

// The form in which this library writes them: pairs of digits and nothing else. False for any other
// text, which may be well-formed all the same.
template <class Char>
bool DecodePlainHex(View<Char> text, OutputCursor& out) {
    if (text.size() % 2 != 0)
        return false;
    size_t at = 0;
    for (; text.size() - at >= HexBlock; at += HexBlock)
        if (!AreHexDigits(text.data() + at, HexBlock))
            return false;
    if (!AreHexDigits(text.data() + at, text.size() - at))
        return false;
    uint8_t* const place = out.Take(text.size() / 2);
    if (!place)
        return true;
    for (at = 0; text.size() - at >= HexBlock; at += HexBlock)
        PutHexBytes(text.data() + at, HexBlock / 2, place + at / 2);
    PutHexBytes(text.data() + at, (text.size() - at) / 2, place + at / 2);
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

template <class Char>
void BinaryToString(const void* data, uint64_t size, OutputCursor& out) {
    constexpr Char prefix[PrefixLength] = {'H', 'E', 'X', ':'};
    constexpr Char terminator = 0;
    const uint64_t total = (PrefixLength + 2 * size + 1) * sizeof(Char);
    if (total > MaximumValueSize)
        ThrowHr(E_INVALIDARG);
    uint8_t* at = out.Take(total);
    if (!at)
        return;
    std::memcpy(at, prefix, sizeof prefix);
    at += sizeof prefix;
    const auto* bytes = static_cast<const uint8_t*>(data);
    for (const uint8_t* const end = bytes + size; bytes != end; ++bytes) {
        constexpr size_t pairSize = 2 * sizeof(Char);
        std::memcpy(at, LowerHexPairs<Char>[*bytes].data(), pairSize);
        at += pairSize;
    }
    std::memcpy(at, &terminator, sizeof terminator);
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
