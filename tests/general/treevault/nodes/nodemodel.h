// SPDX-License-Identifier: MIT
// Nodes as a plain model: what the library's nodes are to hold, without locks, sharing tricks or
// chains of links.
#ifndef TREEVAULT_TESTS_NODES_NODEMODEL_H
#define TREEVAULT_TESTS_NODES_NODEMODEL_H

#include "support/nodes.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace treevault::tests {

struct ModelAttribute {
    Value Content;
    bool Modified = false;
};

using ModelTable = std::map<Text, ModelAttribute>;

struct ModelNode {
    Text Name;
    Text ParentPath = W("\\");
    Text TypeName;
    std::shared_ptr<ModelTable> Table; // shared by clones
    ModelNode* Parent = nullptr;
    std::vector<ModelNode*> Children;
    std::vector<IACNode*> Handles; // what the test holds of the real node

    bool AtTop = true; // no name above this one, which the text "\" does not tell

    Text Path() const { return AtTop ? W("\\") + Name : ParentPath + W("\\") + Name; }

    ModelNode* Find(const Text& name) const {
        for (ModelNode* child : Children)
            if (child->Name == name)
                return child;
        return nullptr;
    }

    bool IsBelowOrSame(const ModelNode* top) const {
        for (const ModelNode* node = this; node; node = node->Parent)
            if (node == top)
                return true;
        return false;
    }

    void RePathChildren() {
        for (ModelNode* child : Children) {
            child->AtTop = false;
            child->ParentPath = Path();
            child->RePathChildren();
        }
    }

    void OwnTable() {
        Table = Table ? (Table.use_count() > 1 ? std::make_shared<ModelTable>(*Table) : Table)
                      : std::make_shared<ModelTable>();
    }

    void Detach() {
        auto& siblings = Parent->Children;
        siblings.erase(std::find(siblings.begin(), siblings.end(), this));
        Parent = nullptr;
    }
};

// A path taken apart; invalid when it is refused.
struct ModelPath {
    bool Valid = false;
    std::vector<Text> Names;

    explicit ModelPath(const Text& text) {
        if (text.empty() || text[0] != W('\\') || (text.size() > 1 && text.back() == W('\\')))
            return;
        Valid = true;
        Text name;
        for (const WCHAR unit : text + W("\\")) {
            if (unit != W('\\'))
                name += unit;
            else if (!name.empty())
                Names.push_back(std::exchange(name, {}));
        }
    }

    // The text of the first `count` names.
    Text Join(size_t count) const {
        Text text;
        for (size_t i = 0; i < count; ++i)
            text += W("\\") + Names[i];
        return text.empty() ? Text(W("\\")) : text;
    }
};

// Puts a node at a path of at least one name.
inline void Place(ModelNode& node, const ModelPath& path) {
    node.Name = path.Names.back();
    node.ParentPath = path.Join(path.Names.size() - 1);
    node.AtTop = path.Names.size() == 1;
    node.RePathChildren();
}

// What AcnCreateNode with a name does to a fresh node, or its failure.
inline HRESULT ModelCreate(ModelNode& node, const Text& name) {
    if (name.empty() || name[0] != W('\\')) {
        node.Name = name;
        return name.find(W('\\')) == Text::npos ? S_OK : TREEVAULT_E_INVALID_NAME;
    }
    const ModelPath path(name);
    if (!path.Valid || path.Names.empty())
        return TREEVAULT_E_INVALID_NAME;
    Place(node, path);
    return S_OK;
}

inline HRESULT ModelRename(ModelNode& node, const Text& name) {
    if (node.Parent && node.Parent->Find(name))
        return TREEVAULT_E_CHILD_EXISTS;
    node.Name = name;
    node.RePathChildren();
    return S_OK;
}

inline HRESULT ModelSetName(ModelNode& node, NodeNameKind kind, const Text& name) {
    const ModelPath path(name);
    if (kind == NameShort) {
        if (name == node.Name)
            return S_OK;
        return name.find(W('\\')) == Text::npos ? ModelRename(node, name)
                                                : TREEVAULT_E_INVALID_NAME;
    }
    if (kind == NameParentPath) {
        if (name == node.ParentPath)
            return S_OK;
        if (node.Parent)
            return TREEVAULT_E_PARENT_PATH_FIXED;
        if (!path.Valid)
            return TREEVAULT_E_INVALID_NAME;
        node.ParentPath = path.Join(path.Names.size());
        node.AtTop = path.Names.empty();
        node.RePathChildren();
        return S_OK;
    }
    if (kind != NameFullPath)
        return E_INVALIDARG;
    if (!path.Valid || path.Names.empty())
        return TREEVAULT_E_INVALID_NAME;
    const bool sameParent = path.Join(path.Names.size() - 1) == node.ParentPath;
    if (sameParent && path.Names.back() == node.Name)
        return S_OK;
    if (node.Parent)
        return sameParent ? ModelRename(node, path.Names.back()) : TREEVAULT_E_PARENT_PATH_FIXED;
    Place(node, path);
    return S_OK;
}

} // namespace treevault::tests

#endif
