// SPDX-License-Identifier: MIT
// Makes the paths of the deep workload, and the random order of its leaves.
#include "storednodes.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace treevault::benchmarks {

namespace {

std::string Narrow(const Text& text) {
    std::string narrow;
    for (const WCHAR unit : text)
        narrow += static_cast<char>(unit);
    return narrow;
}

std::vector<StoredNode> MakeStoredNodes() {
    const Workload& workload = DeepWorkload();
    std::vector<StoredNode> nodes;
    nodes.reserve(workload.Nodes.size());
    for (size_t at = 0; at < workload.Nodes.size(); ++at) {
        const NodeData& data = workload.Nodes[at];
        const Text above = at == 0 ? Text() : nodes[(at - 1) / workload.FanOut].Path;
        const Text path = above + TREEVAULT_WIDE("\\") + data.Name;
        nodes.push_back({&data, path, Narrow(path), Narrow(*data.Type), Narrow(data.Title)});
    }
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

LeafOrder::LeafOrder(size_t start) : Count(Order().size()), At(start % Count) {}

const StoredNode& LeafOrder::Leaf(size_t shift) const {
    return StoredLeaves()[(Order()[At] + shift) % Count];
}

} // namespace treevault::benchmarks
