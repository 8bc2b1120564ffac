// SPDX-License-Identifier: MIT
// Builds the document of a serialization context and hands its text out.
#ifndef TREEVAULT_XML_XMLNODEWRITER_H
#define TREEVAULT_XML_XMLNODEWRITER_H

#include "general/treevault/xml/nodevisitor.h"
#include "general/treevault/xml/outputbuffer.h"

#include <treevault/serialization.h>

#include <rapidxml/rapidxml.hpp>

#include <string>
#include <string_view>

namespace treevault {

// Too large for a stack. A failure leaves the element that was being written open.
class XmlNodeWriter final : public INodeVisitor {
public:
    XmlNodeWriter(NodeTextWriteCallback write, void* writeContext, uint32_t flags);

    void BeginNode(IACNode* node, WideView name, WideView type) override;

    // The value must be of VtStringA or VtStringAArray.
    void Attribute(IACNode* node, WideView name, const ValueView& value,
                   ValueType storedType) override;

    void EndNode(IACNode* node) override;

    // A text of more than `most` bytes raises std::bad_alloc when it is printed.
    void LimitText(size_t most) noexcept { Output.Limit(most); }

    // Prints the document and calls back with the text. It can be called again.
    void Finalize();

private:
    using Element = rapidxml::xml_node<char>;

    // Begins the start tag of an element; it becomes one when its attributes are there.
    void BeginTag(std::string_view name);
    void AddAttribute(char name, WideView value);
    Element* ElementOfTag();
    void AddArray(Element& element, const ValueView& value);

    NodeTextWriteCallback const Write;
    void* const WriteContext;
    const uint32_t Flags;
    rapidxml::xml_document<char> Document;
    OutputBuffer Tag{256};
    Element* const Root;
    Element* Current; // takes the next child
    OutputBuffer Output;
    std::string Utf8; // scratch
};

} // namespace treevault

#endif
