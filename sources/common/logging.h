// SPDX-License-Identifier: MIT
// The log: severities, the test that stands before every line, and the line itself.
//
// A line is written on the thread that asks for it. Nothing is built unless its severity is
// enabled, and a failure while it is built never reaches the caller.
#ifndef TREEVAULT_COMMON_LOGGING_H
#define TREEVAULT_COMMON_LOGGING_H

#include "common/widestream.h"
#include "platform/clock.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace treevault {

inline constexpr uint32_t SeverityNone = 0;
inline constexpr uint32_t SeverityCrit = 1;
inline constexpr uint32_t SeverityErr = 2;
inline constexpr uint32_t SeverityWarn = 3;
inline constexpr uint32_t SeverityInfo = 4;
inline constexpr uint32_t SeverityDbg = 5;
inline constexpr uint32_t SeverityDbg2 = 6;
inline constexpr uint32_t SeverityDbg3 = 7;

// The names of the severities in order; empty above SeverityDbg3.
WideView SeverityName(uint32_t severity) noexcept;

// Where a line comes from.
struct SourcePlace {
    const char* File;
    uint32_t Line;

    static constexpr SourcePlace Here(const char* file = __builtin_FILE(),
                                      uint32_t line = __builtin_LINE()) noexcept {
        return {file, line};
    }
};

// Receives lines, from any thread.
class LogSink {
public:
    // `length` in code units; a negative one means that `text` is zero-terminated.
    virtual void Write(const WCHAR* text, ptrdiff_t length) = 0;

protected:
    ~LogSink() = default;
};

// Forms a line.
class LogLineFormatter {
public:
    // `indentation` is the depth of nested traces; `fileTime` UTC in units of 100 ns since 1601, or
    // null for now.
    virtual void Format(WideText& line, uint32_t severity, SourcePlace place, WideView message,
                        int32_t indentation, const uint64_t* fileTime) = 0;

protected:
    ~LogLineFormatter() = default;
};

class DefaultLogLineFormatter final : public LogLineFormatter {
public:
    void Format(WideText& line, uint32_t severity, SourcePlace place, WideView message,
                int32_t indentation, const uint64_t* fileTime) override;
};

namespace detail {
// What the disabled path reads: the tick of the last reading of the settings, 0 for never, and the
// severity that was read then.
extern std::atomic<uint32_t> LastSeverityTick;
extern std::atomic<uint32_t> MaximumSeverity;
inline constexpr uint32_t RefreshPeriod = 5000; // milliseconds
void ReadSeverity() noexcept;
} // namespace detail

// Reads the settings anew when the period has passed, and returns the tick of now.
inline uint32_t RefreshSeverity() noexcept {
    const uint32_t now = TickCount();
    const uint32_t last = detail::LastSeverityTick.load(std::memory_order_acquire);
    if (last == 0 || now - last > detail::RefreshPeriod) [[unlikely]]
        detail::ReadSeverity();
    return now;
}

// As the settings were read last.
inline bool WasSeverityEnabled(uint32_t severity) noexcept {
    return severity >= SeverityCrit &&
           severity <= detail::MaximumSeverity.load(std::memory_order_relaxed);
}

inline bool IsSeverityEnabled(uint32_t severity) noexcept {
    if (severity < SeverityCrit)
        return false;
    RefreshSeverity();
    return WasSeverityEnabled(severity);
}

// Forms and writes a line, to `sink` or else to every sink. It does not test the severity.
void LogLine(uint32_t severity, WideView message, SourcePlace place, LogSink* sink = nullptr);

// How deep the traces of this thread are nested.
int32_t& TraceIndent() noexcept;

namespace detail {
void WriteGuarded(uint32_t severity, SourcePlace place, void (*write)(WideStream&, const void*),
                  const void* context) noexcept;
} // namespace detail

// Writes a line whose text `write` streams, inside of a function that is traced: the trace has just
// seen to it that the settings are fresh.
template <class Write>
void LogTraced(uint32_t severity, const Write& write, SourcePlace place = SourcePlace::Here()) {
    if (WasSeverityEnabled(severity)) [[unlikely]]
        detail::WriteGuarded(
            severity, place,
            [](WideStream& line, const void* context) {
                (*static_cast<const Write*>(context))(line);
            },
            &write);
}

// Writes a line whose text `write` streams, if the severity is enabled.
template <class Write>
void Log(uint32_t severity, const Write& write, SourcePlace place = SourcePlace::Here()) {
    RefreshSeverity();
    LogTraced(severity, write, place);
}

} // namespace treevault

#endif
