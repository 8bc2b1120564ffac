// SPDX-License-Identifier: MIT
// The value model: which bytes fit which tag.
#include "general/treevault/values/values.h"

#include "general/treevault/values/raisetesting.h"

#include <gtest/gtest.h>

#include <vector>

namespace treevault::tests {
namespace {

constexpr uint64_t Large = 0x100000000; // no size is too large to be checked

// Bytes that must not be looked at.
const void* const Nowhere = reinterpret_cast<const void*>(uintptr_t{1});

TEST(CheckValue, EmptyHasNoBytesWhateverThePointer) {
    EXPECT_TRUE(CheckValueShape(VtEmpty, nullptr, 0));
    EXPECT_TRUE(CheckValueShape(VtEmpty, Nowhere, 0));
    EXPECT_FALSE(CheckValueShape(VtEmpty, nullptr, 1));
    EXPECT_FALSE(CheckValueShape(VtEmpty, Nowhere, 1));
}

TEST(CheckValue, NarrowTextEndsWithANul) {
    EXPECT_TRUE(CheckValueShape(VtStringA, "", 1));
    EXPECT_TRUE(CheckValueShape(VtStringA, "ab", 3));
    EXPECT_TRUE(CheckValueShape(VtStringA, "a\0b", 4));
    EXPECT_FALSE(CheckValueShape(VtStringA, "", 0));
    EXPECT_FALSE(CheckValueShape(VtStringA, "ab", 2));
    EXPECT_FALSE(CheckValueShape(VtStringA, "\0b", 2));
    EXPECT_FALSE(CheckValueShape(VtStringA, nullptr, 0));
    EXPECT_FALSE(CheckValueShape(VtStringA, nullptr, 1));
}

TEST(CheckValue, WideTextEndsWithANulUnit) {
    const WCHAR empty[] = {0}, text[] = {'a', 0}, open[] = {0, 'a'}, halves[] = {0x00FF, 0xFF00};
    EXPECT_TRUE(CheckValueShape(VtStringW, empty, 2));
    EXPECT_TRUE(CheckValueShape(VtStringW, text, 4));
    EXPECT_FALSE(CheckValueShape(VtStringW, text, 2));
    EXPECT_FALSE(CheckValueShape(VtStringW, open, 4));
    // One byte of the last unit is zero, the other is not.
    EXPECT_FALSE(CheckValueShape(VtStringW, halves, 2));
    EXPECT_FALSE(CheckValueShape(VtStringW, halves, 4));
    EXPECT_FALSE(CheckValueShape(VtStringW, empty, 0));
    EXPECT_FALSE(CheckValueShape(VtStringW, empty, 1));
    EXPECT_FALSE(CheckValueShape(VtStringW, nullptr, 0));
    EXPECT_FALSE(CheckValueShape(VtStringW, nullptr, 2));
}

TEST(CheckValue, TheLastByteOfAnOddWideTextIsNotLookedAt) {
    const unsigned char bytes[] = {'a', 0, 0, 0, 'x'};
    EXPECT_TRUE(CheckValueShape(VtStringW, bytes, 5));
    EXPECT_TRUE(CheckValueShape(VtStringWArray, bytes, 5));
    EXPECT_FALSE(CheckValueShape(VtStringW, bytes, 3));
    EXPECT_FALSE(CheckValueShape(VtStringWArray, bytes, 3));
}

TEST(CheckValue, ScalarsHaveTheirSize) {
    const struct {
        ValueType Type;
        uint64_t Size;
    } rows[] = {{VtInt32, 4},  {VtUInt32, 4}, {VtInt64, 8},
                {VtUInt64, 8}, {VtBool, 1},   {VtGuid, 16}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Type);
        EXPECT_TRUE(CheckValueShape(row.Type, Nowhere, row.Size));
        EXPECT_FALSE(CheckValueShape(row.Type, nullptr, row.Size));
        EXPECT_FALSE(CheckValueShape(row.Type, Nowhere, 0));
        EXPECT_FALSE(CheckValueShape(row.Type, Nowhere, row.Size - 1));
        EXPECT_FALSE(CheckValueShape(row.Type, Nowhere, row.Size + 1));
        EXPECT_FALSE(CheckValueShape(row.Type, Nowhere, 2 * row.Size));
        EXPECT_FALSE(CheckValueShape(row.Type, Nowhere, Large + row.Size));
    }
}

TEST(CheckValue, AnyBytesAreABinary) {
    EXPECT_TRUE(CheckValueShape(VtBinary, nullptr, 0));
    EXPECT_TRUE(CheckValueShape(VtBinary, Nowhere, 0));
    EXPECT_TRUE(CheckValueShape(VtBinary, Nowhere, 1));
    EXPECT_TRUE(CheckValueShape(VtBinary, Nowhere, Large));
    EXPECT_FALSE(CheckValueShape(VtBinary, nullptr, 1));
}

TEST(CheckValue, ArraysHaveWholeElements) {
    const struct {
        ValueType Type;
        uint64_t ElementSize;
    } rows[] = {{VtInt32Array, 4},  {VtUInt32Array, 4}, {VtInt64Array, 8},
                {VtUInt64Array, 8}, {VtBoolArray, 1},   {VtGuidArray, 16}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Type);
        EXPECT_TRUE(CheckValueShape(row.Type, nullptr, 0));
        EXPECT_TRUE(CheckValueShape(row.Type, Nowhere, 0));
        EXPECT_TRUE(CheckValueShape(row.Type, Nowhere, row.ElementSize));
        EXPECT_TRUE(CheckValueShape(row.Type, Nowhere, 3 * row.ElementSize));
        EXPECT_TRUE(CheckValueShape(row.Type, Nowhere, Large));
        EXPECT_FALSE(CheckValueShape(row.Type, nullptr, row.ElementSize));
        for (uint64_t rest = 1; rest < row.ElementSize; ++rest)
            EXPECT_FALSE(CheckValueShape(row.Type, Nowhere, row.ElementSize + rest));
    }
}

TEST(CheckValue, TextArraysAreEmptyOrEndWithANul) {
    const WCHAR wide[] = {'a', 0, 'b', 0};
    EXPECT_TRUE(CheckValueShape(VtStringAArray, nullptr, 0));
    EXPECT_TRUE(CheckValueShape(VtStringAArray, Nowhere, 0));
    EXPECT_TRUE(CheckValueShape(VtStringAArray, "", 1));
    EXPECT_TRUE(CheckValueShape(VtStringAArray, "a\0b", 4));
    EXPECT_FALSE(CheckValueShape(VtStringAArray, "a\0b", 3));
    EXPECT_FALSE(CheckValueShape(VtStringAArray, nullptr, 1));
    EXPECT_TRUE(CheckValueShape(VtStringWArray, nullptr, 0));
    EXPECT_TRUE(CheckValueShape(VtStringWArray, wide, 8));
    EXPECT_FALSE(CheckValueShape(VtStringWArray, wide, 6));
    EXPECT_FALSE(CheckValueShape(VtStringWArray, wide + 1, 1));
    EXPECT_FALSE(CheckValueShape(VtStringWArray, nullptr, 2));
}

bool IsInTable(unsigned tag) {
    return tag <= 7 || tag == 12 || tag == 13 || (tag >= 257 && tag <= 263) || tag == 269;
}

TEST(CheckValue, EveryOtherTagIsUnsupported) {
    for (unsigned tag = 0; tag <= 0xFFFF; ++tag) {
        const auto type = static_cast<ValueType>(tag);
        const HRESULT expected = IsInTable(tag) ? S_OK : TREEVAULT_E_UNSUPPORTED_TYPE;
        EXPECT_EQ(expected, Raised([&] { CheckValueShape(type, nullptr, 0); })) << tag;
        EXPECT_EQ(IsInTable(tag), IsSupportedType(type)) << tag;
    }
}

TEST(CheckValue, RaisesWhatTheShapeDenies) {
    EXPECT_EQ(S_OK, Raised([] { CheckValue(VtInt32, "1234", 4); }));
    EXPECT_EQ(TREEVAULT_E_INVALID_DATA, Raised([] { CheckValue(VtInt32, "1234", 3); }));
    EXPECT_EQ(TREEVAULT_E_INVALID_DATA, Raised([] { CheckValue(VtInt32Array, "123456", 6); }));
    EXPECT_EQ(TREEVAULT_E_UNSUPPORTED_TYPE, Raised([] { CheckValue(8, nullptr, 0); }));
}

TEST(ValueTypes, ArraysAndTheirElements) {
    EXPECT_TRUE(IsArray(VtGuidArray));
    EXPECT_TRUE(IsArray(VtStringAArray));
    EXPECT_FALSE(IsArray(VtGuid));
    EXPECT_FALSE(IsArray(VtEmpty));
    EXPECT_EQ(VtGuid, ElementType(VtGuidArray));
    EXPECT_EQ(VtGuid, ElementType(VtGuid));
}

} // namespace
} // namespace treevault::tests
