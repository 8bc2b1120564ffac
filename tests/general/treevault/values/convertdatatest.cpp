// SPDX-License-Identifier: MIT
// AcnConvertData as a call: sizes, buffers and records.
#include "general/treevault/values/valuetesting.h"

namespace treevault::tests {
namespace {

TEST(ConvertData, NullSizeFailsBeforeAnythingElse) {
    const int32_t number = 5;
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnConvertData, VtInt32, &number, sizeof number,
                                VtStringA, nullptr, nullptr));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnConvertData, ValueType(8), nullptr, 0x100000000,
                                ValueType(8), nullptr, nullptr));
}

TEST(ConvertData, SizesAbove32BitsAreRefusedBeforeTheTags) {
    uint64_t size = 77;
    EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, AcnConvertData, VtBinary, "x", 0x100000000, VtBinary,
                                nullptr, &size));
    EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, AcnConvertData, ValueType(8), "x", 0x100000000,
                                VtBinary, nullptr, &size));
    EXPECT_EQ(77u, size);
}

TEST(ConvertData, TheLargestSizeIsTaken) {
    // Only counted, so that no byte is read.
    uint64_t size = 0;
    EXPECT_TRUE(
        Returns(TooSmall, AcnConvertData, VtBinary, "x", 0xFFFFFFFF, VtBinary, nullptr, &size));
    EXPECT_EQ(0xFFFFFFFFu, size);
}

TEST(ConvertData, TheTextOfABinaryIsBoundTo32Bits) {
    // "HEX:", two digits for a byte, and a terminator.
    uint64_t size = 0;
    EXPECT_TRUE(
        Returns(TooSmall, AcnConvertData, VtBinary, "x", 0x7FFFFFFD, VtStringA, nullptr, &size));
    EXPECT_EQ(0xFFFFFFFFu, size);
    EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, AcnConvertData, VtBinary, "x", 0x7FFFFFFE, VtStringA,
                                nullptr, &size));
    EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, AcnConvertData, VtBinary, "x", 0x7FFFFFFD, VtStringW,
                                nullptr, &size));
    EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, AcnConvertData, VtBinary, "x", 0x7FFFFFFE, VtInt32,
                                nullptr, &size));
}

TEST(ConvertData, ASizeQueryTellsTheSizeWithoutARecord) {
    const int32_t number = 5;
    uint64_t size = 0;
    EXPECT_TRUE(Returns(TooSmall, AcnConvertData, VtInt32, &number, sizeof number, VtStringA,
                        nullptr, &size));
    EXPECT_EQ(2u, size);
}

TEST(ConvertData, NothingNeedsNoBuffer) {
    uint64_t size = 0;
    EXPECT_TRUE(Returns(S_OK, AcnConvertData, VtEmpty, nullptr, 0, VtBinary, nullptr, &size));
    EXPECT_EQ(0u, size);
    size = 9;
    EXPECT_TRUE(Returns(S_OK, AcnConvertData, VtEmpty, "x", 0, VtEmpty, nullptr, &size));
    EXPECT_EQ(0u, size);
}

TEST(ConvertData, ABufferOfNoCapacityIsNotWritten) {
    const int32_t number = 5;
    char buffer[] = "??";
    uint64_t size = 0;
    EXPECT_TRUE(Returns(TooSmall, AcnConvertData, VtInt32, &number, sizeof number, VtStringA,
                        buffer, &size));
    EXPECT_STREQ("??", buffer);
}

TEST(ConvertData, WritesNoFurtherThanNeeded) {
    const Attempt attempt(Value(VtBinary, "\x0A"), VtStringA, 10);
    EXPECT_EQ(CodeText(S_OK), CodeText(attempt.Code));
    EXPECT_EQ(7u, attempt.Size);
    EXPECT_EQ(A("HEX:0a") + "???", attempt.Buffer);
}

TEST(ConvertData, ATextThatDoesNotFitIsNotWrittenInParts) {
    for (const ValueType target : {VtStringA, VtStringW}) {
        const size_t unit = target == VtStringA ? 1 : sizeof(WCHAR);
        const struct {
            ValueType Type;
            Bytes Payload;
            size_t Length;
        } rows[] = {{VtInt32, I32(-12345), 7},
                    {VtBool, Bool(1), 5},
                    {VtGuid, Raw(SampleGuid), 39},
                    {VtBinary, "\x0A", 7}};
        for (const auto& row : rows) {
            const uint64_t needed = row.Length * unit;
            const Attempt attempt(Value(row.Type, row.Payload), target, needed - 1);
            EXPECT_EQ(CodeText(TooSmall), CodeText(attempt.Code));
            EXPECT_EQ(needed, attempt.Size);
            EXPECT_EQ(Bytes(needed - 1, '?'), attempt.Buffer);
        }
    }
}

TEST(ConvertData, ReadsAndWritesAtAnyAddress) {
    const Bytes wide = U("-7"), number = I64(-7);
    const Bytes shifted = "?" + wide, shiftedNumber = "?" + number;
    char buffer[32] = {};
    uint64_t size = 30;
    EXPECT_TRUE(Returns(S_OK, AcnConvertData, VtStringW, shifted.data() + 1, wide.size(), VtInt64,
                        buffer + 1, &size));
    EXPECT_EQ(number, Bytes(buffer + 1, 8));
    size = 30;
    EXPECT_TRUE(Returns(S_OK, AcnConvertData, VtInt64, shiftedNumber.data() + 1, number.size(),
                        VtStringW, buffer + 1, &size));
    EXPECT_EQ(wide, Bytes(buffer + 1, 6));
}

TEST(ConvertData, ReadsWideTextsAtAnyAddress) {
    const Bytes wide = U("1") + U("22");
    const Bytes shifted = "?" + wide;
    char buffer[32] = {};
    uint64_t size = sizeof buffer;
    EXPECT_TRUE(Returns(S_OK, AcnConvertData, VtStringWArray, shifted.data() + 1, wide.size(),
                        VtStringAArray, buffer, &size));
    EXPECT_EQ(A("1") + A("22"), Bytes(buffer, size));
}

TEST(ConvertData, ARecordReadsBackAsText) {
    uint64_t size = 0;
    ASSERT_EQ(CannotConvert, AcnConvertData(VtStringA, "x", 2, VtInt32, nullptr, &size));
    IErrorInfo* record = nullptr;
    ASSERT_EQ(S_OK, EhGetErrorContext(nullptr, &record));
    WCHAR text[512];
    size_t length = std::size(text);
    EXPECT_EQ(S_OK, EhMakeErrorText(CannotConvert, 0, record, nullptr, text, &length));
    EXPECT_EQ(0u, Narrow(text).find("0x80040204 ")) << Narrow(text);
    EhReleaseErrorContext(record);
}

// These names do no work, whatever they are given.
TEST(VariantData, AnswersWithoutWork) {
    char value[4] = "abc";
    for (void* argument : {static_cast<void*>(nullptr), static_cast<void*>(value)}) {
        EXPECT_TRUE(Returns(E_NOTIMPL, VariantData_ConvertType, argument, ValueType(VtInt32)));
        EXPECT_TRUE(Returns(E_NOTIMPL, VariantData_Init, argument));
        EXPECT_TRUE(Returns(0, VariantData_GetBuffer, argument));
        EXPECT_TRUE(Returns(0, VariantData_GetData, argument));
        EXPECT_TRUE(Returns(0, VariantData_GetType, argument));
        VariantData_Cleanup(argument);
    }
    EXPECT_STREQ("abc", value);
}

} // namespace
} // namespace treevault::tests
