// SPDX-License-Identifier: MIT
// A log file in a folder of the test's own.
#ifndef TREEVAULT_TESTS_COMMON_LOGFILE_H
#define TREEVAULT_TESTS_COMMON_LOGFILE_H

#include "common/filelogger.h"

#include "support/logfiles.h"
#include "support/settingsource.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace treevault::tests {

using Reported = std::vector<std::string>;

class LogFile : public testing::Test {
protected:
    // The path as texts of the library have it.
    static WideText PathText(const std::filesystem::path& path) {
        WideText text = TextOfPath(path);
        std::replace(text.begin(), text.end(), TV_W('/'), TV_W('\\'));
        return text;
    }

    static void Write(FileLogger& logger, WideView text) {
        logger.Write(text.data(), static_cast<ptrdiff_t>(text.size()));
    }

    void KeepOpen(const WCHAR* milliseconds) {
        Settings.Set(TV_W("KeepOpenInterval"), milliseconds);
    }

    // Lets the next line open the file anew, and the ones behind it keep it.
    void PassInterval(FileLogger& logger, WideView nextLine) {
        KeepOpen(TV_W("1"));
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        Write(logger, nextLine);
        KeepOpen(TV_W("3600000"));
    }

    std::string Quoted(const std::filesystem::path& path) const {
        return "'" + ToUtf8(PathText(path)) + "'";
    }

    const TemporaryFolder Folder;
    const std::filesystem::path Path = Folder.Path / "x.log";
    const WideText Name = PathText(Path);
    TestSource Settings;
    ReportCapture Reports;
};

} // namespace treevault::tests

#endif
