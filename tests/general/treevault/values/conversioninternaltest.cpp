// SPDX-License-Identifier: MIT
// The entries of the conversion engine that clients do not see.
#include "general/treevault/values/conversion.h"

#include "general/treevault/values/failingmemory.h"
#include "general/treevault/values/raisetesting.h"
#include "general/treevault/values/valuetesting.h"

namespace treevault::tests {
namespace {

ValueView View(ValueType type, const Bytes& bytes) {
    return {type, bytes.data(), bytes.size()};
}

const ValueType scalars[] = {VtEmpty, VtStringA, VtStringW, VtInt32,  VtUInt32,
                             VtInt64, VtUInt64,  VtBool,    VtBinary, VtGuid};

// --- One cell ------------------------------------------------------------------------------------

TEST(ConvertDirect, AnswersNoWhereTextIsTheWay) {
    const struct {
        ValueType Type;
        Bytes Payload;
        std::vector<ValueType> Targets;
    } rows[] = {
        {VtInt32, I32(1), {VtBinary, VtGuid}},
        {VtUInt32, U32(1), {VtBinary, VtGuid}},
        {VtInt64, I64(1), {VtBinary, VtGuid}},
        {VtUInt64, U64(1), {VtBinary, VtGuid}},
        {VtBool, Bool(1), {VtBinary, VtGuid}},
        {VtBinary, "x", {VtInt32, VtUInt32, VtInt64, VtUInt64, VtBool, VtGuid}},
        {VtGuid, Raw(SampleGuid), {VtInt32, VtUInt32, VtInt64, VtUInt64, VtBool, VtBinary}}};
    for (const auto& row : rows) {
        for (const ValueType target : row.Targets) {
            OutputCursor out;
            EXPECT_FALSE(ConvertDirect(View(row.Type, row.Payload), target, out))
                << row.Type << " to " << target;
            EXPECT_EQ(0u, out.Used);
            // But bad bytes are found first.
            if (row.Type != VtBinary) {
                EXPECT_EQ(BadShape, Raised([&] {
                              ConvertDirect({row.Type, "x", 3}, target, out);
                          }));
            }
        }
    }
}

TEST(ConvertDirect, AnswersNoBetweenScalarsAndArraysWithoutALook) {
    const void* const nowhere = reinterpret_cast<const void*>(uintptr_t{1});
    for (const ValueType scalar : scalars) {
        for (const ValueType array : AllTypes) {
            if (!(array & VtArray))
                continue;
            OutputCursor out;
            if (scalar != VtEmpty && scalar != VtBool) {
                EXPECT_FALSE(ConvertDirect({scalar, nowhere, 3}, array, out));
            }
            if (scalar != VtEmpty) {
                EXPECT_FALSE(ConvertDirect({array, nowhere, 3}, scalar, out));
            }
            EXPECT_EQ(0u, out.Used);
        }
    }
}

TEST(ConvertDirect, ABooleanIsLookedAtOnItsWayToAnArray) {
    OutputCursor out;
    EXPECT_FALSE(ConvertDirect({VtBool, "x", 1}, VtBoolArray, out));
    EXPECT_EQ(BadShape, Raised([&] { ConvertDirect({VtBool, "xx", 2}, VtBoolArray, out); }));
}

TEST(ConvertDirect, ArraysWithoutARuleAnswerNoAtTheFirstElement) {
    OutputCursor out;
    EXPECT_FALSE(ConvertDirect(View(VtInt32Array, I32(1)), VtGuidArray, out));
    EXPECT_TRUE(ConvertDirect({VtInt32Array, nullptr, 0}, VtGuidArray, out));
    EXPECT_FALSE(ConvertDirect(View(VtGuidArray, Raw(SampleGuid)), VtBoolArray, out));
    EXPECT_TRUE(ConvertDirect({VtGuidArray, nullptr, 0}, VtBoolArray, out));
    EXPECT_EQ(0u, out.Used);
}

TEST(ConvertDirect, ACopyStartsAtTheBeginning) {
    char buffer[] = "????";
    OutputCursor out{buffer, 4, 2};
    EXPECT_TRUE(ConvertDirect({VtStringA, "ab", 3}, VtStringA, out));
    EXPECT_EQ(3u, out.Used);
    EXPECT_STREQ("ab", buffer);
}

TEST(ConvertDirect, OthersWriteAtThePosition) {
    char buffer[] = "????";
    OutputCursor out{buffer, 4, 2};
    EXPECT_TRUE(ConvertDirect(View(VtInt32, I32(7)), VtStringA, out));
    EXPECT_EQ(4u, out.Used);
    EXPECT_STREQ("??7", buffer);
}

// --- Through text --------------------------------------------------------------------------------

TEST(ConvertWithFallback, AnswersNoWithoutAWay) {
    const struct {
        ValueType Type;
        Bytes Payload;
        ValueType Target;
    } rows[] = {{VtStringA, A("5"), VtInt32Array}, {VtStringW, U("5"), VtInt32Array},
                {VtInt32, I32(5), VtStringAArray}, {VtInt32Array, I32(5), VtStringA},
                {VtInt32Array, I32(5), VtInt32},   {VtInt32Array, I32(5), VtGuidArray}};
    for (const auto& row : rows) {
        OutputCursor out;
        EXPECT_FALSE(ConvertWithFallback(View(row.Type, row.Payload), row.Target, out))
            << row.Type << " to " << row.Target;
        EXPECT_EQ(0u, out.Used);
    }
}

TEST(ConvertWithFallback, RaisesWhatTheTextRaises) {
    OutputCursor out;
    EXPECT_EQ(CannotConvert,
              Raised([&] { ConvertWithFallback(View(VtInt32, I32(5)), VtGuid, out); }));
    EXPECT_EQ(0u, out.Used);
}

// Around a text of 100 bytes, of which a binary takes two for a byte and five more.
TEST(ConvertWithFallback, LongTextsTakeTheSameWay) {
    for (const size_t size : {46u, 47u, 48u, 49u, 500u}) {
        const Bytes binary(size, 'x');
        OutputCursor out;
        EXPECT_EQ(CannotConvert,
                  Raised([&] { ConvertWithFallback(View(VtBinary, binary), VtInt32, out); }));
        EXPECT_FALSE(ConvertWithFallback(View(VtStringW, U(binary)), VtBoolArray, out));
        EXPECT_EQ(0u, out.Used);
    }
}

size_t BlocksFor(ValueType type, const Bytes& bytes, ValueType target) {
    char buffer[400];
    OutputCursor out{buffer, sizeof buffer};
    const size_t before = MadeBlocks();
    ConvertWithFallback(View(type, bytes), target, out);
    return MadeBlocks() - before;
}

TEST(ConvertWithFallback, TextsUpTo100BytesNeedNoMemory) {
    EXPECT_EQ(0u, BlocksFor(VtStringW, U(std::string(99, 'x')), VtBoolArray));
    EXPECT_EQ(1u, BlocksFor(VtStringW, U(std::string(100, 'x')), VtBoolArray));
}

TEST(ConvertWithFallback, ScalarsNeedNoMemory) {
    EXPECT_EQ(0u, BlocksFor(VtInt64, I64(INT64_MIN), VtStringW));
    EXPECT_EQ(0u, BlocksFor(VtGuid, Raw(SampleGuid), VtStringW));
    EXPECT_EQ(0u, BlocksFor(VtBool, Bool(1), VtStringA));
    EXPECT_EQ(0u, BlocksFor(VtBinary, Bytes(47, 'x'), VtStringW));
    EXPECT_EQ(0u, BlocksFor(VtStringA, A("HEX:" + std::string(94, '0')), VtBinary));
    EXPECT_EQ(0u, BlocksFor(VtStringA, A(std::string(99, 'x')), VtStringW));
    EXPECT_EQ(0u, BlocksFor(VtStringW, U(std::string(99, 'x')), VtStringA));
    EXPECT_EQ(0u, BlocksFor(VtStringW, U(SampleGuidText), VtGuid));
    EXPECT_EQ(0u, BlocksFor(VtStringW, U("-5"), VtInt32));
}

TEST(ConvertWithFallback, WithoutMemoryForALongTextItFails) {
    const Bytes wide = U(std::string(5000, 'x'));
    OutputCursor out;
    const FailingMemory memory(5000);
    EXPECT_EQ(E_OUTOFMEMORY,
              Raised([&] { ConvertWithFallback(View(VtStringW, wide), VtBoolArray, out); }));
}

TEST(ConvertValue, WithoutMemoryToReencodeItFails) {
    std::string text(5000, 'x');
    text += "\xC3\xBC";
    const Bytes narrow = A(text);
    const FailingMemory memory(5000);
    EXPECT_EQ(E_OUTOFMEMORY, Raised([&] {
                  ConvertValue(View(VtStringA, narrow), VtStringW, nullptr, 0, nullptr);
              }));
}

// --- The entries ---------------------------------------------------------------------------------

TEST(ConvertValue, TellsTheSizeOnlyWhereAsked) {
    char buffer[] = "????";
    ConvertValue(View(VtInt32, I32(12)), VtStringA, buffer, 4, nullptr);
    EXPECT_STREQ("12", buffer);
    uint64_t needed = 77;
    ConvertValue(View(VtInt32, I32(12)), VtStringA, nullptr, 0, &needed);
    EXPECT_EQ(3u, needed);
}

TEST(ConvertValue, AFailureLeavesTheSizeAlone) {
    uint64_t needed = 77;
    const auto raised = [&](ValueView source, ValueType target) {
        return Raised([&] { ConvertValue(source, target, nullptr, 0, &needed); });
    };
    EXPECT_EQ(CannotConvert, raised({VtStringA, "x", 2}, VtInt32));
    EXPECT_EQ(CannotConvert, raised({VtInt32, "1234", 4}, VtInt32Array));
    EXPECT_EQ(BadShape, raised({VtStringA, "x", 1}, VtInt32));
    EXPECT_EQ(TREEVAULT_E_UNSUPPORTED_TYPE, raised({8, "x", 1}, VtInt32));
    EXPECT_EQ(E_INVALIDARG, raised({VtBinary, "x", 0x100000000}, VtBinary));
    EXPECT_EQ(77u, needed);
}

TEST(ConvertValueInPlace, BindsTheValueToTheBuffer) {
    std::vector<uint8_t> buffer;
    const Bytes number = I32(-12);
    ValueView value = View(VtInt32, number);
    ConvertValueInPlace(value, VtStringA, buffer);
    EXPECT_EQ(VtStringA, value.Type);
    EXPECT_EQ(buffer.data(), value.Data);
    EXPECT_EQ(4u, value.Size);
    EXPECT_STREQ("-12", static_cast<const char*>(value.Data));
}

TEST(ConvertValueInPlace, TheBufferGrowsAndIsNotShrunk) {
    std::vector<uint8_t> buffer;
    const Bytes guid = Raw(SampleGuid), number = I32(5);
    ValueView value = View(VtGuid, guid);
    ConvertValueInPlace(value, VtStringA, buffer);
    EXPECT_EQ(39u, buffer.size());
    const uint8_t* const place = buffer.data();
    const size_t before = MadeBlocks();
    value = View(VtInt32, number);
    ConvertValueInPlace(value, VtStringA, buffer);
    EXPECT_EQ(39u, buffer.size());
    EXPECT_EQ(place, value.Data);
    EXPECT_EQ(2u, value.Size);
    EXPECT_STREQ("5", static_cast<const char*>(value.Data));
    EXPECT_EQ(before, MadeBlocks());
}

TEST(ConvertValueInPlace, NothingNeedsNoBuffer) {
    std::vector<uint8_t> buffer;
    ValueView value{VtInt32Array, nullptr, 0};
    ConvertValueInPlace(value, VtStringAArray, buffer);
    EXPECT_EQ(VtStringAArray, value.Type);
    EXPECT_EQ(nullptr, value.Data);
    EXPECT_EQ(0u, value.Size);
    EXPECT_TRUE(buffer.empty());
}

TEST(ConvertValueInPlace, NothingIsBoundToABufferThatIsThere) {
    std::vector<uint8_t> buffer(10);
    ValueView value{VtInt32Array, nullptr, 0};
    ConvertValueInPlace(value, VtStringAArray, buffer);
    EXPECT_EQ(buffer.data(), value.Data);
    EXPECT_EQ(0u, value.Size);
}

TEST(ConvertValueInPlace, AFailureLeavesTheValueAlone) {
    std::vector<uint8_t> buffer;
    const Bytes text = A("x");
    ValueView value = View(VtStringA, text);
    EXPECT_EQ(CannotConvert, Raised([&] { ConvertValueInPlace(value, VtInt32, buffer); }));
    EXPECT_EQ(VtStringA, value.Type);
    EXPECT_EQ(text.data(), value.Data);
    EXPECT_EQ(2u, value.Size);
}

TEST(ConvertValueInPlace, WithoutMemoryItFailsAndLeavesTheValueAlone) {
    std::vector<uint8_t> buffer;
    const Bytes binary(5000, 'x');
    ValueView value = View(VtBinary, binary);
    {
        const FailingMemory memory(5000);
        EXPECT_EQ(E_OUTOFMEMORY, Raised([&] { ConvertValueInPlace(value, VtStringA, buffer); }));
    }
    EXPECT_EQ(VtBinary, value.Type);
    EXPECT_EQ(binary.data(), value.Data);
}

// The source changes between the two passes, at the moment when the buffer grows.
TEST(ConvertValueInPlace, ASecondPassThatNeedsMoreFails) {
    std::vector<uint8_t> buffer;
    int32_t number = 5;
    ValueView value{VtInt32, &number, sizeof number};
    const auto change = [](void* context) { *static_cast<int32_t*>(context) = 12345; };
    HRESULT raised = S_OK;
    {
        const AllocationHook hook(change, &number);
        raised = Raised([&] { ConvertValueInPlace(value, VtStringA, buffer); });
    }
    EXPECT_EQ(E_FAIL, raised);
    EXPECT_EQ(VtInt32, value.Type);
}

} // namespace
} // namespace treevault::tests
