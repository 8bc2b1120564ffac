// SPDX-License-Identifier: MIT
// Documents with libxml2 alone, through its plain interface.
#include "libxmltree.h"

#include "documentvalue.h"

#include <libxml/parser.h>
#include <libxml/xmlsave.h>

namespace treevault::benchmarks {

namespace {

const xmlChar* Chars(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

void AddAttribute(xmlNode* node, const char* name, const char* type, const char* value) {
    xmlNode* attribute = xmlNewChild(node, nullptr, Chars("a"), nullptr);
    xmlNewProp(attribute, Chars("n"), Chars(name));
    xmlNewProp(attribute, Chars("t"), Chars(type));
    xmlNewProp(attribute, Chars("v"), Chars(value));
}

void AddNode(xmlNode* parent, const Workload& workload, size_t index) {
    const NodeData& data = workload.Nodes[index];
    xmlNode* node = xmlNewChild(parent, nullptr, Chars("n"), nullptr);
    xmlNewProp(node, Chars("n"), Chars(data.Narrow->Name.c_str()));
    xmlNewProp(node, Chars("t"), Chars(data.Narrow->Type.c_str()));
    char guid[39];
    FormatGuid(data.Id, guid);
    AddAttribute(node, NarrowNumberName, "3", std::to_string(data.Number).c_str());
    AddAttribute(node, NarrowGuidName, "13", guid);
    AddAttribute(node, NarrowStampName, "6", std::to_string(data.Stamp).c_str());
    AddAttribute(node, NarrowTitleName, "2", data.Narrow->Title.c_str());
    const size_t first = workload.FirstChild(index);
    for (size_t child = first; child < first + workload.ChildCount(index); ++child)
        AddNode(node, workload, child);
}

int Append(void* target, const char* text, int size) {
    static_cast<std::string*>(target)->append(text, static_cast<size_t>(size));
    return size;
}

// An attribute without references has one child, its text; no copy is made of it.
const char* ValueOf(xmlNode* element, const char* name) {
    const xmlAttr* attribute = xmlHasProp(element, Chars(name));
    return attribute ? reinterpret_cast<const char*>(attribute->children->content) : nullptr;
}

std::unique_ptr<VectorTree::Node> ReadNode(xmlNode* element) {
    auto node = std::make_unique<VectorTree::Node>();
    node->Name = Widened(ValueOf(element, "n"));
    node->Type = Widened(ValueOf(element, "t"));
    for (xmlNode* child = element->children; child; child = child->next) {
        if (*child->name == 'a')
            node->Attributes.Set(Widened(ValueOf(child, "n")),
                                 DocumentValue(ValueOf(child, "t"), ValueOf(child, "v")));
        else
            node->Children.push_back(ReadNode(child));
    }
    return node;
}

} // namespace

LibxmlTree::LibxmlTree(const Workload& workload) : Document(xmlNewDoc(Chars("1.0"))) {
    xmlNode* root = xmlNewNode(nullptr, Chars("nr"));
    xmlDocSetRootElement(Document.get(), root);
    AddNode(root, workload, 0);
}

LibxmlTree LibxmlTree::Clone() const {
    return LibxmlTree(xmlCopyDoc(Document.get(), 1));
}

void LibxmlTree::Write(std::string& text) const {
    xmlSaveCtxt* context =
        xmlSaveToIO(Append, nullptr, &text, "UTF-8", XML_SAVE_NO_DECL | XML_SAVE_AS_XML);
    xmlSaveTree(context, xmlDocGetRootElement(Document.get()));
    xmlSaveClose(context);
}

VectorTree ReadWithLibxml(const std::string& text) {
    xmlDoc* document = xmlReadMemory(text.data(), static_cast<int>(text.size()), "", "UTF-8",
                                     XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_COMPACT);
    VectorTree tree(ReadNode(xmlDocGetRootElement(document)->children));
    xmlFreeDoc(document);
    return tree;
}

} // namespace treevault::benchmarks
