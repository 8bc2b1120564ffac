// SPDX-License-Identifier: MIT
// Forming and writing of log lines.
#include "common/logging.h"

#include "common/errorhandling.h"
#include "common/loggerconfig.h"
#include "platform/process.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

namespace treevault {

namespace detail {

std::atomic<uint32_t> LastSeverityTick{0};
std::atomic<uint32_t> MaximumSeverity{SeverityDbg};

void ReadSeverity() noexcept {
    const KeptErrorRecord record;
    try {
        GetLoggerConfig().Refresh();
    } catch (...) {
        // What was read last stays in force; the next test tries again.
    }
}

namespace {
constexpr size_t UsualLength = 127; // of a message, which saves growing it piece by piece
}

void WriteGuarded(uint32_t severity, SourcePlace place, void (*write)(WideStream&, const void*),
                  const void* context) noexcept {
    try {
        WideStream line;
        line.Str().reserve(UsualLength);
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
constexpr WideView LineEnd = TV_W("\r\n");

// What follows the last separator, cut.
std::string_view ShownFileName(const char* path) noexcept {
    std::string_view name(path ? path : "");
    name.remove_prefix(name.find_last_of("\\/") + 1);
    return name.substr(0, FileNameWidth);
}

// What stands before the message: never longer than the sum of its widths, so that it is built
// without an allocation.
class LineHead {
public:
    LineHead& operator<<(WideView text) noexcept {
        End = std::copy(text.begin(), text.end(), End);
        return *this;
    }

    // A source file name.
    LineHead& operator<<(std::string_view text) noexcept {
        End = std::copy(text.begin(), text.end(), End);
        return *this;
    }

    LineHead& Fill(size_t count, WCHAR unit) noexcept {
        End = std::fill_n(End, count, unit);
        return *this;
    }

    // Aligned to the right.
    LineHead& Number(uint64_t number, size_t width, WCHAR fill = TV_W('0')) noexcept {
        const size_t digits = CountDigits(number);
        Fill(width - std::min(width, digits), fill);
        WCHAR* at = End += digits;
        do {
            *--at = static_cast<WCHAR>(TV_W('0') + number % 10);
            number /= 10;
        } while (number != 0);
        return *this;
    }

    // Aligned to the left.
    LineHead& NumberLeft(uint64_t number, size_t width) noexcept {
        Number(number, 0);
        return Fill(width - std::min(width, CountDigits(number)), TV_W(' '));
    }

    LineHead& TextLeft(WideView text, size_t width) noexcept {
        *this << text;
        return Fill(width - std::min(width, text.size()), TV_W(' '));
    }

    WideView View() const noexcept { return {Units.data(), End}; }

private:
    static size_t CountDigits(uint64_t number) noexcept {
        size_t count = 1;
        for (; number >= 10; number /= 10)
            ++count;
        return count;
    }

    std::array<WCHAR, 256> Units;
    WCHAR* End = Units.data();
};

} // namespace

void DefaultLogLineFormatter::Format(WideText& line, uint32_t severity, SourcePlace place,
                                     WideView message, int32_t indentation,
                                     const uint64_t* fileTime) {
    const LocalTime time = ToLocalTime(fileTime ? *fileTime : PreciseFileTime());
    const std::string_view file = ShownFileName(place.File);
    const auto depth = static_cast<size_t>(std::clamp(indentation, 0, MaximumIndentation));
    LineHead head;
    head.Number(time.Year, 4) << TV_W("-");
    head.Number(time.Month, 2) << TV_W("-");
    head.Number(time.Day, 2) << TV_W(" ");
    head.Number(time.Hour, 2) << TV_W(":");
    head.Number(time.Minute, 2) << TV_W(":");
    head.Number(time.Second, 2) << TV_W(".");
    head.Number(time.Milliseconds, 3).Number(time.FileTime % 10000, 4) << TV_W(" | ");
    head.TextLeft(SeverityName(severity), 4) << TV_W(" |");
    head.Number(CurrentProcessId() & 0xFFFF, 5, TV_W(' ')) << TV_W(" ");
    head.Number(CurrentThreadId() & 0xFFFF, 5, TV_W(' ')) << TV_W(" | ");
    head << file << TV_W(":");
    head.NumberLeft(place.Line, FileNameWidth - file.size() + LineNumberWidth) << TV_W("| ");
    head.Fill(2 * depth, TV_W(' '));
    line.clear();
    line.reserve(head.View().size() + message.size() + LineEnd.size());
    line.append(head.View()).append(message).append(LineEnd);
}

} // namespace treevault
