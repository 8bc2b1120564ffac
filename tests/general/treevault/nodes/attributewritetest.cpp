// SPDX-License-Identifier: MIT
// Setting and deleting of attributes.
#include "support/trees.h"

#include <map>

namespace treevault::tests {
namespace {

class AttributeWriting : public NodeTest {
protected:
    const Node Subject = Create(W("n"));
};

TEST_F(AttributeWriting, ValueOfEachTypeComesBackAsItWasSet) {
    const std::string guid("0123456789ABCDEF");
    const Value values[] = {
        {VtEmpty, ""},
        {VtStringA, std::string("text\0", 5)},
        {VtStringA, std::string("a\0b\0", 4)},
        TextValue(W("wide")),
        TextValue(W("")),
        NumberValue<int32_t>(VtInt32, -5),
        NumberValue<uint32_t>(VtUInt32, 0xFFFFFFFF),
        NumberValue<int64_t>(VtInt64, -1),
        NumberValue<uint64_t>(VtUInt64, 0x123456789ABCDEF0),
        {VtBool, std::string("\2", 1)},
        {VtBinary, ""},
        {VtBinary, std::string("\0\1\xFF", 3)},
        {VtGuid, guid},
        {VtStringAArray, ""},
        {VtStringAArray, std::string("a\0\0b\0", 5)},
        {VtStringWArray, TextValue(W("ab")).Bytes + TextValue(W("")).Bytes},
        {VtInt32Array, std::string(8, '\1')},
        {VtUInt32Array, std::string(12, '\2')},
        {VtInt64Array, std::string(16, '\3')},
        {VtUInt64Array, std::string(24, '\4')},
        {VtBoolArray, std::string("\0\1\2", 3)},
        {VtGuidArray, guid + guid},
    };
    for (const Value& value : values) {
        EXPECT_TRUE(Succeeds(AcnSetAttribute, Subject, W("a"), value.Tag, value.Bytes.data(),
                             value.Bytes.size()));
        EXPECT_EQ(value, Get(Subject, W("a")));
    }
    EXPECT_EQ(Names{W("a")}, AttributeNames(Subject));
}

TEST_F(AttributeWriting, ValueSizesAroundTheInlineLimit) {
    for (const size_t size : {0u, 1u, 7u, 8u, 9u, 8u, 9u, 10u, 1000u, 8u, 100000u, 0u}) {
        const Value value{VtBinary, std::string(size, static_cast<char>(size))};
        EXPECT_EQ(S_OK, Set(Subject, W("a"), value));
        EXPECT_EQ(value, Get(Subject, W("a")));
    }
}

// Every size beside every other, and each attribute with each size after each: short values lie
// between the names and beside each other, so that one that grows could reach into the next.
TEST_F(AttributeWriting, ValuesThatChangeTheirSizeLeaveTheOthersAlone) {
    const size_t sizes[] = {0, 1, 8, 9, 15, 16, 17, 24, 63, 64, 65, 200};
    const WCHAR* const names[] = {W("b"), W("a"), W("a longer name"), W("c"), W("d"), W("e")};
    std::map<std::basic_string<WCHAR>, Value> expected;
    const auto set = [&](IACNode* node, const WCHAR* name, size_t size) {
        const auto fill = static_cast<char>('!' + (expected.size() * 7 + size) % 90);
        const Value value{VtBinary, std::string(size, fill)};
        ASSERT_EQ(S_OK, Set(node, name, value));
        expected.insert_or_assign(name, value);
    };
    const auto expectAll = [&](IACNode* node) {
        for (const auto& [name, value] : expected)
            ASSERT_EQ(value, Get(node, name.c_str()));
    };
    for (const size_t former : sizes)
        for (const size_t size : sizes)
            for (const WCHAR* name : names) {
                const Node clone = Clone(Subject);
                const auto before = expected;
                set(Subject, name, former);
                set(Subject, name, size);
                expectAll(Subject);
                if (size == 17 && former == 64) {
                    ASSERT_EQ(S_OK, AcnDeleteAttribute(Subject, name));
                    expected.erase(name);
                    expectAll(Subject);
                }
                for (const auto& [old, value] : before)
                    ASSERT_EQ(value, Get(clone, old.c_str()));
            }
}

// However often tables are copied and grow, they take the memory that their attributes need: what
// doubles each time would soon be more than there is.
TEST_F(AttributeWriting, AttributeThatComesAndGoesBesideClonesTakesNoMoreAndMore) {
    for (const WCHAR* name : {W("a"), W("b"), W("c"), W("d")})
        ASSERT_EQ(S_OK, SetInt(Subject, name, 1));
    for (int times = 0; times < 100; ++times) {
        const Node clone = Clone(Subject);
        ASSERT_EQ(S_OK, SetInt(Subject, W("e"), times));
        ASSERT_EQ(S_OK, AcnDeleteAttribute(Subject, W("e")));
    }
}

TEST_F(AttributeWriting, OneHugeNameLeavesRoomForMany) {
    const std::basic_string<WCHAR> huge(1 << 20, W('x'));
    ASSERT_EQ(S_OK, SetInt(Subject, huge.c_str(), 1));
    for (int number = 0; number < 4200; ++number)
        ASSERT_EQ(S_OK, SetInt(Subject, Wide(std::to_string(number)).c_str(), number));
    EXPECT_EQ(Int32Value(1), Get(Subject, huge.c_str()));
    EXPECT_EQ(Int32Value(4199), Get(Subject, W("4199")));
}

TEST_F(AttributeWriting, BytesAreCopied) {
    std::string bytes(20, 'a');
    ASSERT_EQ(S_OK, AcnSetAttribute(Subject, W("a"), VtBinary, bytes.data(), bytes.size()));
    bytes.assign(20, 'b');
    EXPECT_EQ(std::string(20, 'a'), Get(Subject, W("a")).Bytes);
}

TEST_F(AttributeWriting, ValueCanBeSetFromTheAttributeNameItself) {
    Text name(W("key"));
    ASSERT_EQ(S_OK, AcnSetAttribute(Subject, name.c_str(), VtStringW, name.c_str(), 8));
    name.assign(3, W('x'));
    EXPECT_EQ(Names{W("key")}, AttributeNames(Subject));
    EXPECT_EQ(TextValue(W("key")), Get(Subject, W("key")));
}

TEST_F(AttributeWriting, NullDataWithNoBytesIsEmpty) {
    EXPECT_TRUE(Succeeds(AcnSetAttribute, Subject, W("e"), VtEmpty, nullptr, 0));
    EXPECT_TRUE(Succeeds(AcnSetAttribute, Subject, W("b"), VtBinary, nullptr, 0));
    EXPECT_TRUE(Succeeds(AcnSetAttribute, Subject, W("i"), VtInt32Array, nullptr, 0));
    EXPECT_EQ((Value{VtEmpty, ""}), Get(Subject, W("e")));
    EXPECT_EQ((Value{VtBinary, ""}), Get(Subject, W("b")));
    EXPECT_EQ((Value{VtInt32Array, ""}), Get(Subject, W("i")));
}

TEST_F(AttributeWriting, AnyTextIsAName) {
    const Text longName(5000, W('n'));
    Names expected{W(""),  W(" "),    W("A"),   W("\\"),    W("\\a\\b"),
                   W("a"), W("a\\b"), longName, W("\u4e2d")};
    for (const Text& name : expected)
        EXPECT_EQ(S_OK, SetInt(Subject, name.c_str(), static_cast<int32_t>(name.size())));
    EXPECT_EQ(expected, AttributeNames(Subject));
    for (const Text& name : expected)
        EXPECT_EQ(Int32Value(static_cast<int32_t>(name.size())), Get(Subject, name.c_str()));
}

TEST_F(AttributeWriting, NamesAreCaseSensitive) {
    ASSERT_EQ(S_OK, SetInt(Subject, W("a"), 1));
    ASSERT_EQ(S_OK, SetInt(Subject, W("A"), 2));
    EXPECT_EQ(Int32Value(1), Get(Subject, W("a")));
    EXPECT_EQ(Int32Value(2), Get(Subject, W("A")));
}

TEST_F(AttributeWriting, SecondSetReplacesTypeAndValueInPlace) {
    ASSERT_EQ(S_OK, SetInt(Subject, W("a"), 1));
    ASSERT_EQ(S_OK, SetInt(Subject, W("b"), 2));
    ASSERT_EQ(S_OK, SetInt(Subject, W("c"), 3));
    ASSERT_EQ(S_OK, Set(Subject, W("b"), TextValue(W("a longer value"))));
    EXPECT_EQ((Names{W("a"), W("b"), W("c")}), AttributeNames(Subject));
    EXPECT_EQ(TextValue(W("a longer value")), Get(Subject, W("b")));
    EXPECT_EQ(Int32Value(1), Get(Subject, W("a")));
    EXPECT_EQ(Int32Value(3), Get(Subject, W("c")));
}

// --- Failures ------------------------------------------------------------------------------------

struct BadTriple {
    ValueType Tag;
    size_t Size;
    bool NullData;
    HRESULT Code;
};

TEST_F(AttributeWriting, BadTripleLeavesTheOldValue) {
    constexpr BadTriple triples[] = {
        {VtEmpty, 1, false, TREEVAULT_E_INVALID_DATA},
        {VtStringA, 0, false, TREEVAULT_E_INVALID_DATA},
        {VtStringA, 2, false, TREEVAULT_E_INVALID_DATA}, // no terminator
        {VtStringA, 2, true, TREEVAULT_E_INVALID_DATA},
        {VtStringW, 1, false, TREEVAULT_E_INVALID_DATA},
        {VtStringW, 4, false, TREEVAULT_E_INVALID_DATA},
        {VtInt32, 3, false, TREEVAULT_E_INVALID_DATA},
        {VtInt32, 4, true, TREEVAULT_E_INVALID_DATA},
        {VtInt32, 0x100000004, false, TREEVAULT_E_INVALID_DATA},
        {VtUInt64, 4, false, TREEVAULT_E_INVALID_DATA},
        {VtBool, 0, false, TREEVAULT_E_INVALID_DATA},
        {VtBinary, 1, true, TREEVAULT_E_INVALID_DATA},
        {VtGuid, 15, false, TREEVAULT_E_INVALID_DATA},
        {VtInt32Array, 6, false, TREEVAULT_E_INVALID_DATA},
        {VtGuidArray, 17, false, TREEVAULT_E_INVALID_DATA},
        {8, 4, false, TREEVAULT_E_UNSUPPORTED_TYPE},
        {14, 4, false, TREEVAULT_E_UNSUPPORTED_TYPE},
        {VtArray, 0, false, TREEVAULT_E_UNSUPPORTED_TYPE},
        {0x10C, 4, false, TREEVAULT_E_UNSUPPORTED_TYPE},
        {0x203, 4, false, TREEVAULT_E_UNSUPPORTED_TYPE},
        {0xFFFF, 4, false, TREEVAULT_E_UNSUPPORTED_TYPE},
    };
    const char data[32] = {'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a',
                           'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a',
                           'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a'};
    ASSERT_EQ(S_OK, SetInt(Subject, W("old"), 1));
    ASSERT_EQ(S_OK, AcnSetModifiedState(Subject, nullptr, 0));
    for (const BadTriple& triple : triples) {
        const void* bytes = triple.NullData ? nullptr : data;
        for (const WCHAR* name : {W("old"), W("new")}) {
            EXPECT_TRUE(FailsWithRecord(triple.Code, AcnSetAttribute, Subject, name, triple.Tag,
                                        bytes, triple.Size))
                << triple.Tag << ", " << triple.Size;
        }
    }
    EXPECT_EQ(Names{W("old")}, AttributeNames(Subject));
    EXPECT_EQ(Int32Value(1), Get(Subject, W("old")));
    EXPECT_EQ(0u, ModifiedState(Subject, W("old")));
}

TEST_F(AttributeWriting, OddSizeThatCutsTheTerminatorLeavesTheOldValue) {
    ASSERT_EQ(S_OK, Set(Subject, W("a"), TextValue(W("old"))));
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_INVALID_DATA, AcnSetAttribute, Subject, W("a"),
                                VtStringW, W("new"), 7));
    EXPECT_EQ(TextValue(W("old")), Get(Subject, W("a")));
}

TEST_F(AttributeWriting, OddByteBehindTheTerminatorIsKept) {
    const Value value{VtStringW, TextValue(W("ab")).Bytes + "x"};
    EXPECT_EQ(S_OK, Set(Subject, W("a"), value));
    EXPECT_EQ(value, Get(Subject, W("a")));
}

TEST_F(AttributeWriting, BadTripleOnANewNodeMakesNoTable) {
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_INVALID_DATA, AcnSetAttribute, Subject, W("a"), VtInt32,
                                "", 1));
    EXPECT_EQ(Table::None, TableOf(Subject));
}

TEST_F(AttributeWriting, SizeAbove32BitsLeavesTheOldValue) {
    ASSERT_EQ(S_OK, SetInt(Subject, W("old"), 1));
    const char data[16] = {};
    for (const ValueType tag : {VtBinary, VtBoolArray})
        for (const size_t size : {size_t(0x100000000), size_t(0x100000004), ~size_t(0)})
            EXPECT_TRUE(
                FailsWithRecord(E_INVALIDARG, AcnSetAttribute, Subject, W("old"), tag, data, size));
    EXPECT_EQ(Int32Value(1), Get(Subject, W("old")));
}

TEST_F(AttributeWriting, SizeAbove32BitsOnANewNodeLeavesAnEmptyTable) {
    EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, AcnSetAttribute, Subject, W("a"), VtBinary, "",
                                size_t(0x100000000)));
    EXPECT_EQ(Table::Empty, TableOf(Subject));
}

// --- Deleting ------------------------------------------------------------------------------------

class AttributeDeleting : public AttributeWriting {};

TEST_F(AttributeDeleting, DeletesOneAndKeepsTheOthers) {
    for (const WCHAR* name : {W("a"), W("b"), W("c")})
        ASSERT_EQ(S_OK, Set(Subject, name, TextValue(W("a value on the heap"))));
    EXPECT_TRUE(Succeeds(AcnDeleteAttribute, Subject, W("b")));
    EXPECT_EQ((Names{W("a"), W("c")}), AttributeNames(Subject));
    EXPECT_FALSE(HasAttribute(Subject, W("b")));
    EXPECT_EQ(TextValue(W("a value on the heap")), Get(Subject, W("c")));
}

TEST_F(AttributeDeleting, LastOneLeavesAnEmptyTable) {
    ASSERT_EQ(S_OK, SetInt(Subject, W("a"), 1));
    EXPECT_TRUE(Succeeds(AcnDeleteAttribute, Subject, W("a")));
    EXPECT_EQ(Table::Empty, TableOf(Subject));
}

TEST_F(AttributeDeleting, NullDeletesAllAndTheTable) {
    ASSERT_EQ(S_OK, SetInt(Subject, W("a"), 1));
    ASSERT_EQ(S_OK, SetInt(Subject, W("b"), 2));
    EXPECT_TRUE(Succeeds(AcnDeleteAttribute, Subject, nullptr));
    EXPECT_EQ(Table::None, TableOf(Subject));
    ASSERT_EQ(S_OK, SetInt(Subject, W("c"), 3));
    EXPECT_EQ(Names{W("c")}, AttributeNames(Subject));
}

TEST_F(AttributeDeleting, NullOnANodeWithoutTableSucceeds) {
    EXPECT_TRUE(Succeeds(AcnDeleteAttribute, Subject, nullptr));
    EXPECT_EQ(Table::None, TableOf(Subject));
}

TEST_F(AttributeDeleting, NullDropsAnEmptyTable) {
    ASSERT_EQ(S_OK, SetInt(Subject, W("a"), 1));
    ASSERT_EQ(S_OK, AcnDeleteAttribute(Subject, W("a")));
    EXPECT_TRUE(Succeeds(AcnDeleteAttribute, Subject, nullptr));
    EXPECT_EQ(Table::None, TableOf(Subject));
}

TEST_F(AttributeDeleting, UnknownNameIsAMiss) {
    ASSERT_EQ(S_OK, SetInt(Subject, W("a"), 1));
    for (const WCHAR* name : {W("b"), W("A"), W(""), W("aa")})
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnDeleteAttribute, Subject, name));
    EXPECT_EQ(Names{W("a")}, AttributeNames(Subject));
}

TEST_F(AttributeDeleting, MissOnANodeWithoutTableLeavesAnEmptyOne) {
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnDeleteAttribute, Subject, W("x")));
    EXPECT_EQ(Table::Empty, TableOf(Subject));
}

TEST_F(AttributeDeleting, DeletedNameCanBeSetAgain) {
    ASSERT_EQ(S_OK, SetInt(Subject, W("a"), 1));
    ASSERT_EQ(S_OK, AcnSetModifiedState(Subject, nullptr, 0));
    ASSERT_EQ(S_OK, AcnDeleteAttribute(Subject, W("a")));
    ASSERT_EQ(S_OK, SetInt(Subject, W("a"), 2));
    EXPECT_EQ(Int32Value(2), Get(Subject, W("a")));
    EXPECT_EQ(1u, ModifiedState(Subject, W("a")));
}

} // namespace
} // namespace treevault::tests
