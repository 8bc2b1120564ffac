// SPDX-License-Identifier: MIT
// The wide string that nodes keep: short text inside it, longer text in a block that copies share.
// The text never changes once it is made; assigning another one leaves the sharers alone.
#ifndef TREEVAULT_COMMON_WIDESTRING_H
#define TREEVAULT_COMMON_WIDESTRING_H

#include "common/ownercount.h"
#include "common/textcompare.h"
#include "platform/widetext.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace treevault {

class WideString {
public:
    // Code units that need no block.
    static constexpr uint32_t InlineCapacity = 13;

    // The empty text.
    WideString() noexcept = default;

    // Raises E_INVALIDARG above 0xFFFFFFFF code units; std::bad_alloc.
    explicit WideString(WideView text);

    WideString(const WideString& other) noexcept { Share(other); }
    WideString(WideString&& other) noexcept { Swap(other); }
    WideString& operator=(WideString other) noexcept {
        Swap(other);
        return *this;
    }
    ~WideString() {
        if (IsShared() && IsLastOwner(Shared()->Owners))
            Free(Shared());
    }

    size_t Length() const noexcept { return UnitCount; }

    // Zero-terminated.
    const WCHAR* CStr() const noexcept { return IsShared() ? Text(Shared()) : Units; }

    WideView View() const noexcept { return {CStr(), UnitCount}; }
    operator WideView() const noexcept { return View(); }

    friend bool operator==(const WideString& left, const WideString& right) noexcept {
        return EqualText(left, right);
    }

private:
    // The text follows behind.
    struct Block {
        std::atomic<uint32_t> Owners;
    };

    bool IsShared() const noexcept { return UnitCount > InlineCapacity; }
    Block* Shared() const noexcept {
        Block* block;
        std::memcpy(&block, Units, sizeof block);
        return block;
    }
    void Share(const WideString& other) noexcept {
        std::memcpy(Units, other.Units, sizeof Units);
        UnitCount = other.UnitCount;
        if (IsShared())
            Shared()->Owners.fetch_add(1, std::memory_order_relaxed);
    }
    void Swap(WideString& other) noexcept {
        std::swap(Units, other.Units);
        std::swap(UnitCount, other.UnitCount);
    }

    static WCHAR* Text(Block* block) noexcept { return reinterpret_cast<WCHAR*>(block + 1); }
    static void Free(Block* block) noexcept;

    // The text with its terminator, or the address of the block in front.
    alignas(Block*) WCHAR Units[InlineCapacity + 1] = {};
    uint32_t UnitCount = 0;
};

static_assert(sizeof(WideString) == 32);

} // namespace treevault

#endif
