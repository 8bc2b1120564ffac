// SPDX-License-Identifier: MIT
// The log as tests see it: the lines that were written, and the severity in force.
#ifndef TREEVAULT_TESTS_SUPPORT_LOGCAPTURE_H
#define TREEVAULT_TESTS_SUPPORT_LOGCAPTURE_H

#include "common/loggerconfig.h"
#include "platform/encoding.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

namespace treevault::tests {

// A line taken apart at its fixed places. `Place` is the file name and the line number with their
// padding, `Message` includes the indentation and not the line end.
struct LogEntry {
    std::string Time, Severity, Ids, Place, Message;
};

inline LogEntry ParseLine(const std::string& line) {
    LogEntry entry;
    std::string* const parts[] = {&entry.Time, &entry.Severity, &entry.Ids, &entry.Place};
    size_t at = 0;
    for (std::string* part : parts) {
        const size_t bar = line.find('|', at);
        if (bar == std::string::npos)
            return entry;
        *part = line.substr(at, bar - at);
        at = bar + 1;
    }
    entry.Message = line.substr(at);
    if (entry.Message.ends_with("\r\n"))
        entry.Message.resize(entry.Message.size() - 2);
    if (entry.Message.starts_with(' '))
        entry.Message.erase(0, 1);
    return entry;
}

// Keeps what it is given. Not registered by itself.
class KeepingSink final : public LogSink {
public:
    void Write(const WCHAR* text, ptrdiff_t length) override {
        const std::lock_guard guard(Lock);
        EXPECT_EQ(static_cast<ptrdiff_t>(WideLength(text)), length);
        Lines.push_back(ToUtf8(WideView(text, WideLength(text))));
    }

    std::vector<std::string> Messages() const {
        std::vector<std::string> messages;
        for (const std::string& line : Lines)
            messages.push_back(ParseLine(line).Message);
        return messages;
    }

    std::vector<std::string> Lines;

private:
    std::mutex Lock;
};

// A sink that is registered while it lives.
class LogCapture {
public:
    LogCapture() { EXPECT_TRUE(GetLoggerConfig().AddSink(&Sink)); }
    ~LogCapture() { GetLoggerConfig().RemoveSink(&Sink); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const std::vector<std::string>& Lines() const { return Sink.Lines; }
    std::vector<std::string> Messages() const { return Sink.Messages(); }
    LogEntry Entry(size_t index) const { return ParseLine(Sink.Lines.at(index)); }

private:
    KeepingSink Sink;
};

// Puts a severity in force as if it had been read just now. Afterwards the settings are read anew.
class SeverityInForce {
public:
    explicit SeverityInForce(uint32_t severity) { Change(severity); }
    ~SeverityInForce() { detail::LastSeverityTick.store(0); }
    SeverityInForce(const SeverityInForce&) = delete;
    SeverityInForce& operator=(const SeverityInForce&) = delete;

    void Change(uint32_t severity) {
        detail::MaximumSeverity.store(severity);
        const uint32_t now = TickCount();
        detail::LastSeverityTick.store(now == 0 ? 1 : now);
    }
};

} // namespace treevault::tests

#endif
