// SPDX-License-Identifier: MIT
// New identifiers and their text forms.
#include "common/guids.h"

#include "common/errorhandling.h"
#include "common/hextext.h"
#include "platform/guidsource.h"

namespace treevault {

bool IsUsableGuid(int32_t status, const GUID& guid) noexcept {
    constexpr int32_t noAddress = 1739;
    constexpr int32_t localOnly = 1824;
    const bool unique = status == noAddress || status == localOnly;
    return status == 0 || (unique && !SameGuid(guid, GUID{}));
}

GUID NewGuid() {
    GUID guid{};
    const int32_t status = GenerateGuid(guid);
    if (!IsUsableGuid(status, guid))
        ThrowHr(HresultFromWin32(static_cast<uint32_t>(status)));
    return guid;
}

WideText GuidToString(const GUID& guid, uint32_t form) {
    WCHAR text[GuidTextLength];
    if (form == GuidFormPlain) {
        WriteGuidText(guid, LowerHexPairs<WCHAR>, text);
        return WideText(text, GuidTextLength);
    }
    if (form != GuidFormBraced)
        ThrowHr(E_FAIL);
    WriteGuidText(guid, UpperHexPairs<WCHAR>, text);
    return TV_W("{") + WideText(text, GuidTextLength) + TV_W("}");
}

} // namespace treevault
