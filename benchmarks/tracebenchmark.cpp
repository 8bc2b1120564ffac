// SPDX-License-Identifier: MIT
// A function trace that writes nothing because its severity is disabled, as every operation has.
#include "common/functiontrace.h"
#include "measure.h"

#include <chrono>

namespace treevault::benchmarks {

namespace {

[[gnu::noinline]] void Traced() {
    const FunctionTrace trace(TV_W("CBenchmark::Traced"));
    benchmark::ClobberMemory();
}

// What a trace with the standard's clock could not be cheaper than.
[[gnu::noinline]] int64_t Timed() {
    const auto start = std::chrono::steady_clock::now();
    benchmark::ClobberMemory();
    return (std::chrono::steady_clock::now() - start).count();
}

[[gnu::noinline]] void Untraced() {
    benchmark::ClobberMemory();
}

void BM_DisabledTrace(benchmark::State& state) {
    for (auto _ : state)
        Traced();
    CountItems(state, 1);
}

void BM_SteadyClockTwice(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(Timed());
    CountItems(state, 1);
}

void BM_PlainCall(benchmark::State& state) {
    for (auto _ : state)
        Untraced();
    CountItems(state, 1);
}

} // namespace

BENCHMARK(BM_DisabledTrace)->Name("BM_DisabledTrace/treevault");
BENCHMARK(BM_SteadyClockTwice)->Name("BM_DisabledTrace/steady_clock_twice");
BENCHMARK(BM_PlainCall)->Name("BM_DisabledTrace/plain_call");

} // namespace treevault::benchmarks
