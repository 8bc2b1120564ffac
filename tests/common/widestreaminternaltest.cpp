// SPDX-License-Identifier: MIT
// The stream of wide text.
#include "common/widestream.h"

#include <gtest/gtest.h>

#include <limits>

namespace treevault {
namespace {

template <class Part>
WideText Streamed(const Part& part) {
    WideStream stream;
    stream << part;
    return stream.Str();
}

TEST(WideStream, TakesTextsOneBehindTheOther) {
    WideStream stream;
    stream << TV_W("a") << WideView(TV_W("b")) << WideText(TV_W("c")) << TV_W('d') << TV_W("");
    EXPECT_EQ(WideText(TV_W("abcd")), stream.Str());
}

TEST(WideStream, WritesANullTextAsSuch) {
    const WCHAR* null = nullptr;
    EXPECT_EQ(WideText(TV_W("(null)")), Streamed(null));
}

TEST(WideStream, TakesAViewByItsLength) {
    EXPECT_EQ(WideText(TV_W("a\0b"), 3), Streamed(WideView(TV_W("a\0b"), 3)));
}

TEST(WideStream, WritesNumbersInDecimal) {
    EXPECT_EQ(WideText(TV_W("0")), Streamed(0));
    EXPECT_EQ(WideText(TV_W("-1")), Streamed(-1));
    EXPECT_EQ(WideText(TV_W("65")), Streamed(uint8_t{65}));
    EXPECT_EQ(WideText(TV_W("65535")), Streamed(uint16_t{65535}));
    EXPECT_EQ(WideText(TV_W("4294967295")), Streamed(uint32_t{4294967295u}));
    EXPECT_EQ(WideText(TV_W("18446744073709551615")),
              Streamed(std::numeric_limits<uint64_t>::max()));
    EXPECT_EQ(WideText(TV_W("9223372036854775807")), Streamed(std::numeric_limits<int64_t>::max()));
    EXPECT_EQ(WideText(TV_W("-9223372036854775808")),
              Streamed(std::numeric_limits<int64_t>::min()));
}

WideText Hex(uint64_t number, unsigned digits) {
    WideStream stream;
    return stream.Hex(number, digits).Str();
}

TEST(WideStream, FillsHexadecimalUpAndCutsNothing) {
    EXPECT_EQ(WideText(TV_W("000000AB")), Hex(0xAB, 8));
    EXPECT_EQ(WideText(TV_W("80070057")), Hex(0x80070057, 8));
    EXPECT_EQ(WideText(TV_W("123456789")), Hex(0x123456789, 4));
    EXPECT_EQ(WideText(TV_W("0")), Hex(0, 1));
    EXPECT_EQ(WideText(TV_W("FEDCBA9876543210")), Hex(0xFEDCBA9876543210, 16));
}

TEST(WideStream, WritesAddressesWithSixteenDigits) {
    WideStream stream;
    stream.Address(reinterpret_cast<void*>(uintptr_t{0x7FF6ABCD})).Address(nullptr);
    EXPECT_EQ(WideText(TV_W("0x000000007FF6ABCD0x0000000000000000")), stream.Str());
}

} // namespace
} // namespace treevault
