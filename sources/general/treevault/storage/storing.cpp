// SPDX-License-Identifier: MIT
// Storing: finding and building the place of a node, and adding and removing nodes with what undoes
// it.
#include "common/errorhandling.h"
#include "common/functiontrace.h"
#include "general/treevault/nodes/nodereading.h"
#include "general/treevault/presentation/nodelogview.h"
#include "general/treevault/storage/givennode.h"
#include "general/treevault/storage/memorystorage.h"
#include "general/treevault/storage/nodemaking.h"
#include "general/treevault/storage/nodemerge.h"

#include <algorithm>

namespace treevault {

HRESULT CMemoryStorage::StoreData(IOperationsGroup* group, StoreMode mode, IACNode** nodes,
                                  uint64_t count) {
    const auto writeName = [](WideStream& line) { line << TV_W("CMemoryStorage::StoreData"); };
    return NamedBoundary(SeverityDbg2, writeName, [&] {
        const FunctionTrace trace(TV_W("CMemoryStorage::StoreData"), SeverityDbg2);
        LogPointer(TV_W("GroupContext: "), group);
        LogTraced(SeverityDbg2, [&](WideStream& line) { line << TV_W("Mode: ") << mode; });
        LogTraced(SeverityDbg2, [&](WideStream& line) { line << TV_W("Count: ") << count; });
        CheckOutPointer(nodes);
        const Ref<CPendingOperations> journal = PvtJournalOf(group);
        for (uint64_t at = 0; at < count; ++at) {
            LogNode(SeverityDbg3, TV_W("Storing: "), nodes[at]);
            // What the caller does to its node before it finalizes its group does not matter.
            journal->AddOperation([this, mode, target = journal.Get(),
                                   given = group ? GivenNode::Clone(nodes[at])
                                                 : GivenNode::Share(nodes[at])]() mutable {
                PvtStoreNode(mode, given, *target);
            });
        }
        if (!group)
            PvtRunPrivateGroup(*journal);
    });
}

namespace {

// Where a node goes: it says so itself, and nothing else is taken from above it.
struct NodePlace {
    explicit NodePlace(GivenNode& given) {
        if (const NodeContent* const leaf = given.Leaf()) {
            Path = leaf->Path;
            ViewPath();
        } else if (const CACNodeImpl* const own = given.Node().Own()) {
            Path = own->GetPath();
            ViewPath();
        } else {
            Read(given.Node().Get());
        }
    }
    NodePlace(const NodePlace&) = delete;
    NodePlace& operator=(const NodePlace&) = delete;

    bool IsRoot() const noexcept { return ParentPath == WideView(&PathSeparator, 1); }

    WideView Name;
    WideView ParentPath; // the separator in front may be missing

private:
    // What stands in one link needs no text of its own.
    void ViewPath() {
        Name = Path.Name;
        if (Path.Above && !Path.Above->ParentLink && Path.Above->NameLength != 0) {
            ParentPath = Path.Above->Name();
        } else {
            ParentText = ParentPathText(Path.Above);
            ParentPath = ParentText;
        }
    }

    void Read(IACNode* node) {
        NameText = ReadName(node);
        ParentText = ReadName(node, NameParentPath);
        Name = NameText;
        ParentPath = ParentText;
    }

    NodePath Path; // kept: what is given may change meanwhile, or be made a node
    WideText NameText;
    WideText ParentText;
};

} // namespace

void CMemoryStorage::PvtStoreNode(StoreMode mode, GivenNode& given, CPendingOperations& group) {
    const NodePlace place(given);
    AnyNode parent;
    if (!place.IsRoot()) {
        parent = PvtFindNodeByPath(place.ParentPath, BuildParentNodesIfMissing, &group);
        if (!parent)
            ThrowHr(TREEVAULT_E_STG_PARENT_MISSING);
    }
    const AnyNode existing = PvtFindChild(parent, place.Name);
    ModifyMask flags = 0;
    NodeMerge(*this, mode, given.IsClone(), group).Apply(parent, existing, given, &flags);
    if (parent && flags != 0)
        PvtSignalModified(parent.Get(), parent.Get(), flags, nullptr);
}

AnyNode CMemoryStorage::PvtFindChild(const AnyNode& parent, WideView name) {
    if (!parent) {
        const auto found = RootNodes.find(name);
        return found == RootNodes.end() ? AnyNode() : found->second;
    }
    if (const CACNodeImpl* const own = parent.Own())
        return AnyNode(own->FindChild(name));
    NodeRef child;
    const HRESULT hr = parent->GetChildByName(WideText(name).c_str(), child.Put());
    if (hr == TREEVAULT_E_NOT_FOUND)
        return AnyNode();
    HRES{hr};
    return AnyNode(std::move(child));
}

// Follows the path through nodes of the library as far as they go; `begin` moves behind what was
// found. A root needs no reference: it stays as long as the storage is locked.
AnyNode CMemoryStorage::PvtDescend(WideView path, size_t& begin) {
    size_t next = begin;
    const auto root = RootNodes.find(TakeName(path, next));
    if (root == RootNodes.end() || !root->second.Own())
        return AnyNode();
    begin = next;
    if (begin < path.size())
        if (Ref<CACNodeImpl> below = root->second.Own()->FindBelow(path, begin))
            return AnyNode(std::move(below));
    return root->second;
}

AnyNode CMemoryStorage::PvtFindNodeByPath(WideView path, bool build, CPendingOperations* group) {
    if (path.empty())
        return AnyNode();
    size_t begin = path.front() == PathSeparator ? 1 : 0;
    AnyNode current = PvtDescend(path, begin);
    if (current && begin >= path.size())
        return current;
    do {
        const WideView component = TakeName(path, begin);
        AnyNode next = PvtFindChild(current, component);
        if (!next) {
            if (!build)
                return AnyNode();
            next = AnyNode(CreateNode(WideText(component).c_str(), nullptr));
            ModifyMask flags = 0;
            PvtAddNode(current, next, true, *group, &flags);
            if (current && flags != 0)
                PvtSignalModified(current.Get(), current.Get(), flags, nullptr);
        }
        current = std::move(next);
    } while (begin < path.size());
    return current;
}

// A child of a clone that moves into the storage leaves the clone this way.
void CMemoryStorage::PvtAttachNode(IACNode* parent, const NodeRef& node, const WideText& name) {
    NodeRef former;
    HRES{node->GetParent(former.Put())};
    if (former)
        HRES{former->RemoveChild(node.Get())};
    if (parent)
        HRES{parent->AddChild(node.Get())};
    else
        RootNodes.emplace(name, node);
}

// False when there was nothing to take out: a root may have gone already, and another node may bear
// its name meanwhile.
bool CMemoryStorage::PvtDetachNode(IACNode* parent, const NodeRef& node, const WideText& name) {
    if (parent) {
        HRES{parent->RemoveChild(node.Get())};
        return true;
    }
    const auto found = RootNodes.find(name);
    if (found == RootNodes.end() || found->second.Get() != node.Get())
        return false;
    RootNodes.erase(found);
    return true;
}

void CMemoryStorage::PvtAddNode(const NodeRef& parent, const NodeRef& given, bool alreadyCloned,
                                CPendingOperations& group, ModifyMask* parentFlags) {
    const WideText name = ReadName(given.Get());
    const NodeRef node = alreadyCloned ? given : CloneNode(given.Get(), TREEVAULT_ALL_LEVELS);
    CPendingOperations::Undo undo;
    if (MaintainAtomicity)
        undo =
            group.MakeUndo([this, parent, node, name] { PvtDetachNode(parent.Get(), node, name); });
    PvtAttachNode(parent.Get(), node, name);
    group.AddUndo(std::move(undo));
    PvtSignalModified(nullptr, node.Get(), ModifyNodeCreated, nullptr);
    *parentFlags |= ModifyChildAdded;
}

void CMemoryStorage::PvtRemoveNode(const NodeRef& parent, const NodeRef& existing,
                                   CPendingOperations& group, ModifyMask* parentFlags) {
    const WideText name = ReadName(existing.Get());
    CPendingOperations::Undo undo;
    if (MaintainAtomicity)
        undo = group.MakeUndo([this, parent, existing] {
            PvtAttachNode(parent.Get(), existing, ReadName(existing.Get()));
        });
    // What an observer's own delete took away meanwhile is not put back by this group.
    if (PvtDetachNode(parent.Get(), existing, name))
        group.AddUndo(std::move(undo));
    PvtSignalModified(existing.Get(), nullptr, ModifyNodeDeleted, nullptr);
    *parentFlags |= ModifyChildDeleted;
}

} // namespace treevault
