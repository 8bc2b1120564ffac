// SPDX-License-Identifier: MIT
// Files that are appended to, and folders.
#include "platform/appendfile.h"
#include "platform/folders.h"

#include "support/openfiles.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

namespace treevault {
namespace {

using namespace tests;

class Appending : public testing::Test {
protected:
    const TemporaryFolder Folder;
    const std::filesystem::path Path = Folder.Path / u8"\u00E9 x.log";
    const WideText Name = TextOfPath(Path);
};

TEST_F(Appending, OpensWhatIsThereAndMakesWhatIsNot) {
    AppendFile first, second;
    EXPECT_FALSE(first);
    EXPECT_EQ(0u, first.Open(Name));
    EXPECT_TRUE(first);
    EXPECT_TRUE(first.WasCreated());
    EXPECT_EQ(0u, second.Open(Name));
    EXPECT_FALSE(second.WasCreated());
    EXPECT_EQ(0u, first.Append(TV_W("a")));
    EXPECT_EQ(0u, second.Append(TV_W("b")));
    EXPECT_EQ(0u, first.Append(TV_W("c")));
    EXPECT_EQ(0u, first.Append({}));
    EXPECT_EQ(6u, std::filesystem::file_size(Path));
}

TEST_F(Appending, ClosesTheFileWithTheLastHandle) {
    AppendFile file, copy;
    ASSERT_EQ(0u, file.Open(Name));
    ASSERT_EQ(0u, file.Duplicate(copy));
    EXPECT_TRUE(copy.WasCreated());
    file.Close();
    EXPECT_FALSE(file);
    EXPECT_TRUE(IsOpen(Path));
    EXPECT_EQ(0u, copy.Append(TV_W("a")));
    AppendFile moved = std::move(copy);
    EXPECT_TRUE(moved);
    moved.Close();
    EXPECT_FALSE(IsOpen(Path));
    file.Close();
    ASSERT_EQ(0u, file.Open(Name));
    EXPECT_FALSE(file.WasCreated());
}

TEST_F(Appending, TellsTheSizeBeyondFourGigabytes) {
    AppendFile file;
    ASSERT_EQ(0u, file.Open(Name));
    uint64_t size = 99;
    EXPECT_EQ(0u, file.ReadSize(size));
    EXPECT_EQ(0u, size);
    for (const uint64_t each : {uint64_t{0xFFFFFFFF}, uint64_t{0x100000003}}) {
        std::filesystem::resize_file(Path, each);
        EXPECT_EQ(0u, file.ReadSize(size));
        EXPECT_EQ(each, size);
    }
}

TEST_F(Appending, TellsFilesApart) {
    AppendFile first, again, other;
    ASSERT_EQ(0u, first.Open(Name));
    ASSERT_EQ(0u, again.Open(Name));
    ASSERT_EQ(0u, other.Open(Name + TV_W("2")));
    FileIdentity a, b, c;
    EXPECT_EQ(0u, first.ReadIdentity(a));
    EXPECT_EQ(0u, again.ReadIdentity(b));
    EXPECT_EQ(0u, other.ReadIdentity(c));
    EXPECT_EQ(a, b);
    EXPECT_NE(a, c);
    EXPECT_NE(FileIdentity(), a);
}

TEST_F(Appending, LetsOthersMoveAndDelete) {
    AppendFile file;
    ASSERT_EQ(0u, file.Open(Name));
    std::filesystem::rename(Path, Folder.Path / "moved");
    EXPECT_EQ(0u, file.Append(TV_W("a")));
    EXPECT_EQ(2u, std::filesystem::file_size(Folder.Path / "moved"));
    EXPECT_TRUE(std::filesystem::remove(Folder.Path / "moved"));
    EXPECT_EQ(0u, file.Append(TV_W("b")));
}

TEST_F(Appending, TellsWhyAFileCannotBeOpened) {
    AppendFile file;
    EXPECT_EQ(3u, file.Open(TextOfPath(Folder.Path / "none" / "x")));
    EXPECT_EQ(5u, file.Open(TextOfPath(Folder.Path)));
    EXPECT_FALSE(file);
}

TEST_F(Appending, MakesOneFolder) {
    MakeFolder(TextOfPath(Folder.Path / "a"));
    MakeFolder(TextOfPath(Folder.Path / "a"));
    EXPECT_TRUE(is_directory(Folder.Path / "a"));
    MakeFolder(TextOfPath(Folder.Path / "b" / "c"));
    EXPECT_FALSE(exists(Folder.Path / "b"));
    WriteFile(Path, "x");
    MakeFolder(Name);
    EXPECT_TRUE(is_regular_file(Path));
}

TEST(JoinPath, PutsOneSeparatorAndResolvesDots) {
    const struct {
        const WCHAR *Folder, *Name, *Joined;
    } cases[] = {
        {TV_W("D:\\L"), TV_W("a"), TV_W("D:\\L\\a")},
        {TV_W("D:\\L\\"), TV_W("a"), TV_W("D:\\L\\a")},
        {TV_W("D:\\"), TV_W("a"), TV_W("D:\\a")},
        {TV_W("L"), TV_W("a"), TV_W("L\\a")},
        {TV_W("\\L"), TV_W("a"), TV_W("\\L\\a")},
        {TV_W("\\\\s\\L"), TV_W("a"), TV_W("\\\\s\\L\\a")},
        {TV_W("D:\\L\\M"), TV_W(".."), TV_W("D:\\L")},
        {TV_W("D:\\x\\..\\L"), TV_W("a"), TV_W("D:\\L\\a")},
        {TV_W("D:\\x\\.\\L"), TV_W("a"), TV_W("D:\\x\\L\\a")},
        {TV_W("D:\\L"), TV_W(".a"), TV_W("D:\\L\\.a")},
        {TV_W("D:\\L"), TV_W("a."), TV_W("D:\\L\\a.")},
        {TV_W("D:\\L"), TV_W("a..b"), TV_W("D:\\L\\a..b")},
        {TV_W("D:/L"), TV_W("a"), TV_W("D:/L\\a")},
        {TV_W(""), TV_W("a"), TV_W("a")},
    };
    for (const auto& each : cases)
        EXPECT_EQ(ToUtf8(each.Joined), ToUtf8(JoinPath(each.Folder, each.Name)))
            << ToUtf8(each.Folder) << " + " << ToUtf8(each.Name);
}

TEST(JoinPath, HasNoLimitOfLength) {
    const WideText folder = TV_W("D:\\") + WideText(300, TV_W('x'));
    EXPECT_EQ(folder + TV_W("\\a"), JoinPath(folder, TV_W("a")));
}

} // namespace
} // namespace treevault
