// SPDX-License-Identifier: MIT
// From nodes to elements: `n` for a node, `a` for an attribute, `v` for an element of an array.
#include "general/treevault/xml/xmlnodewriter.h"

#include "common/errorhandling.h"
#include "general/treevault/xml/xmlprinter.h"
#include "platform/encoding.h"

#include <charconv>
#include <cstring>

namespace treevault {

namespace {

// The text of one string of a value, whose size counts its NUL.
std::string_view StringText(const char* text, uint64_t size) noexcept {
    return {text, size == 0 ? 0 : static_cast<size_t>(size - 1)};
}

} // namespace

XmlNodeWriter::XmlNodeWriter(NodeTextWriteCallback write, void* writeContext, uint32_t flags)
    : Write(write), WriteContext(writeContext), Flags(flags), Root(NewElement("nr")), Current(Root),
      Output(1024) {
    Document.append_node(Root);
}

void XmlNodeWriter::BeginNode(IACNode*, WideView name, WideView type) {
    Element* const element = NewElement("n");
    if (!name.empty())
        AddAttribute(*element, "n", name);
    if (!type.empty())
        AddAttribute(*element, "t", type);
    Current->append_node(element);
    Current = element;
}

void XmlNodeWriter::Attribute(IACNode*, WideView name, const ValueView& value,
                              ValueType storedType) {
    Element* const element = NewElement("a");
    AddAttribute(*element, "n", name);
    if (storedType != VtEmpty) {
        if (!(Flags & NodeSerializerFlagNoValueTypes) && storedType != VtStringA) {
            char digits[5];
            const char* const end = std::to_chars(digits, std::end(digits), storedType).ptr;
            AddAttribute(*element, "t", {digits, static_cast<size_t>(end - digits)});
        }
        if (IsArray(value.Type))
            AddArray(*element, value);
        else
            AddAttribute(*element, "v",
                         StringText(static_cast<const char*>(value.Data), value.Size));
    }
    Current->append_node(element);
}

void XmlNodeWriter::EndNode(IACNode*) {
    Element* const parent = Current->parent();
    if (!parent)
        ThrowHr(E_FAIL);
    Current = parent;
}

void XmlNodeWriter::Finalize() {
    static constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
    Output.Clear();
    if (Flags & NodeSerializerFlagBom)
        Output.Append(ByteOrderMark);
    PrintElement(*Root, (Flags & NodeSerializerFlagIndent) != 0, Output);
    HRES hr = Write(Output.Data(), Output.Size(), WriteContext);
}

XmlNodeWriter::Element* XmlNodeWriter::NewElement(std::string_view name) {
    return Document.allocate_node(rapidxml::node_element, name.data(), nullptr, name.size());
}

void XmlNodeWriter::AddAttribute(Element& element, std::string_view name, std::string_view value) {
    rapidxml::xml_attribute<char>* const attribute =
        Document.allocate_attribute(name.data(), nullptr, name.size());
    if (!value.empty()) {
        char* const copy = Document.allocate_string(nullptr, value.size());
        std::memcpy(copy, value.data(), value.size());
        attribute->value(copy, value.size());
    }
    element.append_attribute(attribute);
}

void XmlNodeWriter::AddAttribute(Element& element, std::string_view name, WideView value) {
    Utf8.clear();
    AppendUtf8(value, Utf8);
    AddAttribute(element, name, std::string_view(Utf8));
}

void XmlNodeWriter::AddArray(Element& element, const ValueView& value) {
    const char* at = static_cast<const char*>(value.Data);
    const char* const end = at + value.Size;
    while (at != end) {
        const uint64_t size = std::strlen(at) + 1;
        if (size > 0xFFFFFFFFu)
            ThrowHr(E_INVALIDARG);
        Element* const child = NewElement("v");
        AddAttribute(*child, "v", StringText(at, size));
        element.append_node(child);
        at += size;
    }
}

} // namespace treevault
