// SPDX-License-Identifier: MIT
// What benchmarks measure with: the processor time of a part of an iteration, and the memory that
// the process has allocated.
#ifndef TREEVAULT_BENCHMARKS_MEASURE_H
#define TREEVAULT_BENCHMARKS_MEASURE_H

#include <benchmark/benchmark.h>

#include <cstddef>
#include <ctime>

namespace treevault::benchmarks {

// Processor time, so that other programs of the machine disturb little. Its step is a microsecond:
// for work on whole trees only.
class Stopwatch {
public:
    double Seconds() const { return static_cast<double>(std::clock() - Start) / CLOCKS_PER_SEC; }

private:
    std::clock_t Start = std::clock();
};

// Bytes of all allocated blocks, with what the allocator keeps beside each.
size_t AllocatedBytes();

// Joins the free memory of the process, so that what a benchmark allocates does not lie where the
// one before happened to leave gaps. Called before each iteration on a whole tree.
void SettleMemory();

inline void CountItems(benchmark::State& state, size_t itemsInIteration) {
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(itemsInIteration));
}

} // namespace treevault::benchmarks

#endif
