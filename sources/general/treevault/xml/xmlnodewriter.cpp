// SPDX-License-Identifier: MIT
// From nodes to elements: `n` for a node, `a` for an attribute, `v` for an element of an array. An
// element keeps its attributes as they are to be printed: that is half the memory to go through.
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
    : Write(write), WriteContext(writeContext), Flags(flags),
      Root(Document.allocate_node(rapidxml::node_element, "nr")), Current(Root), Output(1024) {
    Document.append_node(Root);
}

void XmlNodeWriter::BeginNode(IACNode*, WideView name, WideView type) {
    BeginTag("n");
    if (!name.empty())
        AddAttribute('n', name);
    if (!type.empty())
        AddAttribute('t', type);
    Element* const element = ElementOfTag();
    Current->append_node(element);
    Current = element;
}

void XmlNodeWriter::Attribute(IACNode*, WideView name, const ValueView& value,
                              ValueType storedType) {
    BeginTag("a");
    AddAttribute('n', name);
    if (storedType != VtEmpty && storedType != VtStringA &&
        !(Flags & NodeSerializerFlagNoValueTypes)) {
        char digits[5];
        const char* const end = std::to_chars(digits, std::end(digits), storedType).ptr;
        AppendAttribute('t', {digits, static_cast<size_t>(end - digits)}, Tag);
    }
    if (storedType != VtEmpty && !IsArray(value.Type))
        AppendAttribute('v', StringText(static_cast<const char*>(value.Data), value.Size), Tag);
    Element* const element = ElementOfTag();
    if (IsArray(value.Type))
        AddArray(*element, value);
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

void XmlNodeWriter::BeginTag(std::string_view name) {
    Tag.Clear();
    Tag.Append(name);
}

void XmlNodeWriter::AddAttribute(char name, WideView value) {
    Utf8.clear();
    AppendUtf8(value, Utf8);
    AppendAttribute(name, Utf8, Tag);
}

XmlNodeWriter::Element* XmlNodeWriter::ElementOfTag() {
    char* const copy = Document.allocate_string(nullptr, Tag.Size());
    std::memcpy(copy, Tag.Data(), Tag.Size());
    return Document.allocate_node(rapidxml::node_element, copy, nullptr, Tag.Size());
}

void XmlNodeWriter::AddArray(Element& element, const ValueView& value) {
    const char* at = static_cast<const char*>(value.Data);
    const char* const end = at + value.Size;
    while (at != end) {
        const uint64_t size = std::strlen(at) + 1;
        if (size > 0xFFFFFFFFu)
            ThrowHr(E_INVALIDARG);
        BeginTag("v");
        AppendAttribute('v', StringText(at, size), Tag);
        element.append_node(ElementOfTag());
        at += size;
    }
}

} // namespace treevault
