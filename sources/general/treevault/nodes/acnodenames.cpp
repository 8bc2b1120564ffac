// SPDX-License-Identifier: MIT
// Renaming and moving: the only places where a path changes after creation.
#include "common/errorhandling.h"
#include "common/functiontrace.h"
#include "general/treevault/nodes/acnodeimpl.h"
#include "general/treevault/nodes/heldlocks.h"

namespace treevault {

// Makes every new link before it changes the first node, so that a failure changes nothing. The
// locks of the whole subtree are held meanwhile, which keeps anybody from adding to it.
void CACNodeImpl::SetPathLink(const PathRef& parentLink, WideView name) {
    const LockGuard guard(Lock);
    if (Children.Size() == 0 && EqualText(name, ShortName()) && Path.MoveBelow(parentLink))
        return;
    PathRef path = MakePathLink(name, parentLink);
    if (Children.Size() == 0) {
        Path = std::move(path);
        return;
    }
    struct Step {
        CACNodeImpl* Node;
        PathRef NewPath;
    };
    HeldLocks locks;
    std::vector<Step> steps{{this, std::move(path)}};
    for (size_t at = 0; at < steps.size(); ++at) {
        for (CACNodeImpl* const child : steps[at].Node->Children.InOrder()) {
            locks.Enter(child->Lock);
            steps.push_back({child, PathRef::Make(child->ShortName(), steps[at].NewPath)});
        }
    }
    for (Step& step : steps)
        step.Node->Path = std::move(step.NewPath);
}

// The path that a new name makes, or none if it changes nothing. The caller holds the lock.
PathRef CACNodeImpl::PvtNewPath(NodeNameKind kind, WideView name, bool hasParent) const {
    switch (kind) {
    case NameShort:
        return name == ShortName() ? PathRef() : MakePathLink(name, Path->ParentLink);
    case NameParentPath:
        if (name == ParentPathText(Path))
            return PathRef();
        if (hasParent)
            ThrowHr(TREEVAULT_E_PARENT_PATH_FIXED);
        return MakePathLink(ShortName(), ParsePath(name));
    case NameFullPath: {
        PathRef path = ParsePath(name);
        if (!path)
            ThrowHr(TREEVAULT_E_INVALID_NAME);
        if (ParentPathText(path) != ParentPathText(Path)) {
            if (hasParent)
                ThrowHr(TREEVAULT_E_PARENT_PATH_FIXED);
            return path;
        }
        return path->Name() == ShortName() ? PathRef() : path;
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
    const PathRef path = PvtNewPath(kind, name, static_cast<bool>(parent));
    if (!path)
        return true;
    if (!parent) {
        SetPathLink(path->ParentLink, path->Name());
        return true;
    }
    guard.Leave();
    if (parent->PvtRenameChild(this, path->Name()))
        return true;
    LogTraced(SeverityDbg, [](WideStream& line) {
        line << TV_W("DBG: Retrying to change the name (parent changed)");
    });
    return false;
}

bool CACNodeImpl::PvtRenameChild(CACNodeImpl* child, WideView newName) {
    const FunctionTrace trace(TV_W("CACNodeImpl::PvtRenameChild"), SeverityDbg);
    const LockGuard guard(Lock);
    if (child->Parent.load() != this)
        return false;
    const LockGuard childGuard(child->Lock);
    const PathRef oldPath = child->Path;
    const WideView oldName = oldPath->Name();
    LogTraced(SeverityDbg, [&](WideStream& line) {
        line << TV_W("DBG: ParentPath='") << FullPathText(Path) << TV_W("' OldName='") << oldName
             << TV_W("'") << TV_W("' NewName='") << newName << TV_W("'");
    });
    if (newName == oldName) // another thread was faster with the same name
        return true;
    if (Children.Find(newName))
        ThrowHr(TREEVAULT_E_CHILD_EXISTS);
    child->SetPathLink(Path, newName);
    Children.Rename(oldName, newName, child);
    return true;
}

} // namespace treevault
