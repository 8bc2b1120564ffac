// SPDX-License-Identifier: MIT
// Ini files on Linux: encodings, and files that are none.
#include "platform/inifile.h"

#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace treevault {
namespace {

using namespace tests;
using namespace std::string_view_literals;

class PosixIniFile : public testing::Test {
protected:
    std::string Read(std::string_view content) {
        const TemporaryFile file(Folder.Path / "some.ini", content);
        return Read(TextOfPath(file.Path));
    }

    std::string Read(const WideText& path) {
        WideText value = TV_W("<none>");
        ReadIniValue(path, TV_W("Section"), TV_W("Key"), value);
        return ToUtf8(value);
    }

    const TemporaryFolder Folder;
};

TEST_F(PosixIniFile, IsReadAsUtf8WithAndWithoutAMark) {
    EXPECT_EQ("\xC3\xA9\xE2\x82\xAC", Read("[Section]\nKey=\xC3\xA9\xE2\x82\xAC\n"));
    EXPECT_EQ("\xC3\xA9", Read("\xEF\xBB\xBF[Section]\nKey=\xC3\xA9\n"));
    EXPECT_EQ("a\xEF\xBF\xBDz", Read("[Section]\nKey=a\xFFz\n"));
}

TEST_F(PosixIniFile, LeavesOutAnOddByteOfUtf16) {
    EXPECT_EQ("1", Read("\xFF\xFE[\0S\0e\0c\0t\0i\0o\0n\0]\0\n\0K\0e\0y\0=\0\x31\0\n"sv));
    EXPECT_EQ("<none>", Read("\xFF\xFE["sv));
}

TEST_F(PosixIniFile, LinesMayEndWithACarriageReturn) {
    EXPECT_EQ("abc", Read("[Section]\rKey=abc\r"));
}

TEST_F(PosixIniFile, OtherKindsOfFilesAreNotRead) {
    const auto pipe = Folder.Path / "pipe.ini";
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    EXPECT_EQ("<none>", Read(TextOfPath(pipe))) << "and nobody waits for a writer";
    std::fstream writer(pipe, std::ios::in | std::ios::out);
    ASSERT_TRUE(writer << "[Section]\nKey=abc\n" << std::flush);
    EXPECT_EQ("<none>", Read(TextOfPath(pipe)));
    EXPECT_EQ("<none>", Read(WideText(TV_W("/dev/zero"))));
}

TEST_F(PosixIniFile, FilesAreReadUpToALimit) {
    const auto path = Folder.Path / "large.ini";
    WriteFile(path, "[Section]\nKey=abc\n");
    std::filesystem::resize_file(path, 16u << 20);
    EXPECT_EQ("abc", Read(TextOfPath(path)));
    std::filesystem::resize_file(path, (16u << 20) + 1);
    EXPECT_EQ("<none>", Read(TextOfPath(path)));
    std::filesystem::resize_file(path, 1ull << 40);
    EXPECT_EQ("<none>", Read(TextOfPath(path)));
}

TEST_F(PosixIniFile, BackslashesOfAPathAreItsSeparators) {
    const TemporaryFile file(Folder.Path / "some.ini", "[Section]\nKey=abc\n");
    WideText path = TextOfPath(file.Path);
    for (WCHAR& unit : path)
        unit = unit == TV_W('/') ? TV_W('\\') : unit;
    EXPECT_EQ("abc", Read(path));
}

} // namespace
} // namespace treevault
