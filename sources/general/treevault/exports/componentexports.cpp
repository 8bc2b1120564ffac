// SPDX-License-Identifier: MIT
// The exported way to the module object.
#include "common/components/componentsmodule.h"

using namespace treevault;

extern "C" HRESULT TREEVAULT_CALL GetComponentsModuleObject(IComponentsModule** module) {
    CComponentsModule& object = GetComponentsModule();
    if (!module)
        return E_INVALIDARG;
    *module = &object;
    return S_OK;
}
