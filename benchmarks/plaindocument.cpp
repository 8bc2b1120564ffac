// SPDX-License-Identifier: MIT
// Documents with rapidxml alone: made, printed, and read into trees of structs.
#include "plaindocument.h"

#include "documentvalue.h"

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

void AddAttribute(Element* node, const char* name, const char* type, const std::string& value) {
    Element* attribute = AddElement(node, "a");
    AddText(attribute, "n", name);
    if (type)
        AddText(attribute, "t", type);
    AddText(attribute, "v", value);
}

void AddNode(Element* parent, const Workload& workload, size_t index) {
    const NodeData& data = workload.Nodes[index];
    Element* node = AddElement(parent, "n");
    AddText(node, "n", data.Narrow->Name);
    AddText(node, "t", data.Narrow->Type);
    char guid[39];
    FormatGuid(data.Id, guid);
    AddAttribute(node, NarrowNumberName, "3", std::to_string(data.Number));
    AddAttribute(node, NarrowGuidName, "13", guid);
    AddAttribute(node, NarrowStampName, "6", std::to_string(data.Stamp));
    AddAttribute(node, NarrowTitleName, "2", data.Narrow->Title);
    const size_t first = workload.FirstChild(index);
    for (size_t child = first; child < first + workload.ChildCount(index); ++child)
        AddNode(node, workload, child);
}

// --- Reading a document --------------------------------------------------------------------------

std::string_view ValueOf(const rapidxml::xml_attribute<char>* attribute) {
    return {attribute->value(), attribute->value_size()};
}

PlainValue ReadValue(const Element* element) {
    const auto* type = element->first_attribute("t", 1);
    return DocumentValue(type ? type->value() : nullptr, ValueOf(element->first_attribute("v", 1)));
}

template <class AttributeSet>
std::unique_ptr<PlainNode<AttributeSet>> ReadNode(const Element* element) {
    auto node = std::make_unique<PlainNode<AttributeSet>>();
    node->Name = Widened(ValueOf(element->first_attribute("n", 1)));
    node->Type = Widened(ValueOf(element->first_attribute("t", 1)));
    for (const Element* child = element->first_node(); child; child = child->next_sibling()) {
        if (*child->name() == 'a')
            node->Attributes.Set(Widened(ValueOf(child->first_attribute("n", 1))),
                                 ReadValue(child));
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
