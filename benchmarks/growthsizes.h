// SPDX-License-Identifier: MIT
// The sizes of trees and storages that grow: from 1,111 nodes to 1,111,111, and to 11,111,111 when
// BENCH_GROWTH is "large".
#ifndef TREEVAULT_BENCHMARKS_GROWTHSIZES_H
#define TREEVAULT_BENCHMARKS_GROWTHSIZES_H

#include "workload.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>

namespace treevault::benchmarks {

// The workload that is in use; making it takes longer than most measurements.
inline const Workload& Levels(benchmark::State& state) {
    static Workload workload{10, {}};
    const auto count = static_cast<size_t>(state.range(0));
    if (workload.Nodes.size() != count) {
        size_t levels = 1;
        for (size_t reached = 1; reached < count; reached = 10 * reached + 1)
            ++levels;
        workload = Workload{10, {}};
        workload = BalancedWorkload(levels);
    }
    return workload;
}

inline void Sizes(benchmark::internal::Benchmark* benchmark) {
    const char* wanted = std::getenv("BENCH_GROWTH");
    const int64_t last = wanted && std::strcmp(wanted, "large") == 0 ? 11111111 : 1111111;
    for (int64_t size = 1111; size <= last; size = 10 * size + 1)
        benchmark->Arg(size);
}

} // namespace treevault::benchmarks

#endif
