// SPDX-License-Identifier: MIT
// Creation of storages, and the names by which the process finds them.
#ifndef TREEVAULT_STORAGE_STORAGEFACTORY_H
#define TREEVAULT_STORAGE_STORAGEFACTORY_H

#include "common/components/componentobject.h"
#include "platform/widetext.h"

#include <treevault/storage.h>

#include <map>
#include <mutex>

namespace treevault {

inline constexpr GUID IID_IStorageFactory = {
    0x21B7471E, 0xAEB2, 0x49D6, {0xAD, 0x70, 0x2A, 0xEC, 0xB4, 0x18, 0xC2, 0x63}};

struct IStorageFactory : IComponentUnknown {
    virtual HRESULT TREEVAULT_CALL CreateStorage(const WCHAR* type, IACNode* config,
                                                 const WCHAR* name, int32_t openIfExists,
                                                 INodeStorage** out) = 0;
    virtual HRESULT TREEVAULT_CALL OpenStorageInstance(const WCHAR* name, INodeStorage** out) = 0;

    // Text out with the capacity in `bufferChars`.
    virtual HRESULT TREEVAULT_CALL GetStorageInstanceName(IComponentUnknown* storage, WCHAR* buffer,
                                                          uint64_t bufferChars,
                                                          uint64_t* neededChars) = 0;
    virtual HRESULT TREEVAULT_CALL Reserved1() = 0;
    virtual HRESULT TREEVAULT_CALL Reserved2() = 0;

protected:
    ~IStorageFactory() = default;
};

// One per process, in static storage: it does not count its references. It never keeps a storage
// alive. A dying storage calls its listeners with its weak object's lock held, and they come back
// here; so nothing waits for such a lock, nor lets a weak reference go, while it holds a lock of
// the factory.
class CStorageFactory final : public ComponentHead,
                              public IStorageFactory,
                              public IWeakRefListener {
public:
    CStorageFactory() = default;
    ~CStorageFactory();

    uint32_t TREEVAULT_CALL AddRef() override { return 0xFFFFFFFF; }
    uint32_t TREEVAULT_CALL Release() override { return 0xFFFFFFFF; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID* iid, void** out) override;
    void TREEVAULT_CALL DeletingDestructor(uint32_t) override {}

    HRESULT TREEVAULT_CALL CreateStorage(const WCHAR* type, IACNode* config, const WCHAR* name,
                                         int32_t openIfExists, INodeStorage** out) override;
    HRESULT TREEVAULT_CALL OpenStorageInstance(const WCHAR* name, INodeStorage** out) override;
    HRESULT TREEVAULT_CALL GetStorageInstanceName(IComponentUnknown* storage, WCHAR* buffer,
                                                  uint64_t bufferChars,
                                                  uint64_t* neededChars) override;
    HRESULT TREEVAULT_CALL Reserved1() override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL Reserved2() override { return E_NOTIMPL; }

    void TREEVAULT_CALL OnDestroy(IWeakRef* reference) override;

private:
    Ref<IWeakRef> Find(const WCHAR* name);
    // Null when there is a storage of that name.
    Ref<INodeStorage> CreateUnlessThere(const WCHAR* type, IACNode* config, const WCHAR* name);
    Ref<IWeakRef> RegisterName(INodeStorage* storage, const WCHAR* name);

    // Serializes creation, which may configure at length and create under it again.
    std::recursive_mutex CreationLock;

    std::recursive_mutex Lock; // guards the maps
    std::map<WideText, Ref<IWeakRef>> NameToStorage;
    std::map<IWeakRef*, WideText> StorageToName;
};

CStorageFactory& GetStorageFactory();

} // namespace treevault

#endif
