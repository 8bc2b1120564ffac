// SPDX-License-Identifier: MIT
// Whole trees: building, freeing and cloning them, for each node, and the memory that a node takes.
#include "libxmltree.h"
#include "measure.h"
#include "propertytree.h"
#include "pugitree.h"
#include "structtree.h"
#include "vaulttree.h"

#include <optional>

namespace treevault::benchmarks {

namespace {

template <class Tree>
void Build(benchmark::State& state, const Workload& workload) {
    size_t bytes = 0;
    for (auto _ : state) {
        SettleMemory();
        const size_t before = AllocatedBytes();
        const Stopwatch watch;
        const Tree tree(workload);
        state.SetIterationTime(watch.Seconds());
        bytes = AllocatedBytes() - before;
    }
    CountItems(state, workload.Nodes.size());
    state.counters["bytes_per_node"] =
        static_cast<double>(bytes) / static_cast<double>(workload.Nodes.size());
}

template <class Tree>
void BM_BuildNode(benchmark::State& state) {
    Build<Tree>(state, DeepWorkload());
}

template <class Tree>
void BM_BuildFlatNode(benchmark::State& state) {
    Build<Tree>(state, FlatWorkload());
}

template <class Tree>
void BM_FreeNode(benchmark::State& state) {
    for (auto _ : state) {
        SettleMemory();
        std::optional<Tree> tree(DeepWorkload());
        const Stopwatch watch;
        tree.reset();
        state.SetIterationTime(watch.Seconds());
    }
    CountItems(state, DeepWorkload().Nodes.size());
}

template <class Tree>
void BM_CloneNode(benchmark::State& state) {
    SettleMemory();
    const Tree tree(DeepWorkload());
    for (auto _ : state) {
        SettleMemory();
        const Stopwatch watch;
        const Tree clone = tree.Clone();
        state.SetIterationTime(watch.Seconds());
    }
    CountItems(state, DeepWorkload().Nodes.size());
}

} // namespace

#define TREE_BENCHMARK(workload)                                                                   \
    BENCHMARK_TEMPLATE(workload, VaultTree)->Name(#workload "/treevault")->UseManualTime();        \
    BENCHMARK_TEMPLATE(workload, VectorTree)->Name(#workload "/struct_vector")->UseManualTime();   \
    BENCHMARK_TEMPLATE(workload, MapTree)->Name(#workload "/struct_map")->UseManualTime();         \
    BENCHMARK_TEMPLATE(workload, PugiTree)->Name(#workload "/pugixml")->UseManualTime();           \
    BENCHMARK_TEMPLATE(workload, LibxmlTree)->Name(#workload "/libxml2")->UseManualTime();         \
    BENCHMARK_TEMPLATE(workload, PropertyTree)->Name(#workload "/ptree")->UseManualTime()

TREE_BENCHMARK(BM_BuildNode);
TREE_BENCHMARK(BM_BuildFlatNode);
TREE_BENCHMARK(BM_FreeNode);
TREE_BENCHMARK(BM_CloneNode);

} // namespace treevault::benchmarks
