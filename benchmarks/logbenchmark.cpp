// SPDX-License-Identifier: MIT
// A log line that is not written because its severity is disabled.
#include "common/logging.h"
#include "measure.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/null_sink.h>

namespace treevault::benchmarks {

namespace {

[[gnu::noinline]] void LogDisabled(uint32_t number) {
    Log(SeverityDbg3, [&](WideStream& line) {
        line << TV_W("Node ") << number << TV_W(" stored with ") << 4 << TV_W(" attributes");
    });
}

[[gnu::noinline]] void LogDisabledSpdlog(spdlog::logger& logger, uint32_t number) {
    logger.trace("Node {} stored with {} attributes", number, 4);
}

void BM_DisabledLogLine(benchmark::State& state) {
    if (IsSeverityEnabled(SeverityDbg3))
        state.SkipWithError("the severity is enabled");
    uint32_t number = 0;
    for (auto _ : state)
        LogDisabled(++number);
    CountItems(state, 1);
}

void BM_DisabledLogLineSpdlog(benchmark::State& state) {
    spdlog::logger logger("benchmark", std::make_shared<spdlog::sinks::null_sink_mt>());
    uint32_t number = 0;
    for (auto _ : state)
        LogDisabledSpdlog(logger, ++number);
    CountItems(state, 1);
}

} // namespace

BENCHMARK(BM_DisabledLogLine)->Name("BM_DisabledLogLine/treevault");
BENCHMARK(BM_DisabledLogLineSpdlog)->Name("BM_DisabledLogLine/spdlog");

} // namespace treevault::benchmarks
