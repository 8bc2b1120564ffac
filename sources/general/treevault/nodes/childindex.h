// SPDX-License-Identifier: MIT
// Children by name: a hash table of the children of one node.
#ifndef TREEVAULT_NODES_CHILDINDEX_H
#define TREEVAULT_NODES_CHILDINDEX_H

#include "platform/widetext.h"

#include <cstdint>
#include <memory>

namespace treevault {

class CACNodeImpl;

// Guarded by the lock of the parent, which keeps the names of the children as they are: they are
// read where the children keep them. It does not count references.
class ChildIndex {
public:
    // Null when there is no child of that name.
    CACNodeImpl* Find(WideView name) const noexcept;

    // Makes room for so many more, so that Insert cannot fail.
    void Reserve(size_t more);

    // There must be room, and no child of that name.
    void Insert(WideView name, CACNodeImpl* child) noexcept;

    // The child must be there under that name, whatever it is called by now.
    void Erase(WideView name, const CACNodeImpl* child) noexcept;

private:
    // Free when there is no child. A child stands in its own slot, that of its hash, or behind it
    // with no free slot between; the last slot is followed by the first.
    struct Slot {
        CACNodeImpl* Child;
        uint32_t Hash;
    };

    size_t SlotOf(uint32_t hash) const noexcept { return hash & (Capacity - 1); }
    size_t Next(size_t at) const noexcept { return (at + 1) & (Capacity - 1); }
    void Place(Slot slot) noexcept;

    std::unique_ptr<Slot[]> Slots;
    size_t Count = 0;
    size_t Capacity = 0; // 0 or a power of two
};

} // namespace treevault

#endif
