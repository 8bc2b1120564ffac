// SPDX-License-Identifier: MIT
// Reading of ini files: what both platforms make of the same bytes.
#include "platform/inifile.h"

#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>

namespace treevault {
namespace {

using namespace tests;
using namespace std::string_view_literals;

std::optional<std::string> ReadValue(const std::filesystem::path& path, const WCHAR* section,
                                     const WCHAR* key) {
    WideText value = TV_W("untouched");
    if (ReadIniValue(TextOfPath(path), section, key, value))
        return ToUtf8(value);
    EXPECT_EQ(WideText(TV_W("untouched")), value);
    return std::nullopt;
}

// The value of "Key" in "Section"; null for none.
struct IniCase {
    const char* Name;
    std::string_view Content;
    const char* Value;

    friend void PrintTo(const IniCase& value, std::ostream* out) { *out << value.Name; }
};

class IniFile : public testing::TestWithParam<IniCase> {};

TEST_P(IniFile, IsRead) {
    const TemporaryFolder folder;
    const TemporaryFile file(folder.Path / "some.ini", GetParam().Content);
    const auto value = ReadValue(file.Path, TV_W("Section"), TV_W("Key"));
    EXPECT_EQ(GetParam().Value != nullptr, value.has_value());
    EXPECT_EQ(GetParam().Value ? GetParam().Value : "", value.value_or(""));
}

const IniCase lines[] = {
    {"Plain", "[Section]\r\nKey=abc\r\n", "abc"},
    {"LineFeedsAlone", "[Section]\nKey=abc\n", "abc"},
    {"NoLineEndAtTheEnd", "[Section]\nKey=abc", "abc"},
    {"EmptyLines", "\n\n[Section]\n\n \n\nKey=abc\n", "abc"},
    {"EmptyFile", "", nullptr},
    {"NoSection", "Key=abc\n", nullptr},
    {"OtherSection", "[Other]\nKey=abc\n", nullptr},
    {"OtherKey", "[Section]\nKeys=abc\nKe=abc\n", nullptr},
    {"SectionAfterAnother", "[Other]\nKey=no\n[Section]\nKey=abc\n[More]\nKey=no\n", "abc"},
    {"KeyOfTheNextSection", "[Section]\nOther=no\n[More]\nKey=no\n", nullptr},
    {"SectionInOtherCase", "[SECTION]\nKey=abc\n", "abc"},
    {"KeyInOtherCase", "[section]\nkEY=abc\n", "abc"},
    {"FirstKeyWins", "[Section]\nKey=first\nKey=second\n", "first"},
    {"FirstKeyWinsInAnyCase", "[Section]\nKEY=first\nKey=second\n", "first"},
    {"FirstKeyWinsWhenEmpty", "[Section]\nKey=\nKey=second\n", nullptr},
    {"FirstSectionWins", "[Section]\nKey=first\n[Section]\nKey=second\n", "first"},
    {"FirstSectionIsTheOneSearched", "[Section]\nOther=x\n[Section]\nKey=second\n", nullptr},
    {"EmptyValue", "[Section]\nKey=\n", nullptr},
    {"BlankValue", "[Section]\nKey=   \t \n", nullptr},
    {"KeyWithoutEquals", "[Section]\nKey\n", nullptr},
    {"CommentLine", "[Section]\n;Key=no\n ;Key=no\nKey=abc\n", "abc"},
    {"CommentedSection", ";[Section]\nKey=no\n", nullptr},
    {"SemicolonInTheValue", "[Section]\nKey=a;b ; c\n", "a;b ; c"},
    {"EqualsInTheValue", "[Section]\nKey=a=b=\n", "a=b="},
    {"BracketsInTheValue", "[Section]\nKey=[a]\n", "[a]"},
    {"HashIsNoComment", "[Section]\n#Key=no\nKey=abc\n", "abc"},
    {"IndentedSection", "  [Section]\n\t[Other]\nKey=no\n", nullptr},
    {"IndentedLines", "\t [Section]\n \tKey=abc\n", "abc"},
    {"TextBehindTheSection", "[Section] more\nKey=abc\n", "abc"},
    {"SpaceBehindTheSection", "[Section]  \nKey=abc\n", "abc"},
    {"SpaceInsideTheBrackets", "[ Section\t]\nKey=abc\n", "abc"},
    {"NoClosingBracket", "[Section\nKey=abc\n", nullptr},
    {"NoClosingBracketInTheSection", "[Section]\n[Other\nKey=abc\n", "abc"},
    {"ManyClosingBrackets", "[Section]]\nKey=abc\n", nullptr},
    {"EndOfFileMark", "[Section]\n\x1A\nKey=abc\x1A\n", "abc"},
    {"NulEndsTheValue", "[Section]\nOther=\0x\nKey=ab\0c\n"sv, "ab"},
    {"OtherWhiteSpace", "[Section]\n\v\fKey=\v abc\f\n", "abc"},
    {"SpaceAround", "[Section]\nKey \t=\t  a b \t \n", "a b"},
    {"DoubleQuotes", "[Section]\nKey=\"abc\"\n", "abc"},
    {"SingleQuotes", "[Section]\nKey='abc'\n", "abc"},
    {"SpaceInsideQuotes", "[Section]\nKey=  \" a b \"  \n", " a b "},
    {"OnePairOfQuotes", "[Section]\nKey=\"\"abc\"\"\n", "\"abc\""},
    {"QuotesInsideQuotes", "[Section]\nKey='\"abc\"'\n", "\"abc\""},
    {"QuotesThatDiffer", "[Section]\nKey='abc\"\n", "'abc\""},
    {"QuoteAtTheStart", "[Section]\nKey=\"abc\n", "\"abc"},
    {"QuoteAtTheEnd", "[Section]\nKey=abc\"\n", "abc\""},
    {"QuoteAlone", "[Section]\nKey=\"\n", "\""},
    {"QuotesAlone", "[Section]\nKey=\"\"\n", nullptr},
    {"QuotesInTheMiddle", "[Section]\nKey=a \"b\" c\n", "a \"b\" c"},
    {"Utf16",
     "\xFF\xFE[\0S\0e\0c\0t\0i\0o\0n\0]\0\r\0\n\0K\0e\0y\0=\0\xAC\x20\x3D\xD8\x00\xDE\r\0\n\0"sv,
     "\xE2\x82\xAC\xF0\x9F\x98\x80"},
    {"Utf16WithNothing", "\xFF\xFE", nullptr},
    {"VisibleAscii", "[Section]\nKey=\x01\x02\x7F!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~\n",
     "\x01\x02\x7F!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~"},
};

INSTANTIATE_TEST_SUITE_P(Lines, IniFile, testing::ValuesIn(lines),
                         [](const auto& test) { return test.param.Name; });

TEST(IniFileLimits, LongValuesAreReadWhole) {
    const TemporaryFolder folder;
    for (const size_t length : {258u, 259u, 260u, 261u, 518u, 519u, 520u, 521u, 5000u}) {
        const std::string value(length, 'x');
        const TemporaryFile file(folder.Path / "long.ini", "[Section]\nKey=" + value + "\n");
        EXPECT_EQ(value, ReadValue(file.Path, TV_W("Section"), TV_W("Key"))) << length;
    }
}

TEST(IniFileLimits, FilesAreReadAnewAtEachCall) {
    const TemporaryFolder folder;
    const auto path = folder.Path / "changing.ini";
    EXPECT_EQ(std::nullopt, ReadValue(path, TV_W("Section"), TV_W("Key")));
    WriteFile(path, "[Section]\nKey=one\n");
    EXPECT_EQ("one", ReadValue(path, TV_W("Section"), TV_W("Key")));
    WriteFile(path, "[Section]\nKey=another\n");
    EXPECT_EQ("another", ReadValue(path, TV_W("Section"), TV_W("Key")));
    std::filesystem::remove(path);
    EXPECT_EQ(std::nullopt, ReadValue(path, TV_W("Section"), TV_W("Key")));
}

TEST(IniFileLimits, WhatIsNoFileHasNoValues) {
    const TemporaryFolder folder;
    EXPECT_EQ(std::nullopt, ReadValue(folder.Path, TV_W("Section"), TV_W("Key")));
    EXPECT_EQ(std::nullopt, ReadValue(folder.Path / "no" / "x.ini", TV_W("Section"), TV_W("Key")));
    EXPECT_EQ(std::nullopt, ReadValue("", TV_W("Section"), TV_W("Key")));
}

TEST(IniFileLimits, PathsMayHaveEitherSeparatorAndAnyLetter) {
    const TemporaryFolder folder;
    const auto path = folder.Path / u8"d\u00E9j\u00E0 \u20AC" / "x.ini";
    std::filesystem::create_directory(path.parent_path());
    WriteFile(path, "[Section]\nKey=abc\n");
    WideText text = TextOfPath(path);
    for (const WCHAR separator : {TV_W('\\'), TV_W('/')}) {
        for (WCHAR& unit : text)
            if (unit == TV_W('\\') || unit == TV_W('/'))
                unit = separator;
        WideText value;
        EXPECT_TRUE(ReadIniValue(text, TV_W("Section"), TV_W("Key"), value)) << ToUtf8(text);
        EXPECT_EQ(WideText(TV_W("abc")), value);
    }
}

TEST(IniFileLimits, ManyLinesAreSearched) {
    const TemporaryFolder folder;
    std::string content;
    for (int section = 0; section < 100; ++section) {
        content += "[S" + std::to_string(section) + "]\n";
        for (int key = 0; key < 100; ++key)
            content += "K" + std::to_string(key) + "=" + std::to_string(section * 100 + key) + "\n";
    }
    const TemporaryFile file(folder.Path / "many.ini", content);
    EXPECT_EQ("0", ReadValue(file.Path, TV_W("S0"), TV_W("K0")));
    EXPECT_EQ("5042", ReadValue(file.Path, TV_W("S50"), TV_W("K42")));
    EXPECT_EQ("9999", ReadValue(file.Path, TV_W("S99"), TV_W("K99")));
    EXPECT_EQ(std::nullopt, ReadValue(file.Path, TV_W("S99"), TV_W("K100")));
}

} // namespace
} // namespace treevault
