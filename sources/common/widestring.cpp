// SPDX-License-Identifier: MIT
// Making of wide strings.
#include "common/widestring.h"

#include "common/errorhandling.h"

#include <new>

namespace treevault {

WideString::WideString(WideView text) {
    if (text.size() > 0xFFFFFFFFu)
        ThrowHr(E_INVALIDARG);
    WCHAR* copy = Units;
    if (text.size() > InlineCapacity) {
        void* memory = ::operator new(sizeof(Block) + (text.size() + 1) * sizeof(WCHAR));
        Block* const block = new (memory) Block{1};
        std::memcpy(Units, &block, sizeof block);
        copy = Text(block);
    }
    UnitCount = static_cast<uint32_t>(text.size());
    std::char_traits<WCHAR>::copy(copy, text.data(), text.size());
    copy[text.size()] = 0;
}

void WideString::Free(Block* block) noexcept {
    ::operator delete(block);
}

} // namespace treevault
