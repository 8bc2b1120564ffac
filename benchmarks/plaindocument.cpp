// SPDX-License-Identifier: MIT
// Documents with rapidxml alone: made, printed, and read into trees of structs.
#include "plaindocument.h"

#include "plainforms.h"

#include <cstdlib>
#include <iterator>

// The printer uses these before it declares them.
namespace rapidxml::internal {
template <class Out, class Ch>
inline Out print_children(Out out, const xml_node<Ch>* node, int flags, int indent);
template <class Out, class Ch>
inline Out print_attributes(Out out, const xml_node<Ch>* node, int flags);
template <class Out, class Ch>
inline Out print_data_node(Out out, const xml_node<Ch>* node, int flags, int indent);
template <class Out, class Ch>
inline Out print_cdata_node(Out out, const xml_node<Ch>* node, int flags, int indent);
template <class Out, class Ch>
inline Out print_element_node(Out out, const xml_node<Ch>* node, int flags, int indent);
template <class Out, class Ch>
inline Out print_declaration_node(Out out, const xml_node<Ch>* node, int flags, int indent);
template <class Out, class Ch>
inline Out print_comment_node(Out out, const xml_node<Ch>* node, int flags, int indent);
template <class Out, class Ch>
inline Out print_doctype_node(Out out, const xml_node<Ch>* node, int flags, int indent);
template <class Out, class Ch>
inline Out print_pi_node(Out out, const xml_node<Ch>* node, int flags, int indent);
} // namespace rapidxml::internal

#include <rapidxml/rapidxml_print.hpp>

namespace treevault::benchmarks {

namespace {

using Element = rapidxml::xml_node<char>;

// --- Making a document ---------------------------------------------------------------------------

std::string Narrowed(const Text& wide) {
    std::string text(wide.size(), ' ');
    Narrow(wide.data(), wide.size(), text.data());
    return text;
}

void AddText(Element* element, const char* name, const std::string& value) {
    Document& pool = *element->document();
    const char* copy = pool.allocate_string(value.c_str(), value.size() + 1);
    element->append_attribute(pool.allocate_attribute(name, copy, 0, value.size()));
}

Element* AddElement(Element* parent, const char* name) {
    Element* element = parent->document()->allocate_node(rapidxml::node_element, name);
    parent->append_node(element);
    return element;
}

void AddAttribute(Element* node, const WCHAR* name, const char* type, const std::string& value) {
    Element* attribute = AddElement(node, "a");
    AddText(attribute, "n", Narrowed(name));
    if (type)
        AddText(attribute, "t", type);
    AddText(attribute, "v", value);
}

void AddNode(Element* parent, const Workload& workload, size_t index) {
    const NodeData& data = workload.Nodes[index];
    Element* node = AddElement(parent, "n");
    AddText(node, "n", Narrowed(data.Name));
    AddText(node, "t", Narrowed(*data.Type));
    char guid[39];
    FormatGuid(data.Id, guid);
    AddAttribute(node, NumberName, "3", std::to_string(data.Number));
    AddAttribute(node, GuidName, "13", guid);
    AddAttribute(node, StampName, "6", std::to_string(data.Stamp));
    AddAttribute(node, TitleName, "2", Narrowed(data.Title));
    const size_t first = workload.FirstChild(index);
    for (size_t child = first; child < first + workload.ChildCount(index); ++child)
        AddNode(node, workload, child);
}

// --- Reading a document --------------------------------------------------------------------------

Text Widened(const rapidxml::xml_attribute<char>* attribute) {
    const std::string_view text(attribute->value(), attribute->value_size());
    Text wide(text.size(), 0);
    Widen(text, wide.data());
    return wide;
}

PlainValue ReadValue(const Element* element) {
    const auto* value = element->first_attribute("v", 1);
    const auto* type = element->first_attribute("t", 1);
    const long tag = type ? std::strtol(type->value(), nullptr, 10) : long{VtStringA};
    GUID guid{};
    switch (tag) {
    case VtInt32:
        return static_cast<int32_t>(std::strtol(value->value(), nullptr, 0));
    case VtUInt64:
        return static_cast<uint64_t>(std::strtoull(value->value(), nullptr, 0));
    case VtGuid:
        ParseGuid(value->value(), &guid);
        return guid;
    default:
        return Widened(value);
    }
}

template <class AttributeSet>
std::unique_ptr<PlainNode<AttributeSet>> ReadNode(const Element* element) {
    auto node = std::make_unique<PlainNode<AttributeSet>>();
    node->Name = Widened(element->first_attribute("n", 1));
    node->Type = Widened(element->first_attribute("t", 1));
    for (const Element* child = element->first_node(); child; child = child->next_sibling()) {
        if (*child->name() == 'a')
            node->Attributes.Set(Widened(child->first_attribute("n", 1)), ReadValue(child));
        else
            node->Children.push_back(ReadNode<AttributeSet>(child));
    }
    return node;
}

} // namespace

void FillDocument(const Workload& workload, Document& document) {
    AddNode(AddElement(&document, "nr"), workload, 0);
}

void PrintToString(const Document& document, std::string& text) {
    rapidxml::print(std::back_inserter(text), document, rapidxml::print_no_indenting);
}

void PrintToArray(const Document& document, std::string& text) {
    const char* end = rapidxml::print(text.data(), document, rapidxml::print_no_indenting);
    text.resize(static_cast<size_t>(end - text.data()));
}

template <class AttributeSet>
StructTree<AttributeSet> ReadDocument(char* text) {
    Document document;
    document.parse<rapidxml::parse_no_data_nodes | rapidxml::parse_no_element_values>(text);
    return StructTree<AttributeSet>(ReadNode<AttributeSet>(document.first_node()->first_node()));
}

template VectorTree ReadDocument(char* text);
template MapTree ReadDocument(char* text);

} // namespace treevault::benchmarks
