// SPDX-License-Identifier: MIT
// Malformed UTF-8 on Linux against a plain model of the rule: the longest beginning of a
// well-formed sequence, or else one byte, becomes one U+FFFD.
#include "platform/encoding.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace treevault {
namespace {

struct Range {
    unsigned Low, High;
};

// Well-formed sequences, byte by byte; a range that begins at 0 ends the row.
constexpr std::array<std::array<Range, 4>, 9> rows{{
    {{{0x01, 0x7F}}},
    {{{0xC2, 0xDF}, {0x80, 0xBF}}},
    {{{0xE0, 0xE0}, {0xA0, 0xBF}, {0x80, 0xBF}}},
    {{{0xE1, 0xEC}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {{{0xED, 0xED}, {0x80, 0x9F}, {0x80, 0xBF}}},
    {{{0xEE, 0xEF}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {{{0xF0, 0xF0}, {0x90, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {{{0xF1, 0xF3}, {0x80, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {{{0xF4, 0xF4}, {0x80, 0x8F}, {0x80, 0xBF}, {0x80, 0xBF}}},
}};

// How many bytes at the start of `text` follow `row`, and whether they make it whole.
size_t MatchRow(const std::array<Range, 4>& row, const std::vector<unsigned>& text, size_t at,
                bool& whole) {
    size_t length = 0;
    while (length < 4 && row[length].Low != 0 && at + length < text.size() &&
           text[at + length] >= row[length].Low && text[at + length] <= row[length].High)
        ++length;
    whole = length == 4 || row[length].Low == 0;
    return length;
}

// The count of bytes of each character or replacement.
std::vector<size_t> ModelLengths(const std::vector<unsigned>& text, std::vector<bool>& wholes) {
    std::vector<size_t> lengths;
    for (size_t at = 0; at < text.size(); at += lengths.back()) {
        size_t best = 1;
        bool whole = false;
        for (const auto& row : rows) {
            bool matches = false;
            const size_t length = MatchRow(row, text, at, matches);
            whole = whole || (length != 0 && matches);
            best = std::max(best, length);
        }
        lengths.push_back(best);
        wholes.push_back(whole);
    }
    return lengths;
}

// Compares the units that replace, and how many units there are.
void Check(const std::vector<unsigned>& bytes) {
    std::vector<bool> wholes;
    const std::vector<size_t> lengths = ModelLengths(bytes, wholes);
    WideText shape;
    for (size_t index = 0; index < lengths.size(); ++index)
        shape.append(wholes[index] && lengths[index] == 4 ? 2 : 1,
                     wholes[index] ? TV_W('c') : WCHAR(0xFFFD));
    WideText converted = ToWide(std::string(bytes.begin(), bytes.end()));
    for (WCHAR& unit : converted)
        unit = unit == 0xFFFD ? unit : TV_W('c');
    ASSERT_EQ(shape, converted) << testing::PrintToString(bytes);
}

// Bytes at both sides of every limit of the rule.
constexpr unsigned limits[] = {0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0,
                               0xC1, 0xC2, 0xDF, 0xE0, 0xE1, 0xEC, 0xED, 0xEE, 0xEF,
                               0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xF8, 0xFC, 0xFE, 0xFF};

TEST(PosixEncoding, AllPairsOfBytesFollowTheModel) {
    for (unsigned first = 1; first < 0x100; ++first) {
        Check({first});
        for (unsigned second = 1; second < 0x100; ++second)
            Check({first, second});
    }
}

TEST(PosixEncoding, SequencesOfBytesAtTheLimitsFollowTheModel) {
    // U+FFFD itself would not be told from a replacement.
    for (const unsigned first : limits)
        for (const unsigned second : limits)
            for (const unsigned third : limits) {
                Check({first, second, third});
                for (const unsigned fourth : {0x41u, 0x80u, 0xBFu, 0xC2u, 0xF0u})
                    Check({first, second, third, fourth});
            }
}

TEST(PosixEncoding, OverlongFormsAndSurrogatesGoByteByByte) {
    const WCHAR mark = 0xFFFD;
    EXPECT_EQ(WideText(3, mark), ToWide("\xE0\x80\x80"));
    EXPECT_EQ(WideText(3, mark), ToWide("\xE0\x9F\xBF"));
    EXPECT_EQ(WideText(3, mark), ToWide("\xED\xA0\x80"));
    EXPECT_EQ(WideText(6, mark), ToWide("\xED\xA0\x80\xED\xB0\x80"));
    EXPECT_EQ(WideText(4, mark), ToWide("\xF0\x80\x80\x80"));
    EXPECT_EQ(WideText(4, mark), ToWide("\xF0\x8F\xBF\xBF"));
    EXPECT_EQ(WideText(4, mark), ToWide("\xF4\x90\x80\x80"));
}

} // namespace
} // namespace treevault
