// SPDX-License-Identifier: MIT
// Renaming and moving: the only places where a path changes after creation.
#include "common/errorhandling.h"
#include "common/functiontrace.h"
#include "general/treevault/nodes/acnodeimpl.h"
#include "general/treevault/nodes/heldlocks.h"

namespace treevault {

// The caller holds the lock.
const PathRef& CACNodeImpl::PvtOwnLink() {
    if (!OwnLink)
        OwnLink = PathRef::Make(Name, Above);
    return OwnLink;
}

// Makes every new link before it changes the first node, so that a failure changes nothing. The
// locks of the whole subtree are held meanwhile, which keeps anybody from adding to it. `name` may
// be the node's own.
void CACNodeImpl::PvtSetPath(const PathRef& above, const NodeName& name) {
    struct Step {
        CACNodeImpl* Node;
        PathRef Above;
        PathRef OwnLink; // none where there are no children
    };
    const LockGuard guard(Lock);
    HeldLocks locks;
    std::vector<Step> steps;
    if (Children.Size() != 0)
        steps.push_back({this, above, PathRef::Make(name, above)});
    for (size_t at = 0; at < steps.size(); ++at) {
        const PathRef link = steps[at].OwnLink;
        for (CACNodeImpl* const child : steps[at].Node->Children.InOrder()) {
            locks.Enter(child->Lock);
            const bool isLeaf = child->Children.Size() == 0;
            steps.push_back({child, link, isLeaf ? PathRef() : PathRef::Make(child->Name, link)});
        }
    }
    for (Step& step : steps) {
        step.Node->Above = std::move(step.Above);
        step.Node->OwnLink = std::move(step.OwnLink);
    }
    if (steps.empty()) {
        Above = above;
        OwnLink = PathRef();
    }
    if (&name != &Name)
        Name = name;
}

// The path that a new name makes, or none if it changes nothing. The caller holds the lock.
std::optional<NodePath> CACNodeImpl::PvtNewPath(NodeNameKind kind, WideView name,
                                                bool hasParent) const {
    switch (kind) {
    case NameShort:
        if (name == ShortName())
            return std::nullopt;
        return NodePath{Above, MakeNodeName(name)};
    case NameParentPath:
        if (name == ParentPathText(Above))
            return std::nullopt;
        if (hasParent)
            ThrowHr(TREEVAULT_E_PARENT_PATH_FIXED);
        return NodePath{ParseParentPath(name), Name};
    case NameFullPath: {
        std::optional<NodePath> path = ParsePath(name);
        if (!path)
            ThrowHr(TREEVAULT_E_INVALID_NAME);
        if (ParentPathText(path->Above) != ParentPathText(Above)) {
            if (hasParent)
                ThrowHr(TREEVAULT_E_PARENT_PATH_FIXED);
            return path;
        }
        return path->Name == Name ? std::nullopt : std::move(path);
    }
    default:
        ThrowHr(E_INVALIDARG);
    }
}

HRESULT CACNodeImpl::SetName(NodeNameKind kind, const WCHAR* name) {
    return Boundary([&] {
        const FunctionTrace trace(TV_W("CACNodeImpl::SetName"));
        const WideView text = name ? WideView(name) : WideView();
        while (!PvtTrySetName(kind, text)) {
        }
    });
}

// False if the node changed parents between the decision and the rename. The parent's lock is taken
// only when this node's is free; in that gap another thread may move the node.
bool CACNodeImpl::PvtTrySetName(NodeNameKind kind, WideView name) {
    Ref<CACNodeImpl> parent; // given back when the lock is free
    LockGuard guard(Lock);
    parent = GetStrongParent();
    const std::optional<NodePath> path = PvtNewPath(kind, name, static_cast<bool>(parent));
    if (!path)
        return true;
    if (!parent) {
        PvtSetPath(path->Above, path->Name);
        return true;
    }
    guard.Leave();
    if (parent->PvtRenameChild(this, path->Name))
        return true;
    LogTraced(SeverityDbg, [](WideStream& line) {
        line << TV_W("DBG: Retrying to change the name (parent changed)");
    });
    return false;
}

bool CACNodeImpl::PvtRenameChild(CACNodeImpl* child, const NodeName& newName) {
    const FunctionTrace trace(TV_W("CACNodeImpl::PvtRenameChild"), SeverityDbg);
    const LockGuard guard(Lock);
    if (child->Parent.load() != this)
        return false;
    const LockGuard childGuard(child->Lock);
    const NodeName oldName = child->Name;
    LogTraced(SeverityDbg, [&](WideStream& line) {
        line << TV_W("DBG: ParentPath='") << FullPathUnderLock() << TV_W("' OldName='")
             << oldName.View() << TV_W("'") << TV_W("' NewName='") << newName.View() << TV_W("'");
    });
    if (newName == oldName) // another thread was faster with the same name
        return true;
    if (Children.Find(newName))
        ThrowHr(TREEVAULT_E_CHILD_EXISTS);
    child->PvtSetPath(PvtOwnLink(), newName);
    Children.Rename(oldName, newName, child);
    return true;
}

} // namespace treevault
