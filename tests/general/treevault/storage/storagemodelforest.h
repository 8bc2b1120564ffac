// SPDX-License-Identifier: MIT
// The forest of the plain model of a storage: places, merging by mode, and with each change its
// undo and its notice. Node identity is kept, as groups that run again act on the same nodes.
#ifndef TREEVAULT_TESTS_STORAGE_STORAGEMODELFOREST_H
#define TREEVAULT_TESTS_STORAGE_STORAGEMODELFOREST_H

#include "storagemodelnodes.h"

#include <array>
#include <functional>

namespace treevault::tests {

struct ModelGroup {
    std::vector<std::function<void()>> Operations, UndoList;
};

enum class Call { Start, Modified, PreCommit, Finish };

// One call of a sink, to be shown as text when the sink gets it: an earlier one may change the
// nodes.
struct Notice {
    Call Which;
    std::function<std::string()> Show;
};

inline Notice Plainly(Call which, const char* text) {
    return {which, [text] { return text; }};
}

// One text for the notices of the model and of the library.
inline std::string ShowModified(ModifyMask mask, const Text& path, const std::string& oldNode,
                                const std::string& newNode, const std::vector<Text>& changed) {
    std::string text = "mask " + std::to_string(mask) + ' ' + Narrow(path) + " [";
    for (const Text& name : changed)
        (text += Narrow(name)) += ';';
    return text + "]\nold " + oldNode + "new " + newNode;
}

class ModelForest {
public:
    using SinkId = std::array<unsigned char, 16>;

    bool BuildParents = true;
    bool Atomicity = true;
    std::map<Text, NodeRef> Roots;
    std::map<SinkId, std::function<HRESULT(const Notice&)>> Sinks;

    std::string Forest() const {
        std::string text;
        for (const auto& [name, root] : Roots)
            Show(text, *root);
        return text;
    }

protected:
    // Stops at the first sink that fails.
    HRESULT Tell(const Notice& notice) {
        for (const auto& [id, sink] : Sinks)
            if (const HRESULT hr = sink(notice); FAILED(hr))
                return hr;
        return S_OK;
    }

    void Signal(const NodeRef& oldNode, const NodeRef& newNode, ModifyMask mask,
                const std::vector<Text>& changed) {
        if (Sinks.empty())
            return;
        const Text path = (newNode ? newNode : oldNode)->Path();
        const HRESULT hr =
            Tell({Call::Modified, [&] {
                      return ShowModified(mask, path, ShowOne(oldNode),
                                          newNode == oldNode ? "same" : ShowOne(newNode), changed);
                  }});
        if (FAILED(hr))
            throw Failure{hr};
    }

    static std::string ShowOne(const NodeRef& node) {
        std::string text;
        if (node)
            Show(text, *node);
        return text;
    }

    void SignalChildren(const NodeRef& node, ModifyMask flags) {
        if (flags != 0)
            Signal(node, node, flags, {});
    }

    // --- Places ----------------------------------------------------------------------------------

    NodeRef FindChild(const NodeRef& parent, const Text& name) const {
        if (parent)
            return parent->Find(name);
        const auto found = Roots.find(name);
        return found == Roots.end() ? nullptr : found->second;
    }

    // Builds what is missing for the group, if there is one.
    NodeRef FindByPath(const Text& path, ModelGroup* builder) {
        if (path.empty())
            return nullptr;
        NodeRef current;
        size_t at = path[0] == W('\\') ? 1 : 0;
        do {
            const size_t end = std::min(path.find(W('\\'), at), path.size());
            const Text name = path.substr(at, end - at);
            at = end + 1;
            NodeRef next = FindChild(current, name);
            if (!next) {
                if (!builder)
                    return nullptr;
                next = std::make_shared<ModelNode>();
                next->Name = name;
                ModifyMask flags = 0;
                AddNode(current, next, true, *builder, flags);
                SignalChildren(current, flags);
            }
            current = next;
        } while (at < path.size());
        return current;
    }

    void Attach(const NodeRef& parent, const NodeRef& node, const Text& name) {
        if (const NodeRef old = node->StrongParent())
            old->RemoveChild(node);
        if (parent)
            parent->AddChild(node);
        else
            Roots.emplace(name, node); // a name that is there keeps its node
    }

    // A root that has gone already, and whose name another node bears, costs that one nothing.
    // False when nothing was taken out.
    bool Detach(const NodeRef& parent, const NodeRef& node, const Text& name) {
        if (parent) {
            parent->RemoveChild(node);
            return true;
        }
        const auto found = Roots.find(name);
        if (found == Roots.end() || found->second != node)
            return false;
        Roots.erase(found);
        return true;
    }

    // --- Merging ---------------------------------------------------------------------------------

    void StoreNode(StoreMode mode, const NodeRef& given, bool cloned, ModelGroup& group) {
        if (!given)
            throw Failure{TREEVAULT_E_STG_PARENT_MISSING};
        NodeRef parent;
        if (given->ParentPath != W("\\")) {
            parent = FindByPath(given->ParentPath, BuildParents ? &group : nullptr);
            if (!parent)
                throw Failure{TREEVAULT_E_STG_PARENT_MISSING};
        }
        ModifyMask flags = 0;
        PutNode(mode, parent, FindChild(parent, given->Name), given, cloned, group, flags);
        SignalChildren(parent, flags); // the flags of roots concern nobody
    }

    void PutNode(StoreMode mode, const NodeRef& parent, const NodeRef& existing,
                 const NodeRef& given, bool cloned, ModelGroup& group, ModifyMask& flags) {
        if (!existing)
            return AddNode(parent, given, cloned, group, flags);
        MergeAttributes(mode, existing, given, group);
        ModifyMask ofExisting = 0;
        MergeChildren(mode, existing, given, cloned, group, ofExisting);
        SignalChildren(existing, ofExisting);
    }

    void AddNode(const NodeRef& parent, const NodeRef& given, bool cloned, ModelGroup& group,
                 ModifyMask& flags) {
        const Text name = given->Name;
        const NodeRef node = cloned ? given : given->Clone(-1);
        Attach(parent, node, name);
        if (Atomicity)
            group.UndoList.push_back([this, parent, node, name] { Detach(parent, node, name); });
        Signal(nullptr, node, ModifyNodeCreated, {});
        if (parent)
            flags |= ModifyChildAdded;
    }

    void RemoveNode(const NodeRef& parent, const NodeRef& existing, ModelGroup& group,
                    ModifyMask& flags) {
        if (Detach(parent, existing, existing->Name) && Atomicity)
            group.UndoList.push_back(
                [this, parent, existing] { Attach(parent, existing, existing->Name); });
        Signal(existing, nullptr, ModifyNodeDeleted, {});
        if (parent)
            flags |= ModifyChildDeleted;
    }

    void MergeChildren(StoreMode mode, const NodeRef& existing, const NodeRef& given, bool cloned,
                       ModelGroup& group, ModifyMask& flags) {
        std::map<Text, NodeRef> stored;
        for (const NodeRef& child : existing->Children)
            stored[child->Name] = child;
        const std::vector<NodeRef> children = given->Children;
        for (const NodeRef& child : children) {
            const auto found = stored.extract(child->Name);
            PutNode(mode, existing, found ? found.mapped() : nullptr, child, cloned, group, flags);
        }
        if (mode == StoreReplaceAll)
            for (const auto& [name, child] : stored)
                RemoveNode(existing, child, group, flags);
    }

    struct AttributeMerge {
        const NodeRef& Existing;
        const NodeRef& Given;
        NodeRef Snapshot = nullptr;
        std::vector<Text> Changed = {};

        void EnsureSnapshot() {
            if (!Snapshot)
                Snapshot = Existing->Clone(0);
        }

        void Merge(const Text& name) {
            const Value* const given = Given->Attribute(name);
            const Value* const stored = Existing->Attribute(name);
            if (given ? stored && *given == *stored : !stored)
                return;
            EnsureSnapshot();
            if (given)
                Existing->Set(name, *given);
            else
                Existing->Erase(name);
            Changed.push_back(name);
        }
    };

    void MergeAttributes(StoreMode mode, const NodeRef& existing, const NodeRef& given,
                         ModelGroup& group) {
        AttributeMerge merge{existing, given};
        const auto names = given->AttributeNames(mode == StoreMergeModified);
        for (const Text& name : names)
            merge.Merge(name);
        if (mode != StoreMergeAll && mode != StoreMergeModified)
            for (const Text& name : existing->AttributeNames(false))
                if (std::find(names.begin(), names.end(), name) == names.end())
                    merge.Merge(name);
        const Text oldType = existing->TypeName;
        const bool takesEmpty = mode == StoreReplaceAttributes || mode == StoreReplaceAll;
        if (given->TypeName != oldType && (takesEmpty || !given->TypeName.empty())) {
            merge.EnsureSnapshot();
            existing->TypeName = given->TypeName;
        }
        if (merge.Changed.empty())
            return;
        const NodeRef snapshot = merge.Snapshot;
        group.UndoList.push_back([snapshot, existing, oldType] {
            existing->Table = std::make_shared<ModelTable>();
            for (const auto& [name, attribute] : *snapshot->Table)
                existing->Set(name, attribute.Content);
            existing->TypeName = oldType;
        });
        Signal(snapshot, existing, ModifyNodeChanged, merge.Changed);
    }
};

} // namespace treevault::tests

#endif
