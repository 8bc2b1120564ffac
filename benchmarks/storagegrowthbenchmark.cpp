// SPDX-License-Identifier: MIT
// What becomes of the cost of a node as storages grow. Changes and retrievals go to the same
// thousand leaves, spread over the whole forest, however large it is, so that it is their steps
// that count and not how much of the forest the caches hold.
#include "growthsizes.h"
#include "measure.h"
#include "vaultstore.h"

#include <optional>

namespace treevault::benchmarks {

namespace {

class GrownStore {
public:
    explicit GrownStore(const Workload& workload) : Store(workload) {
        const size_t leaves = workload.Nodes.size() - workload.Nodes.size() / 10;
        const size_t step = leaves / 1000;
        for (size_t at = 0; at < 1000; ++at) {
            const size_t index = workload.Nodes.size() - leaves + at * step;
            Leaves.push_back(StoredNodeAt(workload, index));
            // The same data, but it stays when the workload makes room for another one.
            const std::vector<NodeData>& nodes = DeepWorkload().Nodes;
            Leaves.back().Data = &nodes[index % nodes.size()];
        }
    }

    const StoredNode& Leaf(size_t at) const { return Leaves[at % Leaves.size()]; }

    VaultStore Store;

private:
    std::vector<StoredNode> Leaves;
};

GrownStore& StoreOf(benchmark::State& state) {
    static std::optional<GrownStore> store;
    static int64_t size = 0;
    if (size != state.range(0)) {
        store.reset();
        store.emplace(Levels(state));
        size = state.range(0);
    }
    return *store;
}

// A leaf gets the values of another one, another time of a third one.
void BM_GrowthUpsert(benchmark::State& state) {
    GrownStore& grown = StoreOf(state);
    static size_t at = 0;
    for (auto _ : state) {
        ++at;
        grown.Store.Upsert(grown.Leaf(at * 617), grown.Leaf(at * 617 + at / 1000 + 1));
    }
    CountItems(state, 1);
}

void BM_GrowthRetrieve(benchmark::State& state) {
    GrownStore& grown = StoreOf(state);
    VaultStore::Reader reader(grown.Store);
    size_t at = 0;
    for (auto _ : state)
        reader.Retrieve(grown.Leaf(++at * 617));
    CountItems(state, 1);
}

} // namespace

BENCHMARK(BM_GrowthUpsert)->Name("BM_GrowthUpsert/treevault")->Apply(Sizes);
BENCHMARK(BM_GrowthRetrieve)->Name("BM_GrowthRetrieve/treevault")->Apply(Sizes);

} // namespace treevault::benchmarks
