// SPDX-License-Identifier: MIT
// Message modules that are damaged or made to harm: they are refused as a whole, and cost no more
// than their size.
#include "platform/posix/messagefile.h"

#include "platform/encoding.h"
#include "support/messagefiles.h"

#include <gtest/gtest.h>

#include <limits>

namespace treevault {
namespace {

using namespace tests;

std::string TextIn(const MessageFile& file, uint32_t id) {
    WideText text = TV_W("<none>");
    file.ReadText(id, text);
    return ToUtf8(text);
}

// "<refused>" for what is no sound module.
std::string TextIn(const std::string& bytes, uint32_t id) {
    const auto file = MessageFile::Parse(bytes);
    return file ? TextIn(*file, id) : "<refused>";
}

void PutAt(std::string& bytes, size_t at, uint64_t number, size_t size) {
    ASSERT_LE(at + size, bytes.size());
    for (size_t i = 0; i < size; ++i, number >>= 8)
        bytes[at + i] = static_cast<char>(number & 0xFF);
}

void Put32At(std::string& bytes, size_t at, uint64_t number) {
    PutAt(bytes, at, number, 4);
}

void Put16At(std::string& bytes, size_t at, uint64_t number) {
    PutAt(bytes, at, number, 2);
}

// Where things lie in a PE32+ file of ours.
constexpr size_t OptionalHeaderAt = HeadersAt + 24;
constexpr size_t DirectoryCountAt = OptionalHeaderAt + 108;
constexpr size_t ResourceDirectoryAt = OptionalHeaderAt + 112 + 2 * 8;
constexpr size_t SectionAt = OptionalHeaderAt + 240;
constexpr size_t FirstEntry = ResourcesAt + 16;         // of the types
constexpr size_t NameEntry = ResourcesAt + 24 + 16;     // of the names
constexpr size_t LanguageEntry = ResourcesAt + 48 + 16; // of the languages
constexpr size_t DataAt = LanguageEntry + 8;            // of one language
constexpr size_t TableAt = DataAt + 16;

// One message, number 5, "five".
class DamagedModule : public testing::Test {
protected:
    DamagedModule() { EXPECT_EQ("five", TextIn(Bytes, 5)); }

    void ExpectRefused() const { EXPECT_EQ("<refused>", TextIn(Bytes, 5)); }
    void ExpectNone() const { EXPECT_EQ("<none>", TextIn(Bytes, 5)); }

    std::string Bytes = MakeMessageModule({{5, "five"}});
};

TEST_F(DamagedModule, IsCutOffAnywhere) {
    for (size_t size = 0; size < Bytes.size(); ++size)
        ASSERT_EQ("<refused>", TextIn(Bytes.substr(0, size), 5)) << size;
}

TEST_F(DamagedModule, HasOneBitWrong) {
    size_t refused = 0;
    for (size_t bit = 0; bit < 8 * Bytes.size(); ++bit) {
        std::string bytes = Bytes;
        bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ 1 << bit % 8);
        const auto file = MessageFile::Parse(bytes);
        refused += file ? 0 : 1;
        // What is not refused can be asked for any message.
        for (const uint32_t id : {0u, 4u, 5u, 6u, 0x80000005u, 0xFFFFFFFFu}) {
            if (file)
                TextIn(*file, id);
        }
    }
    EXPECT_LT(0u, refused);
}

TEST_F(DamagedModule, HasBytesOfAnotherKind) {
    for (size_t at = 0; at < Bytes.size(); ++at) {
        for (const char other : {'\0', '\x7F', '\x80', '\xFF'}) {
            std::string bytes = Bytes;
            bytes[at] = other;
            TextIn(bytes, 5);
            for (size_t i = at; i < std::min(at + 4, bytes.size()); ++i)
                bytes[i] = other;
            TextIn(bytes, 5);
        }
    }
}

// --- Headers ----------------------------------------------------------------------------------

TEST_F(DamagedModule, HasAnotherMark) {
    Bytes[0] = 'N';
    ExpectRefused();
}

TEST_F(DamagedModule, HasHeadersBeyondItsEnd) {
    for (const uint64_t at : {Bytes.size(), Bytes.size() - 23, size_t{0xFFFFFFFF}}) {
        Put32At(Bytes, 0x3C, at);
        ExpectRefused();
    }
}

TEST_F(DamagedModule, HasAnotherSignature) {
    Bytes[HeadersAt + 2] = 1;
    ExpectRefused();
}

TEST_F(DamagedModule, HasAnotherKindOfImage) {
    Put16At(Bytes, OptionalHeaderAt, 0x107);
    ExpectRefused();
}

TEST_F(DamagedModule, HasAnOptionalHeaderOfAnotherSize) {
    for (const uint64_t size : {0, 1, 111, 112 + 23, 0xFFFF}) {
        Put16At(Bytes, HeadersAt + 20, size);
        ExpectRefused();
    }
}

TEST_F(DamagedModule, HasMoreSectionsThanBytes) {
    Put16At(Bytes, HeadersAt + 6, 0xFFFF);
    ExpectRefused();
}

TEST_F(DamagedModule, MayHave96SectionsAndNoMore) {
    const std::string section = Bytes.substr(SectionAt, 40);
    // The table of sections stands at the end now.
    Put16At(Bytes, HeadersAt + 20, Bytes.size() - OptionalHeaderAt);
    for (int i = 0; i < 96; ++i)
        Bytes += section;
    Put16At(Bytes, HeadersAt + 6, 96);
    EXPECT_EQ("five", TextIn(Bytes, 5));
    Bytes += section;
    Put16At(Bytes, HeadersAt + 6, 97);
    ExpectRefused();
}

TEST_F(DamagedModule, HasASectionBeyondItsEnd) {
    for (const uint64_t at : {0x201u, 0x400u, 0xFFFFFFFFu}) {
        Put32At(Bytes, SectionAt + 20, at);
        ExpectRefused();
    }
}

TEST_F(DamagedModule, HasASectionLargerThanItself) {
    for (const uint64_t size : {0x201u, 0x80000000u, 0xFFFFFFFFu}) {
        Put32At(Bytes, SectionAt + 16, size);
        ExpectRefused();
    }
}

TEST_F(DamagedModule, HasResourcesOutsideOfItsSections) {
    for (const uint64_t address : {1u, 0xFFFu, 0x1100u, 0x2000u, 0xFFFFFFFFu}) {
        Put32At(Bytes, ResourceDirectoryAt, address);
        ExpectRefused();
    }
}

TEST_F(DamagedModule, HasResourcesLargerThanTheirSection) {
    for (const uint64_t size : {0x201u, 0xFFFFFFFFu, 15u, 0u}) {
        Put32At(Bytes, ResourceDirectoryAt + 4, size);
        ExpectRefused();
    }
}

TEST_F(DamagedModule, SaysThatItHasNoResources) {
    Put32At(Bytes, ResourceDirectoryAt, 0);
    ExpectNone();
    Put32At(Bytes, ResourceDirectoryAt, ResourcesBase);
    Put32At(Bytes, DirectoryCountAt, 2);
    ExpectNone();
    Put32At(Bytes, DirectoryCountAt, 3);
    EXPECT_EQ("five", TextIn(Bytes, 5));
}

TEST_F(DamagedModule, MayTellNoSizeOfASectionInMemory) {
    Put32At(Bytes, SectionAt + 8, 0);
    EXPECT_EQ("five", TextIn(Bytes, 5));
}

// --- Resource directories ---------------------------------------------------------------------

TEST_F(DamagedModule, HasResourcesOfOtherTypesAndNames) {
    for (const size_t at : {FirstEntry, NameEntry}) {
        const std::string before = Bytes;
        Put32At(Bytes, at, 12);
        ExpectNone();
        Put32At(Bytes, at, 0x8000000B); // a name, not a number
        ExpectNone();
        Bytes = before;
    }
}

TEST_F(DamagedModule, HasMoreResourcesThanBytes) {
    for (const size_t directory : {ResourcesAt + 0u, ResourcesAt + 24u, ResourcesAt + 48u}) {
        for (const size_t count : {directory + 12, directory + 14}) {
            const std::string before = Bytes;
            Put16At(Bytes, count, 0xFFFF);
            ExpectRefused();
            Bytes = before;
        }
    }
}

TEST_F(DamagedModule, HasDirectoriesThatPointOutside) {
    for (const size_t entry : {FirstEntry, NameEntry}) {
        const std::string before = Bytes;
        for (const uint64_t offset : {0xFFFFFFFFu, 0x80000200u, 0x80000000u + 0x7FFFFFF0u}) {
            Put32At(Bytes, entry + 4, offset);
            ExpectRefused();
        }
        Bytes = before;
    }
}

// The tree has three levels; a directory that contains itself is met where data is expected.
TEST_F(DamagedModule, HasDirectoriesThatContainThemselves) {
    const std::string before = Bytes;
    Put32At(Bytes, FirstEntry + 4, 0x80000000); // the types are the names: there is no name 1
    ExpectNone();
    Put32At(Bytes, FirstEntry, 11);
    Bytes = before;
    Put32At(Bytes, NameEntry + 4, 0x80000000 + 24); // the names are the languages
    ExpectRefused();
    Bytes = before;
    Put32At(Bytes, LanguageEntry + 4, 0x80000000 + 48);
    ExpectRefused();
}

TEST_F(DamagedModule, HasDataWhereADirectoryBelongs) {
    Put32At(Bytes, FirstEntry + 4, 24);
    ExpectRefused();
}

TEST_F(DamagedModule, HasDataOutside) {
    for (const uint64_t address : {0u, 0xFFFu, 0x2000u, 0xFFFFFFFFu}) {
        Put32At(Bytes, DataAt, address);
        ExpectRefused();
    }
    Put32At(Bytes, DataAt, ResourcesBase + TableAt - ResourcesAt);
    for (const uint64_t size : {0u, 3u, 15u, 0x201u, 0xFFFFFFFFu}) {
        Put32At(Bytes, DataAt + 4, size);
        ExpectRefused();
    }
}

// --- Message tables -----------------------------------------------------------------------------

TEST_F(DamagedModule, HasMoreBlocksThanBytes) {
    for (const uint64_t count : {2u, 100u, 0x55555556u, 0xFFFFFFFFu}) {
        Put32At(Bytes, TableAt, count);
        ExpectRefused();
    }
    Put32At(Bytes, TableAt, 0);
    ExpectNone();
}

TEST_F(DamagedModule, HasABlockOfMoreMessagesThanBytes) {
    Put32At(Bytes, TableAt + 8, 6);
    ExpectRefused();
    Put32At(Bytes, TableAt + 4, 0);
    Put32At(Bytes, TableAt + 8, 0xFFFFFFFF);
    ExpectRefused();
}

TEST_F(DamagedModule, HasABlockThatEndsBeforeItBegins) {
    Put32At(Bytes, TableAt + 8, 4);
    ExpectRefused();
}

TEST_F(DamagedModule, HasABlockOutside) {
    for (const uint64_t offset : {28u, 29u, 32u, 33u, 0xFFFFFFFFu}) {
        Put32At(Bytes, TableAt + 12, offset);
        ExpectRefused();
    }
}

TEST_F(DamagedModule, HasAMessageOfAWrongLength) {
    for (const uint64_t length : {0u, 3u, 5u, 17u, 20u, 0xFFFFu}) {
        Put16At(Bytes, TableAt + 16, length);
        ExpectRefused();
    }
    Put16At(Bytes, TableAt + 16, 6);
    EXPECT_EQ("f", TextIn(Bytes, 5));
}

TEST_F(DamagedModule, HasAMessageOfAnUnknownKind) {
    Put16At(Bytes, TableAt + 18, 2);
    ExpectRefused();
}

// Each of many languages, or of many blocks, has the same long table: what is looked at is bounded
// by the size of the file, not by the product.
TEST(HostileModule, RepeatsItsMessages) {
    std::vector<MessageSpec> messages;
    for (uint32_t id = 0; id < 20000; ++id)
        messages.push_back({id, ""});
    std::vector<TableSpec> tables{{0, MakeMessageTable(messages)}};
    for (uint32_t language = 1; language < 20000; ++language)
        tables.push_back({language, ""});
    std::string bytes = MakeModule(tables);
    const size_t data = LanguageEntry + 8 * tables.size();
    for (size_t i = 1; i < tables.size(); ++i)
        bytes.replace(data + 16 * i, 16, bytes, data, 16);
    EXPECT_EQ("<refused>", TextIn(bytes, 5));
}

TEST(HostileModule, RepeatsABlock) {
    ByteWriter table;
    constexpr uint32_t count = 20000;
    table.Put32(count);
    for (uint32_t i = 0; i < count; ++i)
        table.Put32(0, count - 1, 4 + 12 * count);
    for (uint32_t i = 0; i < count; ++i)
        table.Put16(4, 1);
    EXPECT_EQ("<refused>", TextIn(MakeModule({{0, table.Str()}}), 5));
}

// --- What is unusual, but sound ---------------------------------------------------------------

TEST(MessageFile, ChoosesNeutralThenEnglishThenAny) {
    const auto table = [](uint32_t language, const char* text) {
        return TableSpec{language, MakeMessageTable({{5, text}})};
    };
    const TableSpec any = table(0x407, "any"), british = table(0x809, "British"),
                    american = table(0x409, "American"), neutral = table(0, "neutral");
    EXPECT_EQ("neutral", TextIn(MakeModule({any, british, american, neutral}), 5));
    EXPECT_EQ("American", TextIn(MakeModule({any, british, american}), 5));
    EXPECT_EQ("British", TextIn(MakeModule({any, british}), 5));
    EXPECT_EQ("any", TextIn(MakeModule({any, table(0x40C, "other")}), 5));
}

TEST(MessageFile, TakesAnotherLanguageWhereTheBetterOneHasNoText) {
    const std::string bytes =
        MakeModule({{0x407, MakeMessageTable({{5, "any"}, {6, "six"}, {7, "seven"}})},
                    {0, MakeMessageTable({{5, "neutral"}, {6, ""}})}});
    EXPECT_EQ("neutral", TextIn(bytes, 5));
    EXPECT_EQ("six", TextIn(bytes, 6));
    EXPECT_EQ("seven", TextIn(bytes, 7));
}

TEST(MessageFile, MayHoldTheHighestNumber) {
    constexpr uint32_t last = std::numeric_limits<uint32_t>::max();
    EXPECT_EQ("last", TextIn(MakeMessageModule({{last, "last"}}), last));
    EXPECT_EQ("<none>", TextIn(MakeMessageModule({{last, "last"}}), last - 1));
}

TEST(MessageFile, ReadsNarrowTextsAsLatin1) {
    EXPECT_EQ("caf\xC3\xA9", TextIn(MakeMessageModule({{1, "caf\xE9", false}}), 1));
}

TEST(MessageFile, EndsATextAtAZero) {
    EXPECT_EQ("a", TextIn(MakeMessageModule({{1, std::string("a\0b", 3)}}), 1));
    EXPECT_EQ("a", TextIn(MakeMessageModule({{1, std::string("a\0b", 3), false}}), 1));
}

TEST(MessageFile, EndsATextWithItsMessage) {
    ByteWriter table;
    table.Put32(1, 1, 2, 16);
    table.Put16(8, 1, 'a', 'b', 6, 0);
    table.Put("yz");
    const std::string bytes = MakeModule({{0, table.Str()}});
    EXPECT_EQ("ab", TextIn(bytes, 1));
    EXPECT_EQ("yz", TextIn(bytes, 2));
}

TEST(MessageFile, LeavesTheTextAloneIfThereIsNone) {
    const auto file = MessageFile::Parse(MakeMessageModule({{1, "x"}}));
    WideText text = TV_W("untouched");
    EXPECT_FALSE(file->ReadText(2, text));
    EXPECT_EQ(WideText(TV_W("untouched")), text);
}

} // namespace
} // namespace treevault
