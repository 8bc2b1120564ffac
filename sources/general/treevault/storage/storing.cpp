// SPDX-License-Identifier: MIT
// Storing: finding and building the place of a node, and adding and removing nodes with what undoes
// it.
#include "common/errorhandling.h"
#include "common/functiontrace.h"
#include "general/treevault/nodes/nodereading.h"
#include "general/treevault/presentation/nodelogview.h"
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
            NodeRef node = NodeRef::Share(nodes[at]);
            LogNode(SeverityDbg3, TV_W("Storing: "), node.Get());
            // What the caller does to its node before the group runs does not matter.
            if (group)
                node = CloneNode(nodes[at], TREEVAULT_ALL_LEVELS);
            journal->AddOperation(
                [this, mode, node, alreadyCloned = group != nullptr, target = journal.Get()] {
                    PvtStoreNode(mode, node, alreadyCloned, *target);
                });
        }
        if (!group)
            PvtRunPrivateGroup(*journal);
    });
}

// A node says itself where it goes; nothing else is taken from above it.
void CMemoryStorage::PvtStoreNode(StoreMode mode, const NodeRef& node, bool alreadyCloned,
                                  CPendingOperations& group) {
    const WideText name = ReadName(node.Get());
    const WideText parentPath = ReadName(node.Get(), NameParentPath);
    NodeRef parent;
    if (parentPath != WideView(&PathSeparator, 1)) {
        parent = PvtFindNodeByPath(parentPath, BuildParentNodesIfMissing, &group);
        if (!parent)
            ThrowHr(TREEVAULT_E_STG_PARENT_MISSING);
    }
    const NodeRef existing = PvtFindChild(parent.Get(), name);
    ModifyMask flags = 0;
    NodeMerge(*this, mode, alreadyCloned, group).Apply(parent, existing, node, &flags);
    if (parent && flags != 0)
        PvtSignalModified(parent.Get(), parent.Get(), flags, nullptr);
}

CMemoryStorage::NodeRef CMemoryStorage::PvtFindChild(IACNode* parent, WideView name) {
    if (!parent) {
        const auto found = RootNodes.find(name);
        return found == RootNodes.end() ? NodeRef() : found->second;
    }
    if (const Ref<CACNodeImpl> impl = CACNodeImpl::TryGetImpl(parent))
        return NodeRef::Attach(impl->FindChild(name).Detach());
    NodeRef child;
    const HRESULT hr = parent->GetChildByName(WideText(name).c_str(), child.Put());
    if (hr == TREEVAULT_E_NOT_FOUND)
        return NodeRef();
    HRES{hr};
    return child;
}

CMemoryStorage::NodeRef CMemoryStorage::PvtFindNodeByPath(WideView path, bool build,
                                                          CPendingOperations* group) {
    NodeRef current;
    size_t begin = !path.empty() && path.front() == PathSeparator ? 1 : 0;
    if (path.empty())
        return current;
    do {
        const size_t end = std::min(path.find(PathSeparator, begin), path.size());
        const WideView component = path.substr(begin, end - begin);
        begin = end + 1;
        NodeRef next = PvtFindChild(current.Get(), component);
        if (!next) {
            if (!build)
                return NodeRef();
            next = CreateNode(WideText(component).c_str(), nullptr);
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
    CPendingOperations::Callable undo;
    if (MaintainAtomicity)
        undo = group.PrepareUndo(
            [this, parent, node, name] { PvtDetachNode(parent.Get(), node, name); });
    PvtAttachNode(parent.Get(), node, name);
    group.AddUndo(std::move(undo));
    PvtSignalModified(nullptr, node.Get(), ModifyNodeCreated, nullptr);
    *parentFlags |= ModifyChildAdded;
}

void CMemoryStorage::PvtRemoveNode(const NodeRef& parent, const NodeRef& existing,
                                   CPendingOperations& group, ModifyMask* parentFlags) {
    const WideText name = ReadName(existing.Get());
    CPendingOperations::Callable undo;
    if (MaintainAtomicity)
        undo = group.PrepareUndo([this, parent, existing] {
            PvtAttachNode(parent.Get(), existing, ReadName(existing.Get()));
        });
    // What an observer's own delete took away meanwhile is not put back by this group.
    if (PvtDetachNode(parent.Get(), existing, name))
        group.AddUndo(std::move(undo));
    PvtSignalModified(existing.Get(), nullptr, ModifyNodeDeleted, nullptr);
    *parentFlags |= ModifyChildDeleted;
}

} // namespace treevault
