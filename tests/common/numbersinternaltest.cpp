// SPDX-License-Identifier: MIT
// Text to integers.
#include "common/numbers.h"

#include "platform/widetext.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace treevault {
namespace {

// A text, how much of it is the number, and what each type makes of it.
struct NumberCase {
    const char* Text;
    size_t Length;
    int32_t Int32;
    uint32_t UInt32;
    int64_t Int64;
    uint64_t UInt64;

    friend void PrintTo(const NumberCase& value, std::ostream* out) {
        *out << '"' << value.Text << '"';
    }
};

class Number : public testing::TestWithParam<NumberCase> {
protected:
    template <class Integer, class Char>
    static void Check(Integer expected, const std::basic_string<Char>& text) {
        const Char* stop = nullptr;
        EXPECT_EQ(expected, ParseInteger<Integer>(text.c_str(), &stop));
        EXPECT_EQ(GetParam().Length, static_cast<size_t>(stop - text.c_str()));
    }
};

TEST_P(Number, IsParsed) {
    const std::string narrow = GetParam().Text;
    const WideText wide(narrow.begin(), narrow.end());
    Check(GetParam().Int32, narrow);
    Check(GetParam().Int32, wide);
    Check(GetParam().UInt32, narrow);
    Check(GetParam().UInt32, wide);
    Check(GetParam().Int64, narrow);
    Check(GetParam().Int64, wide);
    Check(GetParam().UInt64, narrow);
    Check(GetParam().UInt64, wide);
}

constexpr int32_t Max32 = INT32_MAX;
constexpr int32_t Min32 = INT32_MIN;
constexpr int64_t Max64 = INT64_MAX;
constexpr int64_t Min64 = INT64_MIN;
constexpr uint32_t All32 = UINT32_MAX;
constexpr uint64_t All64 = UINT64_MAX;

const NumberCase wellFormed[] = {
    {"0", 1, 0, 0, 0, 0},
    {"7", 1, 7, 7, 7, 7},
    {"1234567890", 10, 1234567890, 1234567890, 1234567890, 1234567890},
    {"+42", 3, 42, 42, 42, 42},
    {"-42", 3, -42, 0xFFFFFFD6, -42, 0xFFFFFFFFFFFFFFD6},
    {"-0", 2, 0, 0, 0, 0},
    {"0x10", 4, 16, 16, 16, 16},
    {"0X1f", 4, 31, 31, 31, 31},
    {"0xAbCdEf", 8, 0xABCDEF, 0xABCDEF, 0xABCDEF, 0xABCDEF},
    {"-0x10", 5, -16, 0xFFFFFFF0, -16, 0xFFFFFFFFFFFFFFF0},
    {"010", 3, 8, 8, 8, 8},
    {"00", 2, 0, 0, 0, 0},
    {"0000777", 7, 511, 511, 511, 511},
    {" \t\n\v\f\r12", 8, 12, 12, 12, 12},
    {"  -1", 4, -1, All32, -1, All64},
};

const NumberCase partial[] = {
    {"", 0, 0, 0, 0, 0},         {"   ", 0, 0, 0, 0, 0},  {"abc", 0, 0, 0, 0, 0},
    {"+", 0, 0, 0, 0, 0},        {"-", 0, 0, 0, 0, 0},    {"- 1", 0, 0, 0, 0, 0},
    {"--1", 0, 0, 0, 0, 0},      {".5", 0, 0, 0, 0, 0},   {"x10", 0, 0, 0, 0, 0},
    {"10x", 2, 10, 10, 10, 10},  {"1 2", 1, 1, 1, 1, 1},  {"12 ", 2, 12, 12, 12, 12},
    {"1.5", 1, 1, 1, 1, 1},      {"0x", 1, 0, 0, 0, 0},   {"0xg", 1, 0, 0, 0, 0},
    {"-0x", 2, 0, 0, 0, 0},      {"0b1", 1, 0, 0, 0, 0},  {"08", 1, 0, 0, 0, 0},
    {"0178", 3, 15, 15, 15, 15}, {"0x1g", 3, 1, 1, 1, 1}, {"1a", 1, 1, 1, 1, 1},
};

const NumberCase limits[] = {
    {"2147483647", 10, Max32, 2147483647, 2147483647, 2147483647},
    {"2147483648", 10, Max32, 2147483648, 2147483648, 2147483648},
    {"-2147483648", 11, Min32, 2147483648, -2147483648LL, 0xFFFFFFFF80000000},
    {"-2147483649", 11, Min32, 2147483647, -2147483649LL, 0xFFFFFFFF7FFFFFFF},
    {"4294967295", 10, Max32, All32, 4294967295, 4294967295},
    {"4294967296", 10, Max32, All32, 4294967296, 4294967296},
    {"-4294967295", 11, Min32, 1, -4294967295LL, 0xFFFFFFFF00000001},
    {"-4294967296", 11, Min32, All32, -4294967296LL, 0xFFFFFFFF00000000},
    {"0xFFFFFFFF", 10, Max32, All32, 4294967295, 4294967295},
    {"037777777777", 12, Max32, All32, 4294967295, 4294967295},
    {"9223372036854775807", 19, Max32, All32, Max64, 9223372036854775807},
    {"9223372036854775808", 19, Max32, All32, Max64, 9223372036854775808ull},
    {"-9223372036854775808", 20, Min32, All32, Min64, 9223372036854775808ull},
    {"-9223372036854775809", 20, Min32, All32, Min64, 9223372036854775807},
    {"18446744073709551615", 20, Max32, All32, Max64, All64},
    {"18446744073709551616", 20, Max32, All32, Max64, All64},
    {"-18446744073709551616", 21, Min32, All32, Min64, All64},
    {"0x10000000000000000", 19, Max32, All32, Max64, All64},
    {"99999999999999999999999999z", 26, Max32, All32, Max64, All64},
};

INSTANTIATE_TEST_SUITE_P(WellFormed, Number, testing::ValuesIn(wellFormed));
INSTANTIATE_TEST_SUITE_P(Partial, Number, testing::ValuesIn(partial));
INSTANTIATE_TEST_SUITE_P(Limits, Number, testing::ValuesIn(limits));

TEST(WhiteSpace, IsThatOfTheCLocale) {
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const bool expected = unit == 0x20 || (unit >= 0x09 && unit <= 0x0D);
        ASSERT_EQ(expected, IsSpace(static_cast<WCHAR>(unit))) << unit;
    }
}

} // namespace
} // namespace treevault
