// SPDX-License-Identifier: MIT
// The end of a node: how a tree comes apart when the last reference to its root goes.
#include "common/functiontrace.h"
#include "general/treevault/nodes/acnodeimpl.h"

namespace treevault {

// Lets the children go. Those that nobody else holds are put in front of the chain `dying`, which
// runs through their Parent fields: their counts are 0, so nobody else looks at them.
void CACNodeImpl::PvtDropChildren(CACNodeImpl*& dying) noexcept {
    const LockGuard guard(Lock);
    ChildrenByName.Clear();
    for (CACNodeImpl* child : Children) {
        if (!child->GiveUpLast(2)) {
            // Whoever holds it may look for its parent until it is told that there is none.
            child->ClearParent();
            if (child->CountDown(2) != 0)
                continue;
        }
        child->Parent.store(dying, std::memory_order_relaxed);
        dying = child;
    }
    Children.clear();
}

// Takes a tree of any depth apart in a loop, without memory of its own.
void CACNodeImpl::FinalRelease() noexcept {
    CACNodeImpl* dying = nullptr;
    {
        const FunctionTrace trace(TV_W("CACNodeImpl::FinalRelease"));
        PvtDropChildren(dying);
    }
    while (dying) {
        CACNodeImpl* const node = dying;
        dying = node->Parent.load(std::memory_order_relaxed);
        {
            const FunctionTrace trace(TV_W("CACNodeImpl::FinalRelease"));
            node->PvtDropChildren(dying);
        }
        node->DeletingDestructor(1);
    }
}

} // namespace treevault
