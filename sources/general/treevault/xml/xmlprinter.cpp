// SPDX-License-Identifier: MIT
// The printer: one pass over the elements, one over each value.
#include "general/treevault/xml/xmlprinter.h"

#include <array>
#include <cstdint>

namespace treevault {

namespace {

using Element = rapidxml::xml_node<char>;
using Attribute = rapidxml::xml_attribute<char>;

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

std::string_view NameOf(const rapidxml::xml_base<char>& item) noexcept {
    return {item.name(), item.name_size()};
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
    std::memcpy(to, text.data(), text.size());
    return to + text.size();
}

void PrintAttribute(const Attribute& attribute, OutputBuffer& output) {
    const std::string_view name = NameOf(attribute);
    const std::string_view value(attribute.value(), attribute.value_size());
    const uint8_t kinds = KindsIn(value);
    const char quote = kinds & DoubleQuote ? '\'' : '"';
    const bool plain = !(kinds & (Escaped | DoubleQuote));
    char* at = output.Room(name.size() + value.size() + 4); // a blank, "=" and the quotes
    *at++ = ' ';
    at = Copy(name, at);
    *at++ = '=';
    *at++ = quote;
    if (plain) {
        at = Copy(value, at);
        *at++ = quote;
        output.Commit(at);
        return;
    }
    output.Commit(at);
    AppendEscaped(value, quote == '"' ? Escaped : Escaped | SingleQuote, output);
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
        const std::string_view name = NameOf(element);
        BeginLine();
        char* at = Output.Room(name.size() + 1);
        *at++ = '<';
        Output.Commit(Copy(name, at));
        for (const Attribute* attribute = element.first_attribute(); attribute;
             attribute = attribute->next_attribute())
            PrintAttribute(*attribute, Output);
        Output.Append(element.first_node() ? ">" : "/>");
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

void PrintElement(const Element& root, bool indent, OutputBuffer& output) {
    Printer(indent, output).Print(root);
}

} // namespace treevault
