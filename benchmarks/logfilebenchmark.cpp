// SPDX-License-Identifier: MIT
// A line to the log file: forming it and handing it to the system, with the file kept open or
// opened for each line, beside spdlog, which flushes after each line.
#include "common/filelogger.h"
#include "common/loggerconfig.h"
#include "common/logmanager.h"
#include "measure.h"
#include "platform/process.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/basic_file_sink.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace treevault::benchmarks {

namespace {

// A file of its own for each benchmark, gone behind it.
class LogFile {
public:
    explicit LogFile(const char* name)
        : Path(std::filesystem::temp_directory_path() /
               ("treevault-" + std::to_string(CurrentProcessId()) + "-" + name)) {}
    ~LogFile() { std::filesystem::remove(Path); }
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    // Whether the last line is the one that was written with `number`, in UTF-16 or UTF-8.
    bool EndsWith(uint32_t number) const {
        const size_t size = std::filesystem::file_size(Path);
        std::string end(std::min<size_t>(size, 400), 0);
        std::ifstream file(Path, std::ios::binary);
        file.seekg(static_cast<std::streamoff>(size - end.size()));
        file.read(end.data(), static_cast<std::streamsize>(end.size()));
        std::erase(end, '\0');
        return end.find("Node " + std::to_string(number) + " stored") != end.npos;
    }

    const std::filesystem::path Path;
};

// The settings in force; the file may become as large as it likes.
void UseInterval(const char* milliseconds) {
    setenv("GS_Logger_KeepOpenInterval", milliseconds, 1);
    setenv("GS_Logger_LogFileSizeThresholdMB", "0", 1);
    GetLoggerConfig().Refresh();
}

// Takes the place of the log file of the process.
class OnlySink {
public:
    explicit OnlySink(LogSink& sink) : Sink(sink) {
        GetLoggerConfig().RemoveSink(GetFileLogger());
        GetLoggerConfig().AddSink(&Sink);
    }
    ~OnlySink() {
        GetLoggerConfig().RemoveSink(&Sink);
        GetLoggerConfig().AddSink(GetFileLogger());
    }
    OnlySink(const OnlySink&) = delete;
    OnlySink& operator=(const OnlySink&) = delete;

private:
    LogSink& Sink;
};

void WriteLines(benchmark::State& state, const char* interval) {
    const LogFile target(interval);
    UseInterval(interval);
    const std::string path = target.Path.string();
    FileLogger logger(WideText(path.begin(), path.end()), WideText());
    const OnlySink sink(logger);
    uint32_t number = 0;
    for (auto _ : state) {
        ++number;
        Log(SeverityErr, [&](WideStream& line) {
            line << TV_W("Node ") << number << TV_W(" stored with ") << 4 << TV_W(" attributes");
        });
    }
    if (!target.EndsWith(number))
        state.SkipWithError("the last line is missing");
    CountItems(state, 1);
}

void BM_LogFileLine(benchmark::State& state) {
    WriteLines(state, "5000");
}

void BM_LogFileLineReopened(benchmark::State& state) {
    WriteLines(state, "0");
}

void BM_LogFileLineSpdlog(benchmark::State& state) {
    const LogFile target("spdlog");
    spdlog::logger logger("benchmark", std::make_shared<spdlog::sinks::basic_file_sink_mt>(
                                           target.Path.string(), true));
    logger.flush_on(spdlog::level::trace);
    uint32_t number = 0;
    for (auto _ : state)
        logger.error("Node {} stored with {} attributes", ++number, 4);
    if (!target.EndsWith(number))
        state.SkipWithError("the last line is missing");
    CountItems(state, 1);
}

} // namespace

BENCHMARK(BM_LogFileLine)->Name("BM_LogFileLine/treevault");
BENCHMARK(BM_LogFileLineSpdlog)->Name("BM_LogFileLine/spdlog");
BENCHMARK(BM_LogFileLineReopened)->Name("BM_LogFileLineReopened/treevault");
BENCHMARK(BM_LogFileLineSpdlog)->Name("BM_LogFileLineReopened/spdlog");

} // namespace treevault::benchmarks
