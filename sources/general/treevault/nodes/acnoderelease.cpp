// SPDX-License-Identifier: MIT
// The end of a node: how a tree comes apart when the last reference to its root goes.
#include "common/functiontrace.h"
#include "general/treevault/nodes/acnodeimpl.h"

namespace treevault {

namespace {

// How many children are on their way from the memory while one is let go.
constexpr size_t ChildrenAhead = 4;

} // namespace

// Lets the children go. Those that nobody else holds are put in front of the chain `dying`, which
// runs through their Parent fields. The count of this node is 0 and so are theirs: nobody else
// looks at them, and no lock is needed. Whoever came from this node into a child before, without a
// reference, is let out first, since it may still take one there.
void CACNodeImpl::PvtDropChildren(CACNodeImpl*& dying) noexcept {
    const std::span<CACNodeImpl* const> children = Children.InOrder();
    for (size_t at = 0; at < children.size(); ++at) {
        if (at + ChildrenAhead < children.size())
            __builtin_prefetch(children[at + ChildrenAhead], 1);
        CACNodeImpl* const child = children[at];
        child->Lock.AwaitEmpty();
        if (!child->GiveUpLast(2)) {
            // Whoever holds it may look for its parent until it is told that there is none.
            child->ClearParent();
            if (child->CountDown(2) != 0)
                continue;
        }
        child->Parent.store(dying, std::memory_order_relaxed);
        dying = child;
    }
    Children.Clear();
}

void CACNodeImpl::PvtDropTraced(CACNodeImpl*& dying) noexcept {
    const FunctionTrace trace(TV_W("CACNodeImpl::FinalRelease"));
    PvtDropChildren(dying);
}

// Takes a tree of any depth apart in a loop, without memory of its own.
void CACNodeImpl::FinalRelease() noexcept {
    CACNodeImpl* dying = nullptr;
    PvtDropTraced(dying);
    while (dying) {
        CACNodeImpl* const node = dying;
        dying = node->Parent.load(std::memory_order_relaxed);
        // What the next node frees has mostly not been looked at for long: it comes meanwhile.
        if (dying)
            dying->Attributes.Prefetch();
        // The severity is as fresh as it was for the root.
        if (WasSeverityEnabled(SeverityDbg3)) [[unlikely]]
            node->PvtDropTraced(dying);
        else
            node->PvtDropChildren(dying);
        node->DeletingDestructor(1);
    }
}

} // namespace treevault
