// SPDX-License-Identifier: MIT
// Creating, opening and naming of storages.
#include "general/treevault/storage/storagefactory.h"

#include "common/errorhandling.h"
#include "common/textout.h"
#include "general/treevault/storage/memorystorage.h"

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
        Ref<INodeStorage> storage = CreateUnlessThere(type, config, key);
        if (!storage) {
            if (!openIfExists)
                ThrowHr(TREEVAULT_E_STG_NAME_IN_USE);
            HRES{static_cast<IStorageFactory*>(this)->OpenStorageInstance(key, storage.Put())};
        }
        *out = storage.Detach();
    });
}

Ref<INodeStorage> CStorageFactory::CreateUnlessThere(const WCHAR* type, IACNode* config,
                                                     const WCHAR* name) {
    Ref<INodeStorage> storage;
    Ref<IWeakRef> stale;
    {
        const std::lock_guard creation(CreationLock);
        if (Find(name))
            return storage;
        storage = MakeStorage(type, config);
        if (*name != 0)
            stale = RegisterName(storage.Get(), name);
    }
    if (stale)
        stale->RemoveListener(this);
    return storage;
}

// Nobody else registers at the same time, but a configuration may have created a storage of that
// name meanwhile; its weak reference, which no longer has a name, is what comes back.
Ref<IWeakRef> CStorageFactory::RegisterName(INodeStorage* storage, const WCHAR* name) {
    const Ref<IWeakRef> reference = WeakReferenceOf(storage);
    HRES{reference->AddListener(this)};
    try {
        const std::lock_guard guard(Lock);
        StorageToName.emplace(reference.Get(), name);
        Ref<IWeakRef>& entry = NameToStorage[name];
        Ref<IWeakRef> stale = std::move(entry);
        entry = reference;
        if (stale)
            StorageToName.erase(stale.Get());
        return stale;
    } catch (...) {
        {
            const std::lock_guard guard(Lock);
            StorageToName.erase(reference.Get());
        }
        reference->RemoveListener(this);
        throw;
    }
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
