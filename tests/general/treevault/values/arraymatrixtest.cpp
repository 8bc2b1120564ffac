// SPDX-License-Identifier: MIT
// The conversion matrix, the rows of arrays: what every target makes of empty arrays and of arrays
// with one and with several elements.
#include "general/treevault/values/valuetesting.h"

namespace treevault::tests {
namespace {

const Outcome X = CannotConvert;
const Outcome None = Bytes();
const Bytes Sample = Raw(SampleGuid);

// An array with elements becomes no scalar, one without becomes VtEmpty alone.
const std::vector<Outcome> NoScalars(10, X);

const std::vector<Outcome>& EmptyAlone() {
    static const std::vector<Outcome> scalars = [] {
        std::vector<Outcome> outcomes = NoScalars;
        outcomes[0] = None;
        return outcomes;
    }();
    return scalars;
}

TEST(ArrayMatrix, AnEmptyArrayBecomesAnyArrayAndNothing) {
    for (const ValueType source : AllTypes) {
        if (source & VtArray)
            ExpectRows({{source, Bytes(), EmptyAlone(), std::vector<Outcome>(8, None)}});
    }
}

// clang-format off
//                      StringAArray   StringWArray   Int32Array  UInt32Array  Int64Array  UInt64Array  BoolArray  GuidArray
const struct { std::vector<const char*> Elements; std::vector<Outcome> BeyondText; } texts[] = {
    {{""},               {I32(0), U32(0), I64(0), U64(0), Bool(0), X}},
    {{"", ""},           {I32(0) + I32(0), U32(0) + U32(0), I64(0) + I64(0), U64(0) + U64(0), Bool(0) + Bool(0), X}},
    {{"1", "0x10", "-1"},
        {I32(1) + I32(16) + I32(-1), U32(1) + U32(16) + U32(0xFFFFFFFF), I64(1) + I64(16) + I64(-1),
         U64(1) + U64(16) + U64(0xFFFFFFFFFFFFFFFF), Bool(1) + Bool(1) + Bool(1), X}},
    {{"True", "false"},  {X, X, X, X, Bool(1) + Bool(0), X}},
    {{"1", "x"},         {X, X, X, X, X, X}},
    {{SampleGuidText},   {X, X, X, X, X, Sample}},
    {{SampleGuidText, "00000000000000000000000000000000"},
                         {X, X, X, X, X, Sample + Bytes(16, '\0')}},
    {{"HEX:00"},         {X, X, X, X, X, X}},
};
// clang-format on

TEST(ArrayMatrix, FromTexts) {
    for (const auto& text : texts) {
        Bytes narrow, wide;
        for (const char* element : text.Elements) {
            narrow += A(element);
            wide += U(element);
        }
        std::vector<Outcome> arrays = {narrow, wide};
        arrays.insert(arrays.end(), text.BeyondText.begin(), text.BeyondText.end());
        ExpectRows({{VtStringAArray, narrow, NoScalars, arrays},
                    {VtStringWArray, wide, NoScalars, arrays}});
    }
}

// clang-format off
TEST(ArrayMatrix, FromInt32s) {
    ExpectRows({
        {VtInt32Array, I32(5), NoScalars,
            {A("5"), U("5"), I32(5), U32(5), I64(5), U64(5), Bool(1), X}},
        {VtInt32Array, I32(0) + I32(-1) + I32(INT32_MAX), NoScalars,
            {A("0") + A("-1") + A("2147483647"), U("0") + U("-1") + U("2147483647"),
             I32(0) + I32(-1) + I32(INT32_MAX), U32(0) + U32(0xFFFFFFFF) + U32(0x7FFFFFFF),
             I64(0) + I64(-1) + I64(INT32_MAX), U64(0) + U64(0xFFFFFFFFFFFFFFFF) + U64(0x7FFFFFFF),
             Bool(0) + Bool(1) + Bool(1), X}}});
}

TEST(ArrayMatrix, FromUInt32s) {
    ExpectRows({
        {VtUInt32Array, U32(0xFFFFFFFF) + U32(0), NoScalars,
            {A("4294967295") + A("0"), U("4294967295") + U("0"), I32(-1) + I32(0),
             U32(0xFFFFFFFF) + U32(0), I64(0xFFFFFFFF) + I64(0), U64(0xFFFFFFFF) + U64(0),
             Bool(1) + Bool(0), X}}});
}

TEST(ArrayMatrix, FromInt64s) {
    ExpectRows({
        {VtInt64Array, I64(-1) + I64(0x100000005) + I64(0x100000000), NoScalars,
            {A("-1") + A("4294967301") + A("4294967296"), U("-1") + U("4294967301") + U("4294967296"),
             I32(-1) + I32(5) + I32(0), U32(0xFFFFFFFF) + U32(5) + U32(0),
             I64(-1) + I64(0x100000005) + I64(0x100000000),
             U64(0xFFFFFFFFFFFFFFFF) + U64(0x100000005) + U64(0x100000000),
             Bool(1) + Bool(1) + Bool(1), X}}});
}

TEST(ArrayMatrix, FromUInt64s) {
    ExpectRows({
        {VtUInt64Array, U64(0xFFFFFFFFFFFFFFFF) + U64(0x180000000), NoScalars,
            {A("18446744073709551615") + A("6442450944"), U("18446744073709551615") + U("6442450944"),
             I32(-1) + I32(INT32_MIN), U32(0xFFFFFFFF) + U32(0x80000000), I64(-1) + I64(0x180000000),
             U64(0xFFFFFFFFFFFFFFFF) + U64(0x180000000), Bool(1) + Bool(1), X}}});
}

// All but VtInt32Array get the opposite.
TEST(ArrayMatrix, FromBools) {
    ExpectRows({
        {VtBoolArray, Bool(0) + Bool(1) + Bool(2), NoScalars,
            {A("False") + A("True") + A("True"), U("False") + U("True") + U("True"),
             I32(0) + I32(1) + I32(1), U32(1) + U32(0) + U32(0), I64(1) + I64(0) + I64(0),
             U64(1) + U64(0) + U64(0), Bool(0) + Bool(1) + Bool(2), X}}});
}

TEST(ArrayMatrix, FromGuids) {
    const char* const zeros = "{00000000-0000-0000-0000-000000000000}";
    ExpectRows({
        {VtGuidArray, Sample, NoScalars,
            {A(SampleGuidText), U(SampleGuidText), X, X, X, X, X, Sample}},
        {VtGuidArray, Sample + Bytes(16, '\0'), NoScalars,
            {A(SampleGuidText) + A(zeros), U(SampleGuidText) + U(zeros), X, X, X, X, X,
             Sample + Bytes(16, '\0')}}});
}
// clang-format on

TEST(ArrayMatrix, ElementsBeforeABadOneAreWritten) {
    const Value source(VtStringAArray, A("1") + A("2") + A("x") + A("4"));
    const Attempt attempt(source, VtInt32Array, 16);
    EXPECT_EQ(CodeText(CannotConvert), CodeText(attempt.Code));
    EXPECT_EQ(I32(1) + I32(2) + Bytes(8, '?'), attempt.Buffer);
    EXPECT_EQ(16u, attempt.Size);
}

TEST(ArrayMatrix, AShortBufferHoldsTheLeadingElements) {
    const Value source(VtInt32Array, I32(1) + I32(20) + I32(3));
    // "1" and "20" take 2 and 3 bytes; nothing of "3" fits the sixth.
    const Attempt attempt(source, VtStringAArray, 6);
    EXPECT_EQ(CodeText(TooSmall), CodeText(attempt.Code));
    EXPECT_EQ(7u, attempt.Size);
    EXPECT_EQ(A("1") + A("20") + "?", attempt.Buffer);
}

// An element that does not fit any more is left out, and so is all that follows: the position has
// moved beyond the end.
TEST(ArrayMatrix, NothingFollowsAnElementThatDidNotFit) {
    const Value source(VtStringWArray, U("1") + U("22222222") + U("3"));
    const Attempt attempt(source, VtStringAArray, 6);
    EXPECT_EQ(CodeText(TooSmall), CodeText(attempt.Code));
    EXPECT_EQ(13u, attempt.Size);
    EXPECT_EQ(A("1") + "????", attempt.Buffer);
}

TEST(ArrayMatrix, ACopyIsOneWrite) {
    const Attempt attempt(Value(VtInt32Array, I32(1) + I32(2)), VtInt32Array, 7);
    EXPECT_EQ(CodeText(TooSmall), CodeText(attempt.Code));
    EXPECT_EQ(8u, attempt.Size);
    EXPECT_EQ(Bytes(7, '?'), attempt.Buffer);
}

} // namespace
} // namespace treevault::tests
