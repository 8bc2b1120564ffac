// SPDX-License-Identifier: MIT
// Log files that are too big or cannot be opened.
#include "common/logfile.h"

#include "support/openfiles.h"

namespace treevault::tests {
namespace {

// --- The size ------------------------------------------------------------------------------------

class LogFileSize : public LogFile {
protected:
    LogFileSize() {
        KeepOpen(TV_W("0"));
        Limit(TV_W("1"));
        WriteFile(Path, "");
    }

    void Limit(const WCHAR* megabytes) { Settings.Set(TV_W("LogFileSizeThresholdMB"), megabytes); }

    // Whether a line arrives in a file of this size.
    bool TakesALineAt(uint64_t size) {
        std::filesystem::resize_file(Path, size);
        Write(Logger, TV_W("abc"));
        return std::filesystem::file_size(Path) == size + 6;
    }

    Reported TooBig(const char* sizes) const {
        return {"FileLogger: log file " + Quoted(Path) + " is too big (" + sizes + ")\n"};
    }

    FileLogger Logger{Name, TV_W("")};
};

TEST_F(LogFileSize, IsTooBigAtTheThreshold) {
    EXPECT_TRUE(TakesALineAt(1048575));
    EXPECT_EQ(Reported(), Reports.Take());
    EXPECT_FALSE(TakesALineAt(1048576));
    EXPECT_EQ(TooBig("size=1MB threshold=1MB"), Reports.Take());
    EXPECT_FALSE(IsOpen(Path));
}

TEST_F(LogFileSize, IsReportedOnceUntilItFits) {
    EXPECT_FALSE(TakesALineAt(3 * 1048576 + 5));
    EXPECT_EQ(TooBig("size=3MB threshold=1MB"), Reports.Take());
    EXPECT_FALSE(TakesALineAt(4 * 1048576));
    EXPECT_EQ(Reported(), Reports.Take());
    EXPECT_TRUE(TakesALineAt(10));
    EXPECT_FALSE(TakesALineAt(2 * 1048576));
    EXPECT_EQ(TooBig("size=2MB threshold=1MB"), Reports.Take());
}

TEST_F(LogFileSize, IsNotLookedAtWithoutAThreshold) {
    EXPECT_FALSE(TakesALineAt(1048576));
    EXPECT_EQ(1u, Reports.Take().size());
    Limit(TV_W("0"));
    EXPECT_TRUE(TakesALineAt(1048576));
    Limit(TV_W("1"));
    EXPECT_FALSE(TakesALineAt(1048576));
    EXPECT_EQ(Reported(), Reports.Take()) << "the report of before still holds";
}

TEST_F(LogFileSize, FitsWhenTheThresholdRises) {
    EXPECT_FALSE(TakesALineAt(1048576));
    Limit(TV_W("2"));
    EXPECT_TRUE(TakesALineAt(1048576));
}

TEST_F(LogFileSize, IsTooBigAtAGigabyteByDefault) {
    Settings.Values.erase(TV_W("LogFileSizeThresholdMB"));
    GetLoggerConfig().Refresh();
    EXPECT_TRUE(TakesALineAt(1023 * 1048576ull));
    EXPECT_FALSE(TakesALineAt(1024 * 1048576ull));
    EXPECT_EQ(TooBig("size=1024MB threshold=1024MB"), Reports.Take());
}

TEST_F(LogFileSize, IsCountedBeyondFourGigabytes) {
    Limit(TV_W("2"));
    EXPECT_FALSE(TakesALineAt(4096 * 1048576ull + 1));
    EXPECT_EQ(TooBig("size=4096MB threshold=2MB"), Reports.Take());
}

TEST_F(LogFileSize, StopsTheBannerToo) {
    std::filesystem::resize_file(Path, 1048576);
    FileLogger logger(Name, TV_W("B"));
    Write(logger, TV_W("a"));
    EXPECT_EQ(1048576u, std::filesystem::file_size(Path));
    std::filesystem::resize_file(Path, 0);
    Write(logger, TV_W("b"));
    EXPECT_EQ("Bb", ReadLog(Path));
}

TEST_F(LogFileSize, IsLookedAtWhenTheFileIsOpened) {
    KeepOpen(TV_W("3600000"));
    EXPECT_TRUE(TakesALineAt(0));
    EXPECT_TRUE(TakesALineAt(2 * 1048576));
    PassInterval(Logger, TV_W("x"));
    EXPECT_EQ(TooBig("size=2MB threshold=1MB"), Reports.Take());
    std::filesystem::resize_file(Path, 0);
    EXPECT_FALSE(TakesALineAt(0)) << "no handle is there until the next opening";
    PassInterval(Logger, TV_W("x"));
    EXPECT_EQ("x", ReadLog(Path));
}

// --- Failures ------------------------------------------------------------------------------------

TEST_F(LogFile, InAFolderThatIsNotThereIsReported) {
    const auto path = Folder.Path / "none" / "x.log";
    FileLogger logger(PathText(path), TV_W("B"));
    Write(logger, TV_W("a"));
    EXPECT_EQ(
        (Reported{"FileLogger: cannot open log file " + Quoted(path) + " (error: 0x80070003)\n"}),
        Reports.Take());
}

TEST_F(LogFile, ThatIsAFolderIsReported) {
    std::filesystem::create_directory(Path);
    FileLogger logger(Name, TV_W("B"));
    Write(logger, TV_W("a"));
    EXPECT_EQ(
        (Reported{"FileLogger: cannot open log file " + Quoted(Path) + " (error: 0x80070005)\n"}),
        Reports.Take());
}

TEST_F(LogFile, ThatCannotBeOpenedIsTriedAgainAfterTheInterval) {
    KeepOpen(TV_W("3600000"));
    const auto folder = Folder.Path / "late";
    FileLogger logger(PathText(folder / "x.log"), TV_W("B"));
    Write(logger, TV_W("a"));
    std::filesystem::create_directory(folder);
    Write(logger, TV_W("b"));
    EXPECT_EQ(1u, Reports.Take().size());
    EXPECT_FALSE(exists(folder / "x.log"));
    PassInterval(logger, TV_W("c"));
    EXPECT_EQ("Bc", ReadLog(folder / "x.log"));
}

TEST_F(LogFile, ThatCannotBeOpenedIsTriedForEachLineWithoutAnInterval) {
    KeepOpen(TV_W("0"));
    FileLogger logger(PathText(Folder.Path / "none" / "x.log"), TV_W("B"));
    Write(logger, TV_W("a"));
    Write(logger, TV_W("b"));
    EXPECT_EQ(2u, Reports.Take().size());
}

TEST_F(LogFile, NamesTheLogDirectoryWithItsOwnSeparators) {
    const auto file = Folder.Path / "file";
    WriteFile(file, "");
    Settings.Set(TV_W("Path"), TextOfPath(file / "below"));
    FileLogger logger(TV_W("x.log"), TV_W(""));
    Write(logger, TV_W("a"));
    EXPECT_EQ((Reported{"FileLogger: cannot open log file " + Quoted(file / "below" / "x.log") +
                        " (error: 0x80070003)\n"}),
              Reports.Take());
}

} // namespace
} // namespace treevault::tests
