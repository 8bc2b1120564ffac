// SPDX-License-Identifier: MIT
// The contract of every text that goes into a caller's buffer.
#ifndef TREEVAULT_COMMON_TEXTOUT_H
#define TREEVAULT_COMMON_TEXTOUT_H

#include "platform/widetext.h"

#include <treevault/errors.h>

namespace treevault {

// Copies the text with a terminator if it fits, and tells the characters needed in any case.
inline HRESULT CopyTextOut(WideView text, WCHAR* buffer, size_t* size) noexcept {
    const size_t needed = text.size() + 1;
    const bool fits = buffer && needed <= *size;
    if (fits) {
        text.copy(buffer, text.size());
        buffer[text.size()] = 0;
    }
    *size = needed;
    return fits || !buffer ? S_OK : TREEVAULT_E_INSUFFICIENT_BUFFER;
}

} // namespace treevault

#endif
