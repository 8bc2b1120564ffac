// SPDX-License-Identifier: MIT
// The storage as an object: creation, lookup, configuration, and the run of a group.
#include "general/treevault/storage/memorystorage.h"

#include "common/components/componentsmodule.h"
#include "common/errorhandling.h"
#include "common/functiontrace.h"
#include "general/treevault/nodes/nodereading.h"
#include "general/treevault/presentation/nodelogview.h"
#include "general/treevault/storage/modifysinkpoolimpl.h"

namespace treevault {

namespace {

const ClassRegistration storageClass(CLSID_MemoryStorage, [](const GUID* iid, void** out) {
    return CreateComponent<CMemoryStorage>(iid, out);
});

} // namespace

CMemoryStorage::CMemoryStorage() : ModifySinks(MakeComponent<CInnerModifySinkPool>()) {}

// The listeners are told when the content is gone.
CMemoryStorage::~CMemoryStorage() {
    ModifySinks.Reset();
    RootNodes.clear();
    WeakHolder.TellDestroyed();
}

HRESULT CMemoryStorage::Lookup(const GUID* iid, void** out) noexcept {
    return LookupInterface(
        iid, out, this, InterfaceEntry{IID_INodeStorage, static_cast<INodeStorage*>(this)},
        InterfaceEntry{IID_IModifySinkRegistry, static_cast<IModifySinkRegistry*>(this)},
        InterfaceEntry{IID_IStorageConfig, static_cast<IStorageConfig*>(this)},
        InterfaceEntry{IID_IWeakRefSource, static_cast<IWeakRefSource*>(this)});
}

HRESULT CMemoryStorage::GetWeakReference(IWeakRef** out) {
    return Boundary([&] {
        CheckOutPointer(out);
        return WeakHolder.Get(this, out);
    });
}

HRESULT CMemoryStorage::Configure(IACNode* configuration) {
    const auto writeName = [](WideStream& line) { line << TV_W("CMemoryStorage::Configure"); };
    return NamedBoundary(SeverityErr, writeName, [&] {
        const FunctionTrace trace(TV_W("CMemoryStorage::Configure"), SeverityDbg);
        CheckOutPointer(configuration);
        const NodeRef node = NodeRef::Share(configuration);
        LogNode(SeverityDbg, TV_W("Config: "), configuration);
        const auto read = [&](const WCHAR* name) {
            uint8_t value = 1;
            return !ReadOptional(configuration, name, VtBool, value) || value != 0;
        };
        BuildParentNodesIfMissing = read(TV_W("BuildParentNodesIfMissing"));
        MaintainAtomicity = read(TV_W("MaintainAtomicity"));
    });
}

namespace {

// The pool's registry; asked for anew at each call.
Ref<IModifySinkRegistry> RegistryOf(CInnerModifySinkPool* pool) {
    if (!pool)
        ThrowHr(E_UNEXPECTED);
    Ref<IModifySinkRegistry> registry;
    HRES{pool->QueryInterface(&IID_IModifySinkRegistry, reinterpret_cast<void**>(registry.Put()))};
    return registry;
}

} // namespace

HRESULT CMemoryStorage::RegisterSink(IModifySink* sink, GUID* id) {
    return Boundary([&] { return RegistryOf(ModifySinks.Get())->RegisterSink(sink, id); });
}

HRESULT CMemoryStorage::UnregisterSink(const GUID* id) {
    return Boundary([&] { return RegistryOf(ModifySinks.Get())->UnregisterSink(id); });
}

HRESULT CMemoryStorage::CreateOperationsGroup(IOperationsGroup** group) {
    return Boundary([&] {
        return CreateComponent<CPendingOperations>(&IID_IComponentUnknown,
                                                   reinterpret_cast<void**>(group), *this);
    });
}

// The journal behind a caller's group, or a new one of its own where the caller gave none.
Ref<CPendingOperations> CMemoryStorage::PvtJournalOf(IOperationsGroup* group) {
    if (!group)
        return MakeComponent<CPendingOperations>(*this);
    void* journal = nullptr;
    HRES{group->QueryInterface(&IID_PendingOperations, &journal)};
    return Ref<CPendingOperations>::Attach(static_cast<CPendingOperations*>(journal));
}

HRESULT CMemoryStorage::FinalizeOperationsGroup(IOperationsGroup* group) {
    const auto writeName = [](WideStream& line) {
        line << TV_W("CMemoryStorage::FinalizeOperationsGroup");
    };
    return NamedBoundary(SeverityDbg2, writeName, [&] {
        const FunctionTrace trace(TV_W("CMemoryStorage::FinalizeOperationsGroup"), SeverityDbg2);
        LogPointer(TV_W("GroupContext: "), group);
        CheckOutPointer(group);
        Ref<CPendingOperations> journal; // given back when the lock is free
        const StorageLock::Exclusive guard(Lock);
        journal = PvtJournalOf(group);
        PvtExecuteGroup(*journal);
    });
}

void CMemoryStorage::PvtRunPrivateGroup(CPendingOperations& group) {
    const StorageLock::Exclusive guard(Lock);
    PvtExecuteGroup(group);
}

// The caller holds the lock exclusively.
void CMemoryStorage::PvtExecuteGroup(CPendingOperations& group) {
    try {
        if (ModifySinks)
            ModifySinks->OnStart();
        group.Execute();
        if (ModifySinks) {
            LogTraced(SeverityDbg2, [](WideStream& line) { line << TV_W("Signaling PreCommit"); });
            HRES{ModifySinks->OnPreCommit()};
            LogTraced(SeverityDbg2,
                      [](WideStream& line) { line << TV_W("Signaling Finish (successful)"); });
            ModifySinks->OnFinish(1);
        }
    } catch (const HRX& failure) {
        group.Rollback();
        LogTraced(SeverityDbg2, [&](WideStream& line) {
            line << TV_W("Signaling Finish (failed): ");
            AppendErrorText(line, failure);
        });
        if (ModifySinks)
            ModifySinks->OnFinish(0);
        throw;
    } catch (...) {
        group.Rollback();
        if (ModifySinks)
            ModifySinks->OnFinish(0);
        throw;
    }
}

bool CMemoryStorage::PvtIsObserved() const noexcept {
    return ModifySinks && (ModifySinks->HasSinks() || WasSeverityEnabled(SeverityDbg2));
}

void CMemoryStorage::PvtSignalModified(IACNode* oldNode, IACNode* newNode, ModifyMask mask,
                                       const WCHAR* changedNames) {
    if (!PvtIsObserved())
        return;
    const WideText path = ReadName(newNode ? newNode : oldNode, NameFullPath);
    const ModifyNotification notification = {mask, path.c_str(), oldNode, newNode, changedNames};
    LogTraced(SeverityDbg2, [&](WideStream& line) {
        line << TV_W("Signaling OnModified: path='") << path << TV_W("' mask=") << mask;
    });
    HRES{ModifySinks->OnModified(&notification)};
}

} // namespace treevault
