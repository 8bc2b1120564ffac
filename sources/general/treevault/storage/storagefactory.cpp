// SPDX-License-Identifier: MIT
// Creating, opening and naming of storages.
#include "general/treevault/storage/storagefactory.h"

#include "common/errorhandling.h"
#include "common/textout.h"
#include "general/treevault/storage/memorystorage.h"

#include <vector>

namespace treevault {

CStorageFactory& GetStorageFactory() {
    static CStorageFactory factory;
    return factory;
}

CStorageFactory::~CStorageFactory() {
    for (const auto& [name, reference] : NameToStorage)
        reference->RemoveListener(this);
}

HRESULT CStorageFactory::QueryInterface(const GUID* iid, void** out) {
    return LookupInterface(
        iid, out, this, InterfaceEntry{IID_IStorageFactory, static_cast<IStorageFactory*>(this)});
}

Ref<IWeakRef> CStorageFactory::Find(const WCHAR* name) {
    const std::lock_guard guard(Lock);
    const auto found = NameToStorage.find(name);
    return found == NameToStorage.end() ? Ref<IWeakRef>() : found->second;
}

HRESULT CStorageFactory::OpenStorageInstance(const WCHAR* name, INodeStorage** out) {
    return Boundary([&] {
        CheckOutPointer(name);
        CheckOutPointer(out);
        const Ref<IWeakRef> reference = Find(name);
        if (!reference)
            ThrowHr(TREEVAULT_E_NOT_FOUND);
        Ref<INodeStorage> storage;
        HRES{reference->Resolve(&IID_INodeStorage, reinterpret_cast<void**>(storage.Put()))};
        if (!storage)
            ThrowHr(TREEVAULT_E_NOT_FOUND); // its owner is dying
        *out = storage.Detach();
    });
}

namespace {

Ref<INodeStorage> MakeStorage(const WCHAR* type, IACNode* config) {
    if (WideView(type) != TREEVAULT_MEMORY_STORAGE)
        ThrowHr(E_NOTIMPL);
    Ref<INodeStorage> storage;
    HRES{CreateComponent<CMemoryStorage>(&IID_INodeStorage,
                                         reinterpret_cast<void**>(storage.Put()))};
    if (config) {
        Ref<IStorageConfig> configurable;
        HRES{storage->QueryInterface(&IID_IStorageConfig,
                                     reinterpret_cast<void**>(configurable.Put()))};
        HRES{configurable->Configure(config)};
    }
    return storage;
}

Ref<IWeakRef> WeakReferenceOf(IComponentUnknown* storage) {
    Ref<IWeakRefSource> source;
    HRES{storage->QueryInterface(&IID_IWeakRefSource, reinterpret_cast<void**>(source.Put()))};
    Ref<IWeakRef> reference;
    HRES{source->GetWeakReference(reference.Put())};
    return reference;
}

} // namespace

HRESULT CStorageFactory::CreateStorage(const WCHAR* type, IACNode* config, const WCHAR* name,
                                       int32_t openIfExists, INodeStorage** out) {
    return Boundary([&] {
        CheckOutPointer(type);
        CheckOutPointer(out);
        const WCHAR* const key = name ? name : TV_W("");
        // Locks of weak objects may be waited for under this one: a dying storage never takes it.
        const std::lock_guard creation(CreationLock);
        Ref<INodeStorage> storage;
        if (Find(key)) {
            if (!openIfExists)
                ThrowHr(TREEVAULT_E_STG_NAME_IN_USE);
            HRES{static_cast<IStorageFactory*>(this)->OpenStorageInstance(key, storage.Put())};
        }
        if (!storage) {
            storage = MakeStorage(type, config);
            if (*key != 0)
                RegisterName(storage.Get(), key);
        }
        *out = storage.Detach();
    });
}

// Nobody else registers at the same time. A stale entry of the name is that of a storage which is
// dying at this moment.
void CStorageFactory::RegisterName(INodeStorage* storage, const WCHAR* name) {
    const Ref<IWeakRef> reference = WeakReferenceOf(storage);
    HRES{reference->AddListener(this)};
    Ref<IWeakRef> stale;
    try {
        const std::lock_guard guard(Lock);
        StorageToName.emplace(reference.Get(), name);
        Ref<IWeakRef>& entry = NameToStorage[name];
        stale = std::move(entry);
        entry = reference;
        if (stale)
            StorageToName.erase(stale.Get());
    } catch (...) {
        {
            const std::lock_guard guard(Lock);
            StorageToName.erase(reference.Get());
        }
        reference->RemoveListener(this);
        throw;
    }
    if (stale)
        stale->RemoveListener(this);
}

HRESULT CStorageFactory::GetStorageInstanceName(IComponentUnknown* storage, WCHAR* buffer,
                                                uint64_t bufferChars, uint64_t* neededChars) {
    return Boundary([&]() -> HRESULT {
        CheckOutPointer(storage);
        CheckOutPointer(neededChars);
        const Ref<IWeakRef> reference = WeakReferenceOf(storage);
        const std::lock_guard guard(Lock);
        const auto found = StorageToName.find(reference.Get());
        if (found == StorageToName.end())
            ThrowHr(TREEVAULT_E_NOT_FOUND);
        size_t size = bufferChars;
        const HRESULT hr = CopyTextOut(found->second, buffer, &size);
        *neededChars = size;
        return hr;
    });
}

void CStorageFactory::OnDestroy(IWeakRef* reference) {
    Ref<IWeakRef> gone; // let go when the lock is free
    const auto writeName = [](WideStream& line) { line << TV_W("CStorageFactory::OnDestroy"); };
    NamedBoundary(SeverityErr, writeName, [&] {
        CheckOutPointer(reference);
        const std::lock_guard guard(Lock);
        const auto found = StorageToName.find(reference);
        if (found == StorageToName.end())
            return;
        const auto entry = NameToStorage.find(found->second);
        if (entry != NameToStorage.end() && entry->second.Get() == reference) {
            gone = std::move(entry->second);
            NameToStorage.erase(entry);
        }
        StorageToName.erase(found);
    });
}

} // namespace treevault
