// SPDX-License-Identifier: MIT
// The conversion matrix, sources whose bytes don't fit their tag, and tags that are none.
#include "general/treevault/values/valuetesting.h"

namespace treevault::tests {
namespace {

const Outcome X = CannotConvert;
const Outcome D = BadShape;
const Outcome None = Bytes();

const std::vector<Outcome> AllBad(10, D);
const std::vector<Outcome> AllBadArrays(8, D);

// Scalars but narrow text are looked at on every way, at the latest by their own text form.
TEST(InvalidSource, OfAScalarIsRefusedByEveryTarget) {
    ExpectRows({{VtStringW, Bytes(), AllBad, AllBadArrays},
                {VtStringW, Bytes(1, '\0'), AllBad, AllBadArrays},
                {VtStringW, Units({'x'}), AllBad, AllBadArrays},
                {VtInt32, Bytes(), AllBad, AllBadArrays},
                {VtInt32, Bytes(3, '\1'), AllBad, AllBadArrays},
                {VtInt32, Bytes(8, '\1'), AllBad, AllBadArrays},
                {VtUInt32, Bytes(5, '\1'), AllBad, AllBadArrays},
                {VtInt64, Bytes(4, '\1'), AllBad, AllBadArrays},
                {VtUInt64, Bytes(9, '\1'), AllBad, AllBadArrays},
                {VtBool, Bytes(), AllBad, AllBadArrays},
                {VtBool, Bytes(2, '\1'), AllBad, AllBadArrays},
                {VtGuid, Bytes(15, '\1'), AllBad, AllBadArrays},
                {VtGuid, Bytes(17, '\1'), AllBad, AllBadArrays}});
}

// There is no way from narrow text to an array, so that its bytes are not looked at.
TEST(InvalidSource, OfNarrowTextIsNotSeenByArrays) {
    const std::vector<Outcome> noWay(8, X);
    ExpectRows({{VtStringA, Bytes(), AllBad, noWay},
                {VtStringA, Bytes("x"), AllBad, noWay},
                {VtStringA, Bytes("\0x", 2), AllBad, noWay}});
}

TEST(InvalidSource, OfAnArrayIsRefusedByArraysAndNothing) {
    std::vector<Outcome> scalars(10, X);
    scalars[0] = D;
    ExpectRows({{VtStringAArray, Bytes("x"), scalars, AllBadArrays},
                {VtStringWArray, Units({'x'}), scalars, AllBadArrays},
                {VtStringWArray, Bytes(1, '\0'), scalars, AllBadArrays},
                {VtInt32Array, Bytes(6, '\0'), scalars, AllBadArrays},
                {VtUInt32Array, Bytes(3, '\0'), scalars, AllBadArrays},
                {VtInt64Array, Bytes(12, '\0'), scalars, AllBadArrays},
                {VtUInt64Array, Bytes(7, '\0'), scalars, AllBadArrays},
                {VtGuidArray, Bytes(24, '\0'), scalars, AllBadArrays}});
}

// VtEmpty has no bytes, but only VtEmpty minds.
TEST(InvalidSource, OfEmptyIsSeenByEmptyAlone) {
    ExpectRows({{VtEmpty,
                 Bytes("x"),
                 {D, A(""), U(""), I32(0), U32(0), I64(0), U64(0), Bool(0), None, Bytes(16, '\0')},
                 std::vector<Outcome>(8, None)}});
}

// A null pointer with a size.
TEST(InvalidSource, WithoutBytes) {
    const struct {
        ValueType Type;
        uint64_t Size;
    } rows[] = {{VtStringA, 1},     {VtStringW, 2},      {VtInt32, 4},        {VtUInt32, 4},
                {VtInt64, 8},       {VtUInt64, 8},       {VtBool, 1},         {VtBinary, 1},
                {VtGuid, 16},       {VtStringAArray, 1}, {VtStringWArray, 2}, {VtInt32Array, 4},
                {VtUInt32Array, 4}, {VtInt64Array, 8},   {VtUInt64Array, 8},  {VtBoolArray, 1},
                {VtGuidArray, 16}};
    for (const auto& row : rows) {
        uint64_t size = 0;
        EXPECT_TRUE(FailsWithRecord(BadShape, AcnConvertData, row.Type, nullptr, row.Size, row.Type,
                                    nullptr, &size))
            << "tag " << row.Type;
    }
}

TEST(InvalidSource, OddWideTextIsTakenWithoutItsLastByte) {
    const Bytes odd = U("12") + "?";
    ExpectConverts(Value(VtStringW, odd), VtStringW, odd);
    ExpectConverts(Value(VtStringW, odd), VtStringA, A("12"));
    ExpectConverts(Value(VtStringW, odd), VtInt32, I32(12));
    ExpectConverts(Value(VtStringW, U("") + "?"), VtEmpty, Bytes());
    // The byte count is odd because the terminator is cut.
    ExpectFails(Value(VtStringW, U("1").substr(0, 3)), VtStringA, BadShape);
}

TEST(InvalidSource, OddWideTextsAreTakenWithoutTheirLastByte) {
    const Bytes odd = U("1") + U("2") + "?";
    ExpectConverts(Value(VtStringWArray, odd), VtStringWArray, odd);
    ExpectConverts(Value(VtStringWArray, odd), VtInt32Array, I32(1) + I32(2));
}

const ValueType unsupported[] = {8,     9,     10,    11,    14,     15,     255,    256,
                                 264,   265,   266,   267,   268,    270,    271,    0x1FF,
                                 0x200, 0x203, 0x20D, 0x303, 0x1003, 0x8003, 0xFF03, 0xFFFF};

TEST(InvalidTag, AsSource) {
    for (const ValueType tag : unsupported) {
        for (const ValueType target : AllTypes)
            ExpectFails(Value(tag, I32(1)), target, TREEVAULT_E_UNSUPPORTED_TYPE);
    }
}

TEST(InvalidTag, AsTarget) {
    for (const ValueType tag : unsupported) {
        ExpectFails(Value(VtEmpty, Bytes()), tag, TREEVAULT_E_UNSUPPORTED_TYPE);
        ExpectFails(Value(VtInt32, I32(1)), tag, TREEVAULT_E_UNSUPPORTED_TYPE);
        ExpectFails(Value(VtStringAArray, A("1")), tag, TREEVAULT_E_UNSUPPORTED_TYPE);
    }
}

// The tags are looked at before the bytes.
TEST(InvalidTag, ComesBeforeBadBytes) {
    ExpectFails(Value(VtInt32, Bytes(3, '\0')), 8, TREEVAULT_E_UNSUPPORTED_TYPE);
}

} // namespace
} // namespace treevault::tests
