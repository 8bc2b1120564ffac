// SPDX-License-Identifier: MIT
// The exported functions that read error records.
#include "common/errordescription.h"
#include "common/errorhandling.h"
#include "common/textout.h"

using namespace treevault;

extern "C" {

HRESULT TREEVAULT_CALL EhGetErrorContext(void*, IErrorInfo** context) {
    return GetErrorInfo(0, context);
}

void TREEVAULT_CALL EhReleaseErrorContext(IErrorInfo* context) {
    if (context)
        context->Release();
}

// Unlike other functions that can fail it sets no record: it is what records are read with.
HRESULT TREEVAULT_CALL EhMakeErrorText(HRESULT code, uint32_t flags, IErrorInfo* context,
                                       const WCHAR* text, WCHAR* buffer, size_t* size) {
    if (!size)
        return E_POINTER;
    try {
        return CopyTextOut(ErrorDescription(code, context, text).Format(flags), buffer, size);
    } catch (const HRX& failure) {
        return failure.Code;
    }
}

} // extern "C"
