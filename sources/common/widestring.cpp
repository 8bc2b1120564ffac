// SPDX-License-Identifier: MIT
// Allocation of shared wide text.
#include "common/widestring.h"

#include "common/errorhandling.h"

#include <new>

namespace treevault {

WideString::WideString(WideView text) {
    if (text.empty())
        return;
    if (text.size() > 0xFFFFFFFFu)
        ThrowHr(E_INVALIDARG);
    void* memory = ::operator new(sizeof(Block) + (text.size() + 1) * sizeof(WCHAR));
    Shared = new (memory) Block{1, static_cast<uint32_t>(text.size())};
    WCHAR* copy = Text(Shared);
    std::char_traits<WCHAR>::copy(copy, text.data(), text.size());
    copy[text.size()] = 0;
}

void WideString::Free(Block* block) noexcept {
    ::operator delete(block);
}

} // namespace treevault
