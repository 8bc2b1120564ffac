// SPDX-License-Identifier: MIT
// The log file: what is written, how long the file stays open, where the banner stands, and what
// becomes of a file that is deleted or moved.
#include "common/logfile.h"

#include "support/openfiles.h"

namespace treevault::tests {
namespace {

// --- Lines ---------------------------------------------------------------------------------------

TEST_F(LogFile, HasTheUnitsOfTheLinesAndNoMark) {
    FileLogger logger(Name, TV_W(""));
    Write(logger, TV_W("a\x20AC\r\n"));
    Write(logger, TV_W("b"));
    EXPECT_EQ(std::string("a\0\xAC\x20\r\0\n\0b\0", 10), ReadBytes(Path));
}

TEST_F(LogFile, TakesANegativeLengthForATerminatedText) {
    FileLogger logger(Name, TV_W(""));
    logger.Write(TV_W("abc"), -1);
    logger.Write(TV_W("defg"), 2);
    logger.Write(TV_W("h"), 0);
    EXPECT_EQ("abcde", ReadLog(Path));
}

TEST_F(LogFile, IsMadeByTheFirstLine) {
    FileLogger logger(Name, TV_W("B"));
    EXPECT_FALSE(exists(Path));
    Write(logger, TV_W("a"));
    EXPECT_TRUE(exists(Path));
}

TEST_F(LogFile, KeepsWhatIsThere) {
    WriteFile(Path, std::string_view("o\0", 2));
    FileLogger logger(Name, TV_W(""));
    Write(logger, TV_W("a"));
    EXPECT_EQ("oa", ReadLog(Path));
}

TEST_F(LogFile, LiesInTheLogDirectoryUnlessItsNameHoldsAPath) {
    Settings.Set(TV_W("Path"), PathText(Folder.Path / "made" / "here"));
    FileLogger plain(TV_W("plain.log"), TV_W(""));
    Write(plain, TV_W("a"));
    EXPECT_EQ("a", ReadLog(Folder.Path / "made" / "here" / "plain.log"));
    WideText slashes = PathText(Folder.Path / "y.log");
    std::replace(slashes.begin(), slashes.end(), TV_W('\\'), TV_W('/'));
    FileLogger withPath(slashes, TV_W(""));
    Write(withPath, TV_W("b"));
    EXPECT_EQ("b", ReadLog(Folder.Path / "y.log"));
}

TEST_F(LogFile, HasEveryLineOfManyThreadsWhole) {
    if (!AppendsWhole())
        GTEST_SKIP() << "here the end of a file is looked up before a write, not with it";
    constexpr int threads = 8, lines = 300;
    for (const WCHAR* interval : {TV_W("3600000"), TV_W("0"), TV_W("1")}) {
        KeepOpen(interval);
        const auto path = Folder.Path / ToUtf8(interval);
        FileLogger logger(PathText(path), TV_W(""));
        {
            std::vector<std::jthread> writers;
            for (int thread = 0; thread != threads; ++thread)
                writers.emplace_back([&logger, thread] {
                    const WideText line(static_cast<size_t>(50 + thread),
                                        static_cast<WCHAR>(TV_W('a') + thread));
                    for (int count = 0; count != lines; ++count)
                        Write(logger, line + TV_W("\n"));
                });
        }
        std::vector<int> found(threads);
        std::istringstream log(ReadLog(path));
        for (std::string line; std::getline(log, line);) {
            const auto thread = static_cast<size_t>(line.empty() ? 99 : line[0] - 'a');
            ASSERT_LT(thread, found.size()) << line;
            EXPECT_EQ(std::string(50 + thread, line[0]), line);
            ++found[thread];
        }
        EXPECT_EQ(std::vector<int>(threads, lines), found);
    }
    EXPECT_EQ(Reported(), Reports.Take());
}

// --- The handle ----------------------------------------------------------------------------------

TEST_F(LogFile, StaysOpenForTheInterval) {
    KeepOpen(TV_W("3600000"));
    FileLogger logger(Name, TV_W(""));
    Write(logger, TV_W("a"));
    EXPECT_TRUE(IsOpen(Path));
    PassInterval(logger, TV_W("b"));
    EXPECT_TRUE(IsOpen(Path)) << "nothing but a later line closes it";
    logger.End();
    EXPECT_FALSE(IsOpen(Path));
}

TEST_F(LogFile, StaysOpenByDefault) {
    FileLogger logger(Name, TV_W(""));
    Write(logger, TV_W("a"));
    EXPECT_TRUE(IsOpen(Path));
}

TEST_F(LogFile, IsClosedBehindEachLineWithoutAnInterval) {
    KeepOpen(TV_W("3600000"));
    FileLogger logger(Name, TV_W(""));
    Write(logger, TV_W("a"));
    KeepOpen(TV_W("0"));
    Write(logger, TV_W("b"));
    EXPECT_FALSE(IsOpen(Path));
    Write(logger, TV_W("c"));
    EXPECT_EQ("abc", ReadLog(Path));
}

TEST_F(LogFile, GivesHandlesThatOutliveTheCachedOne) {
    KeepOpen(TV_W("3600000"));
    FileLogger logger(Name, TV_W(""));
    {
        const AppendFile file = logger.AcquireHandle();
        ASSERT_TRUE(file);
        KeepOpen(TV_W("0"));
        Write(logger, TV_W("a"));
        EXPECT_TRUE(IsOpen(Path));
        EXPECT_EQ(0u, file.Append(TV_W("b")));
    }
    EXPECT_FALSE(IsOpen(Path));
    EXPECT_EQ("ab", ReadLog(Path));
}

TEST_F(LogFile, TakesNoLineAfterItsEnd) {
    FileLogger logger(Name, TV_W("B"));
    logger.End();
    Write(logger, TV_W("a"));
    KeepOpen(TV_W("0"));
    Write(logger, TV_W("b"));
    EXPECT_FALSE(exists(Path));
    EXPECT_EQ(Reported(), Reports.Take());
}

// --- The banner ----------------------------------------------------------------------------------

TEST_F(LogFile, BeginsWithTheBanner) {
    FileLogger logger(Name, TV_W("B\r\n"));
    Write(logger, TV_W("a"));
    Write(logger, TV_W("b"));
    EXPECT_EQ("B\r\nab", ReadLog(Path));
}

TEST_F(LogFile, GetsNoBannerWhenItIsOpenedAgain) {
    KeepOpen(TV_W("0"));
    FileLogger logger(Name, TV_W("B"));
    Write(logger, TV_W("a"));
    Write(logger, TV_W("b"));
    EXPECT_EQ("Bab", ReadLog(Path));
    PassInterval(logger, TV_W("c"));
    EXPECT_EQ("Babc", ReadLog(Path));
}

TEST_F(LogFile, GetsNoBannerWhenItWasEmptied) {
    KeepOpen(TV_W("0"));
    FileLogger logger(Name, TV_W("B"));
    Write(logger, TV_W("a"));
    std::filesystem::resize_file(Path, 0);
    Write(logger, TV_W("b"));
    EXPECT_EQ("b", ReadLog(Path));
}

TEST_F(LogFile, GetsTheBannerOfEachLogger) {
    FileLogger first(Name, TV_W("B"));
    Write(first, TV_W("a"));
    FileLogger second(Name, TV_W("C"));
    Write(second, TV_W("b"));
    Write(first, TV_W("c"));
    EXPECT_EQ("BaCbc", ReadLog(Path));
}

// --- Deletion and moving -------------------------------------------------------------------------

TEST_F(LogFile, IsMadeAgainWithABannerAfterItsDeletion) {
    KeepOpen(TV_W("3600000"));
    FileLogger logger(Name, TV_W("B"));
    Write(logger, TV_W("a"));
    for (const WCHAR* line : {TV_W("b"), TV_W("c"), TV_W("d")}) {
        std::filesystem::remove(Path);
        PassInterval(logger, line);
        EXPECT_EQ("B" + ToUtf8(line), ReadLog(Path));
    }
}

TEST_F(LogFile, IsMadeAgainForTheNextLineWithoutAnInterval) {
    KeepOpen(TV_W("0"));
    FileLogger logger(Name, TV_W("B"));
    for (const WCHAR* line : {TV_W("a"), TV_W("b"), TV_W("c")}) {
        Write(logger, line);
        EXPECT_EQ("B" + ToUtf8(line), ReadLog(Path));
        std::filesystem::remove(Path);
    }
}

TEST_F(LogFile, IsFollowedUntilTheIntervalHasPassed) {
    KeepOpen(TV_W("3600000"));
    FileLogger logger(Name, TV_W("B"));
    Write(logger, TV_W("a"));
    const auto moved = Folder.Path / "moved.log";
    std::filesystem::rename(Path, moved);
    Write(logger, TV_W("b"));
    EXPECT_FALSE(exists(Path));
    PassInterval(logger, TV_W("c"));
    EXPECT_EQ("Bab", ReadLog(moved));
    EXPECT_EQ("Bc", ReadLog(Path));
}

TEST_F(LogFile, GetsTheBannerWhenAnotherFileTookItsPlace) {
    KeepOpen(TV_W("3600000"));
    FileLogger logger(Name, TV_W("B"));
    Write(logger, TV_W("a"));
    const auto moved = Folder.Path / "moved.log";
    std::filesystem::rename(Path, moved);
    WriteFile(Path, std::string_view("o\0", 2));
    PassInterval(logger, TV_W("b"));
    EXPECT_EQ("Ba", ReadLog(moved));
    EXPECT_EQ("oBb", ReadLog(Path));
    std::filesystem::rename(Path, Folder.Path / "second.log");
    std::filesystem::rename(moved, Path);
    PassInterval(logger, TV_W("c"));
    EXPECT_EQ("BaBc", ReadLog(Path)) << "a file that was there before is another one too";
}

TEST_F(LogFile, IsNoticedMissingAsTimePasses) {
    KeepOpen(TV_W("100"));
    FileLogger logger(Name, TV_W("B"));
    Write(logger, TV_W("a"));
    std::filesystem::rename(Path, Folder.Path / "moved.log");
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    Write(logger, TV_W("b"));
    EXPECT_EQ("Bb", ReadLog(Path));
}

} // namespace
} // namespace treevault::tests
