// SPDX-License-Identifier: MIT
// What becomes of the cost of a node as trees grow.
#include "documentio.h"
#include "growthsizes.h"
#include "measure.h"
#include "structtree.h"
#include "vaulttree.h"

#include <optional>

namespace treevault::benchmarks {

namespace {

void CountNodes(benchmark::State& state) {
    CountItems(state, static_cast<size_t>(state.range(0)));
}

template <class Tree>
void BM_GrowthBuild(benchmark::State& state) {
    const Workload& workload = Levels(state);
    for (auto _ : state) {
        SettleMemory();
        const Stopwatch watch;
        const Tree tree(workload);
        state.SetIterationTime(watch.Seconds());
    }
    CountNodes(state);
}

template <class Tree>
void BM_GrowthFree(benchmark::State& state) {
    const Workload& workload = Levels(state);
    for (auto _ : state) {
        SettleMemory();
        std::optional<Tree> tree(workload);
        const Stopwatch watch;
        tree.reset();
        state.SetIterationTime(watch.Seconds());
    }
    CountNodes(state);
}

template <class Tree>
void BM_GrowthClone(benchmark::State& state) {
    SettleMemory();
    const Tree tree(Levels(state));
    for (auto _ : state) {
        SettleMemory();
        const Stopwatch watch;
        const Tree clone = tree.Clone();
        state.SetIterationTime(watch.Seconds());
    }
    CountNodes(state);
}

void BM_GrowthWrite(benchmark::State& state) {
    SettleMemory();
    const VaultTree tree(Levels(state));
    for (auto _ : state) {
        std::string text;
        SettleMemory();
        const Stopwatch watch;
        WriteDocument(tree, text);
        state.SetIterationTime(watch.Seconds());
    }
    CountNodes(state);
}

void BM_GrowthRead(benchmark::State& state) {
    std::string text;
    WriteDocument(VaultTree(Levels(state)), text);
    for (auto _ : state) {
        SettleMemory();
        const Stopwatch watch;
        const VaultTree tree = ReadDocument(text);
        state.SetIterationTime(watch.Seconds());
    }
    CountNodes(state);
}

void TimedSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Apply(Sizes)->UseManualTime();
}

// With a larger tree, the text and what it is made from fill 24 GB.
void DocumentSizes(benchmark::internal::Benchmark* benchmark) {
    for (int64_t size = 1111; size <= 1111111; size = 10 * size + 1)
        benchmark->Arg(size);
    benchmark->UseManualTime();
}

} // namespace

#define GROWTH_BENCHMARK(workload)                                                                 \
    BENCHMARK_TEMPLATE(workload, VaultTree)->Name(#workload "/treevault")->Apply(TimedSizes);      \
    BENCHMARK_TEMPLATE(workload, MapTree)->Name(#workload "/struct_map")->Apply(TimedSizes)

GROWTH_BENCHMARK(BM_GrowthBuild);
GROWTH_BENCHMARK(BM_GrowthFree);
GROWTH_BENCHMARK(BM_GrowthClone);
BENCHMARK(BM_GrowthWrite)->Name("BM_GrowthWrite/treevault")->Apply(DocumentSizes);
BENCHMARK(BM_GrowthRead)->Name("BM_GrowthRead/treevault")->Apply(DocumentSizes);

} // namespace treevault::benchmarks
