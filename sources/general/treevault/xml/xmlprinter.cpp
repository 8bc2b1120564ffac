// SPDX-License-Identifier: MIT
// The printer: one pass over the elements, one over each value that has no markup.
#include "general/treevault/xml/xmlprinter.h"

#include "general/treevault/values/bytevectors.h"
#include "general/treevault/values/outputcursor.h"

#include <array>
#include <cstdint>

namespace treevault {

namespace {

using Element = rapidxml::xml_node<char>;

// What a byte of a value means to the printer, as bits.
enum : uint8_t { Escaped = 1, DoubleQuote = 2, SingleQuote = 4 };

constexpr std::array<uint8_t, 256> MakeByteKinds() {
    std::array<uint8_t, 256> kinds = {};
    for (size_t byte = 0; byte < 0x20; ++byte)
        kinds[byte] = Escaped;
    kinds['<'] = kinds['>'] = kinds['&'] = Escaped;
    kinds['"'] = DoubleQuote;
    kinds['\''] = SingleQuote;
    return kinds;
}

constexpr std::array<uint8_t, 256> ByteKinds = MakeByteKinds();

uint8_t KindOf(char byte) noexcept {
    return ByteKinds[static_cast<unsigned char>(byte)];
}

// The kinds of all bytes of a text.
uint8_t KindsIn(std::string_view text) noexcept {
    uint8_t kinds = 0;
    for (const char byte : text)
        kinds |= KindOf(byte);
    return kinds;
}

// Bits for the bytes that do not stand for themselves in double quotes.
ByteVector MarkupIn(ByteVector bytes) noexcept {
    // "<" and ">" differ in one bit, and so do the double quote and "&".
    return reinterpret_cast<ByteVector>((bytes < 0x20) | ((bytes | 2) == '>') |
                                        ((bytes | 4) == '&'));
}

// Copies a text that takes one to two words, as two words that may overlap.
template <class Word>
ByteVector CopyWords(std::string_view text, char* to) noexcept {
    using Words [[gnu::vector_size(VectorSize)]] = Word;
    const size_t last = text.size() - sizeof(Word);
    Word words[2];
    std::memcpy(&words[0], text.data(), sizeof(Word));
    std::memcpy(&words[1], text.data() + last, sizeof(Word));
    std::memcpy(to, &words[0], sizeof(Word));
    std::memcpy(to + last, &words[1], sizeof(Word));
    Words both = Words{} + words[0];
    both[1] = words[1];
    return reinterpret_cast<ByteVector>(both);
}

ByteVector CopyVector(const char* from, char* to) noexcept {
    const ByteVector bytes = LoadBytes(from);
    StoreBytes(to, bytes);
    return bytes;
}

// Copies a text and tells whether all of it stands for itself in double quotes.
bool CopyPlain(std::string_view text, char* to) noexcept {
    if (text.size() < sizeof(uint32_t)) {
        for (size_t at = 0; at < text.size(); ++at)
            to[at] = text[at];
        return !(KindsIn(text) & (Escaped | DoubleQuote));
    }
    if (text.size() < sizeof(uint64_t))
        return !HasAnyBit(MarkupIn(CopyWords<uint32_t>(text, to)));
    if (text.size() < VectorSize)
        return !HasAnyBit(MarkupIn(CopyWords<uint64_t>(text, to)));
    const size_t last = text.size() - VectorSize;
    ByteVector markup = MarkupIn(CopyVector(text.data() + last, to + last));
    for (size_t at = 0; at < last; at += VectorSize)
        markup |= MarkupIn(CopyVector(text.data() + at, to + at));
    return !HasAnyBit(markup);
}

std::string_view StartTagOf(const Element& element) noexcept {
    return {element.name(), element.name_size()};
}

std::string_view NameOf(const Element& element) noexcept {
    const std::string_view tag = StartTagOf(element);
    return tag.substr(0, tag.find(' '));
}

void AppendEscape(char byte, OutputBuffer& output) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    switch (byte) {
    case '<':
        return output.Append("&lt;");
    case '>':
        return output.Append("&gt;");
    case '&':
        return output.Append("&amp;");
    case '\'':
        return output.Append("&apos;");
    default:
        const char text[] = {'&', '#', 'x', Digits[byte >> 4], Digits[byte & 15], ';'};
        return output.Append({text, sizeof text});
    }
}

// Appends a text in which the bytes of `kinds` are escaped.
void AppendEscaped(std::string_view text, uint8_t kinds, OutputBuffer& output) {
    const char* run = text.data();
    const char* const end = run + text.size();
    for (const char* at = run; at != end; ++at) {
        if (!(KindOf(*at) & kinds))
            continue;
        output.Append({run, static_cast<size_t>(at - run)});
        AppendEscape(*at, output);
        run = at + 1;
    }
    output.Append({run, static_cast<size_t>(end - run)});
}

char* Copy(std::string_view text, char* to) noexcept {
    CopyBytes(reinterpret_cast<uint8_t*>(to), text.data(), text.size());
    return to + text.size();
}

void AppendQuoted(std::string_view value, OutputBuffer& output) {
    const bool single = (KindsIn(value) & DoubleQuote) != 0;
    const char quote = single ? '\'' : '"';
    output.Append(1, quote);
    AppendEscaped(value, single ? Escaped | SingleQuote : Escaped, output);
    output.Append(1, quote);
}

class Printer {
public:
    Printer(bool indent, OutputBuffer& output) noexcept : Indent(indent), Output(output) {}

    void Print(const Element& root) {
        const Element* element = &root;
        for (;;) {
            PrintStart(*element);
            if (const Element* child = element->first_node()) {
                ++Level;
                element = child;
                continue;
            }
            // The end of an element may be that of the elements around it too.
            while (element != &root && !element->next_sibling()) {
                element = element->parent();
                --Level;
                PrintEnd(*element);
            }
            if (element == &root)
                return;
            element = element->next_sibling();
        }
    }

private:
    void PrintStart(const Element& element) {
        const std::string_view tag = StartTagOf(element);
        BeginLine();
        char* at = Output.Room(tag.size() + 3); // the brackets and a slash
        *at++ = '<';
        at = Copy(tag, at);
        if (!element.first_node())
            *at++ = '/';
        *at++ = '>';
        Output.Commit(at);
        EndLine();
    }

    void PrintEnd(const Element& element) {
        BeginLine();
        Output.Append("</");
        Output.Append(NameOf(element));
        Output.Append(1, '>');
        EndLine();
    }

    void BeginLine() {
        if (Indent)
            Output.Append(Level, '\t');
    }

    void EndLine() {
        if (Indent)
            Output.Append("\r\n");
    }

    const bool Indent;
    OutputBuffer& Output;
    size_t Level = 0;
};

} // namespace

void AppendAttribute(char name, std::string_view value, OutputBuffer& output) {
    char* at = output.Room(value.size() + 5); // a blank, the name, "=" and the quotes
    *at++ = ' ';
    *at++ = name;
    *at++ = '=';
    if (!CopyPlain(value, at + 1)) {
        output.Commit(at);
        AppendQuoted(value, output);
        return;
    }
    *at = '"';
    at += value.size() + 1;
    *at++ = '"';
    output.Commit(at);
}

void PrintElement(const Element& root, bool indent, OutputBuffer& output) {
    Printer(indent, output).Print(root);
}

} // namespace treevault
