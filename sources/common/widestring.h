// SPDX-License-Identifier: MIT
// The wide string that nodes keep: one pointer to text that copies share. The text never changes
// once it is made; assigning another one leaves the sharers alone.
#ifndef TREEVAULT_COMMON_WIDESTRING_H
#define TREEVAULT_COMMON_WIDESTRING_H

#include "common/ownercount.h"
#include "common/textcompare.h"
#include "platform/widetext.h"

#include <cstdint>
#include <utility>

namespace treevault {

class WideString {
public:
    // The empty text allocates nothing.
    WideString() noexcept = default;

    // Raises E_INVALIDARG above 0xFFFFFFFF code units; std::bad_alloc.
    explicit WideString(WideView text);

    WideString(const WideString& other) noexcept : Shared(other.Shared) {
        if (Shared)
            Shared->Owners.fetch_add(1, std::memory_order_relaxed);
    }
    WideString(WideString&& other) noexcept : Shared(std::exchange(other.Shared, nullptr)) {}
    WideString& operator=(WideString other) noexcept {
        std::swap(Shared, other.Shared);
        return *this;
    }
    ~WideString() {
        if (Shared && IsLastOwner(Shared->Owners))
            Free(Shared);
    }

    size_t Length() const noexcept { return Shared ? Shared->Length : 0; }

    // Zero-terminated.
    const WCHAR* CStr() const noexcept { return Shared ? Text(Shared) : TV_W(""); }

    WideView View() const noexcept { return {CStr(), Length()}; }
    operator WideView() const noexcept { return View(); }

    friend bool operator==(const WideString& left, const WideString& right) noexcept {
        return left.Shared == right.Shared || EqualText(left, right);
    }

private:
    // The text follows behind.
    struct Block {
        std::atomic<uint32_t> Owners;
        uint32_t Length;
    };

    static WCHAR* Text(Block* block) noexcept { return reinterpret_cast<WCHAR*>(block + 1); }
    static void Free(Block* block) noexcept;

    Block* Shared = nullptr;
};

} // namespace treevault

#endif
