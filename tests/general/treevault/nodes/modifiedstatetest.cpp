// SPDX-License-Identifier: MIT
// The modified flags of attributes: what sets them, who shares them, and how they are asked.
#include "support/nodes.h"

namespace treevault::tests {
namespace {

class ModifiedFlags : public NodeTest {
protected:
    // A node with the attributes "a" and "b", neither of them marked.
    Node MakeClean() {
        Node node = Create(W("n"));
        EXPECT_EQ(S_OK, SetInt(node, W("a"), 1));
        EXPECT_EQ(S_OK, SetInt(node, W("b"), 2));
        EXPECT_TRUE(Succeeds(AcnSetModifiedState, node, nullptr, 0));
        return node;
    }
};

TEST_F(ModifiedFlags, NewAttributeIsMarked) {
    const Node node = Create(W("n"));
    ASSERT_EQ(S_OK, SetInt(node, W("a"), 1));
    EXPECT_EQ(1u, ModifiedState(node, W("a")));
    EXPECT_EQ(1u, ModifiedState(node, nullptr));
    EXPECT_EQ(Names{W("a")}, ModifiedNames(node));
}

TEST_F(ModifiedFlags, NullNameClearsAll) {
    const Node node = MakeClean();
    EXPECT_EQ(0u, ModifiedState(node, W("a")));
    EXPECT_EQ(0u, ModifiedState(node, W("b")));
    EXPECT_EQ(0u, ModifiedState(node, nullptr));
    size_t size = 77;
    EXPECT_TRUE(Succeeds(AcnGetModifiedAttributeNames, node, nullptr, &size));
    EXPECT_EQ(0u, size);
    EXPECT_EQ((Names{W("a"), W("b")}), AttributeNames(node));
}

TEST_F(ModifiedFlags, NullNameSetsAll) {
    const Node node = MakeClean();
    EXPECT_TRUE(Succeeds(AcnSetModifiedState, node, nullptr, 1));
    EXPECT_EQ((Names{W("a"), W("b")}), ModifiedNames(node));
}

TEST_F(ModifiedFlags, NamedAttributeIsClearedAlone) {
    const Node node = MakeClean();
    ASSERT_EQ(S_OK, AcnSetModifiedState(node, nullptr, 1));
    EXPECT_TRUE(Succeeds(AcnSetModifiedState, node, W("a"), 0));
    EXPECT_EQ(0u, ModifiedState(node, W("a")));
    EXPECT_EQ(1u, ModifiedState(node, W("b")));
    EXPECT_EQ(1u, ModifiedState(node, nullptr));
    EXPECT_EQ(Names{W("b")}, ModifiedNames(node));
}

TEST_F(ModifiedFlags, AnyStateButZeroSets) {
    for (const uint32_t state : {1u, 2u, 0x100u, 0x10000u, 0x80000000u, 0xFFFFFFFEu}) {
        const Node node = MakeClean();
        EXPECT_TRUE(Succeeds(AcnSetModifiedState, node, W("b"), state));
        EXPECT_EQ(1u, ModifiedState(node, W("b"))) << state;
        EXPECT_EQ(1u, ModifiedState(node, nullptr)) << state;
        EXPECT_EQ(Names{W("b")}, ModifiedNames(node)) << state;
    }
}

TEST_F(ModifiedFlags, EqualValueMarksAgain) {
    const Node node = MakeClean();
    ASSERT_EQ(S_OK, SetInt(node, W("a"), 1));
    EXPECT_EQ(Names{W("a")}, ModifiedNames(node));
}

TEST_F(ModifiedFlags, FailedWriteMarksNothing) {
    const Node node = MakeClean();
    ASSERT_EQ(TREEVAULT_E_INVALID_DATA, AcnSetAttribute(node, W("a"), VtInt32, "x", 1));
    EXPECT_EQ(0u, ModifiedState(node, nullptr));
}

TEST_F(ModifiedFlags, NothingButAWriteMarks) {
    const Node node = MakeClean();
    const Node root = Create(W("r"));
    ASSERT_EQ(S_OK, AcnSetNodeName(node, NameShort, W("n2")));
    ASSERT_EQ(S_OK, AcnSetNodeType(node, W("t")));
    ASSERT_EQ(S_OK, AcnAddChild(root, node));
    AddNew(node, W("child"));
    ASSERT_EQ(S_OK, SetInt(ChildAt(node, 0), W("a"), 1));
    ASSERT_EQ(S_OK, AcnRemoveChildByIndex(node, 0));
    ASSERT_EQ(S_OK, AcnDeleteAttribute(node, W("b")));
    ASSERT_EQ(S_OK, AcnRemoveChild(root, node));
    EXPECT_EQ(0u, ModifiedState(node, nullptr));
    EXPECT_EQ(Names{W("a")}, AttributeNames(node));
}

TEST_F(ModifiedFlags, DeletedAttributeTakesItsFlagAlong) {
    const Node node = MakeClean();
    ASSERT_EQ(S_OK, SetInt(node, W("a"), 5));
    ASSERT_EQ(S_OK, AcnDeleteAttribute(node, W("a")));
    EXPECT_EQ(0u, ModifiedState(node, nullptr));
    EXPECT_TRUE(ModifiedNames(node).empty());
}

TEST_F(ModifiedFlags, NamesAreSorted) {
    const Node node = Create(W("n"));
    for (const WCHAR* name : {W("d"), W("b"), W("a"), W("C")})
        ASSERT_EQ(S_OK, SetInt(node, name, 1));
    ASSERT_EQ(S_OK, AcnSetModifiedState(node, W("b"), 0));
    EXPECT_EQ((Names{W("C"), W("a"), W("d")}), ModifiedNames(node));
}

// --- No table and empty table --------------------------------------------------------------------

TEST_F(ModifiedFlags, NodeWithoutTable) {
    const Node node = Create(W("n"));
    uint32_t state = 77;
    EXPECT_TRUE(Succeeds(AcnGetModifiedState, node, nullptr, &state));
    EXPECT_EQ(0u, state);
    EXPECT_TRUE(Succeeds(AcnSetModifiedState, node, W("x"), 1));
    EXPECT_TRUE(Succeeds(AcnSetModifiedState, node, nullptr, 1));
    state = 77;
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnGetModifiedState, node, W("x"), &state));
    EXPECT_EQ(77u, state);
    EXPECT_EQ(Table::None, TableOf(node));
}

TEST_F(ModifiedFlags, NodeWithAnEmptyTable) {
    const Node node = Create(W("n"));
    ASSERT_EQ(S_OK, SetInt(node, W("a"), 1));
    ASSERT_EQ(S_OK, AcnDeleteAttribute(node, W("a")));
    uint32_t state = 77;
    for (const WCHAR* name : {W("a"), static_cast<const WCHAR*>(nullptr)}) {
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnGetModifiedState, node, name, &state));
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnSetModifiedState, node, name, 0));
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnSetModifiedState, node, name, 1));
    }
    EXPECT_EQ(77u, state);
}

TEST_F(ModifiedFlags, UnknownNameIsAMiss) {
    const Node node = MakeClean();
    uint32_t state = 77;
    for (const WCHAR* name : {W("A"), W(""), W("ab"), W("c")}) {
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnGetModifiedState, node, name, &state));
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnSetModifiedState, node, name, 1));
    }
    EXPECT_EQ(77u, state);
    EXPECT_EQ(0u, ModifiedState(node, nullptr));
}

TEST_F(ModifiedFlags, NullOutIsRefusedBeforeTheLookup) {
    const Node node = MakeClean();
    const Node bare = Create(W("bare"));
    for (const WCHAR* name : {W("a"), W("unknown"), static_cast<const WCHAR*>(nullptr)}) {
        EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetModifiedState, node, name, nullptr));
        EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetModifiedState, bare, name, nullptr));
    }
}

// --- Clones --------------------------------------------------------------------------------------

TEST_F(ModifiedFlags, SharersShareTheFlags) {
    const Node node = MakeClean();
    const Node clone = Clone(node);
    ASSERT_EQ(S_OK, AcnSetModifiedState(node, W("a"), 1));
    EXPECT_EQ(Names{W("a")}, ModifiedNames(clone));
    ASSERT_EQ(S_OK, AcnSetModifiedState(clone, nullptr, 0));
    EXPECT_EQ(0u, ModifiedState(node, nullptr));
    ASSERT_EQ(S_OK, AcnSetModifiedState(Clone(clone), W("b"), 1));
    EXPECT_EQ(Names{W("b")}, ModifiedNames(node));
}

TEST_F(ModifiedFlags, WriteParts) {
    const Node node = MakeClean();
    ASSERT_EQ(S_OK, AcnSetModifiedState(node, W("b"), 1));
    const Node clone = Clone(node);
    ASSERT_EQ(S_OK, SetInt(clone, W("a"), 5));
    EXPECT_EQ((Names{W("a"), W("b")}), ModifiedNames(clone));
    EXPECT_EQ(Names{W("b")}, ModifiedNames(node));
    ASSERT_EQ(S_OK, AcnSetModifiedState(node, nullptr, 0));
    EXPECT_EQ((Names{W("a"), W("b")}), ModifiedNames(clone));
    ASSERT_EQ(S_OK, AcnSetModifiedState(clone, nullptr, 0));
    ASSERT_EQ(S_OK, AcnSetModifiedState(node, nullptr, 1));
    EXPECT_TRUE(ModifiedNames(clone).empty());
}

TEST_F(ModifiedFlags, WriteOnTheSourceParts) {
    const Node node = MakeClean();
    const Node clone = Clone(node);
    ASSERT_EQ(S_OK, SetInt(node, W("a"), 5));
    EXPECT_EQ(0u, ModifiedState(clone, nullptr));
    ASSERT_EQ(S_OK, AcnSetModifiedState(clone, W("b"), 1));
    EXPECT_EQ(Names{W("a")}, ModifiedNames(node));
    EXPECT_EQ(Names{W("b")}, ModifiedNames(clone));
}

TEST_F(ModifiedFlags, RefusedWriteDoesNotPart) {
    const Node node = MakeClean();
    const Node clone = Clone(node);
    ASSERT_EQ(TREEVAULT_E_INVALID_DATA, AcnSetAttribute(clone, W("a"), VtInt32, "x", 1));
    ASSERT_EQ(S_OK, AcnSetModifiedState(node, nullptr, 1));
    EXPECT_EQ((Names{W("a"), W("b")}), ModifiedNames(clone));
}

TEST_F(ModifiedFlags, MissedDeletionParts) {
    const Node node = MakeClean();
    const Node clone = Clone(node);
    ASSERT_EQ(TREEVAULT_E_NOT_FOUND, AcnDeleteAttribute(clone, W("x")));
    ASSERT_EQ(S_OK, AcnSetModifiedState(node, nullptr, 1));
    EXPECT_EQ(0u, ModifiedState(clone, nullptr));
}

TEST_F(ModifiedFlags, OwnAttributesHaveTheSameFlagsAndTheirOwn) {
    const Node node = MakeClean();
    ASSERT_EQ(S_OK, AcnSetModifiedState(node, W("b"), 1));
    const Node clone = Clone(node, 0, CloneOwnAttributes);
    EXPECT_EQ(Names{W("b")}, ModifiedNames(clone));
    ASSERT_EQ(S_OK, AcnSetModifiedState(node, nullptr, 0));
    EXPECT_EQ(Names{W("b")}, ModifiedNames(clone));
    ASSERT_EQ(S_OK, AcnSetModifiedState(clone, W("a"), 1));
    EXPECT_EQ(0u, ModifiedState(node, nullptr));
}

TEST_F(ModifiedFlags, FlagsDoNotSpreadInTheTree) {
    const Node root = MakeClean();
    const Node child = MakeClean();
    ASSERT_EQ(S_OK, AcnAddChild(root, child));
    ASSERT_EQ(S_OK, SetInt(child, W("a"), 5));
    EXPECT_EQ(0u, ModifiedState(root, nullptr));
    ASSERT_EQ(S_OK, AcnSetModifiedState(root, nullptr, 1));
    EXPECT_EQ(Names{W("a")}, ModifiedNames(child));
}

} // namespace
} // namespace treevault::tests
