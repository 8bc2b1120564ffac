// SPDX-License-Identifier: MIT
// The wide strings that nodes keep: short text inside them, longer text in a block that copies
// share. The text never changes once it is made; assigning another one leaves the sharers alone.
#ifndef TREEVAULT_COMMON_WIDESTRING_H
#define TREEVAULT_COMMON_WIDESTRING_H

#include "common/ownercount.h"
#include "common/textcompare.h"
#include "platform/widetext.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace treevault {

namespace detail {

// The text of a long wide string and of its copies.
struct SharedText {
    std::atomic<uint32_t> Owners;

    // Zero-terminated; it follows behind.
    const WCHAR* Text() const noexcept { return reinterpret_cast<const WCHAR*>(this + 1); }

    static SharedText* Make(WideView text);
    static void Free(SharedText* text) noexcept;
};

} // namespace detail

// Up to `Capacity` code units need no block.
template <uint32_t Capacity>
class BasicWideString {
public:
    static constexpr uint32_t InlineCapacity = Capacity;

    // The empty text.
    BasicWideString() noexcept = default;

    // Raises E_INVALIDARG above 0xFFFFFFFF code units; std::bad_alloc.
    explicit BasicWideString(WideView text) : UnitCount(static_cast<uint32_t>(text.size())) {
        if (text.size() > InlineCapacity) {
            detail::SharedText* const shared = detail::SharedText::Make(text);
            std::memcpy(Units, &shared, sizeof shared);
        } else {
            std::char_traits<WCHAR>::copy(Units, text.data(), text.size());
        }
    }

    BasicWideString(const BasicWideString& other) noexcept { Share(other); }
    BasicWideString(BasicWideString&& other) noexcept { Swap(other); }
    BasicWideString& operator=(const BasicWideString& other) noexcept {
        BasicWideString(other).Swap(*this);
        return *this;
    }
    BasicWideString& operator=(BasicWideString&& other) noexcept {
        Swap(other);
        return *this;
    }
    ~BasicWideString() {
        if (IsShared() && IsLastOwner(Shared()->Owners))
            detail::SharedText::Free(Shared());
    }

    size_t Length() const noexcept { return UnitCount; }

    // Zero-terminated.
    const WCHAR* CStr() const noexcept { return IsShared() ? Shared()->Text() : Units; }

    WideView View() const noexcept { return {CStr(), UnitCount}; }
    operator WideView() const noexcept { return View(); }

    friend bool operator==(const BasicWideString& left, const BasicWideString& right) noexcept {
        return EqualText(left, right);
    }

private:
    bool IsShared() const noexcept { return UnitCount > InlineCapacity; }
    detail::SharedText* Shared() const noexcept {
        detail::SharedText* shared;
        std::memcpy(&shared, Units, sizeof shared);
        return shared;
    }
    void Share(const BasicWideString& other) noexcept {
        std::memcpy(Units, other.Units, sizeof Units);
        UnitCount = other.UnitCount;
        if (IsShared())
            Shared()->Owners.fetch_add(1, std::memory_order_relaxed);
    }
    // As bytes: arrays are otherwise swapped unit by unit.
    void Swap(BasicWideString& other) noexcept {
        WCHAR units[InlineCapacity + 1];
        std::memcpy(units, Units, sizeof Units);
        std::memcpy(Units, other.Units, sizeof Units);
        std::memcpy(other.Units, units, sizeof Units);
        std::swap(UnitCount, other.UnitCount);
    }

    // The text with its terminator, or the address of the text that is shared.
    alignas(detail::SharedText*) WCHAR Units[InlineCapacity + 1] = {};
    uint32_t UnitCount = 0;
};

using WideString = BasicWideString<13>;

static_assert(sizeof(WideString) == 32);

} // namespace treevault

#endif
