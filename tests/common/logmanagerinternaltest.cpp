// SPDX-License-Identifier: MIT
// The log file of the process: its name, place, banner and registration, and the reports.
#include "common/debugreport.h"
#include "common/impersonation.h"
#include "common/logmanager.h"
#include "platform/process.h"

#include "support/logcapture.h"
#include "support/logfiles.h"
#include "support/settingsource.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

namespace treevault {
namespace {

using namespace tests;
using Reported = std::vector<std::string>;

const std::string Stars =
    "****************************************************************************************"
    "************\r\n";

TEST(LogManager, NamesTheLogAfterTheFileThatHoldsTheLibrary) {
    EXPECT_EQ(WideText(TV_W("common_internal_tests.log")), LogFileName());
}

TEST(LogManager, FormsTheBanner) {
    const ModulePlace place = ExecutablePlace();
    const std::string folder = ToUtf8(place.Directory + place.BaseName);
    const std::string banner = ToUtf8(LogBanner());
    const std::string module = Stars + "*** Module: " + folder;
    ASSERT_EQ(module, banner.substr(0, module.size()));
    const size_t base = banner.find(" (Base: 0x", module.size());
    ASSERT_NE(std::string::npos, base);
    const std::string digits = banner.substr(base + 10, 16);
    EXPECT_EQ(std::string::npos, digits.find_first_not_of("0123456789ABCDEF"));
    EXPECT_NE(std::string(16, '0'), digits);
    const std::string rest = banner.substr(base + 26);
    const std::string process =
        ")\r\n*** Version: 5.2.217.0\r\n*** Module description: TreeVault64\r\n*** Process: " +
        folder;
    EXPECT_EQ(process, rest.substr(0, process.size()));
    EXPECT_NE(std::string::npos,
              rest.find(" (Pid: " + std::to_string(CurrentProcessId()) +
                        ")\r\n*** Command line: " + ToUtf8(ProcessCommandLine()) + "\r\n" + Stars));
    EXPECT_TRUE(rest.ends_with("\r\n" + Stars));
    EXPECT_NE(std::string::npos, ToUtf8(ProcessCommandLine()).find("common_internal_tests"));
}

TEST(LogManager, WritesBesideTheLibraryWhatIsLogged) {
    const std::string mark = "mark of process " + std::to_string(CurrentProcessId());
    TestSource settings;
    settings.Set(TV_W("KeepOpenInterval"), TV_W("0")); // what other tests opened is closed
    Log(SeverityInfo, [&](WideStream& line) { line << ToWide(mark); });
    const auto file =
        PathOfText(ExecutablePlace().Directory) / "Logs" / "common_internal_tests.log";
    const std::string log = ReadLog(file);
    const size_t line = log.find(mark + "\r\n");
    ASSERT_NE(std::string::npos, line);
    EXPECT_NE(std::string::npos, log.substr(0, line).find(ToUtf8(LogBanner())));
}

TEST(LogManager, HasOneLogger) {
    EXPECT_NE(nullptr, GetFileLogger());
    EXPECT_EQ(GetFileLogger(), GetFileLogger());
}

TEST(LogManager, ReportsAFifthLogger) {
    ReportCapture reports;
    KeepingSink sinks[4];
    for (KeepingSink& sink : sinks)
        RegisterLogger(sink); // the log file has the first of the four places
    EXPECT_EQ((Reported{"LogManager: Too many loggers\n"}), reports.Take());
    const SeverityInForce severity(SeverityInfo);
    Log(SeverityInfo, [](WideStream& line) { line << TV_W("x"); });
    for (KeepingSink& sink : sinks)
        GetLoggerConfig().RemoveSink(&sink);
    EXPECT_EQ(1u, sinks[0].Lines.size());
    EXPECT_EQ(1u, sinks[1].Lines.size());
    EXPECT_EQ(1u, sinks[2].Lines.size());
    EXPECT_EQ(0u, sinks[3].Lines.size());
}

TEST(LogManager, RegistersALoggerOnceOnly) {
    KeepingSink sink;
    RegisterLogger(sink);
    RegisterLogger(sink);
    const SeverityInForce severity(SeverityInfo);
    Log(SeverityInfo, [](WideStream& line) { line << TV_W("x"); });
    GetLoggerConfig().RemoveSink(&sink);
    EXPECT_EQ(1u, sink.Lines.size());
}

TEST(DebugReport, HasALineFeedBehindIt) {
    ReportCapture reports;
    DebugReport([](WideStream& text) { text << TV_W("a ") << 5; });
    DebugReport([](WideStream& text) { text << TV_W("b\n"); });
    EXPECT_EQ((Reported{"a 5\n", "b\n\n"}), reports.Take());
}

TEST(DebugReport, FailsTowardsNobody) {
    ReportCapture reports;
    DebugReport([](WideStream&) { throw 1; });
    EXPECT_EQ(Reported(), reports.Take());
}

TEST(DebugReport, ShowsCodesAsResultsInLowerCase) {
    EXPECT_EQ(WideText(TV_W("(error: 0x8007000e)")), ErrorInReport(14));
    EXPECT_EQ(WideText(TV_W("(error: 0x80070005)")), ErrorInReport(5));
    EXPECT_EQ(WideText(TV_W("(error: 0xc0000abc)")), ErrorInReport(0xC0000ABC));
}

TEST(ImpersonationRevertGuard, DoesNothingToAThreadWithoutAToken) {
    ReportCapture reports;
    {
        const ImpersonationRevertGuard entered(true);
        const ImpersonationRevertGuard idle(false);
    }
    EXPECT_EQ(Reported(), reports.Take());
}

} // namespace
} // namespace treevault
