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
    const std::string_view whole(path ? path : "");
    size_t start = whole.size();
    while (start != 0 && whole[start - 1] != '\\' && whole[start - 1] != '/')
        --start;
    return whole.substr(start, FileNameWidth);
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

    LineHead& Blanks(size_t count) noexcept {
        End = std::fill_n(End, count, TV_W(' '));
        return *this;
    }

    // The last `count` digits of a number.
    LineHead& Digits(uint32_t number, size_t count) noexcept {
        for (size_t at = count; at-- != 0; number /= 10)
            End[at] = static_cast<WCHAR>(TV_W('0') + number % 10);
        End += count;
        return *this;
    }

    // Aligned to the right.
    LineHead& NumberRight(uint32_t number, size_t width) noexcept {
        const size_t digits = CountDigits(number);
        return Blanks(width - std::min(width, digits)).Digits(number, digits);
    }

    // Aligned to the left.
    LineHead& NumberLeft(uint32_t number, size_t width) noexcept {
        const size_t digits = CountDigits(number);
        return Digits(number, digits).Blanks(width - std::min(width, digits));
    }

    LineHead& TextLeft(WideView text, size_t width) noexcept {
        *this << text;
        return Blanks(width - std::min(width, text.size()));
    }

    WideView View() const noexcept { return {Units.data(), End}; }

private:
    static size_t CountDigits(uint32_t number) noexcept {
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
    const auto unitsOfMillisecond = static_cast<uint32_t>(time.FileTime % 10'000);
    LineHead head;
    head.Digits(time.Year, time.Year < 10'000 ? 4 : 5) << TV_W("-");
    head.Digits(time.Month, 2) << TV_W("-");
    head.Digits(time.Day, 2) << TV_W(" ");
    head.Digits(time.Hour, 2) << TV_W(":");
    head.Digits(time.Minute, 2) << TV_W(":");
    head.Digits(time.Second, 2) << TV_W(".");
    head.Digits(time.Milliseconds, 3).Digits(unitsOfMillisecond, 4) << TV_W(" | ");
    head.TextLeft(SeverityName(severity), 4) << TV_W(" |");
    head.NumberRight(CurrentProcessId() & 0xFFFF, 5) << TV_W(" ");
    head.NumberRight(CurrentThreadId() & 0xFFFF, 5) << TV_W(" | ");
    head << file << TV_W(":");
    head.NumberLeft(place.Line, FileNameWidth - file.size() + LineNumberWidth) << TV_W("| ");
    head.Blanks(2 * depth);
    line.clear();
    line.reserve(head.View().size() + message.size() + LineEnd.size());
    line.append(head.View()).append(message).append(LineEnd);
}

} // namespace treevault
