// SPDX-License-Identifier: MIT
// A function trace that writes nothing because its severity is disabled, as every operation has.
#include "common/functiontrace.h"
#include "measure.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/null_sink.h>

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

// The two lines of a trace, disabled.
[[gnu::noinline]] void TracedBySpdlog(spdlog::logger& logger) {
    logger.trace("-> {}", "CBenchmark::Traced");
    benchmark::ClobberMemory();
    logger.trace("<- {}", "CBenchmark::Traced");
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

void BM_TraceSpdlog(benchmark::State& state) {
    spdlog::logger logger("benchmark", std::make_shared<spdlog::sinks::null_sink_mt>());
    for (auto _ : state)
        TracedBySpdlog(logger);
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
BENCHMARK(BM_TraceSpdlog)->Name("BM_DisabledTrace/spdlog");
BENCHMARK(BM_PlainCall)->Name("BM_DisabledTrace/plain_call");

} // namespace treevault::benchmarks
