// SPDX-License-Identifier: MIT
// Fan-out to the sinks, registration and removal.
#include "general/treevault/storage/modifysinkpoolimpl.h"

#include "common/errorhandling.h"

namespace treevault {

// A notification under way on this thread. It holds the pool's lock shared, unless an outer one on
// the same thread does already: a sink may store from inside a notification, and a second share
// would wait for a writer that waits for the first.
class CInnerModifySinkPool::FanOut {
public:
    explicit FanOut(CInnerModifySinkPool& pool) noexcept
        : Pool(pool), Outer(Innermost), OwnsShare(!IsInside(pool)) {
        if (OwnsShare)
            Pool.Lock.EnterShared();
        Innermost = this;
    }
    ~FanOut() {
        Innermost = Outer;
        if (OwnsShare)
            Pool.Lock.LeaveShared();
    }
    FanOut(const FanOut&) = delete;
    FanOut& operator=(const FanOut&) = delete;

private:
    static bool IsInside(const CInnerModifySinkPool& pool) noexcept {
        for (const FanOut* each = Innermost; each; each = each->Outer)
            if (&each->Pool == &pool)
                return true;
        return false;
    }

    static thread_local FanOut* Innermost;

    CInnerModifySinkPool& Pool;
    FanOut* Outer;
    bool OwnsShare;
};

thread_local CInnerModifySinkPool::FanOut* CInnerModifySinkPool::FanOut::Innermost = nullptr;

HRESULT CInnerModifySinkPool::Lookup(const GUID* iid, void** out) noexcept {
    return LookupInterface(
        iid, out, this, InterfaceEntry{IID_IModifySink, static_cast<IModifySink*>(this)},
        InterfaceEntry{IID_IModifySinkRegistry, static_cast<IModifySinkRegistry*>(this)});
}

template <class Call>
HRESULT CInnerModifySinkPool::TellUntilFailure(const WCHAR* name, const Call& call) {
    if (!HasSinks())
        return S_OK;
    const auto writeName = [&](WideStream& line) { line << name; };
    return NamedBoundary(SeverityErr, writeName, [&] {
        const FanOut fanOut(*this);
        for (const auto& [id, sink] : Sinks)
            HRES(call(*sink));
    });
}

HRESULT CInnerModifySinkPool::OnStart() {
    return TellUntilFailure(TV_W("CInnerModifySinkPool::OnStart"),
                            [](IModifySink& sink) { return sink.OnStart(); });
}

HRESULT CInnerModifySinkPool::OnModified(const ModifyNotification* notification) {
    return TellUntilFailure(TV_W("CInnerModifySinkPool::OnModified"),
                            [&](IModifySink& sink) { return sink.OnModified(notification); });
}

HRESULT CInnerModifySinkPool::OnPreCommit() {
    return TellUntilFailure(TV_W("CInnerModifySinkPool::OnPreCommit"),
                            [](IModifySink& sink) { return sink.OnPreCommit(); });
}

void CInnerModifySinkPool::OnFinish(int32_t result) {
    if (!HasSinks())
        return;
    const FanOut fanOut(*this);
    for (const auto& [id, sink] : Sinks)
        sink->OnFinish(result);
}

HRESULT CInnerModifySinkPool::RegisterSink(IModifySink* sink, GUID* id) {
    return Boundary([&] {
        CheckOutPointer(sink);
        CheckOutPointer(id);
        const ExclusiveGuard guard(Lock);
        const GUID made = NewGuid();
        Sinks.emplace(made, Ref<IModifySink>::Share(sink));
        SinkCount.store(Sinks.size(), std::memory_order_release);
        *id = made;
        Log(SeverityDbg2, [&](WideStream& line) {
            line << TV_W("New config server modify sink ");
            line.Address(sink);
            line << TV_W(" with id ") << GuidToString(made, GuidFormBraced);
        });
    });
}

HRESULT CInnerModifySinkPool::UnregisterSink(const GUID* id) {
    return Boundary([&] {
        CheckOutPointer(id);
        const ExclusiveGuard guard(Lock);
        const auto found = Sinks.find(*id);
        if (found == Sinks.end()) {
            Log(SeverityWarn, [&](WideStream& line) {
                line << TV_W("Unknown modify sink id ") << GuidToString(*id, GuidFormBraced);
            });
            ThrowHr(E_INVALIDARG);
        }
        Log(SeverityDbg, [&](WideStream& line) {
            line << TV_W("Removed config server modify sink with id ")
                 << GuidToString(*id, GuidFormBraced);
        });
        SinkCount.store(Sinks.size() - 1, std::memory_order_release);
        Sinks.erase(found);
    });
}

} // namespace treevault
