// SPDX-License-Identifier: MIT
// The children of a node: in the order of their adding, and by name in a hash table.
#ifndef TREEVAULT_NODES_CHILDLIST_H
#define TREEVAULT_NODES_CHILDLIST_H

#include "common/peekablepointer.h"
#include "platform/widetext.h"

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace treevault {

class CACNodeImpl;

// Guarded by the lock of the parent, which keeps the names of the children as they are: they are
// read where the children keep them. It holds two references to each child, one for each way to
// find it, and leaves their counting to the parent. A node without children pays 16 bytes.
class ChildList {
public:
    ChildList() = default;
    ~ChildList() { Clear(); }
    ChildList(const ChildList&) = delete;
    ChildList& operator=(const ChildList&) = delete;

    size_t Size() const noexcept { return Lists ? Lists->Children.size() : 0; }
    std::span<CACNodeImpl* const> InOrder() const noexcept {
        return Lists ? std::span<CACNodeImpl* const>(Lists->Children)
                     : std::span<CACNodeImpl* const>();
    }
    CACNodeImpl* operator[](size_t index) const noexcept { return Lists->Children[index]; }

    // Null when there is no child of that name.
    CACNodeImpl* Find(WideView name) const noexcept;

    // Makes room for so many more, so that Append cannot fail.
    void Reserve(size_t more);

    // There must be room, and no child of that name.
    void Append(WideView name, CACNodeImpl* child) noexcept;

    // The name must be that under which the child was added or that it got by Rename.
    void Erase(size_t index, WideView name) noexcept;
    void Rename(WideView oldName, WideView newName, CACNodeImpl* child) noexcept;

    // The lists, to be prefetched; needs no lock. Null if there are none.
    const void* Peek() const noexcept { return Lists.Get(); }

    void Clear() noexcept {
        Free(std::exchange(Lists, nullptr));
        Capacity = 0;
    }

private:
    // Free when there is no child. A child stands in its own slot, that of its hash, or behind it
    // with no free slot between; the last slot is followed by the first.
    struct Slot {
        CACNodeImpl* Child;
        const void* Behind; // what lay behind the child when it was found last, to be prefetched
        uint32_t Hash;
    };

    // The slots follow behind.
    struct Block {
        std::vector<CACNodeImpl*> Children;
        Slot* Slots() noexcept { return reinterpret_cast<Slot*>(this + 1); }
    };

    size_t OwnSlot(uint32_t hash) const noexcept { return hash & (Capacity - 1); }
    size_t NextSlot(size_t at) const noexcept { return (at + 1) & (Capacity - 1); }
    static void PrefetchFound(Slot& slot) noexcept;
    void Place(Slot slot) noexcept;
    void Remove(uint32_t hash, const CACNodeImpl* child) noexcept;

    static Block* Allocate(size_t capacity);
    static void Free(Block* block) noexcept;
    void ReserveSlots(size_t count);

    PeekablePointer<Block> Lists; // none before the first child
    size_t Capacity = 0; // of the slots, a power of two; here, where a search needs it first
};

} // namespace treevault

#endif
