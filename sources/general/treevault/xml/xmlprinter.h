// SPDX-License-Identifier: MIT
// Prints a tree of elements and attributes as XML text.
#ifndef TREEVAULT_XML_XMLPRINTER_H
#define TREEVAULT_XML_XMLPRINTER_H

#include "general/treevault/xml/outputbuffer.h"

#include <rapidxml/rapidxml.hpp>

namespace treevault {

// Appends `root` and everything below it. Only elements and attributes are printed; nesting costs
// no stack. With `indent` each element begins its line behind one tab for each level and ends it
// with CR LF; without, no white space is written but the blank before each attribute. The control
// characters in a value become references of two upper-case digits, and what is neither a control
// nor markup is copied.
void PrintElement(const rapidxml::xml_node<char>& root, bool indent, OutputBuffer& output);

} // namespace treevault

#endif
