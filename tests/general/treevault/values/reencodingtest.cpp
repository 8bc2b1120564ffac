// SPDX-License-Identifier: MIT
// Text converted between UTF-8 and UTF-16, as scalars and in arrays.
#include "general/treevault/values/valuetesting.h"

namespace treevault::tests {
namespace {

using namespace std::string_view_literals;

// Both ways, as a scalar and as the second of three elements.
void ExpectBothWays(std::string_view utf8, const Bytes& utf16) {
    const Bytes narrow = A(utf8), wide = utf16 + Units({0});
    ExpectConverts(Value(VtStringA, narrow), VtStringW, wide);
    ExpectConverts(Value(VtStringW, wide), VtStringA, narrow);
    ExpectConverts(Value(VtStringAArray, A("a") + narrow + A("")), VtStringWArray,
                   U("a") + wide + U(""));
    ExpectConverts(Value(VtStringWArray, U("a") + wide + U("")), VtStringAArray,
                   A("a") + narrow + A(""));
}

TEST(Reencoding, EveryLengthOfASequence) {
    ExpectBothWays("\x7F", Units({0x7F}));
    ExpectBothWays("\xC2\x80", Units({0x80}));
    ExpectBothWays("\xDF\xBF", Units({0x7FF}));
    ExpectBothWays("\xE0\xA0\x80", Units({0x800}));
    ExpectBothWays("\xEF\xBF\xBF", Units({0xFFFF}));
    ExpectBothWays("\xF0\x90\x80\x80", Units({0xD800, 0xDC00}));
    ExpectBothWays("\xF4\x8F\xBF\xBF", Units({0xDBFF, 0xDFFF}));
    ExpectBothWays("gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x8C\xB3!",
                   Units({'g', 'r', 0xFC, 0xDF, ' ', 0x20AC, ' ', 0xD83C, 0xDF33, '!'}));
}

// ASCII is moved many characters at a time: all lengths that a few blocks make, alone and with one
// other character anywhere.
TEST(Reencoding, EveryLengthWithAnotherCharacterAnywhere) {
    for (size_t length = 1; length <= 100; ++length) {
        std::string ascii;
        for (size_t at = 0; at < length; ++at)
            ascii += static_cast<char>(1 + (at * 7 + length) % 127);
        const Bytes wide = U(ascii).substr(0, length * sizeof(WCHAR));
        ExpectBothWays(ascii, wide);
        for (size_t at = 0; at < length; ++at) {
            std::string text = ascii;
            text.replace(at, 1, at % 2 == 0 ? "\xE2\x82\xAC" : "\xC4\x80");
            Bytes units = wide;
            units.replace(at * sizeof(WCHAR), sizeof(WCHAR),
                          Units({at % 2 == 0 ? 0x20ACu : 0x0100u}));
            ExpectBothWays(text, units);
        }
    }
}

// Around the sizes at which buffers end.
TEST(Reencoding, LongTexts) {
    for (const size_t length : {127u, 128u, 129u, 1000u, 1023u, 1024u, 1025u}) {
        const std::string ascii(length, 'x');
        const Bytes wide = U(ascii).substr(0, length * sizeof(WCHAR));
        ExpectBothWays(ascii, wide);
        for (const size_t at : {size_t{0}, length / 2, length - 1}) {
            std::string text = ascii;
            text.replace(at, 1, "\xE2\x82\xAC");
            Bytes units = wide;
            units.replace(at * sizeof(WCHAR), sizeof(WCHAR), Units({0x20AC}));
            ExpectBothWays(text, units);
        }
    }
}

TEST(Reencoding, AScalarIsTakenWholeWithItsNuls) {
    ExpectConverts(Value(VtStringA, A("a\0b\0"sv)), VtStringW, U("a\0b\0"sv));
    ExpectConverts(Value(VtStringW, U("a\0b\0"sv)), VtStringA, A("a\0b\0"sv));
    ExpectConverts(Value(VtStringA, A("\xC3\xBC\0\xC3\xBC"sv)), VtStringW,
                   Units({0xFC, 0, 0xFC, 0}));
    ExpectConverts(Value(VtStringA, A("a\0b"sv)), VtStringA, A("a\0b"sv));
}

// What is malformed becomes U+FFFD, one for each maximal part.
TEST(Reencoding, MalformedNarrowTextDoesNotFail) {
    ExpectConverts(Value(VtStringA, A("a\xFFz")), VtStringW, Units({'a', 0xFFFD, 'z', 0}));
    ExpectConverts(Value(VtStringA, A("\x80")), VtStringW, Units({0xFFFD, 0}));
    ExpectConverts(Value(VtStringA, A("\xE2\x82")), VtStringW, Units({0xFFFD, 0}));
    ExpectConverts(Value(VtStringAArray, A("\xC3") + A("b")), VtStringWArray,
                   Units({0xFFFD, 0, 'b', 0}));
}

TEST(Reencoding, LoneSurrogatesBecomeReplacementCharacters) {
    ExpectConverts(Value(VtStringW, Units({'a', 0xD800, 'z', 0})), VtStringA, A("a\xEF\xBF\xBDz"));
    ExpectConverts(Value(VtStringW, Units({0xDC00, 0})), VtStringA, A("\xEF\xBF\xBD"));
    ExpectConverts(Value(VtStringW, Units({0xDC00, 0xD800, 0})), VtStringA,
                   A("\xEF\xBF\xBD\xEF\xBF\xBD"));
}

TEST(Reencoding, ATextThatDoesNotFitIsNotWrittenInParts) {
    const Bytes narrow = A("gr\xC3\xBC\xC3\x9F"), wide = Units({'g', 'r', 0xFC, 0xDF, 0});
    const Attempt toWide(Value(VtStringA, narrow), VtStringW, 9);
    EXPECT_EQ(CodeText(TooSmall), CodeText(toWide.Code));
    EXPECT_EQ(10u, toWide.Size);
    EXPECT_EQ(Bytes(9, '?'), toWide.Buffer);
    const Attempt toNarrow(Value(VtStringW, wide), VtStringA, 6);
    EXPECT_EQ(CodeText(TooSmall), CodeText(toNarrow.Code));
    EXPECT_EQ(7u, toNarrow.Size);
    EXPECT_EQ(Bytes(6, '?'), toNarrow.Buffer);
}

TEST(Reencoding, WideTextAtAnOddAddress) {
    const Bytes wide = Units({0x20AC, 0xFC, 0});
    const Bytes shifted = "?" + wide;
    char buffer[16];
    uint64_t size = sizeof buffer;
    EXPECT_TRUE(Returns(S_OK, AcnConvertData, VtStringW, shifted.data() + 1, wide.size(), VtStringA,
                        buffer, &size));
    EXPECT_EQ(A("\xE2\x82\xAC\xC3\xBC"), Bytes(buffer, size));
}

} // namespace
} // namespace treevault::tests
