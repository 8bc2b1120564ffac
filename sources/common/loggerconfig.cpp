// SPDX-License-Identifier: MIT
// Sinks and cached settings of the log.
#include "common/loggerconfig.h"

#include "common/settings.h"
#include "common/settingvalue.h"

#include <cstddef>
#include <new>

namespace treevault {

LoggerConfig& GetLoggerConfig() {
    alignas(LoggerConfig) static std::byte storage[sizeof(LoggerConfig)];
    static LoggerConfig& config = *new (storage) LoggerConfig;
    return config;
}

bool LoggerConfig::AddSink(LogSink* sink) noexcept {
    RemoveSink(sink);
    for (auto& place : Sinks) {
        LogSink* expected = nullptr;
        if (place.compare_exchange_strong(expected, sink))
            return true;
    }
    return false;
}

void LoggerConfig::RemoveSink(LogSink* sink) noexcept {
    for (auto& place : Sinks) {
        LogSink* expected = sink;
        place.compare_exchange_strong(expected, nullptr);
    }
}

void LoggerConfig::SetFormatter(LogLineFormatter* formatter) noexcept {
    Formatter.store(formatter);
}

void LoggerConfig::Write(uint32_t severity, WideView message, SourcePlace place, LogSink* sink) {
    const uint64_t now = PreciseFileTime();
    LogLineFormatter* formatter = Formatter.load();
    WideText line;
    (formatter ? formatter : &BuiltInFormatter)
        ->Format(line, severity, place, message, TraceIndent(), &now);
    const auto length = static_cast<ptrdiff_t>(line.size());
    if (sink) {
        sink->Write(line.c_str(), length);
        return;
    }
    for (auto& each : Sinks)
        if (LogSink* target = each.load())
            target->Write(line.c_str(), length);
}

template <class Value, class Read>
bool LoggerConfig::ReadCached(const WCHAR* key, Cache<Value>& cache, Value& value, Read&& read) {
    uint32_t period;
    {
        const std::lock_guard guard(CacheLock);
        if (const auto found = cache.find(WideView(key)); found != cache.end()) {
            value = found->second;
            return true;
        }
        if (MissCache.contains(WideView(key)))
            return false;
        period = FlushCount;
    }
    const bool found = read();
    const std::lock_guard guard(CacheLock);
    // What was read before a flush must not outlive it.
    if (period != FlushCount || Ended)
        return found;
    if (found)
        cache.insert_or_assign(key, value);
    else
        MissCache.insert(key);
    return found;
}

bool LoggerConfig::ReadString(const WCHAR* key, WideText& value) {
    return ReadCached(key, StringCache, value,
                      [&] { return SUCCEEDED(GetSetting(TV_W("Logger"), key, value)); });
}

bool LoggerConfig::ReadNumber(const WCHAR* key, uint32_t& value) {
    return ReadCached(key, NumberCache, value,
                      [&] { return SUCCEEDED(GetSettingNumber(TV_W("Logger"), key, value)); });
}

void LoggerConfig::ClearCaches() noexcept {
    StringCache.clear();
    NumberCache.clear();
    MissCache.clear();
}

void LoggerConfig::Flush() {
    const std::lock_guard guard(CacheLock);
    ClearCaches();
    ++FlushCount;
}

void LoggerConfig::Refresh() {
    Flush();
    detail::MaximumSeverity.store(ReadMaximumSeverity(), std::memory_order_relaxed);
    Directory.Invalidate();
    // 0 stands for never; a refresh at that very tick counts as one a millisecond later.
    const uint32_t now = TickCount();
    detail::LastSeverityTick.store(now == 0 ? 1 : now, std::memory_order_release);
}

WideText LoggerConfig::ReadLogDirectory() {
    RefreshSeverity();
    return Directory.Get(*this);
}

// A lock that is taken now belongs to a thread that the end of the process has caught inside.
void LoggerConfig::End() noexcept {
    Directory.Clear();
    const std::unique_lock guard(CacheLock, std::try_to_lock);
    if (!guard)
        return;
    ClearCaches();
    Ended = true;
}

namespace {

bool EqualsIgnoringCase(WideView left, WideView right) noexcept {
    const auto lower = [](WCHAR c) {
        return c >= TV_W('A') && c <= TV_W('Z') ? static_cast<WCHAR>(c + 32) : c;
    };
    if (left.size() != right.size())
        return false;
    for (size_t i = 0; i < left.size(); ++i)
        if (lower(left[i]) != lower(right[i]))
            return false;
    return true;
}

} // namespace

uint32_t LoggerConfig::ReadMaximumSeverity() {
    WideText setting;
    if (!ReadString(TV_W("MaxSeverity"), setting))
        return SeverityDbg;
    const WideText name = TrimSetting(setting);
    for (uint32_t severity = SeverityNone; severity <= SeverityDbg3; ++severity)
        if (EqualsIgnoringCase(name, SeverityName(severity)))
            return severity;
    return SeverityDbg;
}

} // namespace treevault
