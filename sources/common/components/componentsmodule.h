// SPDX-License-Identifier: MIT
// The module object: creates components by class.
#ifndef TREEVAULT_COMMON_COMPONENTS_COMPONENTSMODULE_H
#define TREEVAULT_COMMON_COMPONENTS_COMPONENTSMODULE_H

#include "common/components/componentobject.h"

#include <functional>
#include <map>
#include <mutex>

namespace treevault {

// Makes an object of a class and hands it out through the interface given.
using ClassFactoryFunction = std::function<HRESULT(const GUID* iid, void** out)>;

// One per process, in static storage: it does not count its references.
class CComponentsModule final : public ComponentHead, public IComponentsModule {
public:
    CComponentsModule() = default;

    uint32_t TREEVAULT_CALL AddRef() override { return 0xFFFFFFFF; }
    uint32_t TREEVAULT_CALL Release() override { return 0xFFFFFFFF; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID* iid, void** out) override;
    void TREEVAULT_CALL DeletingDestructor(uint32_t) override {}

    HRESULT TREEVAULT_CALL Reserved() override { return S_OK; }
    HRESULT TREEVAULT_CALL ReportAliveObjects() override;
    int32_t TREEVAULT_CALL LockModule() override;
    int32_t TREEVAULT_CALL UnlockModule() override;
    HRESULT TREEVAULT_CALL GetLockState(int32_t* locked) override;
    HRESULT TREEVAULT_CALL CreateInstance(const GUID* clsid, const GUID* iid, void** out) override;

    // A class that is registered already keeps its function.
    void AddClass(const GUID& clsid, ClassFactoryFunction function);
    void RemoveClass(const GUID& clsid);

private:
    struct GuidLess {
        bool operator()(const GUID& left, const GUID& right) const noexcept {
            return std::memcmp(&left, &right, sizeof(GUID)) < 0;
        }
    };

    std::mutex Lock; // guards the table; not held while a function runs
    std::map<GUID, ClassFactoryFunction, GuidLess> Classes;
};

CComponentsModule& GetComponentsModule();

// Registers a class while the library is loaded.
class ClassRegistration {
public:
    ClassRegistration(const GUID& clsid, ClassFactoryFunction function) : Class(clsid) {
        GetComponentsModule().AddClass(Class, std::move(function));
    }
    ~ClassRegistration() { GetComponentsModule().RemoveClass(Class); }
    ClassRegistration(const ClassRegistration&) = delete;
    ClassRegistration& operator=(const ClassRegistration&) = delete;

private:
    GUID Class;
};

} // namespace treevault

#endif
