// SPDX-License-Identifier: MIT
// Prints a tree of elements as XML text.
#ifndef TREEVAULT_XML_XMLPRINTER_H
#define TREEVAULT_XML_XMLPRINTER_H

#include "general/treevault/xml/outputbuffer.h"

#include <rapidxml/rapidxml.hpp>

namespace treevault {

// Appends a blank and an attribute as it stands in a start tag. The control characters in its value
// become references of two upper-case digits, and what is neither a control nor markup is copied.
void AppendAttribute(char name, std::string_view value, OutputBuffer& output);

// Appends `root` and everything below it. The name of each element is its start tag: its name
// proper and what AppendAttribute gave. Only elements are printed; nesting costs no stack. With
// `indent` each element begins its line behind one tab for each level and ends it with CR LF;
// without, no white space is written but the blank before each attribute.
void PrintElement(const rapidxml::xml_node<char>& root, bool indent, OutputBuffer& output);

} // namespace treevault

#endif
