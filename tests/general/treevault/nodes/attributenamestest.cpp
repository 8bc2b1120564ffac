// SPDX-License-Identifier: MIT
// The lists of attribute names: order, layout, and what a short buffer gets.
#include "support/nodes.h"

#include <algorithm>

namespace treevault::tests {
namespace {

class AttributeNameLists : public NodeTest {
protected:
    const Node Subject = Create(W("n"));
};

TEST_F(AttributeNameLists, SortedByCodeUnit) {
    for (const WCHAR* name : {W("b"), W("a"), W("B")})
        ASSERT_EQ(S_OK, SetInt(Subject, name, 1));
    size_t size = 0;
    EXPECT_TRUE(Succeeds(AcnGetAttributeNames, Subject, nullptr, &size));
    EXPECT_EQ(6u, size);
    WCHAR buffer[7] = {W('#'), W('#'), W('#'), W('#'), W('#'), W('#'), W('#')};
    EXPECT_TRUE(Succeeds(AcnGetAttributeNames, Subject, buffer, &size));
    EXPECT_EQ(Text(W("B\0a\0b\0#"), 7), Text(buffer, 7));
    EXPECT_EQ(6u, size);
}

TEST_F(AttributeNameLists, CodeUnitsCompareAsUnsignedNumbers) {
    // The astral name begins with a unit below that of the other one.
    const Names expected{W(""),      W("Z"),      W("a"),      W("ab"),
                         W("a\x7f"), W("\u0080"), W("\u7fff"), W("\xd83d\xde00"),
                         W("\uffee")};
    for (auto name = expected.rbegin(); name != expected.rend(); ++name)
        ASSERT_EQ(S_OK, SetInt(Subject, name->c_str(), 1));
    EXPECT_EQ(expected, AttributeNames(Subject));
}

TEST_F(AttributeNameLists, NoTableAndEmptyTableGiveSizeZero) {
    WCHAR buffer[1] = {W('#')};
    for (int pass = 0; pass < 2; ++pass) {
        for (WCHAR* place : {buffer, static_cast<WCHAR*>(nullptr)}) {
            size_t size = pass == 0 ? 77 : 0;
            EXPECT_TRUE(Succeeds(AcnGetAttributeNames, Subject, place, &size));
            EXPECT_EQ(0u, size);
            size = 1;
            EXPECT_TRUE(Succeeds(AcnGetModifiedAttributeNames, Subject, place, &size));
            EXPECT_EQ(0u, size);
        }
        ASSERT_EQ(TREEVAULT_E_NOT_FOUND, AcnDeleteAttribute(Subject, W("x")));
    }
    EXPECT_EQ(W('#'), buffer[0]);
}

TEST_F(AttributeNameLists, EmptyNameIsASingleTerminator) {
    ASSERT_EQ(S_OK, SetInt(Subject, W(""), 1));
    size_t size = 1;
    WCHAR buffer[1] = {W('#')};
    EXPECT_TRUE(Succeeds(AcnGetAttributeNames, Subject, buffer, &size));
    EXPECT_EQ(1u, size);
    EXPECT_EQ(WCHAR(0), buffer[0]);
}

TEST_F(AttributeNameLists, ShortBufferHoldsTheNamesThatFitted) {
    for (const WCHAR* name : {W("a"), W("bcd"), W("e")})
        ASSERT_EQ(S_OK, SetInt(Subject, name, 1));
    const Text all(W("a\0bcd\0e\0"), 8);
    for (const auto function : {AcnGetAttributeNames, AcnGetModifiedAttributeNames}) {
        for (size_t capacity = 0; capacity <= 9; ++capacity) {
            WCHAR buffer[9];
            std::fill_n(buffer, 9, W('#'));
            size_t size = capacity;
            const HRESULT code = capacity < 8 ? TREEVAULT_E_INSUFFICIENT_BUFFER : S_OK;
            EXPECT_TRUE(Returns(code, function, Subject, buffer, &size)) << capacity;
            EXPECT_EQ(8u, size) << capacity;
            const size_t fitted = capacity < 2 ? 0 : capacity < 6 ? 2 : capacity < 8 ? 6 : 8;
            EXPECT_EQ(all.substr(0, fitted) + Text(9 - fitted, W('#')), Text(buffer, 9))
                << capacity;
        }
    }
}

TEST_F(AttributeNameLists, NullSizeIsRefused) {
    WCHAR buffer[4] = {};
    for (const auto function : {AcnGetAttributeNames, AcnGetModifiedAttributeNames}) {
        EXPECT_TRUE(FailsWithRecord(E_POINTER, function, Subject, nullptr, nullptr));
        EXPECT_TRUE(FailsWithRecord(E_POINTER, function, Subject, buffer, nullptr));
    }
}

TEST_F(AttributeNameLists, ManyAttributesAreKeptInOrder) {
    Names expected;
    for (int i = 0; i < 2000; ++i) {
        const int number = i * 7919 % 2000; // every number once, far from sorted
        const std::string digits = std::to_string(10000 + number);
        ASSERT_EQ(S_OK, SetInt(Subject, Text(digits.begin(), digits.end()).c_str(), number));
    }
    for (int number = 0; number < 2000; ++number) {
        const std::string digits = std::to_string(10000 + number);
        expected.emplace_back(digits.begin(), digits.end());
        EXPECT_EQ(Int32Value(number), Get(Subject, expected.back().c_str()));
    }
    EXPECT_EQ(expected, AttributeNames(Subject));
}

} // namespace
} // namespace treevault::tests
