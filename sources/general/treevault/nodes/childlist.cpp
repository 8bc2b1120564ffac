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

constexpr size_t LinesOfChild = (sizeof(CACNodeImpl) + CacheLine - 1) / CacheLine;

// Mostly enough for the lists of ten children, or for four attributes.
constexpr size_t LinesBehind = 7;

// At most three of four slots are taken.
bool Suffices(size_t capacity, size_t count) noexcept {
    return count <= capacity - capacity / 4;
}

} // namespace

// The child comes from the memory as a whole and together with what lies behind it, unless that has
// moved since the child was found last.
void ChildList::PrefetchFound(Slot& slot) noexcept {
    PrefetchLines(slot.Child, LinesOfChild);
    PrefetchLines(slot.Behind, LinesBehind);
    slot.Child->PrefetchAbove();
    const void* const behind = slot.Child->Behind();
    if (slot.Behind == behind)
        return;
    slot.Behind = behind;
    PrefetchLines(behind, LinesBehind);
}

CACNodeImpl* ChildList::Find(WideView name) const noexcept {
    if (!Lists)
        return nullptr;
    const uint32_t hash = HashText(name);
    Slot* const slots = Lists->Slots();
    for (size_t at = OwnSlot(hash); slots[at].Child; at = NextSlot(at)) {
        if (slots[at].Hash != hash)
            continue;
        PrefetchFound(slots[at]);
        if (EqualText(slots[at].Child->ShortName(), name))
            return slots[at].Child;
    }
    return nullptr;
}

void ChildList::Place(Slot slot) noexcept {
    Slot* const slots = Lists->Slots();
    size_t at = OwnSlot(slot.Hash);
    while (slots[at].Child)
        at = NextSlot(at);
    slots[at] = slot;
}

// What stands behind the gap moves into it, unless it would come to stand before its own slot.
void ChildList::Remove(uint32_t hash, const CACNodeImpl* child) noexcept {
    Slot* const slots = Lists->Slots();
    size_t gap = OwnSlot(hash);
    while (slots[gap].Child != child || slots[gap].Hash != hash)
        gap = NextSlot(gap);
    for (size_t at = NextSlot(gap); slots[at].Child; at = NextSlot(at)) {
        const size_t distance = (at - OwnSlot(slots[at].Hash)) & (Capacity - 1);
        if (distance >= ((at - gap) & (Capacity - 1)))
            slots[std::exchange(gap, at)] = slots[at];
    }
    slots[gap] = {};
}

ChildList::Block* ChildList::Allocate(size_t capacity) {
    static_assert(sizeof(Block) % alignof(Slot) == 0);
    void* memory = ::operator new(sizeof(Block) + capacity * sizeof(Slot));
    Block* const block = new (memory) Block;
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
    size_t capacity = std::max(Capacity, FirstCapacity);
    while (!Suffices(capacity, count))
        capacity *= 2;
    if (Capacity == capacity)
        return;
    Block* const former = std::exchange(Lists, Allocate(capacity));
    const size_t formerCapacity = std::exchange(Capacity, capacity);
    if (!former)
        return;
    for (const Slot& slot : std::span(former->Slots(), formerCapacity))
        if (slot.Child)
            Place(slot);
    Lists->Children = std::move(former->Children);
    Free(former);
}

void ChildList::Reserve(size_t more) {
    const size_t count = Size() + more;
    ReserveSlots(count);
    std::vector<CACNodeImpl*>& children = Lists->Children;
    if (children.capacity() < count)
        children.reserve(std::max({count, 2 * children.size(), FirstCapacity}));
}

void ChildList::Append(WideView name, CACNodeImpl* child) noexcept {
    Place({child, child->Behind(), HashText(name)});
    Lists->Children.push_back(child);
}

void ChildList::Erase(size_t index, WideView name) noexcept {
    std::vector<CACNodeImpl*>& children = Lists->Children;
    Remove(HashText(name), children[index]);
    children.erase(children.begin() + static_cast<ptrdiff_t>(index));
}

void ChildList::Rename(WideView oldName, WideView newName, CACNodeImpl* child) noexcept {
    Remove(HashText(oldName), child);
    Place({child, child->Behind(), HashText(newName)});
}

} // namespace treevault
