// SPDX-License-Identifier: MIT
// Search, insertion and removal in a child index: linear probing without marks for what was
// removed.
#include "general/treevault/nodes/childindex.h"

#include "common/textcompare.h"
#include "common/texthash.h"
#include "general/treevault/nodes/acnodeimpl.h"

#include <algorithm>
#include <utility>

namespace treevault {

namespace {

constexpr size_t FirstCapacity = 4;

// At most three of four slots are taken.
bool Suffices(size_t capacity, size_t count) noexcept {
    return count <= capacity - capacity / 4;
}

} // namespace

CACNodeImpl* ChildIndex::Find(WideView name) const noexcept {
    if (Count == 0)
        return nullptr;
    const uint32_t hash = HashText(name);
    for (size_t at = SlotOf(hash); Slots[at].Child; at = Next(at))
        if (Slots[at].Hash == hash && EqualText(Slots[at].Child->ShortName(), name))
            return Slots[at].Child;
    return nullptr;
}

void ChildIndex::Place(Slot slot) noexcept {
    size_t at = SlotOf(slot.Hash);
    while (Slots[at].Child)
        at = Next(at);
    Slots[at] = slot;
}

void ChildIndex::Reserve(size_t more) {
    if (Suffices(Capacity, Count + more))
        return;
    size_t capacity = std::max(Capacity, FirstCapacity);
    while (!Suffices(capacity, Count + more))
        capacity *= 2;
    const std::unique_ptr<Slot[]> former = std::exchange(Slots, std::make_unique<Slot[]>(capacity));
    const size_t formerCapacity = std::exchange(Capacity, capacity);
    for (size_t at = 0; at < formerCapacity; ++at)
        if (former[at].Child)
            Place(former[at]);
}

void ChildIndex::Insert(WideView name, CACNodeImpl* child) noexcept {
    Place({child, HashText(name)});
    ++Count;
}

// What stands behind the gap moves into it, unless it would come to stand before its own slot.
void ChildIndex::Erase(WideView name, const CACNodeImpl* child) noexcept {
    const uint32_t hash = HashText(name);
    size_t gap = SlotOf(hash);
    while (Slots[gap].Child != child || Slots[gap].Hash != hash)
        gap = Next(gap);
    for (size_t at = Next(gap); Slots[at].Child; at = Next(at)) {
        const size_t distance = (at - SlotOf(Slots[at].Hash)) & (Capacity - 1);
        if (distance >= ((at - gap) & (Capacity - 1)))
            Slots[std::exchange(gap, at)] = Slots[at];
    }
    Slots[gap] = {};
    --Count;
}

} // namespace treevault
