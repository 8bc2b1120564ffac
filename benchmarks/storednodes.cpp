// SPDX-License-Identifier: MIT
// Makes the paths of the deep workload, and the random order of its leaves.
#include "storednodes.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace treevault::benchmarks {

namespace {

std::vector<StoredNode> MakeStoredNodes() {
    const Workload& workload = DeepWorkload();
    std::vector<StoredNode> nodes;
    nodes.reserve(workload.Nodes.size());
    for (size_t at = 0; at < workload.Nodes.size(); ++at)
        nodes.push_back(StoredNodeAt(workload, at));
    return nodes;
}

// The standard fixes the numbers of the generator, but not how its own shuffle uses them.
std::vector<size_t> MakeOrder(size_t count) {
    std::vector<size_t> order(count);
    std::iota(order.begin(), order.end(), size_t{0});
    std::mt19937_64 generator;
    for (size_t left = count; left > 1; --left)
        std::swap(order[left - 1], order[generator() % left]);
    return order;
}

const std::vector<size_t>& Order() {
    static const std::vector<size_t> order = MakeOrder(StoredLeaves().size());
    return order;
}

} // namespace

const std::vector<StoredNode>& StoredNodes() {
    static const std::vector<StoredNode> nodes = MakeStoredNodes();
    return nodes;
}

StoredNode StoredNodeAt(const Workload& workload, size_t index) {
    StoredNode node{&workload.Nodes[index], {}, {}};
    for (size_t at = index;; at = (at - 1) / workload.FanOut) {
        const NodeData& data = workload.Nodes[at];
        node.Path.insert(0, TREEVAULT_WIDE("\\") + data.Name);
        node.NarrowPath.insert(0, "\\" + data.Narrow->Name);
        if (at == 0)
            return node;
    }
}

LeafOrder::LeafOrder(size_t start) : Count(Order().size()), At(start % Count) {}

const StoredNode& LeafOrder::Leaf(size_t shift) const {
    return StoredLeaves()[(Order()[At] + shift) % Count];
}

namespace {

void Gather(const StoredNode& from, StoredNode& node, NodeData& data, NarrowTexts& texts) {
    node = from;
    data = *from.Data;
    texts = *from.Data->Narrow;
    node.Data = &data;
    data.Narrow = &texts;
}

} // namespace

void ChangeBatch::Fill(LeafOrder& order) {
    for (Change& change : Changes) {
        order.Next();
        Gather(order.Place(), change.Place, change.PlaceData, change.PlaceTexts);
        Gather(order.Values(), change.Values, change.ValuesData, change.ValuesTexts);
    }
}

} // namespace treevault::benchmarks
