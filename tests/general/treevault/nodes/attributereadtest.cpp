// SPDX-License-Identifier: MIT
// Reading of attributes: sizes, types and conversion on the way out.
#include "support/nodes.h"

namespace treevault::tests {
namespace {

constexpr ValueType UntouchedType = 0x7777;

class AttributeReading : public NodeTest {
protected:
    void SetUp() override {
        Subject = Create(W("n"));
        ASSERT_EQ(S_OK, Set(Subject, W("int"), Int32Value(-12)));
        ASSERT_EQ(S_OK, Set(Subject, W("text"), TextValue(W("abc"))));
        ASSERT_EQ(S_OK, Set(Subject, W("binary"), {VtBinary, "0123456789"}));
        ASSERT_EQ(S_OK, Set(Subject, W("empty"), {VtEmpty, ""}));
        ASSERT_EQ(S_OK, Set(Subject, W("true"), {VtBool, "\1"}));
    }

    Node Subject;
};

TEST_F(AttributeReading, NullBufferAndSizeTestForExistenceAndType) {
    ValueType stored = UntouchedType;
    EXPECT_TRUE(Succeeds(AcnGetAttribute, Subject, W("int"), nullptr, nullptr, nullptr, &stored));
    EXPECT_EQ(VtInt32, stored);
    EXPECT_TRUE(Succeeds(AcnGetAttribute, Subject, W("empty"), nullptr, nullptr, nullptr, &stored));
    EXPECT_EQ(VtEmpty, stored);
    EXPECT_TRUE(Succeeds(AcnGetAttribute, Subject, W("int"), nullptr, nullptr, nullptr, nullptr));
}

TEST_F(AttributeReading, TestOfExistenceDoesNotConvert) {
    for (const ValueType wanted : {ValueType(VtGuid), ValueType(8), ValueType(0xFFFF)}) {
        ValueType stored = UntouchedType;
        EXPECT_TRUE(
            Succeeds(AcnGetAttribute, Subject, W("int"), &wanted, nullptr, nullptr, &stored));
        EXPECT_EQ(VtInt32, stored);
    }
}

TEST_F(AttributeReading, NullBufferAsksForTheSizeWhateverTheCapacity) {
    for (const size_t capacity : {size_t(0), size_t(5), size_t(1000)}) {
        size_t size = capacity;
        ValueType stored = UntouchedType;
        EXPECT_TRUE(
            Succeeds(AcnGetAttribute, Subject, W("binary"), nullptr, nullptr, &size, &stored));
        EXPECT_EQ(10u, size);
        EXPECT_EQ(VtBinary, stored);
    }
}

TEST_F(AttributeReading, BufferOfEachCapacity) {
    for (size_t capacity = 0; capacity <= 12; ++capacity) {
        char buffer[12];
        std::memset(buffer, '#', sizeof buffer);
        size_t size = capacity;
        ValueType stored = UntouchedType;
        const bool fits = capacity >= 10;
        EXPECT_TRUE(Returns(fits ? S_OK : TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetAttribute, Subject,
                            W("binary"), nullptr, buffer, &size, &stored))
            << capacity;
        EXPECT_EQ(10u, size) << capacity;
        EXPECT_EQ(VtBinary, stored) << capacity;
        EXPECT_EQ(fits ? "0123456789##" : "############", std::string(buffer, 12)) << capacity;
    }
}

TEST_F(AttributeReading, EmptyValueFitsEverywhere) {
    char buffer[1] = {'#'};
    size_t size = 0;
    EXPECT_TRUE(Succeeds(AcnGetAttribute, Subject, W("empty"), nullptr, buffer, &size, nullptr));
    EXPECT_EQ(0u, size);
    EXPECT_EQ('#', buffer[0]);
}

TEST_F(AttributeReading, WantedTypeThatIsStoredIsCopied) {
    const ValueType wanted = VtBinary;
    char buffer[10];
    size_t size = sizeof buffer;
    EXPECT_TRUE(Succeeds(AcnGetAttribute, Subject, W("binary"), &wanted, buffer, &size, nullptr));
    EXPECT_EQ("0123456789", std::string(buffer, size));
}

// --- Conversion ----------------------------------------------------------------------------------

TEST_F(AttributeReading, SizeOfAConversionIsAskedWithANullBuffer) {
    const ValueType wanted = VtStringW;
    for (const size_t capacity : {size_t(0), size_t(100)}) {
        size_t size = capacity;
        ValueType stored = UntouchedType;
        EXPECT_TRUE(Succeeds(AcnGetAttribute, Subject, W("int"), &wanted, nullptr, &size, &stored));
        EXPECT_EQ(8u, size); // "-12" and its terminator
        EXPECT_EQ(VtInt32, stored);
    }
}

TEST_F(AttributeReading, ConvertsIntoTheBuffer) {
    const ValueType wanted = VtStringW;
    WCHAR buffer[4] = {};
    size_t size = sizeof buffer;
    ValueType stored = UntouchedType;
    EXPECT_TRUE(Succeeds(AcnGetAttribute, Subject, W("int"), &wanted, buffer, &size, &stored));
    EXPECT_EQ(8u, size);
    EXPECT_EQ(VtInt32, stored);
    EXPECT_EQ(Text(W("-12")), buffer);
    EXPECT_EQ(Int32Value(-12), Get(Subject, W("int")));
}

TEST_F(AttributeReading, ConversionThatDoesNotFit) {
    const ValueType wanted = VtStringA;
    char buffer[4] = {'#', '#', '#', '#'};
    size_t size = 3;
    ValueType stored = UntouchedType;
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetAttribute, Subject, W("int"),
                             &wanted, buffer, &size, &stored));
    EXPECT_EQ(4u, size);
    EXPECT_EQ(VtInt32, stored);
    EXPECT_EQ("####", std::string(buffer, 4));
}

TEST_F(AttributeReading, BoolAsAnUnsignedNumberIsInverted) {
    const ValueType wanted = VtUInt32;
    uint32_t number = 77;
    size_t size = sizeof number;
    EXPECT_TRUE(Succeeds(AcnGetAttribute, Subject, W("true"), &wanted, &number, &size, nullptr));
    EXPECT_EQ(0u, number);
}

TEST_F(AttributeReading, EmptyBecomesTheZeroOfTheWantedType) {
    const ValueType wanted = VtInt64;
    int64_t number = 77;
    size_t size = sizeof number;
    EXPECT_TRUE(Succeeds(AcnGetAttribute, Subject, W("empty"), &wanted, &number, &size, nullptr));
    EXPECT_EQ(0, number);
    EXPECT_EQ(8u, size);
}

TEST_F(AttributeReading, StoredTypeMayBeTheWantedTypeVariable) {
    ValueType type = VtInt64;
    int64_t number = 0;
    size_t size = sizeof number;
    EXPECT_TRUE(Succeeds(AcnGetAttribute, Subject, W("int"), &type, &number, &size, &type));
    EXPECT_EQ(-12, number);
    EXPECT_EQ(VtInt32, type);
}

struct BadConversion {
    const WCHAR* Name;
    ValueType Wanted;
    HRESULT Code;
    ValueType Stored;
};

TEST_F(AttributeReading, FailedConversionWritesTheStoredTypeAlone) {
    const BadConversion conversions[] = {
        {W("int"), VtGuid, TREEVAULT_E_CANNOT_CONVERT, VtInt32},
        {W("int"), VtBinary, TREEVAULT_E_CANNOT_CONVERT, VtInt32},
        {W("int"), VtInt32Array, TREEVAULT_E_CANNOT_CONVERT, VtInt32},
        {W("int"), VtEmpty, TREEVAULT_E_CANNOT_CONVERT, VtInt32},
        {W("text"), VtInt32, TREEVAULT_E_CANNOT_CONVERT, VtStringW},
        {W("int"), 8, TREEVAULT_E_UNSUPPORTED_TYPE, VtInt32},
        {W("int"), 0xFFFF, TREEVAULT_E_UNSUPPORTED_TYPE, VtInt32},
        {W("empty"), VtArray, TREEVAULT_E_UNSUPPORTED_TYPE, VtEmpty},
    };
    for (const BadConversion& bad : conversions) {
        char buffer[32] = {};
        size_t size = sizeof buffer;
        ValueType stored = UntouchedType;
        EXPECT_TRUE(FailsWithRecord(bad.Code, AcnGetAttribute, Subject, bad.Name, &bad.Wanted,
                                    buffer, &size, &stored))
            << bad.Wanted;
        EXPECT_EQ(sizeof buffer, size) << bad.Wanted;
        EXPECT_EQ(bad.Stored, stored) << bad.Wanted;
        EXPECT_TRUE(FailsWithRecord(bad.Code, AcnGetAttribute, Subject, bad.Name, &bad.Wanted,
                                    nullptr, &size, nullptr))
            << bad.Wanted;
        EXPECT_EQ(sizeof buffer, size) << bad.Wanted;
    }
}

// --- Misses and bad arguments --------------------------------------------------------------------

TEST_F(AttributeReading, UnknownNameWritesNothing) {
    const Node bare = Create(W("bare"));
    const Node emptied = Create(W("emptied"));
    ASSERT_EQ(TREEVAULT_E_NOT_FOUND, AcnDeleteAttribute(emptied, W("x")));
    const ValueType wanted = 8;
    for (IACNode* node : {Subject.Get(), bare.Get(), emptied.Get()}) {
        char buffer[4] = {'#', '#', '#', '#'};
        size_t size = 4;
        ValueType stored = UntouchedType;
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnGetAttribute, node, W("Int"), &wanted,
                                 buffer, &size, &stored));
        EXPECT_EQ(4u, size);
        EXPECT_EQ(UntouchedType, stored);
        EXPECT_EQ("####", std::string(buffer, 4));
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnGetAttribute, node, W(""), nullptr,
                                 nullptr, nullptr, nullptr));
    }
    EXPECT_EQ(Table::None, TableOf(bare));
}

TEST_F(AttributeReading, NullNameIsRefusedFirst) {
    char buffer[4] = {};
    size_t size = 4;
    ValueType stored = UntouchedType;
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetAttribute, Subject, nullptr, nullptr, buffer,
                                &size, &stored));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetAttribute, Subject, nullptr, nullptr, buffer,
                                nullptr, &stored));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetAttribute, Create(W("bare")), nullptr, nullptr,
                                nullptr, nullptr, nullptr));
    EXPECT_EQ(4u, size);
    EXPECT_EQ(UntouchedType, stored);
}

TEST_F(AttributeReading, BufferWithoutSizeIsRefusedBeforeTheLookup) {
    char buffer[4] = {};
    ValueType stored = UntouchedType;
    EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, AcnGetAttribute, Subject, W("int"), nullptr, buffer,
                                nullptr, &stored));
    EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, AcnGetAttribute, Subject, W("unknown"), nullptr,
                                buffer, nullptr, &stored));
    EXPECT_EQ(UntouchedType, stored);
}

} // namespace
} // namespace treevault::tests
