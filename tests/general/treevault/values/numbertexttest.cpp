// SPDX-License-Identifier: MIT
// Numbers and booleans read from text, the same from both kinds of text and from arrays.
#include "general/treevault/values/valuetesting.h"

namespace treevault::tests {
namespace {

const Outcome X = CannotConvert;

struct TextCase {
    std::string_view Text;
    Outcome Result;
};

// Reads each text as a scalar and as the second element of an array, narrow and wide.
void ExpectRead(ValueType target, std::initializer_list<TextCase> cases) {
    const ValueType targets = static_cast<ValueType>(target | VtArray);
    for (const TextCase& item : cases) {
        const Bytes narrow = A(item.Text), wide = U(item.Text);
        ExpectOutcome(Value(VtStringA, narrow), target, item.Result);
        ExpectOutcome(Value(VtStringW, wide), target, item.Result);
        Outcome result = item.Result;
        if (result.Code == S_OK)
            result.Payload = Bytes(result.Payload.size(), '\0') + result.Payload;
        ExpectOutcome(Value(VtStringAArray, A("0x0") + narrow), targets, result);
        ExpectOutcome(Value(VtStringWArray, U("0x0") + wide), targets, result);
    }
}

TEST(NumberText, Forms) {
    ExpectRead(VtInt32, {{"5", I32(5)},
                         {"+5", I32(5)},
                         {"-5", I32(-5)},
                         {"-0", I32(0)},
                         {"00", I32(0)},
                         {"0x10", I32(16)},
                         {"0X1f", I32(31)},
                         {"0xAbC", I32(0xABC)},
                         {"-0x10", I32(-16)},
                         {"010", I32(8)},
                         {"-010", I32(-8)},
                         {"007", I32(7)},
                         {" 5", I32(5)},
                         {"\t\n\v\f\r 5", I32(5)},
                         {" -5", I32(-5)},
                         {"", I32(0)}});
}

TEST(NumberText, WhatIsNotWhollyANumberIsRefused) {
    for (const ValueType target : {VtInt32, VtUInt32, VtInt64, VtUInt64}) {
        ExpectRead(target,
                   {{"5 ", X},    {"   ", X},  {" ", X},  {"12a", X},  {"08", X},   {"0x", X},
                    {"0xg", X},   {"0x 1", X}, {"x", X},  {"+", X},    {"-", X},    {"+-5", X},
                    {"--5", X},   {"- 5", X},  {"5-", X}, {"1.0", X},  {"1e3", X},  {"1,000", X},
                    {"0b101", X}, {"0o17", X}, {"ff", X}, {"five", X}, {"True", X}, {"5\n", X},
                    {"0x1h", X},  {"0-1", X}});
    }
}

TEST(NumberText, Int32IsClamped) {
    ExpectRead(VtInt32, {{"2147483647", I32(INT32_MAX)},
                         {"2147483648", I32(INT32_MAX)},
                         {"-2147483648", I32(INT32_MIN)},
                         {"-2147483649", I32(INT32_MIN)},
                         {"99999999999", I32(INT32_MAX)},
                         {"-99999999999", I32(INT32_MIN)},
                         {"0x7FFFFFFF", I32(INT32_MAX)},
                         {"0xFFFFFFFF", I32(INT32_MAX)},
                         {"-0x80000000", I32(INT32_MIN)},
                         {"037777777777", I32(INT32_MAX)},
                         {"123456789012345678901234567890", I32(INT32_MAX)}});
}

TEST(NumberText, UInt32IsNegatedAndClamped) {
    ExpectRead(VtUInt32, {{"4294967295", U32(0xFFFFFFFF)},
                          {"4294967296", U32(0xFFFFFFFF)},
                          {"99999999999", U32(0xFFFFFFFF)},
                          {"0xFFFFFFFF", U32(0xFFFFFFFF)},
                          {"0x100000000", U32(0xFFFFFFFF)},
                          {"037777777777", U32(0xFFFFFFFF)},
                          {"-1", U32(0xFFFFFFFF)},
                          {"-2", U32(0xFFFFFFFE)},
                          {"-4294967295", U32(1)},
                          {"-4294967296", U32(0xFFFFFFFF)},
                          {"-0", U32(0)},
                          {"", U32(0)}});
}

TEST(NumberText, Int64IsClamped) {
    ExpectRead(VtInt64, {{"9223372036854775807", I64(INT64_MAX)},
                         {"9223372036854775808", I64(INT64_MAX)},
                         {"-9223372036854775808", I64(INT64_MIN)},
                         {"-9223372036854775809", I64(INT64_MIN)},
                         {"0x7FFFFFFFFFFFFFFF", I64(INT64_MAX)},
                         {"0xFFFFFFFFFFFFFFFF", I64(INT64_MAX)},
                         {"99999999999", I64(99999999999)},
                         {"01000000000000000000000", I64(INT64_MAX)},
                         {"", I64(0)}});
}

TEST(NumberText, UInt64IsNegatedAndClamped) {
    ExpectRead(VtUInt64, {{"18446744073709551615", U64(UINT64_MAX)},
                          {"18446744073709551616", U64(UINT64_MAX)},
                          {"99999999999999999999999", U64(UINT64_MAX)},
                          {"0xFFFFFFFFFFFFFFFF", U64(UINT64_MAX)},
                          {"0x10000000000000000", U64(UINT64_MAX)},
                          {"-1", U64(UINT64_MAX)},
                          {"-18446744073709551615", U64(1)},
                          {"-18446744073709551616", U64(UINT64_MAX)},
                          {"", U64(0)}});
}

TEST(NumberText, AScalarIsReadUpToItsFirstNul) {
    using namespace std::string_view_literals;
    ExpectConverts(Value(VtStringA, A("12\0x"sv)), VtInt32, I32(12));
    ExpectConverts(Value(VtStringW, U("12\0x"sv)), VtInt32, I32(12));
    ExpectConverts(Value(VtStringA, A("True\0x"sv)), VtBool, Bool(1));
    ExpectConverts(Value(VtStringW, U("\0x"sv)), VtBool, Bool(0));
    ExpectFails(Value(VtStringA, A("\0"sv)), VtEmpty, CannotConvert);
    ExpectFails(Value(VtStringW, U("\0"sv)), VtEmpty, CannotConvert);
}

TEST(NumberText, DigitsAndSpaceAreThoseOfAscii) {
    // Fullwidth and Arabic digits, a no-break space and an ideographic one.
    for (const unsigned unit : {0xFF15u, 0x0665u, 0x00A0u, 0x3000u}) {
        ExpectFails(Value(VtStringW, Units({unit, '5', 0})), VtInt32, CannotConvert);
        ExpectFails(Value(VtStringW, Units({unit, 0})), VtInt32, CannotConvert);
    }
    // Units whose low byte alone is a digit or a sign.
    for (const unsigned unit : {0x0135u, 0x012Du, 0x3500u, 0x8030u})
        ExpectFails(Value(VtStringW, Units({unit, '5', 0})), VtInt32, CannotConvert);
    ExpectFails(Value(VtStringA, Bytes("\xA0") + A("5")), VtInt32, CannotConvert);
}

TEST(BoolText, Forms) {
    ExpectRead(VtBool, {{"True", Bool(1)},
                        {"TRUE", Bool(1)},
                        {"true", Bool(1)},
                        {"tRuE", Bool(1)},
                        {"False", Bool(0)},
                        {"FALSE", Bool(0)},
                        {"falsE", Bool(0)},
                        {"0", Bool(0)},
                        {"1", Bool(1)},
                        {"2", Bool(1)},
                        {"-1", Bool(1)},
                        {"0x10", Bool(1)},
                        {"0x0", Bool(0)},
                        {" 7", Bool(1)},
                        {"99999999999", Bool(1)},
                        {"4294967296", Bool(1)},
                        {"", Bool(0)}});
}

TEST(BoolText, OtherWordsAreRefused) {
    ExpectRead(VtBool, {{" true", X},
                        {"true ", X},
                        {"yes", X},
                        {"no", X},
                        {"t", X},
                        {"tru", X},
                        {"truex", X},
                        {"falsey", X},
                        {"1 ", X},
                        {" ", X},
                        {"+", X}});
}

// Folding is that of ASCII letters: other units with the same low bits are no letters.
TEST(BoolText, OtherUnitsAreNoLetters) {
    ExpectFails(Value(VtStringW, Units({'t' + 0x100u, 'r', 'u', 'e', 0})), VtBool, CannotConvert);
    ExpectFails(Value(VtStringW, Units({0xFF34, 'r', 'u', 'e', 0})), VtBool, CannotConvert);
    ExpectFails(Value(VtStringA, A("\x14rue")), VtBool, CannotConvert);
}

} // namespace
} // namespace treevault::tests
