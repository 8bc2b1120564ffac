// SPDX-License-Identifier: MIT
// The log: which lines are written, to whom, and that building a line harms nobody.
#include "common/errorhandling.h"
#include "common/logging.h"
#include "common/logmanager.h"

#include "support/logcapture.h"

#include <gtest/gtest.h>

#include <array>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace treevault {
namespace {

using namespace tests;

void Say(uint32_t severity, const WCHAR* text) {
    Log(severity, [&](WideStream& line) { line << text; });
}

// --- Which lines ---------------------------------------------------------------------------------

TEST(Severity, IsEnabledFromOneToTheMaximum) {
    SeverityInForce severity(SeverityNone);
    for (uint32_t maximum = 0; maximum <= 7; ++maximum) {
        severity.Change(maximum);
        for (uint32_t each = 0; each <= 9; ++each)
            EXPECT_EQ(each >= 1 && each <= maximum, IsSeverityEnabled(each))
                << each << " of " << maximum;
    }
}

TEST(Severity, IsReadAgainWhenThePeriodHasPassed) {
    SeverityInForce severity(SeverityNone);
    const auto agedBy = [](uint32_t milliseconds) {
        detail::MaximumSeverity.store(SeverityNone);
        const uint32_t tick = TickCount() - milliseconds;
        detail::LastSeverityTick.store(tick == 0 ? 1 : tick);
        return IsSeverityEnabled(SeverityCrit);
    };
    EXPECT_FALSE(agedBy(0));
    EXPECT_FALSE(agedBy(4000));
    EXPECT_TRUE(agedBy(5002)) << "the setting is absent and its default enables the line";
    EXPECT_TRUE(agedBy(0xFFFFFF00)) << "the difference is unsigned";
}

TEST(Severity, IsReadAtOnceWhenItNeverWas) {
    SeverityInForce severity(SeverityNone);
    detail::LastSeverityTick.store(0);
    EXPECT_TRUE(IsSeverityEnabled(SeverityDbg));
    EXPECT_FALSE(IsSeverityEnabled(SeverityDbg2));
    EXPECT_NE(0u, detail::LastSeverityTick.load());
}

TEST(Log, WritesAnEnabledLineWithItsPlace) {
    const SeverityInForce severity(SeverityInfo);
    const LogCapture log;
    Log(SeverityInfo, [](WideStream& line) { line << TV_W("count: ") << 5; });
    const int expectedLine = __LINE__ - 1;
    ASSERT_EQ(1u, log.Lines().size());
    EXPECT_EQ("count: 5", log.Entry(0).Message);
    EXPECT_EQ(" INFO ", log.Entry(0).Severity);
    const std::string place = " logginginternaltest.cpp:" + std::to_string(expectedLine) + " ";
    EXPECT_TRUE(log.Entry(0).Place.starts_with(place)) << log.Entry(0).Place;
}

TEST(Log, BuildsNothingForADisabledLine) {
    const SeverityInForce severity(SeverityInfo);
    const LogCapture log;
    bool built = false;
    Log(SeverityDbg, [&](WideStream&) { built = true; });
    Log(SeverityNone, [&](WideStream&) { built = true; });
    EXPECT_FALSE(built);
    EXPECT_TRUE(log.Lines().empty());
}

// --- Failures on the way -------------------------------------------------------------------------

TEST(Log, EndsALineThatCannotBeBuiltWithAMark) {
    const SeverityInForce severity(SeverityInfo);
    const LogCapture log;
    EXPECT_NO_THROW(Log(SeverityErr, [](WideStream& line) {
        line << TV_W("so far");
        throw std::bad_alloc();
    }));
    EXPECT_NO_THROW(Log(SeverityErr, [](WideStream&) { ThrowHr(E_ABORT); }));
    EXPECT_NO_THROW(Log(SeverityErr, [](WideStream& line) {
        line << TV_W("a number ");
        throw 42;
    }));
    EXPECT_EQ((std::vector<std::string>{"so far... (***EXCEPTION***)", "... (***EXCEPTION***)",
                                        "a number ... (***EXCEPTION***)"}),
              log.Messages());
}

class ThrowingSink final : public LogSink {
public:
    void Write(const WCHAR*, ptrdiff_t) override { throw std::runtime_error("disk full"); }
};

TEST(Log, SwallowsTheFailureOfASink) {
    const SeverityInForce severity(SeverityInfo);
    ThrowingSink sink;
    ASSERT_TRUE(GetLoggerConfig().AddSink(&sink));
    EXPECT_NO_THROW(Say(SeverityErr, TV_W("x")));
    GetLoggerConfig().RemoveSink(&sink);
}

// --- Sinks ---------------------------------------------------------------------------------------

// Notes its own name when it gets a line.
class NamedSink final : public LogSink {
public:
    NamedSink(std::string& journal, char name) : Journal(journal), Name(name) {}
    void Write(const WCHAR*, ptrdiff_t) override { Journal += Name; }

private:
    std::string& Journal;
    char Name;
};

class Sinks : public testing::Test {
protected:
    // The log file has a place too.
    void SetUp() override { GetLoggerConfig().RemoveSink(GetFileLogger()); }

    void TearDown() override {
        for (NamedSink* sink : {&A, &B, &C, &D, &E})
            GetLoggerConfig().RemoveSink(sink);
        GetLoggerConfig().AddSink(GetFileLogger());
    }

    // Who gets a line, in order.
    std::string Receivers(LogSink* explicitSink = nullptr) {
        Journal.clear();
        LogLine(SeverityDbg3, TV_W("x"), SourcePlace::Here(), explicitSink);
        return Journal;
    }

    std::string Journal;
    NamedSink A{Journal, 'a'}, B{Journal, 'b'}, C{Journal, 'c'}, D{Journal, 'd'}, E{Journal, 'e'};
};

TEST_F(Sinks, AreFour) {
    LoggerConfig& config = GetLoggerConfig();
    EXPECT_TRUE(config.AddSink(&A));
    EXPECT_TRUE(config.AddSink(&B));
    EXPECT_TRUE(config.AddSink(&C));
    EXPECT_TRUE(config.AddSink(&D));
    EXPECT_FALSE(config.AddSink(&E));
    EXPECT_EQ("abcd", Receivers());
}

TEST_F(Sinks, GetLinesInTheOrderOfTheirPlaces) {
    LoggerConfig& config = GetLoggerConfig();
    for (NamedSink* sink : {&A, &B, &C})
        config.AddSink(sink);
    config.RemoveSink(&B);
    EXPECT_EQ("ac", Receivers());
    config.AddSink(&D);
    EXPECT_EQ("adc", Receivers()) << "the first free place is taken";
    config.AddSink(&E);
    EXPECT_EQ("adce", Receivers());
}

TEST_F(Sinks, AreLeftOutForAnExplicitOne) {
    GetLoggerConfig().AddSink(&A);
    EXPECT_EQ("e", Receivers(&E));
    EXPECT_EQ("a", Receivers());
}

TEST_F(Sinks, AreRemovedWithoutHarmWhenUnknown) {
    GetLoggerConfig().AddSink(&A);
    GetLoggerConfig().RemoveSink(&E);
    EXPECT_EQ("a", Receivers());
    GetLoggerConfig().RemoveSink(&A);
    EXPECT_EQ("", Receivers());
}

TEST(LogLineFunction, DoesNotLookAtTheSeverity) {
    const SeverityInForce severity(SeverityNone);
    const LogCapture log;
    LogLine(SeverityDbg3, TV_W("x"), SourcePlace::Here());
    LogLine(12, TV_W("y"), SourcePlace::Here());
    ASSERT_EQ(2u, log.Lines().size());
    EXPECT_EQ(" DBG3 ", log.Entry(0).Severity);
    EXPECT_EQ("      ", log.Entry(1).Severity);
}

TEST(LogLineFunction, IndentsByTheTracesOfItsThread) {
    const LogCapture log;
    TraceIndent() = 2;
    LogLine(SeverityErr, TV_W("x"), SourcePlace::Here());
    TraceIndent() = 0;
    EXPECT_EQ("    x", log.Entry(0).Message);
}

// --- Formatter -----------------------------------------------------------------------------------

class NotingFormatter final : public LogLineFormatter {
public:
    void Format(WideText& line, uint32_t severity, SourcePlace place, WideView message,
                int32_t indentation, const uint64_t* fileTime) override {
        Severity = severity;
        Place = place;
        Message = message;
        Indentation = indentation;
        Time = fileTime ? *fileTime : 0;
        line = TV_W("formed");
    }

    uint32_t Severity = 0;
    SourcePlace Place = {};
    WideText Message;
    int32_t Indentation = -1;
    uint64_t Time = 0;
};

TEST(Formatter, FormsEveryLineUntilItIsTakenBack) {
    NotingFormatter formatter;
    const LogCapture log;
    GetLoggerConfig().SetFormatter(&formatter);
    const uint64_t before = PreciseFileTime();
    TraceIndent() = 3;
    LogLine(SeverityWarn, TV_W("text"), SourcePlace{"f.cpp", 9});
    TraceIndent() = 0;
    const uint64_t after = PreciseFileTime();
    GetLoggerConfig().SetFormatter(nullptr);
    LogLine(SeverityWarn, TV_W("text"), SourcePlace{"f.cpp", 9});
    ASSERT_EQ(2u, log.Lines().size());
    EXPECT_EQ("formed", log.Lines()[0]);
    EXPECT_EQ("text", log.Entry(1).Message);
    EXPECT_EQ(SeverityWarn, formatter.Severity);
    EXPECT_EQ(std::string("f.cpp"), formatter.Place.File);
    EXPECT_EQ(9u, formatter.Place.Line);
    EXPECT_EQ(WideText(TV_W("text")), formatter.Message);
    EXPECT_EQ(3, formatter.Indentation);
    EXPECT_LE(before, formatter.Time);
    EXPECT_GE(after, formatter.Time);
}

} // namespace
} // namespace treevault
