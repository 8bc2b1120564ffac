// SPDX-License-Identifier: MIT
// The lists of children: linear probing without marks for what was removed.
#include "general/treevault/nodes/childlist.h"

#include "common/textcompare.h"
#include "common/texthash.h"
#include "general/treevault/nodes/acnodeimpl.h"

#include <algorithm>
#include <memory>
#include <new>

namespace treevault {

namespace {

constexpr size_t FirstCapacity = 4;

// At most three of four slots are taken.
bool Suffices(size_t capacity, size_t count) noexcept {
    return count <= capacity - capacity / 4;
}

} // namespace

CACNodeImpl* ChildList::Find(WideView name) const noexcept {
    if (!Lists)
        return nullptr;
    const uint32_t hash = HashText(name);
    const Slot* const slots = Lists->Slots();
    for (size_t at = Lists->Own(hash); slots[at].Child; at = Lists->Next(at))
        if (slots[at].Hash == hash && EqualText(slots[at].Child->ShortName(), name))
            return slots[at].Child;
    return nullptr;
}

void ChildList::Block::Place(Slot slot) noexcept {
    size_t at = Own(slot.Hash);
    while (Slots()[at].Child)
        at = Next(at);
    Slots()[at] = slot;
}

// What stands behind the gap moves into it, unless it would come to stand before its own slot.
void ChildList::Block::Remove(uint32_t hash, const CACNodeImpl* child) noexcept {
    Slot* const slots = Slots();
    size_t gap = Own(hash);
    while (slots[gap].Child != child || slots[gap].Hash != hash)
        gap = Next(gap);
    for (size_t at = Next(gap); slots[at].Child; at = Next(at)) {
        const size_t distance = (at - Own(slots[at].Hash)) & (Capacity - 1);
        if (distance >= ((at - gap) & (Capacity - 1)))
            slots[std::exchange(gap, at)] = slots[at];
    }
    slots[gap] = {};
}

ChildList::Block* ChildList::Allocate(size_t capacity) {
    static_assert(sizeof(Block) % alignof(Slot) == 0);
    void* memory = ::operator new(sizeof(Block) + capacity * sizeof(Slot));
    Block* const block = new (memory) Block{{}, capacity};
    std::uninitialized_value_construct_n(block->Slots(), capacity);
    return block;
}

void ChildList::Free(Block* block) noexcept {
    if (!block)
        return;
    block->~Block();
    ::operator delete(block);
}

void ChildList::ReserveSlots(size_t count) {
    size_t capacity = Lists ? Lists->Capacity : FirstCapacity;
    while (!Suffices(capacity, count))
        capacity *= 2;
    if (Lists && Lists->Capacity == capacity)
        return;
    Block* const block = Allocate(capacity);
    if (Lists) {
        for (const Slot& slot : std::span(Lists->Slots(), Lists->Capacity))
            if (slot.Child)
                block->Place(slot);
        block->Children = std::move(Lists->Children);
    }
    Free(std::exchange(Lists, block));
}

void ChildList::Reserve(size_t more) {
    const size_t count = Size() + more;
    ReserveSlots(count);
    std::vector<CACNodeImpl*>& children = Lists->Children;
    if (children.capacity() < count)
        children.reserve(std::max({count, 2 * children.size(), FirstCapacity}));
}

void ChildList::Append(WideView name, CACNodeImpl* child) noexcept {
    Lists->Place({child, HashText(name)});
    Lists->Children.push_back(child);
}

void ChildList::Erase(size_t index, WideView name) noexcept {
    std::vector<CACNodeImpl*>& children = Lists->Children;
    Lists->Remove(HashText(name), children[index]);
    children.erase(children.begin() + static_cast<ptrdiff_t>(index));
}

void ChildList::Rename(WideView oldName, WideView newName, CACNodeImpl* child) noexcept {
    Lists->Remove(HashText(oldName), child);
    Lists->Place({child, HashText(newName)});
}

} // namespace treevault
