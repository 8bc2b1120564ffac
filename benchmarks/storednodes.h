// SPDX-License-Identifier: MIT
// What the storages of the benchmarks hold: the nodes of the deep workload, each with its path, in
// the encodings that the stores take.
#ifndef TREEVAULT_BENCHMARKS_STOREDNODES_H
#define TREEVAULT_BENCHMARKS_STOREDNODES_H

#include "workload.h"

#include <span>

namespace treevault::benchmarks {

struct StoredNode {
    const NodeData* Data;
    Text Path;
    std::string NarrowPath;
};

// All of them, parents first.
const std::vector<StoredNode>& StoredNodes();

// Any node of a workload.
StoredNode StoredNodeAt(const Workload& workload, size_t index);

// The 100,000 without children, which benchmarks change.
inline std::span<const StoredNode> StoredLeaves() {
    return std::span(StoredNodes()).last(100000);
}

// The leaves in a random order, again and again, each time around in another order: what a store
// moved together when it changed it together is not met together again. Each time around a leaf is
// given the values of another one, so that all four attributes differ from what it holds.
class LeafOrder {
public:
    explicit LeafOrder(size_t start = 0);

    void Next() {
        At = (At + Step) % Count;
        if (++Given == Count) {
            Given = 0;
            ++Shift;
            Step = Step * Stride % Count;
        }
    }
    const StoredNode& Place() const { return Leaf(0); }
    const StoredNode& Values() const { return Leaf(Shift); }

private:
    // Has no factor in common with the number of leaves, nor have its powers.
    static constexpr size_t Stride = 61803;

    const StoredNode& Leaf(size_t shift) const;

    size_t Count;
    size_t At;
    size_t Step = 1;
    size_t Given = 0;
    size_t Shift = 1;
};

// A change of a leaf, with all that a store reads of it.
struct Change {
    StoredNode Place;
    StoredNode Values;
    NodeData PlaceData;
    NodeData ValuesData;
    NarrowTexts PlaceTexts;
    NarrowTexts ValuesTexts;
};

// The next changes of an order, side by side: what is timed is the change, and not the fetching of
// what is to be changed from all over the memory.
class ChangeBatch {
public:
    explicit ChangeBatch(size_t count) : Changes(count) {}
    ChangeBatch(const ChangeBatch&) = delete;
    ChangeBatch& operator=(const ChangeBatch&) = delete;

    void Fill(LeafOrder& order);

    auto begin() const { return Changes.begin(); }
    auto end() const { return Changes.end(); }
    const Change& front() const { return Changes.front(); }
    const Change& back() const { return Changes.back(); }

private:
    std::vector<Change> Changes;
};

} // namespace treevault::benchmarks

#endif
