// SPDX-License-Identifier: MIT
// Takes the text of a deserialization context, parses it, and builds nodes from it one tree at a
// time.
#ifndef TREEVAULT_XML_XMLNODEREADER_H
#define TREEVAULT_XML_XMLNODEREADER_H

#include "general/treevault/nodes/acnodeimpl.h"
#include "general/treevault/values/values.h"
#include "general/treevault/xml/xmlparser.h"

#include <treevault/serialization.h>

#include <string>
#include <string_view>
#include <vector>

namespace treevault {

// Too large for a stack.
class XmlNodeReader {
public:
    // Calls back until the text is complete. Raises what the callback returned, 0x80040208 for a
    // text that is not well-formed and 0x80040209 for one whose first element is not `nr`.
    XmlNodeReader(NodeTextReadCallback read, void* readContext, uint32_t flags);
    XmlNodeReader(const XmlNodeReader&) = delete;
    XmlNodeReader& operator=(const XmlNodeReader&) = delete;

    // The next tree, or none at the end. After a failure the next call reads the same tree again.
    Ref<CACNodeImpl> ReadNextNode();

private:
    using Element = rapidxml::xml_node<char>;

    void ReadText(NodeTextReadCallback read, void* readContext);
    void Parse();
    Ref<CACNodeImpl> ReadNode(const Element& element);
    Ref<CACNodeImpl> CreateNode(const Element& element);
    void ReadAttribute(const Element& element, CACNodeImpl& node);
    ValueView ReadArray(const Element& element);
    void RestoreValueType(ValueView& value, ValueType recordedType);

    const uint32_t Flags;
    std::string Text; // the document points into it
    XmlDocument Document;
    const Element* Current = nullptr; // the next tree; null at the end
    std::vector<uint8_t> ArrayBuffer;
    std::vector<uint8_t> ValueBuffer;
    WideText Name; // scratch
    WideText Type; // scratch
};

} // namespace treevault

#endif
