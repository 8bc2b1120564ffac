// SPDX-License-Identifier: MIT
// Message modules: what both platforms make of the same files.
#include "platform/messagemodule.h"

#include "support/messagefiles.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

namespace treevault {
namespace {

using namespace tests;

class MessageModules : public testing::Test {
protected:
    // Whether a file with these bytes loads.
    bool Load(std::string_view bytes, const char* name = "some.dll") {
        Module.Release(); // which lets go of its file
        WriteFile(Folder.Path / name, bytes);
        return LoadFile(Folder.Path / name);
    }

    bool LoadFile(const std::filesystem::path& path) {
        Module.Release();
        Error = 0;
        const bool loaded = Module.Load(TextOfPath(path), Error);
        EXPECT_EQ(loaded, Module.IsLoaded());
        EXPECT_EQ(loaded, Error == 0);
        return loaded;
    }

    // The text of a message; "<none>" for none.
    std::string Text(uint32_t id) const {
        WideText text = TV_W("<none>");
        const bool found = Module.ReadText(id, text);
        EXPECT_EQ(found, text != TV_W("<none>"));
        return ToUtf8(text);
    }

    const TemporaryFolder Folder; // outlives the module, which may keep the file open
    MessageModule Module;
    uint32_t Error = 0;
};

TEST_F(MessageModules, HaveTheirTexts) {
    ASSERT_TRUE(
        Load(MakeMessageModule({{0x80040201, "First.\r\n"}, {0x80040305, "Second"}, {7, "x"}})));
    EXPECT_EQ("First.\r\n", Text(0x80040201));
    EXPECT_EQ("Second", Text(0x80040305));
    EXPECT_EQ("x", Text(7));
    EXPECT_EQ("<none>", Text(0x80040202));
    EXPECT_EQ("<none>", Text(0));
    EXPECT_EQ("<none>", Text(0xFFFFFFFF));
}

TEST_F(MessageModules, MayBeOf32Bits) {
    ASSERT_TRUE(Load(MakeModule({{0, MakeMessageTable({{5, "five"}})}}, ImageKind::Pe32)));
    EXPECT_EQ("five", Text(5));
}

TEST_F(MessageModules, MayHaveNarrowTexts) {
    ASSERT_TRUE(
        Load(MakeMessageModule({{1, "narrow\r\n", false}, {2, "abcd", false}, {3, "wide"}})));
    EXPECT_EQ("narrow\r\n", Text(1));
    EXPECT_EQ("abcd", Text(2));
    EXPECT_EQ("wide", Text(3));
}

TEST_F(MessageModules, HaveBlocksOfConsecutiveNumbers) {
    ByteWriter table;
    table.Put32(2, 100, 102, 28, 200, 200, 52);
    for (const char text : {'a', 'b', 'c', 'd'}) {
        table.Put16(8, 1, text, 0);
    }
    ASSERT_EQ(28u + 4 * 8, table.Size());
    ASSERT_TRUE(Load(MakeModule({{0, table.Str()}})));
    EXPECT_EQ("a", Text(100));
    EXPECT_EQ("b", Text(101));
    EXPECT_EQ("c", Text(102));
    EXPECT_EQ("d", Text(200));
    for (const uint32_t id : {99u, 103u, 199u, 201u})
        EXPECT_EQ("<none>", Text(id));
}

TEST_F(MessageModules, LeaveInsertsAsTheyAre) {
    ASSERT_TRUE(Load(MakeMessageModule({{1, "%1 of %2!d! is 10%99 x"}})));
    EXPECT_EQ("%1 of %2!d! is 10%99 x", Text(1));
}

TEST_F(MessageModules, HaveLineEndsAndTabsInTheirTexts) {
    const std::pair<const char*, const char*> texts[] = {
        {"a\nb", "a\r\nb"},   {"a\rb", "a\r\nb"},         {"a\r\nb\n\r", "a\r\nb\r\n\r\n"},
        {"a%nb", "a\r\nb"},   {"%rx%ty", "\rx\ty"},       {"a%0b", "a"},
        {"100%%n", "100%%n"}, {"a% b%!c%.", "a% b%!c%."}, {"%1!s!%*", "%1!s!%*"},
    };
    for (const auto& [stored, text] : texts) {
        for (const bool wide : {true, false}) {
            ASSERT_TRUE(Load(MakeMessageModule({{1, stored, wide}})));
            EXPECT_EQ(text, Text(1)) << stored;
        }
    }
}

TEST_F(MessageModules, HaveNoMessageWithAnEmptyText) {
    ASSERT_TRUE(Load(MakeMessageModule({{1, ""}, {2, "", false}, {3, "%0"}})));
    EXPECT_EQ("<none>", Text(1));
    EXPECT_EQ("<none>", Text(2));
    EXPECT_EQ("<none>", Text(3));
}

TEST_F(MessageModules, GiveTheTextOfAnyLanguageIfThereIsNoBetterOne) {
    ASSERT_TRUE(Load(MakeModule({{0x0436, MakeMessageTable({{1, "Afrikaans"}})}})));
    EXPECT_EQ("Afrikaans", Text(1));
}

TEST_F(MessageModules, AreLookedForByTheTextOfTheirPath) {
    const auto folder = Folder.Path / u8"\u00E9 \u20AC";
    std::filesystem::create_directory(folder);
    WriteFile(folder / "a.b.dll", MakeMessageModule({{1, "found"}}));
    ASSERT_TRUE(LoadFile(folder / "a.b.dll"));
    EXPECT_EQ("found", Text(1));
}

TEST_F(MessageModules, GetAnExtensionIfTheirNameHasNone) {
    WriteFile(Folder.Path / "some.dll", MakeMessageModule({{1, "found"}}));
    ASSERT_TRUE(LoadFile(Folder.Path / "some"));
    EXPECT_EQ("found", Text(1));
}

TEST_F(MessageModules, WithoutResourcesAreEmpty) {
    ASSERT_TRUE(Load(MakeImage("")));
    EXPECT_EQ("<none>", Text(1));
}

TEST_F(MessageModules, DoNotLoadFromWhatIsNoImage) {
    EXPECT_FALSE(LoadFile(Folder.Path / "missing.dll"));
    EXPECT_EQ(2u, Error);
    EXPECT_FALSE(LoadFile(Folder.Path / "missing" / "some.dll"));
    EXPECT_FALSE(LoadFile(Folder.Path));
    EXPECT_FALSE(Load(""));
    EXPECT_FALSE(Load("MZ"));
    EXPECT_FALSE(Load("some text that is longer than the first header of an image, by and by"));
    const std::string image = MakeMessageModule({{1, "x"}});
    EXPECT_FALSE(Load(image.substr(0, HeadersAt + 30)));
    EXPECT_EQ("<none>", Text(1));
}

TEST_F(MessageModules, CanBeMovedAndReleased) {
    ASSERT_TRUE(Load(MakeMessageModule({{1, "x"}})));
    MessageModule other(std::move(Module));
    EXPECT_EQ("<none>", Text(1));
    Module = std::move(other);
    EXPECT_EQ("x", Text(1));
    EXPECT_FALSE(other.IsLoaded()); // NOLINT: what is moved from is empty
    Module.Release();
    EXPECT_FALSE(Module.IsLoaded());
    EXPECT_EQ("<none>", Text(1));
    Module.Release();
}

} // namespace
} // namespace treevault
