// SPDX-License-Identifier: MIT
// The attributes of a node: entries sorted by name in one block of memory, with their names and
// short values, which a node shares with its clones until one of them writes a value.
#ifndef TREEVAULT_NODES_ATTRIBUTETABLE_H
#define TREEVAULT_NODES_ATTRIBUTETABLE_H

#include "common/ownercount.h"
#include "common/peekablepointer.h"
#include "general/treevault/values/valuestorage.h"
#include "platform/widetext.h"

#include <treevault/values.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <span>
#include <utility>

namespace treevault {

// One attribute. The name stands in the block of the table.
struct AttributeEntry {
    uint32_t NameOffset; // code units from the start of the table's names
    ValueType Type;
    uint16_t Flags; // bit 0: modified; written while the table is shared, so always atomically
    ValueStorage Value;

    uint16_t LoadFlags() const noexcept {
        return std::atomic_ref(const_cast<uint16_t&>(Flags)).load(std::memory_order_relaxed);
    }
    void StoreFlags(uint16_t flags) noexcept {
        std::atomic_ref(Flags).store(flags, std::memory_order_relaxed);
    }
};

inline constexpr uint16_t AttributeModified = 1;

// A shared reference to a table, or none, which differs from an empty table. The node that owns it
// guards it with its lock. Everything but the flags is written by the only owner alone.
class AttributeTable {
public:
    AttributeTable() noexcept = default;
    AttributeTable(const AttributeTable& other) noexcept : Shared(other.Shared) {
        if (Shared)
            Shared->Owners.fetch_add(1, std::memory_order_relaxed);
    }
    AttributeTable(AttributeTable&& other) noexcept
        : Shared(std::exchange(other.Shared, nullptr)) {}
    AttributeTable& operator=(AttributeTable other) noexcept {
        std::swap(Shared, other.Shared);
        return *this;
    }
    ~AttributeTable() {
        if (Shared && IsLastOwner(Shared->Owners))
            Free(Shared);
    }

    explicit operator bool() const noexcept { return Shared != nullptr; }

    // With one owner, whose lock is held, nobody can become a second.
    bool IsShared() const noexcept {
        return Shared && Shared->Owners.load(std::memory_order_acquire) != 1;
    }

    // What the table holds now, for others to keep: of a table with one owner a copy, so that it
    // can be changed where it lies, beside its node.
    AttributeTable Keep() const { return Shared && !IsShared() ? Copy() : *this; }

    // Makes a table where there is none, and a private copy of a shared one. The strong guarantee
    // holds: what memory does not suffice for changes nothing.
    void EnsureOwn();

    // The entries in the order of their names.
    std::span<AttributeEntry> Entries() const noexcept {
        return Shared ? std::span(Shared->Entries(), Shared->Count) : std::span<AttributeEntry>();
    }

    // Zero-terminated.
    const WCHAR* Name(const AttributeEntry& entry) const noexcept {
        return Shared->Names() + entry.NameOffset;
    }

    // Null when there is no such attribute.
    AttributeEntry* Find(const WCHAR* name) const noexcept;

    // Calls `visit` with each pair of entries of one name, in the order of the names; null stands
    // for the entry that a side lacks.
    template <class Visit>
    static void ForEachPair(const AttributeTable& left, const AttributeTable& right,
                            const Visit& visit);

    // Asks the processor for the first entries; needs no lock.
    void Prefetch() const noexcept { Shared.Prefetch(2); }

    // The table, to be prefetched; needs no lock.
    const void* Peek() const noexcept { return Shared.Get(); }

    // For the only owner: sets the value, in a new entry if need be. Null data gives zeros. The
    // strong guarantee holds.
    void Set(const WCHAR* name, ValueType type, const void* data, uint64_t size, uint16_t flags);

    // For the only owner: sets the value of an entry of this table; no entry moves. The strong
    // guarantee holds.
    void Overwrite(AttributeEntry& entry, ValueType type, const void* data, uint64_t size,
                   uint16_t flags);

    // For the only owner.
    void Erase(AttributeEntry* entry) noexcept;

private:
    // The entries follow behind, and behind these the area: names from its front, room that is lent
    // to values from its end. What erased entries had stays used until the next block.
    struct alignas(AttributeEntry) Block {
        std::atomic<uint32_t> Owners;
        uint32_t Count;
        uint32_t Capacity;
        uint32_t AreaSize; // in bytes, like what is used of it
        uint32_t NamesSize;
        uint32_t RoomSize;

        AttributeEntry* Entries() noexcept {
            return std::launder(reinterpret_cast<AttributeEntry*>(this + 1));
        }
        std::byte* Area() noexcept { return reinterpret_cast<std::byte*>(Entries() + Capacity); }
        WCHAR* Names() noexcept { return reinterpret_cast<WCHAR*>(Area()); }
        uint32_t FreeSize() const noexcept { return AreaSize - NamesSize - RoomSize; }

        // There must be so much free. The offset of the name, in code units.
        uint32_t AppendName(const WCHAR* name, size_t size) noexcept;
        void* TakeRoom(uint32_t size) noexcept;
    };

    // As unsigned code units, like every comparison of names.
    static int CompareNames(const WCHAR* left, const WCHAR* right) noexcept {
        while (*left != 0 && *left == *right) {
            ++left;
            ++right;
        }
        return static_cast<int>(*left) - static_cast<int>(*right);
    }

    AttributeTable Copy() const;
    static Block* Allocate(size_t entries, size_t areaSize);
    static void Free(Block* block) noexcept;
    bool Search(const WCHAR* name, size_t& at) const noexcept;
    void Reserve(size_t nameSize);

    // True only if both have the same names, told by where these lie; false also for equal names
    // that were added in another order.
    bool IsNamedLike(const AttributeTable& other) const noexcept;
    ValueStorage MakeValue(const void* data, uint64_t size, size_t kept = 0);

    PeekablePointer<Block> Shared;
};

template <class Visit>
void AttributeTable::ForEachPair(const AttributeTable& left, const AttributeTable& right,
                                 const Visit& visit) {
    const std::span<AttributeEntry> lefts = left.Entries();
    const std::span<AttributeEntry> rights = right.Entries();
    if (left.IsNamedLike(right)) {
        for (size_t at = 0; at < lefts.size(); ++at)
            visit(&lefts[at], &rights[at]);
        return;
    }
    auto fromLeft = lefts.begin();
    auto fromRight = rights.begin();
    while (fromLeft != lefts.end() || fromRight != rights.end()) {
        const int order = fromLeft == lefts.end() ? 1
                          : fromRight == rights.end()
                              ? -1
                              : CompareNames(left.Name(*fromLeft), right.Name(*fromRight));
        visit(order <= 0 ? &*fromLeft : nullptr, order >= 0 ? &*fromRight : nullptr);
        fromLeft += order <= 0;
        fromRight += order >= 0;
    }
}

} // namespace treevault

#endif
