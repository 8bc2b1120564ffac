// SPDX-License-Identifier: MIT
// The plain reference for XML: rapidxml alone, with the same text form as TreeVault's.
#ifndef TREEVAULT_BENCHMARKS_PLAINDOCUMENT_H
#define TREEVAULT_BENCHMARKS_PLAINDOCUMENT_H

#include "structtree.h"

#include <rapidxml/rapidxml.hpp>

#include <string>

namespace treevault::benchmarks {

using Document = rapidxml::xml_document<char>;

// Makes the whole document; its texts are its own.
void FillDocument(const Workload& workload, Document& document);

// The text on one line: appended to the string, which grows; or written to the start of the string,
// which must be large enough and is cut to what was written.
void PrintToString(const Document& document, std::string& text);
void PrintToArray(const Document& document, std::string& text);

// Parses `text` in place, zero-terminated, and builds the tree of its only node.
template <class AttributeSet>
StructTree<AttributeSet> ReadDocument(char* text);

extern template VectorTree ReadDocument(char* text);
extern template MapTree ReadDocument(char* text);

} // namespace treevault::benchmarks

#endif
