// SPDX-License-Identifier: MIT
// The state of the log: the sinks, the formatter, and the settings of section "Logger", which are
// read at most once per period.
#ifndef TREEVAULT_COMMON_LOGGERCONFIG_H
#define TREEVAULT_COMMON_LOGGERCONFIG_H

#include "common/logdirectory.h"
#include "common/logging.h"

#include <array>
#include <functional>
#include <map>
#include <mutex>
#include <set>

namespace treevault {

// One per process, made on first use. Any thread may use any operation.
class LoggerConfig {
public:
    LoggerConfig() = default;
    LoggerConfig(const LoggerConfig&) = delete;
    LoggerConfig& operator=(const LoggerConfig&) = delete;

    // Sinks are borrowed. Adding one that is there already moves it to the first free place; false
    // when every place is taken. A sink must be removed before it dies.
    bool AddSink(LogSink* sink) noexcept;
    void RemoveSink(LogSink* sink) noexcept;

    // Null brings the built-in formatter back. The formatter is borrowed.
    void SetFormatter(LogLineFormatter* formatter) noexcept;

    // Forms a line with the indentation of the calling thread and hands it to `sink`, or else to
    // every sink in the order of their places.
    void Write(uint32_t severity, WideView message, SourcePlace place, LogSink* sink);

    // Settings of section "Logger". False, with the value untouched, when the setting is absent.
    bool ReadString(const WCHAR* key, WideText& value);
    bool ReadNumber(const WCHAR* key, uint32_t& value);

    // Counts the refreshes: while it stays the same, so do the settings.
    uint32_t Period() const noexcept { return FlushCount.load(std::memory_order_acquire); }

    // Forgets what was read, reads `MaxSeverity` anew and starts a new period.
    void Refresh();

    // The folder of the log file with its final separator. The setting `Path` is read at most once
    // per period, and a folder that differs from the one before is made.
    WideText ReadLogDirectory();

    // For the unloading of the library: gives back the memory that this holds and keeps no setting
    // from here on. All operations stay usable.
    void End() noexcept;

private:
    void Flush();
    void ClearCaches() noexcept;
    uint32_t ReadMaximumSeverity();

    template <class Value>
    using Cache = std::map<WideText, Value, std::less<>>;

    template <class Value, class Read>
    bool ReadCached(const WCHAR* key, Cache<Value>& cache, Value& value, Read&& read);

    std::array<std::atomic<LogSink*>, 4> Sinks{};
    std::atomic<LogLineFormatter*> Formatter{nullptr};
    DefaultLogLineFormatter BuiltInFormatter;

    LogDirectory Directory;

    std::mutex CacheLock; // guards what follows; never held while a source is asked
    Cache<WideText> StringCache;
    Cache<uint32_t> NumberCache;
    std::set<WideText, std::less<>> MissCache;
    std::atomic<uint32_t> FlushCount{0}; // tells that an answer belongs to an earlier period
    bool Ended = false;
};

// Made on first use and never destroyed, so that it serves whatever logs while the library unloads.
LoggerConfig& GetLoggerConfig();

} // namespace treevault

#endif
