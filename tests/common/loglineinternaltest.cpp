// SPDX-License-Identifier: MIT
// The form of a log line. What depends on the time zone has a program of its own, in
// tests/environment.
#include "common/logging.h"
#include "platform/process.h"

#include "support/logcapture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <string>

namespace treevault {
namespace {

using namespace tests;

constexpr uint64_t SomeTime = 133594528891232345u; // 2024-05-06 07:08:09.1232345 UTC

struct LineCase {
    uint32_t Severity = SeverityInfo;
    const char* File = "file.cpp";
    uint32_t Line = 12;
    WideView Message = TV_W("message");
    int32_t Indentation = 0;
};

std::string FormatLine(const LineCase& line, const uint64_t* time = &SomeTime) {
    WideText text = TV_W("replaced");
    DefaultLogLineFormatter formatter;
    formatter.Format(text, line.Severity, SourcePlace{line.File, line.Line}, line.Message,
                     line.Indentation, time);
    return ToUtf8(text);
}

// What stands between the ids and the message.
std::string PlaceOf(const char* file, uint32_t line) {
    return ParseLine(FormatLine({.File = file, .Line = line})).Place;
}

std::string MessageOf(int32_t indentation, WideView message = TV_W("message")) {
    return ParseLine(FormatLine({.Message = message, .Indentation = indentation})).Message;
}

std::string SeverityOf(uint32_t severity) {
    return ParseLine(FormatLine({.Severity = severity})).Severity;
}

TEST(LogLine, HasItsPartsInOrder) {
    const std::string line = FormatLine({.Indentation = 1});
    char ids[32];
    std::snprintf(ids, sizeof ids, "%5u %5u", CurrentProcessId() & 0xFFFF,
                  CurrentThreadId() & 0xFFFF);
    // The name has 8 characters, so that the number gets 26 - 8 + 4 = 22.
    EXPECT_EQ(" | INFO |" + std::string(ids) + " | file.cpp:12" + std::string(20, ' ') +
                  "|   message\r\n",
              line.substr(27));
}

TEST(LogLine, ShowsTheTimeWithSevenDecimals) {
    const std::string time = ParseLine(FormatLine({})).Time;
    ASSERT_EQ(28u, time.size()) << time;
    EXPECT_EQ("dddd-dd-dd dd:dd:dd.ddddddd ", [&] {
        std::string pattern = time;
        for (char& c : pattern)
            if (c >= '0' && c <= '9')
                c = 'd';
        return pattern;
    }());
    // Whatever the zone, its distance from UTC is whole minutes.
    EXPECT_EQ("09.1232345 ", time.substr(17));
}

TEST(LogLine, FillsTheDecimalsUpWithZeros) {
    const uint64_t time = 126227808000070009u; // 2001-01-01 00:00:00.0070009 UTC
    EXPECT_EQ("00.0070009 ", ParseLine(FormatLine({}, &time)).Time.substr(17));
}

TEST(LogLine, ShowsYearsBehindTheFourthDigitWhole) {
    const uint64_t time = 3'924'348 * uint64_t{864'000'000'000}; // days; within the year 12345
    EXPECT_EQ("12345-0", ParseLine(FormatLine({}, &time)).Time.substr(0, 7));
}

TEST(LogLine, ReadsTheClockWhenNoTimeIsGiven) {
    const uint64_t before = PreciseFileTime();
    const std::string line = FormatLine({}, nullptr);
    const uint64_t after = PreciseFileTime();
    EXPECT_LE(ParseLine(FormatLine({}, &before)).Time, ParseLine(line).Time);
    EXPECT_GE(ParseLine(FormatLine({}, &after)).Time, ParseLine(line).Time);
}

// --- Severity ------------------------------------------------------------------------------------

TEST(SeverityName, IsOneOfEight) {
    const std::vector<std::string> names = {"NONE", "CRIT", "ERR",  "WARN",
                                            "INFO", "DBG",  "DBG2", "DBG3"};
    for (uint32_t severity = 0; severity < names.size(); ++severity)
        EXPECT_EQ(names[severity], ToUtf8(SeverityName(severity)));
    EXPECT_TRUE(SeverityName(8).empty());
    EXPECT_TRUE(SeverityName(0xFFFFFFFF).empty());
}

TEST(LogLine, PadsTheSeverityToFour) {
    EXPECT_EQ(" NONE ", SeverityOf(0));
    EXPECT_EQ(" ERR  ", SeverityOf(SeverityErr));
    EXPECT_EQ(" DBG  ", SeverityOf(SeverityDbg));
    EXPECT_EQ(" DBG3 ", SeverityOf(SeverityDbg3));
}

TEST(LogLine, ShowsAnUnknownSeverityAsBlanks) {
    EXPECT_EQ("      ", SeverityOf(8));
    EXPECT_EQ("      ", SeverityOf(0xFFFFFFFF));
}

// --- File and line number ------------------------------------------------------------------------

TEST(LogLine, ShowsTheFileNameBehindTheLastSeparator) {
    EXPECT_EQ(" aaaa.src:7" + std::string(21, ' '), PlaceOf("c:\\x\\y\\aaaa.src", 7));
    EXPECT_EQ(" aaaa.src:7" + std::string(21, ' '), PlaceOf("/x/y/aaaa.src", 7));
    EXPECT_EQ(" aaaa.src:7" + std::string(21, ' '), PlaceOf("c:\\x/aaaa.src", 7));
    EXPECT_EQ(" aaaa.src:7" + std::string(21, ' '), PlaceOf("/x\\aaaa.src", 7));
    EXPECT_EQ(" aaaa.src:7" + std::string(21, ' '), PlaceOf("aaaa.src", 7));
}

TEST(LogLine, ShowsAnEmptyFileName) {
    EXPECT_EQ(" :7" + std::string(29, ' '), PlaceOf("", 7));
    EXPECT_EQ(" :7" + std::string(29, ' '), PlaceOf("/x/", 7));
}

TEST(LogLine, CutsTheFileNameAtTwentySix) {
    EXPECT_EQ(" abcdefghijklmnopqrstuvwxy:7    ", PlaceOf("abcdefghijklmnopqrstuvwxy", 7));
    EXPECT_EQ(" abcdefghijklmnopqrstuvwxyz:7   ", PlaceOf("abcdefghijklmnopqrstuvwxyz", 7));
    EXPECT_EQ(" abcdefghijklmnopqrstuvwxyz:7   ", PlaceOf("/x/abcdefghijklmnopqrstuvwxyz0.cpp", 7));
}

TEST(LogLine, ShowsTheWholeLineNumber) {
    EXPECT_EQ(" abcdefghijklmnopqrstuvwxyz:1234", PlaceOf("abcdefghijklmnopqrstuvwxyz", 1234));
    EXPECT_EQ(" abcdefghijklmnopqrstuvwxyz:12345", PlaceOf("abcdefghijklmnopqrstuvwxyz", 12345));
    EXPECT_EQ(" f:4294967295" + std::string(19, ' '), PlaceOf("f", 4294967295u));
    EXPECT_EQ(" f:0" + std::string(28, ' '), PlaceOf("f", 0));
}

// --- Indentation and message ---------------------------------------------------------------------

TEST(LogLine, IndentsByTwoBlanksUpToThirtyTimes) {
    EXPECT_EQ("message", MessageOf(0));
    EXPECT_EQ("  message", MessageOf(1));
    EXPECT_EQ(std::string(58, ' ') + "message", MessageOf(29));
    EXPECT_EQ(std::string(60, ' ') + "message", MessageOf(30));
    EXPECT_EQ(std::string(60, ' ') + "message", MessageOf(31));
    EXPECT_EQ(std::string(60, ' ') + "message", MessageOf(std::numeric_limits<int32_t>::max()));
    EXPECT_EQ("message", MessageOf(-1));
    EXPECT_EQ("message", MessageOf(std::numeric_limits<int32_t>::min()));
}

TEST(LogLine, LeavesTheMessageAsItIs) {
    EXPECT_EQ("", MessageOf(0, TV_W("")));
    EXPECT_EQ("%s%n%5u 100%", MessageOf(0, TV_W("%s%n%5u 100%")));
    EXPECT_EQ("a | b\r\nc\t", MessageOf(0, TV_W("a | b\r\nc\t")));
    EXPECT_EQ(std::string(5000, 'x'), MessageOf(0, WideText(5000, TV_W('x'))));
    EXPECT_EQ("\xC3\xA9\xF0\x9F\x8C\xB3", MessageOf(0, TV_W("\u00E9\U0001F333")));
}

} // namespace
} // namespace treevault
