// SPDX-License-Identifier: MIT
// Copies of nodes and subtrees.
#include "common/errorhandling.h"
#include "general/treevault/nodes/acnodeimpl.h"
#include "general/treevault/nodes/heldlocks.h"

namespace treevault {

namespace {

// One level of the walk; the source's lock is held.
struct CloneFrame {
    const CACNodeImpl* Source;
    CACNodeImpl* Target;
    size_t NextChild;
    uint64_t Depth;
};

uint64_t NextDepth(uint64_t depth) noexcept {
    return depth == TREEVAULT_ALL_LEVELS ? depth : depth - 1;
}

} // namespace

Ref<CACNodeImpl> CACNodeImpl::PvtCloneAlone(uint32_t flags) const {
    Ref<CACNodeImpl> clone = MakeComponent<CACNodeImpl>(Above, Name, Attributes, TypeName);
    if (flags & CloneOwnAttributes)
        clone->Attributes.EnsureOwn();
    return clone;
}

Ref<IACNode> CACNodeImpl::MakeSnapshot(const AttributeTable& attributes) const {
    return Ref<IACNode>::Attach(
        MakeComponent<CACNodeImpl>(Above, Name, attributes, TypeName).Detach());
}

// Builds downward, so that each node is linked once: a child shares its name and the names above
// with the original, which are those of both parents. The locks of the originals on the way
// from the top to the node at work are held. Nobody else knows the clones yet, so theirs are not.
void CACNodeImpl::PvtCloneChildren(CACNodeImpl* clone, uint64_t depth, uint32_t flags) const {
    HeldLocks locks;
    std::vector<CloneFrame> frames;
    const auto descend = [&](const CACNodeImpl* source, CACNodeImpl* target, uint64_t levels) {
        target->Children.Reserve(source->Children.Size());
        frames.push_back({source, target, 0, levels});
    };
    descend(this, clone, depth);
    while (!frames.empty()) {
        CloneFrame& frame = frames.back();
        if (frame.NextChild == frame.Source->Children.Size()) {
            frames.pop_back();
            if (!frames.empty())
                locks.LeaveLast();
            continue;
        }
        const CACNodeImpl* const child = frame.Source->Children[frame.NextChild++];
        locks.Enter(child->Lock);
        const Ref<CACNodeImpl> copy = child->PvtCloneAlone(flags);
        frame.Target->PvtInsertChild(copy.Get());
        copy->Parent.store(frame.Target, std::memory_order_relaxed);
        const uint64_t levels = NextDepth(frame.Depth);
        if (levels != 0 && child->Children.Size() != 0)
            descend(child, copy.Get(), levels);
        else
            locks.LeaveLast();
    }
}

HRESULT CACNodeImpl::Clone(uint64_t depth, uint32_t flags, IACNode** clone) {
    const auto writeName = [](WideStream& line) { line << TV_W("CACNodeImpl::Clone"); };
    return NamedBoundary(SeverityDbg3, writeName, [&] {
        CheckOutPointer(clone);
        const LockGuard guard(Lock);
        Ref<CACNodeImpl> copy = PvtCloneAlone(flags);
        if (depth != 0 && Children.Size() != 0)
            PvtCloneChildren(copy.Get(), depth, flags);
        *clone = copy.Detach();
    });
}

} // namespace treevault
