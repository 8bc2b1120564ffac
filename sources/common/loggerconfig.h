// SPDX-License-Identifier: MIT
// The state of the log: the sinks, the formatter, and the settings of section "Logger", which are
// read at most once per period.
#ifndef TREEVAULT_COMMON_LOGGERCONFIG_H
#define TREEVAULT_COMMON_LOGGERCONFIG_H

#include "common/logging.h"

#include <array>
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

    // Forgets what was read, reads `MaxSeverity` anew and starts a new period.
    void Refresh();

private:
    void Flush();
    uint32_t ReadMaximumSeverity();

    template <class Value, class Read>
    bool ReadCached(const WCHAR* key, std::map<WideText, Value>& cache, Value& value, Read&& read);

    std::array<std::atomic<LogSink*>, 4> Sinks{};
    std::atomic<LogLineFormatter*> Formatter{nullptr};
    DefaultLogLineFormatter BuiltInFormatter;

    std::mutex CacheLock; // guards what follows; never held while a source is asked
    std::map<WideText, WideText> StringCache;
    std::map<WideText, uint32_t> NumberCache;
    std::set<WideText> MissCache;
    uint32_t FlushCount = 0; // tells a reader that its answer belongs to an earlier period
};

LoggerConfig& GetLoggerConfig();

} // namespace treevault

#endif
