// SPDX-License-Identifier: MIT
// The log file where Windows has rules of its own: exclusive files, identities, the last error.
#include "common/filelogger.h"
#include "common/impersonation.h"

#include "support/logfiles.h"
#include "support/settingsource.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace treevault {
namespace {

using namespace tests;
using namespace std::chrono_literals;
using Reported = std::vector<std::string>;

class WindowsLogFile : public testing::Test {
protected:
    HANDLE OpenAlone() const {
        return CreateFileW(Path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    }

    const TemporaryFolder Folder;
    const std::filesystem::path Path = Folder.Path / "x.log";
    TestSource Settings;
    ReportCapture Reports;
};

TEST_F(WindowsLogFile, ThatSomebodyHoldsIsTriedFourTimes) {
    const HANDLE alone = OpenAlone();
    FileLogger logger(Path.wstring(), L"B");
    const auto start = std::chrono::steady_clock::now();
    logger.Write(L"a", -1);
    const auto duration = std::chrono::steady_clock::now() - start;
    CloseHandle(alone);
    EXPECT_GE(duration, 28ms) << "three waits of 10 ms";
    EXPECT_EQ((Reported{"FileLogger: cannot open log file '" + ToUtf8(Path.wstring()) +
                        "' (error: 0x80070020)\n"}),
              Reports.Take());
    EXPECT_EQ("", ReadBytes(Path));
}

TEST_F(WindowsLogFile, ThatIsLetGoInTimeGetsTheLine) {
    const HANDLE alone = OpenAlone();
    std::jthread holder([&] {
        std::this_thread::sleep_for(12ms);
        CloseHandle(alone);
    });
    FileLogger logger(Path.wstring(), L"B");
    logger.Write(L"a", -1);
    EXPECT_EQ("Ba", ReadLog(Path));
    EXPECT_EQ(Reported(), Reports.Take());
}

TEST_F(WindowsLogFile, LeavesTheLastErrorAlone) {
    FileLogger logger((Folder.Path / "none" / "x.log").wstring(), L"");
    SetLastError(4711);
    logger.Write(L"a", -1);
    EXPECT_EQ(4711u, GetLastError());
    EXPECT_EQ(1u, Reports.Take().size());
}

// --- Impersonation -------------------------------------------------------------------------------

bool HasToken() {
    HANDLE token = nullptr;
    if (!OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token))
        return false;
    CloseHandle(token);
    return true;
}

TEST(ImpersonationRevertGuard, TakesTheTokenOffForItsLife) {
    ReportCapture reports;
    ASSERT_TRUE(ImpersonateSelf(SecurityImpersonation));
    ASSERT_TRUE(HasToken());
    {
        const ImpersonationRevertGuard guard(true);
        EXPECT_FALSE(HasToken());
    }
    EXPECT_TRUE(HasToken());
    {
        const ImpersonationRevertGuard guard(false);
        EXPECT_TRUE(HasToken());
    }
    RevertToSelf();
    EXPECT_EQ(Reported(), reports.Take());
}

} // namespace
} // namespace treevault
