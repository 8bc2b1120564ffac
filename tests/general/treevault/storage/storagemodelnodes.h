// SPDX-License-Identifier: MIT
// Nodes as the plain model of a storage has them, with the identity that operations groups act on,
// and the one text that shows a tree of the model and a tree of the library alike.
#ifndef TREEVAULT_TESTS_STORAGE_STORAGEMODELNODES_H
#define TREEVAULT_TESTS_STORAGE_STORAGEMODELNODES_H

#include "support/nodes.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace treevault::tests {

// A failure on its way out of the model.
struct Failure {
    HRESULT Code;
};

// The model is to put a node below itself: a breach of contract of AcnAddChild, after which nothing
// is promised.
struct Circle {};

struct ModelAttribute {
    Value Content;
    bool Modified = false;
};

using ModelTable = std::map<Text, ModelAttribute>;

struct ModelNode;
using NodeRef = std::shared_ptr<ModelNode>;

struct ModelNode : std::enable_shared_from_this<ModelNode> {
    Text Name;
    Text ParentPath = W("\\"); // tells enough, as no node of this test is below one without a name
    Text TypeName;
    // Shared by clones until one of them writes; flags are changed in place for all of them.
    std::shared_ptr<ModelTable> Table = std::make_shared<ModelTable>();
    ModelNode* Parent = nullptr;
    std::vector<NodeRef> Children;

    ModelNode() = default;
    ModelNode(const ModelNode&) = delete;
    ModelNode& operator=(const ModelNode&) = delete;
    ~ModelNode() {
        for (const NodeRef& child : Children)
            child->Parent = nullptr;
    }

    Text Path() const {
        return ParentPath == W("\\") ? ParentPath + Name : ParentPath + W("\\") + Name;
    }

    NodeRef Find(const Text& name) const {
        for (const NodeRef& child : Children)
            if (child->Name == name)
                return child;
        return nullptr;
    }

    NodeRef StrongParent() const { return Parent ? Parent->shared_from_this() : nullptr; }

    // Without the attribute that has no name: it gets lost in a list of names.
    std::vector<Text> AttributeNames(bool modifiedOnly) const {
        std::vector<Text> names;
        for (const auto& [name, attribute] : *Table)
            if (!name.empty() && (attribute.Modified || !modifiedOnly))
                names.push_back(name);
        return names;
    }

    const Value* Attribute(const Text& name) const {
        const auto found = Table->find(name);
        return found == Table->end() ? nullptr : &found->second.Content;
    }

    // A private copy serves as well where nobody shares the table.
    void OwnTable() { Table = std::make_shared<ModelTable>(*Table); }

    void Set(const Text& name, const Value& value) {
        OwnTable();
        (*Table)[name] = {value, true};
    }

    void Erase(const Text& name) {
        OwnTable();
        Table->erase(name);
    }

    void RePath(const Text& parentPath) {
        ParentPath = parentPath;
        for (const NodeRef& child : Children)
            child->RePath(Path());
    }

    void AddChild(const NodeRef& child) {
        if (child->Parent)
            throw Failure{TREEVAULT_E_HAS_PARENT};
        if (Find(child->Name))
            throw Failure{TREEVAULT_E_CHILD_EXISTS};
        for (const ModelNode* above = this; above; above = above->Parent)
            if (above == child.get())
                throw Circle();
        child->Parent = this;
        Children.push_back(child);
        child->RePath(Path());
    }

    void RemoveChild(const NodeRef& child) {
        if (child->Parent != this)
            throw Failure{TREEVAULT_E_NOT_FOUND};
        child->Parent = nullptr;
        Children.erase(std::find(Children.begin(), Children.end(), child));
    }

    // A negative depth is without end.
    NodeRef Clone(int64_t depth) const {
        const auto clone = std::make_shared<ModelNode>();
        clone->Name = Name;
        clone->ParentPath = ParentPath;
        clone->TypeName = TypeName;
        clone->Table = Table;
        if (depth != 0)
            for (const NodeRef& child : Children)
                clone->AddChild(child->Clone(depth < 0 ? depth : depth - 1));
        return clone;
    }
};

// --- Trees as text -------------------------------------------------------------------------------

// Names are plain ASCII. Written for speed, as tests are compiled without optimization.
inline void Append(std::string& text, const WCHAR* wide, size_t count) {
    const size_t at = text.size();
    text.resize(at + count);
    char* const out = text.data() + at;
    for (size_t i = 0; i < count; ++i)
        out[i] = static_cast<char>(wide[i]);
}

inline void Append(std::string& text, const Text& wide) {
    Append(text, wide.data(), wide.size());
}

inline void AppendMark(std::string& text, bool modified, ValueType tag) {
    text += modified ? "=" : "~=";
    text += std::to_string(tag);
    text += ':';
}

inline void Show(std::string& text, const ModelNode& node) {
    Append(text, node.ParentPath);
    text += ',';
    Append(text, node.Name);
    text += ':';
    Append(text, node.TypeName);
    text += '{';
    for (const auto& [name, attribute] : *node.Table) {
        Append(text, name);
        AppendMark(text, attribute.Modified, attribute.Content.Tag);
        text += attribute.Content.Bytes;
        text += ' ';
    }
    text += "}(\n";
    for (const NodeRef& child : node.Children)
        Show(text, *child);
    text += ")\n";
}

// A text, or a list of texts, as a node gives it.
struct ShortText {
    WCHAR Buffer[1024];
    size_t Size = std::size(Buffer);

    template <class Read>
    explicit ShortText(Read&& read) {
        const HRESULT hr = read(Buffer, &Size);
        if (hr == S_OK)
            return;
        ADD_FAILURE() << CodeText(hr);
        Size = 0;
    }

    // One text, without its terminator.
    void AppendTo(std::string& text) const { Append(text, Buffer, Size == 0 ? 0 : Size - 1); }
};

inline size_t LengthOf(const WCHAR* text) {
    size_t length = 0;
    while (text[length] != 0)
        ++length;
    return length;
}

inline void ShowAttributes(std::string& text, IACNode* node) {
    const ShortText names(
        [&](WCHAR* buffer, size_t* size) { return AcnGetAttributeNames(node, buffer, size); });
    const ShortText modified([&](WCHAR* buffer, size_t* size) {
        return AcnGetModifiedAttributeNames(node, buffer, size);
    });
    for (size_t at = 0, atModified = 0; at < names.Size;) {
        const WCHAR* const name = names.Buffer + at;
        const size_t units = LengthOf(name) + 1;
        // Both lists have the same order.
        const bool isModified =
            atModified + units <= modified.Size &&
            std::memcmp(modified.Buffer + atModified, name, units * sizeof(WCHAR)) == 0;
        char bytes[256];
        size_t size = sizeof bytes;
        ValueType tag = 0x7777;
        EXPECT_EQ(S_OK, AcnGetAttribute(node, name, nullptr, bytes, &size, &tag));
        Append(text, name, units - 1);
        AppendMark(text, isModified, tag);
        text.append(bytes, size);
        text += ' ';
        at += units;
        atModified += isModified ? units : 0;
    }
}

inline void Show(std::string& text, IACNode* node) {
    const auto append = [&](NodeNameKind kind) {
        ShortText([&](WCHAR* buffer, size_t* size) {
            return AcnGetNodeName(node, kind, buffer, size);
        }).AppendTo(text);
    };
    append(NameParentPath);
    text += ',';
    append(NameShort);
    text += ':';
    ShortText([&](WCHAR* buffer, size_t* size) {
        return AcnGetNodeType(node, buffer, size);
    }).AppendTo(text);
    text += '{';
    ShowAttributes(text, node);
    text += "}(\n";
    size_t count = 0;
    EXPECT_EQ(S_OK, AcnGetChildCount(node, &count));
    for (size_t at = 0; at < count; ++at) {
        Node child;
        EXPECT_EQ(S_OK, AcnGetChildByIndex(node, at, child.Put()));
        Show(text, child.Get());
    }
    text += ")\n";
}

} // namespace treevault::tests

#endif
