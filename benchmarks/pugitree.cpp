// SPDX-License-Identifier: MIT
// Documents with pugixml alone, through its plain interface.
#include "pugitree.h"

#include "documentvalue.h"

namespace treevault::benchmarks {

namespace {

template <class Value>
void AddAttribute(pugi::xml_node node, const char* name, const char* type, Value value) {
    pugi::xml_node attribute = node.append_child("a");
    attribute.append_attribute("n").set_value(name);
    attribute.append_attribute("t").set_value(type);
    attribute.append_attribute("v").set_value(value);
}

void AddNode(pugi::xml_node parent, const Workload& workload, size_t index) {
    const NodeData& data = workload.Nodes[index];
    pugi::xml_node node = parent.append_child("n");
    node.append_attribute("n").set_value(data.Narrow->Name.c_str());
    node.append_attribute("t").set_value(data.Narrow->Type.c_str());
    char guid[39];
    FormatGuid(data.Id, guid);
    AddAttribute(node, NarrowNumberName, "3", data.Number);
    AddAttribute<const char*>(node, NarrowGuidName, "13", guid);
    AddAttribute(node, NarrowStampName, "6", data.Stamp);
    AddAttribute(node, NarrowTitleName, "2", data.Narrow->Title.c_str());
    const size_t first = workload.FirstChild(index);
    for (size_t child = first; child < first + workload.ChildCount(index); ++child)
        AddNode(node, workload, child);
}

class StringWriter final : public pugi::xml_writer {
public:
    explicit StringWriter(std::string& target) : Target(target) {}
    void write(const void* data, size_t size) override {
        Target.append(static_cast<const char*>(data), size);
    }

private:
    std::string& Target;
};

std::unique_ptr<VectorTree::Node> ReadNode(pugi::xml_node element) {
    auto node = std::make_unique<VectorTree::Node>();
    node->Name = Widened(element.attribute("n").value());
    node->Type = Widened(element.attribute("t").value());
    for (const pugi::xml_node child : element.children()) {
        if (*child.name() == 'a') {
            const pugi::xml_attribute type = child.attribute("t");
            node->Attributes.Set(
                Widened(child.attribute("n").value()),
                DocumentValue(type ? type.value() : nullptr, child.attribute("v").value()));
        } else {
            node->Children.push_back(ReadNode(child));
        }
    }
    return node;
}

} // namespace

PugiTree::PugiTree(const Workload& workload) {
    AddNode(Document->append_child("nr"), workload, 0);
}

PugiTree PugiTree::Clone() const {
    PugiTree copy;
    copy.Document->reset(*Document);
    return copy;
}

void PugiTree::Write(std::string& text) const {
    StringWriter writer(text);
    Document->save(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
}

pugi::xml_attribute PugiTree::ValueOf(const char* name) const {
    const pugi::xml_node node = Document->first_child().first_child();
    return node.find_child_by_attribute("a", "n", name).attribute("v");
}

VectorTree ReadWithPugixml(std::string& text) {
    pugi::xml_document document;
    document.load_buffer_inplace(text.data(), text.size(), pugi::parse_default,
                                 pugi::encoding_utf8);
    return VectorTree(ReadNode(document.first_child().first_child()));
}

} // namespace treevault::benchmarks
