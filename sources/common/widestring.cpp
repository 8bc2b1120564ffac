// SPDX-License-Identifier: MIT
// The text that wide strings share.
#include "common/widestring.h"

#include "common/errorhandling.h"

#include <new>

namespace treevault::detail {

SharedText* SharedText::Make(WideView text) {
    if (text.size() > 0xFFFFFFFFu)
        ThrowHr(E_INVALIDARG);
    void* memory = ::operator new(sizeof(SharedText) + (text.size() + 1) * sizeof(WCHAR));
    auto* const shared = new (memory) SharedText{1};
    auto* const units = reinterpret_cast<WCHAR*>(shared + 1);
    text.copy(units, text.size());
    units[text.size()] = 0;
    return shared;
}

void SharedText::Free(SharedText* text) noexcept {
    ::operator delete(text);
}

} // namespace treevault::detail
