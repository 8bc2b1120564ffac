// SPDX-License-Identifier: MIT
// UTF-8 and UTF-16: well-formed text, malformed text, and the seams of the fast paths.
#include "platform/encoding.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace treevault {
namespace {

using namespace std::string_view_literals;

// A text in both forms. Units keep the tables readable on either platform.
struct Pair {
    std::string Utf8;
    WideText Wide;
};

Pair Make(std::string_view utf8, std::initializer_list<unsigned> units) {
    Pair pair{std::string(utf8), {}};
    for (const unsigned unit : units)
        pair.Wide.push_back(static_cast<WCHAR>(unit));
    return pair;
}

std::string Show(std::string_view bytes) {
    return testing::PrintToString(std::vector<int>(bytes.begin(), bytes.end()));
}

const std::vector<Pair>& WellFormed() {
    static const std::vector<Pair> pairs{
        Make("", {}),
        Make("\0"sv, {0}),
        Make("A", {0x41}),
        Make("\x7F", {0x7F}),
        Make("\xC2\x80", {0x80}),
        Make("\xC3\xA9", {0xE9}),
        Make("\xDF\xBF", {0x7FF}),
        Make("\xE0\xA0\x80", {0x800}),
        Make("\xE2\x82\xAC", {0x20AC}),
        Make("\xED\x9F\xBF", {0xD7FF}),
        Make("\xEE\x80\x80", {0xE000}),
        Make("\xEF\xBB\xBF", {0xFEFF}),
        Make("\xEF\xBF\xBD", {0xFFFD}),
        Make("\xEF\xBF\xBF", {0xFFFF}),
        Make("\xF0\x90\x80\x80", {0xD800, 0xDC00}),
        Make("\xF0\x9F\x98\x80", {0xD83D, 0xDE00}),
        Make("\xF4\x8F\xBF\xBF", {0xDBFF, 0xDFFF}),
    };
    return pairs;
}

// Malformed text of which both platforms make the same.
const std::vector<Pair>& Malformed() {
    static const std::vector<Pair> pairs{
        Make("\x80", {0xFFFD}),
        Make("\xBF", {0xFFFD}),
        Make("\x80\x80", {0xFFFD, 0xFFFD}),
        Make("\xC0\x80", {0xFFFD, 0xFFFD}),
        Make("\xC1\xBF", {0xFFFD, 0xFFFD}),
        Make("\xC2", {0xFFFD}),
        Make("\xC2\x41", {0xFFFD, 0x41}),
        Make("\xC2\xC2\x80", {0xFFFD, 0x80}),
        Make("\xE0", {0xFFFD}),
        Make("\xE0\xA0", {0xFFFD}),
        Make("\xE0\xA0\x41", {0xFFFD, 0x41}),
        Make("\xE2\x82", {0xFFFD}),
        Make("\xE2\x82\x41", {0xFFFD, 0x41}),
        Make("\xED\x9F", {0xFFFD}),
        Make("\xF0", {0xFFFD}),
        Make("\xF0\x90", {0xFFFD}),
        Make("\xF0\x90\x80", {0xFFFD}),
        Make("\xF0\x90\x80\x41", {0xFFFD, 0x41}),
        Make("\xF4\x8F\xBF", {0xFFFD}),
        Make("\xF5\x80\x80\x80", {0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD}),
        Make("\xF8\x88\x80\x80\x80", {0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD}),
        Make("\xFE\xFF", {0xFFFD, 0xFFFD}),
        Make("\x61\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63\x80\xBF\x64",
             {0x61, 0xFFFD, 0xFFFD, 0xFFFD, 0x62, 0xFFFD, 0x63, 0xFFFD, 0xFFFD, 0x64}),
    };
    return pairs;
}

TEST(Encoding, WellFormedTextGoesBothWays) {
    for (const Pair& pair : WellFormed()) {
        EXPECT_EQ(pair.Wide, ToWide(pair.Utf8)) << Show(pair.Utf8);
        EXPECT_EQ(pair.Utf8, ToUtf8(pair.Wide)) << Show(pair.Utf8);
    }
}

TEST(Encoding, EachIllFormedRunBecomesOneReplacement) {
    for (const Pair& pair : Malformed())
        EXPECT_EQ(pair.Wide, ToWide(pair.Utf8)) << Show(pair.Utf8);
}

TEST(Encoding, EachPrefixOfASequenceBecomesOneReplacement) {
    for (const Pair& pair : WellFormed())
        for (size_t length = 1; length < pair.Utf8.size(); ++length) {
            const std::string prefix = pair.Utf8.substr(0, length);
            EXPECT_EQ(Make("", {0xFFFD}).Wide, ToWide(prefix)) << Show(prefix);
            EXPECT_EQ(Make("", {0xFFFD, 0x78, 0x79, 0x7A}).Wide, ToWide(prefix + "xyz"))
                << Show(prefix);
            EXPECT_EQ(Make("", {0xFFFD}).Wide + pair.Wide, ToWide(prefix + pair.Utf8))
                << Show(prefix);
        }
}

// The fast paths take eight characters at a time: every sequence is put at every place of a block,
// with every length behind it.
TEST(Encoding, TheSurroundingsOfASequenceDoNotMatter) {
    const std::string ascii = "abcdefghijklmnopqrst";
    std::vector<Pair> pairs = WellFormed();
    pairs.insert(pairs.end(), Malformed().begin(), Malformed().end());
    for (const Pair& pair : pairs)
        for (size_t before = 0; before <= 17; ++before)
            for (size_t behind = 0; behind <= 17; ++behind) {
                const auto around = [&](auto text, const auto& inside) {
                    for (size_t at = 0; at < before; ++at)
                        text.push_back(static_cast<typename decltype(text)::value_type>(ascii[at]));
                    text += inside;
                    for (size_t at = 0; at < behind; ++at)
                        text.push_back(static_cast<typename decltype(text)::value_type>(ascii[at]));
                    return text;
                };
                // Where the text ends within the reach of a broken sequence, converters differ.
                const bool broken = ToUtf8(pair.Wide) != pair.Utf8;
                if (broken && (behind == 1 || behind == 2))
                    continue;
                const std::string utf8 = around(std::string(), pair.Utf8);
                const WideText wide = around(WideText(), pair.Wide);
                ASSERT_EQ(wide, ToWide(utf8)) << Show(utf8);
                if (!broken) {
                    ASSERT_EQ(utf8, ToUtf8(wide)) << Show(utf8);
                }
            }
}

TEST(Encoding, LoneSurrogatesBecomeReplacements) {
    const std::string mark = "\xEF\xBF\xBD";
    const std::string pair = "\xF0\x90\x80\x80";
    EXPECT_EQ(mark, ToUtf8(Make("", {0xD800}).Wide));
    EXPECT_EQ(mark, ToUtf8(Make("", {0xDBFF}).Wide));
    EXPECT_EQ(mark, ToUtf8(Make("", {0xDC00}).Wide));
    EXPECT_EQ(mark, ToUtf8(Make("", {0xDFFF}).Wide));
    EXPECT_EQ(mark + "A", ToUtf8(Make("", {0xD800, 0x41}).Wide));
    EXPECT_EQ(mark + mark, ToUtf8(Make("", {0xDC00, 0xD800}).Wide));
    EXPECT_EQ(mark + pair, ToUtf8(Make("", {0xD800, 0xD800, 0xDC00}).Wide));
    EXPECT_EQ(pair + mark, ToUtf8(Make("", {0xD800, 0xDC00, 0xDC00}).Wide));
}

TEST(Encoding, TextIsTakenByLength) {
    EXPECT_EQ(Make("", {0x61, 0, 0x62, 0}).Wide, ToWide("a\0b\0"sv));
    EXPECT_EQ("a\0b\0"sv, ToUtf8(Make("", {0x61, 0, 0x62, 0}).Wide));
    EXPECT_EQ(Make("", {0x61}).Wide, ToWide("abc"sv.substr(0, 1)));
    EXPECT_TRUE(ToWide({}).empty());
    EXPECT_TRUE(ToUtf8({}).empty());
}

TEST(Encoding, AppendingKeepsWhatIsThere) {
    WideText wide = TV_W("x");
    AppendWide("\xC3\xA9", wide);
    AppendWide("", wide);
    AppendWide("y", wide);
    EXPECT_EQ(Make("", {0x78, 0xE9, 0x79}).Wide, wide);
    std::string utf8 = "x";
    AppendUtf8(Make("", {0xE9}).Wide, utf8);
    AppendUtf8({}, utf8);
    AppendUtf8(TV_W("y"), utf8);
    EXPECT_EQ("x\xC3\xA9y", utf8);
}

TEST(Encoding, AppendingPieceByPieceAllocatesSeldom) {
    WideText wide;
    std::string utf8;
    size_t growths = 0;
    for (int piece = 0; piece < 100'000; ++piece) {
        const size_t before = wide.capacity() + utf8.capacity();
        AppendWide("ab", wide);
        AppendUtf8(TV_W("ab"), utf8);
        growths += wide.capacity() + utf8.capacity() != before;
    }
    EXPECT_EQ(200'000u, wide.size());
    EXPECT_EQ(200'000u, utf8.size());
    EXPECT_LT(growths, 100u);
}

// Long text may be converted in pieces; none may cut a character.
TEST(Encoding, LongTextHasNoSeams) {
    for (const Pair& pair : WellFormed())
        for (size_t before = 65'528; before <= 65'540; ++before) {
            const std::string utf8 = std::string(before, 'a') + pair.Utf8 + std::string(9, 'z');
            const WideText wide = WideText(before, TV_W('a')) + pair.Wide + WideText(9, TV_W('z'));
            ASSERT_TRUE(wide == ToWide(utf8)) << Show(pair.Utf8) << before;
            ASSERT_TRUE(utf8 == ToUtf8(wide)) << Show(pair.Utf8) << before;
        }
    EXPECT_TRUE(WideText(200'001, WCHAR(0xFFFD)) == ToWide(std::string(200'001, '\x80')));
}

} // namespace
} // namespace treevault
