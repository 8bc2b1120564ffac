// SPDX-License-Identifier: MIT
// Settings of the log: the severity in the setting, and values that are read once per period.
#include "common/loggerconfig.h"
#include "common/settings.h"

#include "support/logcapture.h"
#include "support/settingsource.h"

#include <gtest/gtest.h>

namespace treevault {
namespace {

using namespace tests;

// --- MaxSeverity ---------------------------------------------------------------------------------

uint32_t MaximumOf(const WCHAR* setting) {
    TestSource source;
    if (setting)
        source.Values[TV_W("MaxSeverity")] = setting;
    GetLoggerConfig().Refresh();
    return detail::MaximumSeverity.load();
}

TEST(MaxSeverity, IsOneOfTheNames) {
    EXPECT_EQ(0u, MaximumOf(TV_W("NONE")));
    EXPECT_EQ(1u, MaximumOf(TV_W("CRIT")));
    EXPECT_EQ(2u, MaximumOf(TV_W("ERR")));
    EXPECT_EQ(3u, MaximumOf(TV_W("WARN")));
    EXPECT_EQ(4u, MaximumOf(TV_W("INFO")));
    EXPECT_EQ(5u, MaximumOf(TV_W("DBG")));
    EXPECT_EQ(6u, MaximumOf(TV_W("DBG2")));
    EXPECT_EQ(7u, MaximumOf(TV_W("DBG3")));
}

TEST(MaxSeverity, IsTakenInAnyCaseAndTrimmed) {
    EXPECT_EQ(6u, MaximumOf(TV_W("dbg2")));
    EXPECT_EQ(3u, MaximumOf(TV_W("wArN")));
    EXPECT_EQ(3u, MaximumOf(TV_W(" Warn ")));
    EXPECT_EQ(2u, MaximumOf(TV_W("\t\r\n err\v\f")));
}

TEST(MaxSeverity, FallsBackToTheDefault) {
    EXPECT_EQ(5u, MaximumOf(nullptr));
    for (const WCHAR* text : {TV_W(""), TV_W("   "), TV_W("7"), TV_W("0"), TV_W("VERBOSE"),
                              TV_W("ERROR"), TV_W("WAR"), TV_W("DBG 2"), TV_W("DBG4")})
        EXPECT_EQ(5u, MaximumOf(text)) << ToUtf8(text);
}

TEST(MaxSeverity, OfNothingStopsEveryLine) {
    TestSource source;
    source.Values[TV_W("MaxSeverity")] = TV_W("NONE");
    GetLoggerConfig().Refresh();
    const LogCapture log;
    Log(SeverityCrit, [](WideStream& line) { line << TV_W("x"); });
    EXPECT_TRUE(log.Lines().empty());
}

TEST(MaxSeverity, IsReadOncePerPeriod) {
    TestSource source;
    source.Values[TV_W("MaxSeverity")] = TV_W("ERR");
    GetLoggerConfig().Refresh();
    EXPECT_EQ(1, source.Asked);
    EXPECT_EQ(WideText(TV_W("Logger")), source.LastSection);
    source.Values[TV_W("MaxSeverity")] = TV_W("DBG3");
    EXPECT_FALSE(IsSeverityEnabled(SeverityWarn));
    EXPECT_EQ(1, source.Asked);
    detail::LastSeverityTick.store(TickCount() - 5002);
    EXPECT_TRUE(IsSeverityEnabled(SeverityDbg3));
    EXPECT_EQ(2, source.Asked);
    EXPECT_TRUE(IsSeverityEnabled(SeverityDbg3));
    EXPECT_EQ(2, source.Asked) << "the next period has begun";
}

// --- Cached values -------------------------------------------------------------------------------

TEST(LoggerSettings, AreKeptUntilTheNextRefresh) {
    TestSource source;
    source.Values[TV_W("Path")] = TV_W("first");
    LoggerConfig& config = GetLoggerConfig();
    WideText value;
    EXPECT_TRUE(config.ReadString(TV_W("Path"), value));
    EXPECT_EQ(WideText(TV_W("first")), value);
    source.Values[TV_W("Path")] = TV_W("second");
    EXPECT_TRUE(config.ReadString(TV_W("Path"), value));
    EXPECT_EQ(WideText(TV_W("first")), value);
    EXPECT_EQ(1, source.Asked);
    config.Refresh();
    EXPECT_TRUE(config.ReadString(TV_W("Path"), value));
    EXPECT_EQ(WideText(TV_W("second")), value);
}

TEST(LoggerSettings, AreKeptWhenAbsentToo) {
    TestSource source;
    LoggerConfig& config = GetLoggerConfig();
    WideText value = TV_W("untouched");
    uint32_t number = 77;
    EXPECT_FALSE(config.ReadString(TV_W("Path"), value));
    EXPECT_FALSE(config.ReadNumber(TV_W("Size"), number));
    source.Values[TV_W("Path")] = TV_W("late");
    source.Values[TV_W("Size")] = TV_W("5");
    EXPECT_FALSE(config.ReadString(TV_W("Path"), value));
    EXPECT_FALSE(config.ReadNumber(TV_W("Size"), number));
    EXPECT_EQ(2, source.Asked);
    EXPECT_EQ(WideText(TV_W("untouched")), value);
    EXPECT_EQ(77u, number);
    config.Refresh();
    EXPECT_TRUE(config.ReadString(TV_W("Path"), value));
    EXPECT_TRUE(config.ReadNumber(TV_W("Size"), number));
}

TEST(LoggerSettings, AreKeptAsNumbersApartFromStrings) {
    TestSource source;
    source.Values[TV_W("Size")] = TV_W("16");
    LoggerConfig& config = GetLoggerConfig();
    uint32_t number = 0;
    WideText text;
    EXPECT_TRUE(config.ReadNumber(TV_W("Size"), number));
    source.Values[TV_W("Size")] = TV_W("17");
    EXPECT_TRUE(config.ReadString(TV_W("Size"), text));
    EXPECT_TRUE(config.ReadNumber(TV_W("Size"), number));
    EXPECT_EQ(16u, number);
    EXPECT_EQ(WideText(TV_W("17")), text);
    EXPECT_EQ(2, source.Asked);
}

TEST(LoggerSettings, TellKeysApart) {
    TestSource source;
    source.Values[TV_W("a")] = TV_W("1");
    source.Values[TV_W("A")] = TV_W("2");
    WideText value;
    EXPECT_TRUE(GetLoggerConfig().ReadString(TV_W("a"), value));
    EXPECT_EQ(WideText(TV_W("1")), value);
    EXPECT_TRUE(GetLoggerConfig().ReadString(TV_W("A"), value));
    EXPECT_EQ(WideText(TV_W("2")), value);
}

// Asks the log for a setting while it is itself being asked.
class CuriousSource final : public SettingsSource {
public:
    HRESULT GetString(const WCHAR*, const WCHAR* key, WideText& out) override {
        WideText other;
        if (WideView(key) == TV_W("outer"))
            GetLoggerConfig().ReadString(TV_W("inner"), other);
        out = TV_W("value of ");
        out += key;
        return S_OK;
    }
    HRESULT GetNumber(const WCHAR*, const WCHAR*, uint32_t&) override { return E_ABORT; }
};

TEST(LoggerSettings, AreAskedForWithoutTheLock) {
    CuriousSource source;
    GetSettingsSources()->Add(&source);
    GetLoggerConfig().Refresh();
    WideText value;
    EXPECT_TRUE(GetLoggerConfig().ReadString(TV_W("outer"), value));
    EXPECT_EQ(WideText(TV_W("value of outer")), value);
    GetSettingsSources()->Remove(&source);
    GetLoggerConfig().Refresh();
}

} // namespace
} // namespace treevault
