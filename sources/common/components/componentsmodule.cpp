// SPDX-License-Identifier: MIT
// The class table and the count of live components.
#include "common/components/componentsmodule.h"

#include "common/errorhandling.h"

namespace treevault {

// Made at the first need. A registration object makes it before itself, so that it dies after it.
CComponentsModule& GetComponentsModule() {
    static CComponentsModule module;
    return module;
}

HRESULT CComponentsModule::QueryInterface(const GUID* iid, void** out) {
    return LookupInterface(
        iid, out, this,
        InterfaceEntry{IID_IComponentsModule, static_cast<IComponentsModule*>(this)});
}

HRESULT CComponentsModule::ReportAliveObjects() {
    GetAliveObjectsTracker().Report();
    return S_OK;
}

int32_t CComponentsModule::LockModule() {
    return ComponentCount.fetch_add(1, std::memory_order_relaxed) + 1;
}

int32_t CComponentsModule::UnlockModule() {
    return ComponentCount.fetch_sub(1, std::memory_order_relaxed) - 1;
}

HRESULT CComponentsModule::GetLockState(int32_t* locked) {
    if (!locked)
        return E_POINTER;
    *locked = ComponentCount.load(std::memory_order_relaxed) != 0;
    return S_OK;
}

HRESULT CComponentsModule::CreateInstance(const GUID* clsid, const GUID* iid, void** out) {
    if (!clsid)
        return E_INVALIDARG;
    ClassFactoryFunction function;
    {
        const std::lock_guard guard(Lock);
        const auto found = Classes.find(*clsid);
        if (found == Classes.end())
            return REGDB_E_CLASSNOTREG;
        function = found->second;
    }
    return Boundary([&] { return function(iid, out); });
}

void CComponentsModule::AddClass(const GUID& clsid, ClassFactoryFunction function) {
    const std::lock_guard guard(Lock);
    Classes.emplace(clsid, std::move(function));
}

void CComponentsModule::RemoveClass(const GUID& clsid) {
    const std::lock_guard guard(Lock);
    Classes.erase(clsid);
}

} // namespace treevault
