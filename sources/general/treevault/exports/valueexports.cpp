// SPDX-License-Identifier: MIT
// The flat functions of typed values.
#include "common/errorhandling.h"
#include "general/treevault/values/conversion.h"

#include <treevault/values.h>

using namespace treevault;

extern "C" {

HRESULT TREEVAULT_CALL AcnConvertData(ValueType sourceType, const void* sourceData,
                                      uint64_t sourceSize, ValueType targetType, void* targetBuffer,
                                      uint64_t* targetSize) {
    return Boundary([&] {
        if (!targetSize)
            ThrowHr(E_POINTER);
        const uint64_t capacity = *targetSize;
        uint64_t needed = 0;
        ConvertValue({sourceType, sourceData, sourceSize}, targetType, targetBuffer, capacity,
                     &needed);
        *targetSize = needed;
        return needed > capacity ? TREEVAULT_E_INSUFFICIENT_BUFFER : S_OK;
    });
}

HRESULT TREEVAULT_CALL VariantData_ConvertType(void*, ValueType) {
    return E_NOTIMPL;
}

HRESULT TREEVAULT_CALL VariantData_Init(void*) {
    return E_NOTIMPL;
}

HRESULT TREEVAULT_CALL VariantData_GetBuffer(void*) {
    return 0;
}

HRESULT TREEVAULT_CALL VariantData_GetData(void*) {
    return 0;
}

HRESULT TREEVAULT_CALL VariantData_GetType(void*) {
    return 0;
}

void TREEVAULT_CALL VariantData_Cleanup(void*) {}

} // extern "C"
