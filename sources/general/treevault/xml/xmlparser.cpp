// SPDX-License-Identifier: MIT
// rapidxml descends into the contents of an element by calling itself. Here that one function is
// replaced for flags of our own: on nested elements it only notes that there are contents, and on
// the outermost one it runs a loop, so that depth costs no stack. Everything else, messages and
// positions of errors included, is rapidxml's.
#include "general/treevault/xml/xmlparser.h"

#include <treevault/serialization.h>

#include <cstdint>

namespace treevault {

namespace {

constexpr int PlainFlags = rapidxml::parse_no_data_nodes | rapidxml::parse_no_element_values;

// The additional bit means nothing to rapidxml. It sets our instances apart from those of anybody
// else who is linked into the same program.
constexpr int ParseFlags = PlainFlags | 0x40000000;

} // namespace

} // namespace treevault

namespace rapidxml {

// Only documents of the class XmlDocument are parsed with these flags.
template <>
template <>
void xml_document<char>::parse_node_contents<treevault::ParseFlags>(char*& text,
                                                                    xml_node<char>* node) {
    constexpr int Flags = treevault::ParseFlags;
    auto& progress = static_cast<treevault::XmlDocument*>(this)->Progress;
    if (progress.InsideElement) {
        progress.ElementOpened = true;
        return;
    }
    progress.InsideElement = true;
    xml_node<char>* current = node;
    size_t depth = 1;
    do {
        char* const start = text;
        skip<whitespace_pred, Flags>(text);
        char next = *text;
        if (next != '<' && next != '\0')
            next = parse_and_append_data<Flags>(current, text, start);
        if (next == '\0')
            throw parse_error("unexpected end of data", text);
        ++text;
        if (*text == '/') {
            ++text;
            skip<node_name_pred, Flags>(text);
            skip<whitespace_pred, Flags>(text);
            if (*text != '>')
                throw parse_error("expected >", text);
            ++text;
            current = current == node ? nullptr : current->parent();
            --depth;
            continue;
        }
        progress.ElementOpened = false;
        xml_node<char>* const child = parse_node<Flags>(text);
        if (!child)
            continue;
        if (depth == TREEVAULT_MAX_XML_DEPTH)
            throw parse_error("nesting too deep", text);
        current->append_node(child);
        if (progress.ElementOpened) {
            current = child;
            ++depth;
        }
    } while (current);
    progress.InsideElement = false;
}

// References are read modulo 2^32 on every platform, whatever the width of long.
template <>
template <>
void xml_document<char>::insert_coded_character<treevault::ParseFlags>(char*& text,
                                                                       unsigned long code) {
    insert_coded_character<treevault::PlainFlags>(text, static_cast<uint32_t>(code));
}

} // namespace rapidxml

namespace treevault {

void XmlDocument::Parse(char* text) {
    Progress = {};
    parse<ParseFlags>(text);
}

} // namespace treevault
