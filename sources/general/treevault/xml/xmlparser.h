// SPDX-License-Identifier: MIT
// Parses XML text in place into a document of elements and attributes, without recursion.
#ifndef TREEVAULT_XML_XMLPARSER_H
#define TREEVAULT_XML_XMLPARSER_H

#include <rapidxml/rapidxml.hpp>

namespace treevault {

// It holds its first pool of memory inside itself, too much for a stack.
class XmlDocument final : public rapidxml::xml_document<char> {
public:
    // Parses a zero-terminated text, which must live as long as the document: names and values lie
    // in it, each with a terminator behind it. Element text, comments and declarations are skipped
    // and closing tags are not compared. Raises rapidxml::parse_error, also when elements are
    // nested deeper than TREEVAULT_MAX_XML_DEPTH.
    void Parse(char* text);

    // Where the parser stands; its own.
    struct {
        bool InsideElement = false; // the contents of a top-level element are being parsed
        bool ElementOpened = false; // the element just parsed has contents
    } Progress;
};

} // namespace treevault

#endif
