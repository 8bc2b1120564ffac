// SPDX-License-Identifier: MIT
// Forming and writing of log lines.
#include "common/logging.h"

#include "common/loggerconfig.h"
#include "platform/process.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace treevault {

namespace detail {

std::atomic<uint32_t> LastSeverityTick{0};
std::atomic<uint32_t> MaximumSeverity{SeverityDbg};

void ReadSeverity() noexcept {
    try {
        GetLoggerConfig().Refresh();
    } catch (...) {
        // What was read last stays in force; the next test tries again.
    }
}

void WriteGuarded(uint32_t severity, SourcePlace place, void (*write)(WideStream&, const void*),
                  const void* context) noexcept {
    try {
        WideStream line;
        try {
            write(line, context);
        } catch (...) {
            line << TV_W("... (***EXCEPTION***)");
        }
        LogLine(severity, line.Str(), place);
    } catch (...) {
        // A line is never the cause of a failure: one that cannot be written is lost.
    }
}

} // namespace detail

WideView SeverityName(uint32_t severity) noexcept {
    static constexpr WideView names[] = {TV_W("NONE"), TV_W("CRIT"), TV_W("ERR"),  TV_W("WARN"),
                                         TV_W("INFO"), TV_W("DBG"),  TV_W("DBG2"), TV_W("DBG3")};
    return severity < std::size(names) ? names[severity] : WideView();
}

int32_t& TraceIndent() noexcept {
    thread_local int32_t indent = 0;
    return indent;
}

void LogLine(uint32_t severity, WideView message, SourcePlace place, LogSink* sink) {
    GetLoggerConfig().Write(severity, message, place, sink);
}

namespace {

constexpr size_t FileNameWidth = 26;
constexpr size_t LineNumberWidth = 4;
constexpr int32_t MaximumIndentation = 30;

// What follows the last separator, cut.
std::string_view ShownFileName(const char* path) noexcept {
    std::string_view name(path ? path : "");
    name.remove_prefix(name.find_last_of("\\/") + 1);
    return name.substr(0, FileNameWidth);
}

class LineBuilder {
public:
    explicit LineBuilder(WideText& line) noexcept : Line(line) {}

    LineBuilder& operator<<(WideView text) {
        Line.append(text);
        return *this;
    }

    // With zeros in front.
    LineBuilder& Number(uint64_t number, size_t width) { return Padded(number, width, TV_W('0')); }

    LineBuilder& Padded(uint64_t number, size_t width, WCHAR fill) {
        const WideText digits = Digits(number);
        Line.append(width - std::min(width, digits.size()), fill);
        Line.append(digits);
        return *this;
    }

    LineBuilder& LeftAligned(WideView text, size_t width) {
        Line.append(text);
        Line.append(width - std::min(width, text.size()), TV_W(' '));
        return *this;
    }

    static WideText Digits(uint64_t number) {
        WideStream stream;
        stream << number;
        return std::move(stream.Str());
    }

private:
    WideText& Line;
};

} // namespace

void DefaultLogLineFormatter::Format(WideText& line, uint32_t severity, SourcePlace place,
                                     WideView message, int32_t indentation,
                                     const uint64_t* fileTime) {
    const LocalTime time = ToLocalTime(fileTime ? *fileTime : PreciseFileTime());
    const std::string_view file = ShownFileName(place.File);
    const auto depth = static_cast<size_t>(std::clamp(indentation, 0, MaximumIndentation));
    line.clear();
    LineBuilder out(line);
    out.Number(time.Year, 4) << TV_W("-");
    out.Number(time.Month, 2) << TV_W("-");
    out.Number(time.Day, 2) << TV_W(" ");
    out.Number(time.Hour, 2) << TV_W(":");
    out.Number(time.Minute, 2) << TV_W(":");
    out.Number(time.Second, 2) << TV_W(".");
    out.Number(time.Milliseconds, 3).Number(time.FileTime % 10000, 4) << TV_W(" | ");
    out.LeftAligned(SeverityName(severity), 4) << TV_W(" |");
    out.Padded(CurrentProcessId() & 0xFFFF, 5, TV_W(' ')) << TV_W(" ");
    out.Padded(CurrentThreadId() & 0xFFFF, 5, TV_W(' ')) << TV_W(" | ");
    line.append(file.begin(), file.end());
    out << TV_W(":");
    out.LeftAligned(LineBuilder::Digits(place.Line), FileNameWidth - file.size() + LineNumberWidth)
        << TV_W("| ");
    line.append(2 * depth, TV_W(' '));
    out << message << TV_W("\r\n");
}

} // namespace treevault
