// SPDX-License-Identifier: MIT
// Children and parent of a node: adding, removing, finding.
#include "common/errorhandling.h"
#include "common/functiontrace.h"
#include "general/treevault/nodes/acnodeimpl.h"
#include "general/treevault/nodes/nodeerrors.h"

namespace treevault {

namespace {

void LogChild(const void* child) {
    LogTraced(SeverityDbg3, [&](WideStream& line) {
        line << TV_W("Child=");
        line.Address(child);
    });
}

void LogIndex(uint64_t index) {
    LogTraced(SeverityDbg3, [&](WideStream& line) { line << TV_W("Index: ") << index; });
}

template <class WriteName>
void LogNotFound(const WriteName& writeName) {
    LogTraced(SeverityDbg2, [&](WideStream& line) {
        writeName(line);
        line << TV_W(" failed: ");
        AppendErrorText(line, TREEVAULT_E_NOT_FOUND);
    });
}

} // namespace

// There must be room for the child. Takes two references to it, one for each list.
void CACNodeImpl::PvtInsertChild(CACNodeImpl* child) noexcept {
    Children.Append(child->ShortName(), child);
    child->CountUp(2);
}

// Takes a child out of both lists. The caller has a reference of its own. Whoever has come from
// this node into the child, without a reference, is out again when the parent is cleared: only then
// are the two references given up.
void CACNodeImpl::PvtEraseChild(size_t index) noexcept {
    CACNodeImpl* const child = Children[index];
    Children.Erase(index, child->ShortName());
    child->ClearParent();
    child->CountDown(2);
}

HRESULT CACNodeImpl::AddChild(IACNode* child) {
    return Boundary([&] {
        const FunctionTrace trace(TV_W("CACNodeImpl::AddChild"));
        LogChild(child);
        CheckOutPointer(child);
        const LockGuard guard(Lock);
        const Ref<CACNodeImpl> impl = GetImpl(child);
        CACNodeImpl* free = nullptr;
        if (!impl->Parent.compare_exchange_strong(free, this))
            ThrowHr(TREEVAULT_E_HAS_PARENT);
        PvtAdoptClaimed(impl.Get());
    });
}

// The second half of AddChild, for a child whose Parent is this node already; gives the claim up
// when it fails.
void CACNodeImpl::PvtAdoptClaimed(CACNodeImpl* child) {
    const LockGuard guard(child->Lock);
    try {
        if (Children.Find(child->ShortName())) {
            PvtMiss(TREEVAULT_E_CHILD_EXISTS, TV_W("Child"), child->Name.CStr());
            ThrowHr(TREEVAULT_E_CHILD_EXISTS);
        }
        Children.Reserve(1);
        child->PvtSetPath(PvtOwnLink(), child->Name);
    } catch (...) {
        child->ClearParent();
        throw;
    }
    PvtInsertChild(child);
}

// From both ends at once, where children are mostly added and taken from.
size_t CACNodeImpl::PvtPlaceOf(const CACNodeImpl* child) const noexcept {
    size_t front = 0;
    size_t back = Children.Size();
    while (Children[front] != child && Children[--back] != child)
        ++front;
    return Children[front] == child ? front : back;
}

HRESULT CACNodeImpl::RemoveChild(IACNode* child) {
    return Boundary([&]() -> HRESULT {
        const FunctionTrace trace(TV_W("CACNodeImpl::RemoveChild"));
        LogChild(child);
        CheckOutPointer(child);
        Ref<CACNodeImpl> impl;
        LockGuard guard(Lock);
        impl = GetImpl(child);
        if (impl->Parent.load() != this) {
            // Whose child it is nobody knows here: its lock must not be asked for under this one.
            guard.Leave();
            const NodeName name = impl->GetPath().Name;
            LogNotFound([&](WideStream& line) {
                line << TV_W("RemoveChild('") << name.View() << TV_W("')");
            });
            return PvtMiss(TREEVAULT_E_NOT_FOUND, TV_W("Child"), name.CStr());
        }
        PvtEraseChild(PvtPlaceOf(impl.Get()));
        return S_OK;
    });
}

HRESULT CACNodeImpl::PvtIndexMiss(uint64_t index) {
    if (!IsAdvancedErrorInfoEnabled())
        return TREEVAULT_E_NOT_FOUND;
    WideStream text;
    text << index;
    return PvtMiss(TREEVAULT_E_NOT_FOUND, TV_W("ChildIndex"), text.Str().c_str());
}

HRESULT CACNodeImpl::RemoveChildByIndex(uint64_t index) {
    const auto writeName = [&](WideStream& line) {
        line << TV_W("RemoveChildByIndex(") << index << TV_W(")");
    };
    return NamedBoundary(SeverityDbg2, writeName, [&]() -> HRESULT {
        const FunctionTrace trace(TV_W("CACNodeImpl::RemoveChildByIndex"));
        LogIndex(index);
        Ref<CACNodeImpl> child; // given back when the lock is free
        const LockGuard guard(Lock);
        if (index >= Children.Size()) {
            LogNotFound(writeName);
            return PvtIndexMiss(index);
        }
        child = Ref<CACNodeImpl>::Share(Children[index]);
        LogChild(static_cast<IACNode*>(child.Get()));
        PvtEraseChild(index);
        return S_OK;
    });
}

HRESULT CACNodeImpl::GetChildCount(size_t* count) {
    return Boundary([&] {
        CheckOutPointer(count);
        const LockGuard guard(Lock);
        *count = Children.Size();
    });
}

HRESULT CACNodeImpl::GetChildByIndex(uint64_t index, IACNode** child) {
    const auto writeName = [&](WideStream& line) {
        line << TV_W("GetChildByIndex(") << index << TV_W(")");
    };
    return NamedBoundary(SeverityDbg2, writeName, [&]() -> HRESULT {
        const FunctionTrace trace(TV_W("CACNodeImpl::GetChildByIndex"));
        LogIndex(index);
        CheckOutPointer(child);
        const LockGuard guard(Lock);
        if (index >= Children.Size()) {
            LogNotFound(writeName);
            return PvtIndexMiss(index);
        }
        *child = Ref<CACNodeImpl>::Share(Children[index]).Detach();
        LogChild(*child);
        return S_OK;
    });
}

HRESULT CACNodeImpl::GetChildByName(const WCHAR* name, IACNode** child) {
    const auto writeName = [&](WideStream& line) {
        line << TV_W("GetChildByName('") << name << TV_W("')");
    };
    return NamedBoundary(SeverityDbg3, writeName, [&]() -> HRESULT {
        const FunctionTrace trace(TV_W("CACNodeImpl::GetChildByName"));
        LogTraced(SeverityDbg3, [&](WideStream& line) { line << TV_W("Name") << name; });
        CheckOutPointer(name && child ? child : nullptr);
        const LockGuard guard(Lock);
        CACNodeImpl* const found = Children.Find(name);
        if (!found) {
            LogNotFound(writeName);
            return PvtMiss(TREEVAULT_E_NOT_FOUND, TV_W("Child"), name);
        }
        *child = Ref<CACNodeImpl>::Share(found).Detach();
        LogChild(*child);
        return S_OK;
    });
}

Ref<CACNodeImpl> CACNodeImpl::FindChild(WideView name) const noexcept {
    const LockGuard guard(Lock);
    return Ref<CACNodeImpl>::Share(Children.Find(name));
}

// Takes the lock of the next node before it leaves that of the last one: until then the next one
// stays, and passing it costs no reference. It never waits for a lock with another one held, or all
// who come this way would wait behind it, up to the root.
Ref<CACNodeImpl> CACNodeImpl::FindBelow(WideView path, size_t& begin) const noexcept {
    Ref<CACNodeImpl> kept; // a node that was waited for; given back when no lock is held
    const CACNodeImpl* node = this;
    CACNodeImpl* found = nullptr; // `node`, but at the end of the path its child
    node->Lock.Enter();
    for (size_t next = begin;;) {
        CACNodeImpl* const child = node->Children.Find(TakeName(path, next));
        if (!child)
            break;
        found = child;
        begin = next;
        if (begin >= path.size())
            break;
        if (child->Lock.TryEnter()) {
            node->Lock.Leave();
        } else {
            Ref<CACNodeImpl> waitedFor = Ref<CACNodeImpl>::Share(child);
            node->Lock.Leave();
            kept = std::move(waitedFor);
            child->Lock.Enter();
        }
        node = child;
    }
    Ref<CACNodeImpl> reference = Ref<CACNodeImpl>::Share(found);
    node->Lock.Leave();
    return reference;
}

// A parent whose count is 0 is about to clear this node's Parent and counts as none.
Ref<CACNodeImpl> CACNodeImpl::GetStrongParent() const noexcept {
    const LockGuard guard(Lock);
    CACNodeImpl* const parent = Parent.load();
    return Ref<CACNodeImpl>::Attach(parent && parent->CountUpIfAlive() ? parent : nullptr);
}

void CACNodeImpl::ClearParent() noexcept {
    const LockGuard guard(Lock);
    Parent.store(nullptr);
}

HRESULT CACNodeImpl::GetParent(IACNode** parent) {
    return Boundary([&] {
        CheckOutPointer(parent);
        *parent = GetStrongParent().Detach();
    });
}

} // namespace treevault
