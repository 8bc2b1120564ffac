// SPDX-License-Identifier: MIT
// Lookup of message texts.
#include "common/errormessages.h"

#include "platform/systemmessage.h"

namespace treevault {

WideText GetErrorMessage(HRESULT code) {
    const uint32_t id = static_cast<uint32_t>(code);
    // A code that wraps one of the platform's own may be known by that one only.
    const bool wrapped = (id & 0x1FFF0000u) == 0x70000u;
    WideText text;
    if (!ReadSystemMessage(id, text) && !(wrapped && ReadSystemMessage(id & 0xFFFF, text)))
        text = TV_W("<no description>");
    text.erase(text.find_last_not_of(TV_W(" .\r\n")) + 1);
    return text.empty() ? WideText(TV_W("<no description>")) : text;
}

} // namespace treevault
