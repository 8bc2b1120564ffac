// SPDX-License-Identifier: MIT
// The conversion matrix, the rows of scalars: what every target makes of representative values.
#include "general/treevault/values/valuetesting.h"

namespace treevault::tests {
namespace {

// A failure for want of a way or of a meaning, and nothing at all.
const Outcome X = CannotConvert;
const Outcome None = Bytes();
const Bytes Zeros16(16, '\0');
const Bytes Sample = Raw(SampleGuid);

// No scalar but VtEmpty becomes an array.
const std::vector<Outcome> NoArrays(8, X);

// clang-format off
//                Empty  StringA      StringW      Int32     UInt32    Int64     UInt64    Bool     Binary          Guid

TEST(ScalarMatrix, FromEmpty) {
    ExpectRows({
        {VtEmpty, Bytes(),
            {None, A(""),       U(""),       I32(0),   U32(0),   I64(0),   U64(0),   Bool(0), None,           Zeros16},
            std::vector<Outcome>(8, None)}});
}

const struct { const char* Text; std::vector<Outcome> BeyondText; } texts[] = {
    {"",          {I32(0),  U32(0),          I64(0),  U64(0),   Bool(0), X,               X}},
    {"0",         {I32(0),  U32(0),          I64(0),  U64(0),   Bool(0), X,               X}},
    {"-2",        {I32(-2), U32(0xFFFFFFFE), I64(-2), U64(0xFFFFFFFFFFFFFFFE),
                                                                Bool(1), X,               X}},
    {"True",      {X,       X,               X,       X,        Bool(1), X,               X}},
    {"False",     {X,       X,               X,       X,        Bool(0), X,               X}},
    {"HEX:",      {X,       X,               X,       X,        X,       Bytes(),         X}},
    {"HEX:0aff",  {X,       X,               X,       X,        X,       Bytes("\x0A\xFF"), X}},
    {SampleGuidText,
                  {X,       X,               X,       X,        X,       X,               Sample}},
    {"word",      {X,       X,               X,       X,        X,       X,               X}},
};
// clang-format on

TEST(ScalarMatrix, FromText) {
    for (const auto& text : texts) {
        std::vector<Outcome> scalars = {*text.Text ? X : None, A(text.Text), U(text.Text)};
        scalars.insert(scalars.end(), text.BeyondText.begin(), text.BeyondText.end());
        ExpectRows({{VtStringA, A(text.Text), scalars, NoArrays},
                    {VtStringW, U(text.Text), scalars, NoArrays}});
    }
}

// clang-format off
TEST(ScalarMatrix, FromInt32) {
    ExpectRows({
        {VtInt32, I32(0),
            {None, A("0"),  U("0"),  I32(0),  U32(0),          I64(0),  U64(0),                  Bool(0), X, X}, NoArrays},
        {VtInt32, I32(7),
            {X,    A("7"),  U("7"),  I32(7),  U32(7),          I64(7),  U64(7),                  Bool(1), X, X}, NoArrays},
        {VtInt32, I32(-2),
            {X,    A("-2"), U("-2"), I32(-2), U32(0xFFFFFFFE), I64(-2), U64(0xFFFFFFFFFFFFFFFE), Bool(1), X, X}, NoArrays},
        {VtInt32, I32(INT32_MIN),
            {X, A("-2147483648"), U("-2147483648"), I32(INT32_MIN), U32(0x80000000), I64(-2147483648LL),
             U64(0xFFFFFFFF80000000), Bool(1), X, X}, NoArrays}});
}

TEST(ScalarMatrix, FromUInt32) {
    ExpectRows({
        {VtUInt32, U32(0),
            {None, A("0"), U("0"), I32(0), U32(0), I64(0), U64(0), Bool(0), X, X}, NoArrays},
        {VtUInt32, U32(0xFFFFFFFF),
            {X, A("4294967295"), U("4294967295"), I32(-1), U32(0xFFFFFFFF), I64(4294967295), U64(0xFFFFFFFF),
             Bool(1), X, X}, NoArrays}});
}

TEST(ScalarMatrix, FromInt64) {
    ExpectRows({
        {VtInt64, I64(0),
            {None, A("0"), U("0"), I32(0), U32(0), I64(0), U64(0), Bool(0), X, X}, NoArrays},
        {VtInt64, I64(0x100000005),
            {X, A("4294967301"), U("4294967301"), I32(5), U32(5), I64(0x100000005), U64(0x100000005),
             Bool(1), X, X}, NoArrays},
        // The low half alone is zero.
        {VtInt64, I64(0x100000000),
            {X, A("4294967296"), U("4294967296"), I32(0), U32(0), I64(0x100000000), U64(0x100000000),
             Bool(1), X, X}, NoArrays},
        {VtInt64, I64(INT64_MIN),
            {X, A("-9223372036854775808"), U("-9223372036854775808"), I32(0), U32(0), I64(INT64_MIN),
             U64(0x8000000000000000), Bool(1), X, X}, NoArrays},
        {VtInt64, I64(-3),
            {X, A("-3"), U("-3"), I32(-3), U32(0xFFFFFFFD), I64(-3), U64(0xFFFFFFFFFFFFFFFD),
             Bool(1), X, X}, NoArrays}});
}

TEST(ScalarMatrix, FromUInt64) {
    ExpectRows({
        {VtUInt64, U64(0),
            {None, A("0"), U("0"), I32(0), U32(0), I64(0), U64(0), Bool(0), X, X}, NoArrays},
        {VtUInt64, U64(0xFFFFFFFFFFFFFFFF),
            {X, A("18446744073709551615"), U("18446744073709551615"), I32(-1), U32(0xFFFFFFFF), I64(-1),
             U64(0xFFFFFFFFFFFFFFFF), Bool(1), X, X}, NoArrays},
        {VtUInt64, U64(0x8000000000000000),
            {X, A("9223372036854775808"), U("9223372036854775808"), I32(0), U32(0), I64(INT64_MIN),
             U64(0x8000000000000000), Bool(1), X, X}, NoArrays}});
}

// All but VtInt32 get the opposite.
TEST(ScalarMatrix, FromBool) {
    ExpectRows({
        {VtBool, Bool(0),
            {None, A("False"), U("False"), I32(0), U32(1), I64(1), U64(1), Bool(0),    X, X}, NoArrays},
        {VtBool, Bool(1),
            {X,    A("True"),  U("True"),  I32(1), U32(0), I64(0), U64(0), Bool(1),    X, X}, NoArrays},
        {VtBool, Bool(2),
            {X,    A("True"),  U("True"),  I32(1), U32(0), I64(0), U64(0), Bool(2),    X, X}, NoArrays},
        {VtBool, Bool(0xFF),
            {X,    A("True"),  U("True"),  I32(1), U32(0), I64(0), U64(0), Bool(0xFF), X, X}, NoArrays}});
}

TEST(ScalarMatrix, FromBinary) {
    ExpectRows({
        {VtBinary, Bytes(),
            {None, A("HEX:"),     U("HEX:"),     X, X, X, X, X, Bytes(),           X}, NoArrays},
        {VtBinary, Bytes("\0", 1),
            {X,    A("HEX:00"),   U("HEX:00"),   X, X, X, X, X, Bytes("\0", 1),    X}, NoArrays},
        {VtBinary, Bytes("\x0A\xFF"),
            {X,    A("HEX:0aff"), U("HEX:0aff"), X, X, X, X, X, Bytes("\x0A\xFF"), X}, NoArrays},
        // Sixteen bytes are no identifier.
        {VtBinary, Zeros16,
            {X, A("HEX:00000000000000000000000000000000"), U("HEX:00000000000000000000000000000000"),
             X, X, X, X, X, Zeros16, X}, NoArrays}});
}

TEST(ScalarMatrix, FromGuid) {
    ExpectRows({
        {VtGuid, Zeros16,
            {None, A("{00000000-0000-0000-0000-000000000000}"), U("{00000000-0000-0000-0000-000000000000}"),
             X, X, X, X, X, X, Zeros16}, NoArrays},
        {VtGuid, Sample,
            {X, A(SampleGuidText), U(SampleGuidText), X, X, X, X, X, X, Sample}, NoArrays},
        // One bit anywhere is enough not to be the null identifier.
        {VtGuid, Bytes(15, '\0') + '\1',
            {X, A("{00000000-0000-0000-0000-000000000001}"), U("{00000000-0000-0000-0000-000000000001}"),
             X, X, X, X, X, X, Bytes(15, '\0') + '\1'}, NoArrays}});
}
// clang-format on

} // namespace
} // namespace treevault::tests
