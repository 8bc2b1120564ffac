// SPDX-License-Identifier: MIT
// Function traces: their lines, indentation and timing.
#include "common/functiontrace.h"

#include "support/logcapture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace treevault {
namespace {

using namespace tests;

// Whether a text has the form "1 234.567": groups of three digits and three decimals.
bool IsDuration(const std::string& text) {
    if (text.size() < 5 || text[text.size() - 4] != '.' || text.front() == ' ')
        return false;
    for (size_t fromEnd = 1; fromEnd <= text.size(); ++fromEnd) {
        const char c = text[text.size() - fromEnd];
        // Each fourth place from the end: the point, then blanks.
        const bool separator = fromEnd % 4 == 0;
        if (separator ? c != (fromEnd == 4 ? '.' : ' ') : c < '0' || c > '9')
            return false;
    }
    return true;
}

// A line with its duration, if that has the right form, replaced by "*".
std::string WithoutTime(const std::string& message) {
    const size_t open = message.rfind('[');
    if (open == std::string::npos || !message.ends_with(" ms]") ||
        !IsDuration(message.substr(open + 1, message.size() - open - 5)))
        return message;
    return message.substr(0, open) + "[*]";
}

std::vector<std::string> Messages(const LogCapture& log) {
    std::vector<std::string> messages = log.Messages();
    for (std::string& message : messages)
        message = WithoutTime(message);
    return messages;
}

using Lines = std::vector<std::string>;

TEST(FunctionTrace, WritesEntryAndExit) {
    const SeverityInForce severity(SeverityDbg3);
    const LogCapture log;
    { const FunctionTrace trace(TV_W("CSample::Run")); }
    EXPECT_EQ((Lines{"Entering: CSample::Run", "Exiting: CSample::Run [*]"}), Messages(log));
    EXPECT_EQ(" DBG3 ", log.Entry(0).Severity);
    EXPECT_EQ(" DBG3 ", log.Entry(1).Severity);
    EXPECT_EQ(log.Entry(0).Place, log.Entry(1).Place);
}

TEST(FunctionTrace, TellsTheLineOfItsConstruction) {
    const SeverityInForce severity(SeverityDbg3);
    const LogCapture log;
    { const FunctionTrace trace(TV_W("CSample::Run"), SeverityDbg2, SourcePlace{"a/b.cpp", 31}); }
    ASSERT_EQ(2u, log.Lines().size());
    EXPECT_TRUE(log.Entry(0).Place.starts_with(" b.cpp:31 "));
    EXPECT_TRUE(log.Entry(1).Place.starts_with(" b.cpp:31 "));
    EXPECT_EQ(" DBG2 ", log.Entry(0).Severity);
}

TEST(FunctionTrace, IndentsWhatLiesBetweenItsLines) {
    const SeverityInForce severity(SeverityDbg3);
    const LogCapture log;
    {
        const FunctionTrace outer(TV_W("Outer"));
        Log(SeverityInfo, [](WideStream& line) { line << TV_W("between"); });
        {
            const FunctionTrace inner(TV_W("Inner"));
            Log(SeverityInfo, [](WideStream& line) { line << TV_W("deep"); });
        }
    }
    Log(SeverityInfo, [](WideStream& line) { line << TV_W("after"); });
    EXPECT_EQ((Lines{"Entering: Outer", "  between", "  Entering: Inner", "    deep",
                     "  Exiting: Inner [*]", "Exiting: Outer [*]", "after"}),
              Messages(log));
}

TEST(FunctionTrace, WritesNothingWhileItsSeverityIsDisabled) {
    const SeverityInForce severity(SeverityDbg2);
    const LogCapture log;
    {
        const FunctionTrace trace(TV_W("CSample::Run"));
        EXPECT_EQ(0, TraceIndent());
    }
    EXPECT_EQ(0, TraceIndent());
    EXPECT_TRUE(log.Lines().empty());
}

TEST(FunctionTrace, MadeWhileDisabledAddsNoIndentation) {
    SeverityInForce severity(SeverityNone);
    const LogCapture log;
    {
        const FunctionTrace trace(TV_W("CSample::Run"));
        severity.Change(SeverityDbg3);
        EXPECT_EQ(0, TraceIndent());
        Log(SeverityInfo, [](WideStream& line) { line << TV_W("inside"); });
    }
    EXPECT_EQ(0, TraceIndent());
    EXPECT_EQ((Lines{"inside", "Exiting: CSample::Run [*]"}), Messages(log));
}

TEST(FunctionTrace, EndingWhileDisabledTakesItsIndentationBack) {
    SeverityInForce severity(SeverityDbg3);
    const LogCapture log;
    {
        const FunctionTrace trace(TV_W("CSample::Run"));
        EXPECT_EQ(1, TraceIndent());
        severity.Change(SeverityNone);
    }
    EXPECT_EQ(0, TraceIndent());
    EXPECT_EQ((Lines{"Entering: CSample::Run"}), Messages(log));
}

// --- Exceptions ----------------------------------------------------------------------------------

TEST(FunctionTrace, TellsOfAnException) {
    const SeverityInForce severity(SeverityDbg3);
    const LogCapture log;
    try {
        const FunctionTrace trace(TV_W("CSample::Run"));
        throw std::runtime_error("x");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ((Lines{"Entering: CSample::Run", "EXCEPTION at: CSample::Run [*]"}), Messages(log));
    EXPECT_EQ(0, TraceIndent());
}

TEST(FunctionTrace, HasASeverityOfItsOwnForExceptions) {
    const SeverityInForce severity(SeverityErr);
    const LogCapture log;
    { const FunctionTrace trace(TV_W("Normal"), SeverityDbg, SeverityErr, nullptr); }
    try {
        const FunctionTrace trace(TV_W("Thrown"), SeverityDbg, SeverityErr, nullptr);
        throw std::runtime_error("x");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ((Lines{"EXCEPTION at: Thrown [*]"}), Messages(log));
    EXPECT_EQ(" ERR  ", log.Entry(0).Severity);
}

TEST(FunctionTrace, WritesNoExitWhenTheSeverityOfExceptionsIsDisabled) {
    const SeverityInForce severity(SeverityInfo);
    const LogCapture log;
    try {
        const FunctionTrace trace(TV_W("Thrown"), SeverityInfo, SeverityDbg, nullptr);
        throw std::runtime_error("x");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ((Lines{"Entering: Thrown"}), Messages(log));
    EXPECT_EQ(0, TraceIndent());
}

TEST(FunctionTrace, EndsNormallyInACleanupDuringAnException) {
    struct Cleanup {
        ~Cleanup() { const FunctionTrace trace(TV_W("Cleanup")); }
    };
    const SeverityInForce severity(SeverityDbg3);
    const LogCapture log;
    try {
        const Cleanup cleanup;
        throw std::runtime_error("x");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ((Lines{"Entering: Cleanup", "Exiting: Cleanup [*]"}), Messages(log));
}

// --- Sinks and threads ---------------------------------------------------------------------------

TEST(FunctionTrace, WritesToItsOwnSinkAlone) {
    const SeverityInForce severity(SeverityDbg3);
    const LogCapture log;
    KeepingSink own;
    { const FunctionTrace trace(TV_W("CSample::Run"), SeverityDbg, SeverityDbg, &own); }
    EXPECT_TRUE(log.Lines().empty());
    EXPECT_EQ(2u, own.Lines.size());
}

TEST(FunctionTrace, IndentsItsThreadAlone) {
    const SeverityInForce severity(SeverityDbg3);
    const FunctionTrace trace(TV_W("CSample::Run"));
    EXPECT_EQ(1, TraceIndent());
    std::optional<int32_t> other;
    std::thread([&] { other = TraceIndent(); }).join();
    EXPECT_EQ(0, other);
}

// --- Time ----------------------------------------------------------------------------------------

TEST(FormatMilliseconds, HasThreeDecimalsAndGroupsOfThree) {
    EXPECT_EQ(WideText(TV_W("0.000")), FormatMilliseconds(0));
    EXPECT_EQ(WideText(TV_W("0.001")), FormatMilliseconds(1));
    EXPECT_EQ(WideText(TV_W("0.999")), FormatMilliseconds(999));
    EXPECT_EQ(WideText(TV_W("1.000")), FormatMilliseconds(1000));
    EXPECT_EQ(WideText(TV_W("1.010")), FormatMilliseconds(1010));
    EXPECT_EQ(WideText(TV_W("999.999")), FormatMilliseconds(999999));
    EXPECT_EQ(WideText(TV_W("1 000.000")), FormatMilliseconds(1000000));
    EXPECT_EQ(WideText(TV_W("1 234.567")), FormatMilliseconds(1234567));
    EXPECT_EQ(WideText(TV_W("123 456.789")), FormatMilliseconds(123456789));
    EXPECT_EQ(WideText(TV_W("1 000 000 000.000")), FormatMilliseconds(1000000000000));
}

// Takes its time over each entry line.
class SlowSink final : public LogSink {
public:
    void Write(const WCHAR* text, ptrdiff_t) override {
        Last = ParseLine(ToUtf8(WideView(text))).Message;
        if (Last.starts_with("Entering: "))
            std::this_thread::sleep_for(std::chrono::milliseconds(400));
    }

    std::string Last;
};

double MillisecondsOf(const std::string& message) {
    std::string digits;
    for (const char c : message.substr(message.rfind('[')))
        if ((c >= '0' && c <= '9') || c == '.')
            digits += c;
    return std::stod(digits);
}

TEST(FunctionTrace, TimesTheFunctionAndNotItsEntryLine) {
    const SeverityInForce severity(SeverityDbg3);
    SlowSink sink;
    {
        const FunctionTrace trace(TV_W("CSample::Run"), SeverityDbg, SeverityDbg, &sink);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    EXPECT_LE(45.0, MillisecondsOf(sink.Last)) << sink.Last;
    EXPECT_GT(400.0, MillisecondsOf(sink.Last)) << sink.Last;
}

} // namespace
} // namespace treevault
