// SPDX-License-Identifier: MIT
// Adding and removing of children.
#include "support/foreignnode.h"
#include "support/nodes.h"

namespace treevault::tests {
namespace {

class Adding : public NodeTest {};

TEST_F(Adding, ChildrenStandInTheOrderOfAdding) {
    const Node root = Create(W("r"));
    for (const WCHAR* name : {W("z"), W("a"), W("m")})
        AddNew(root, name);
    EXPECT_EQ((Names{W("z"), W("a"), W("m")}), ChildNames(root));
    ExpectChildrenInStep(root);
}

TEST_F(Adding, ParentOwnsTheChild) {
    Node root = Create(W("r"));
    AddNew(root, W("c"));
    EXPECT_EQ(2, Made());
    root.Close();
    EXPECT_EQ(0, Made());
}

TEST_F(Adding, ChildDoesNotOwnTheParent) {
    const Node root = Create(W("r"));
    const Node child = AddNew(root, W("c"));
    EXPECT_EQ(1u, References(root));
    EXPECT_LT(1u, References(child));
}

TEST_F(Adding, ChildsOwnPathPlaysNoRole) {
    const Node parent = Create(W("\\a"));
    const Node child = Create(W("\\x\\c"));
    EXPECT_TRUE(Succeeds(AcnAddChild, parent, child));
    EXPECT_EQ(W("\\a\\c"), Path(child));
    EXPECT_EQ(W("\\a"), ParentPath(child));
    EXPECT_EQ(child.Get(), FindChild(parent, W("c")).Get());
}

TEST_F(Adding, WholeSubtreeGetsTheParentsPath) {
    const Node top = Create(W("t"));
    const Node middle = AddNew(top, W("m"));
    const Node one = AddNew(middle, W("1"));
    const Node two = AddNew(middle, W("2"));
    const Node parent = Create(W("\\p\\q"));
    EXPECT_TRUE(Succeeds(AcnAddChild, parent, top));
    EXPECT_EQ(W("\\p\\q\\t\\m\\1"), Path(one));
    EXPECT_EQ(W("\\p\\q\\t\\m\\2"), Path(two));
    ExpectChildrenInStep(middle);
}

TEST_F(Adding, NullChildIsRefused) {
    const Node root = Create(W("r"));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnAddChild, root, nullptr));
    EXPECT_EQ(0u, ChildCount(root));
}

TEST_F(Adding, ForeignNodeIsRefused) {
    const Node root = Create(W("r"));
    ForeignNode foreign;
    EXPECT_TRUE(FailsWithRecord(E_NOINTERFACE, AcnAddChild, root, &foreign));
    EXPECT_EQ(0u, ChildCount(root));
    EXPECT_EQ("", foreign.LastCall);
    EXPECT_EQ(1u, foreign.References);
}

TEST_F(Adding, ChildOfThisNodeIsRefused) {
    const Node root = Create(W("r"));
    const Node child = AddNew(root, W("c"));
    const uint32_t references = References(child);
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_HAS_PARENT, AcnAddChild, root, child));
    EXPECT_EQ(Names{W("c")}, ChildNames(root));
    EXPECT_EQ(references, References(child));
    ExpectChildrenInStep(root);
}

TEST_F(Adding, ChildOfAnotherNodeIsRefused) {
    const Node root = Create(W("r")), other = Create(W("o"));
    const Node child = AddNew(root, W("c"));
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_HAS_PARENT, AcnAddChild, other, child));
    EXPECT_EQ(0u, ChildCount(other));
    EXPECT_EQ(root.Get(), Parent(child).Get());
    EXPECT_EQ(W("\\r\\c"), Path(child));
}

TEST_F(Adding, TakenNameIsRefusedAndTheNodeStaysFree) {
    const Node root = Create(W("r")), other = Create(W("o"));
    const Node first = AddNew(root, W("c"));
    const Node second = Create(W("\\x\\c"));
    const Node below = AddNew(second, W("below"));
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_CHILD_EXISTS, AcnAddChild, root, second));
    EXPECT_EQ(Names{W("c")}, ChildNames(root));
    EXPECT_EQ(first.Get(), FindChild(root, W("c")).Get());
    EXPECT_EQ(nullptr, Parent(second).Get());
    EXPECT_EQ(W("\\x\\c\\below"), Path(below));
    EXPECT_EQ(1u, References(second));
    EXPECT_TRUE(Succeeds(AcnAddChild, other, second));
    EXPECT_EQ(W("\\o\\c\\below"), Path(below));
}

TEST_F(Adding, ParentIsLookedAtBeforeTheName) {
    const Node root = Create(W("r")), other = Create(W("o"));
    AddNew(root, W("c"));
    const Node second = AddNew(other, W("c"));
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_HAS_PARENT, AcnAddChild, root, second));
}

TEST_F(Adding, NamesOfSiblingsDifferByCase) {
    const Node root = Create(W("r"));
    const Node upper = AddNew(root, W("Foo")), lower = AddNew(root, W("foo"));
    EXPECT_EQ(upper.Get(), FindChild(root, W("Foo")).Get());
    EXPECT_EQ(lower.Get(), FindChild(root, W("foo")).Get());
}

TEST_F(Adding, EmptyNameIsTakenOnce) {
    const Node root = Create(W("r"));
    const Node child = AddNew(root, W(""));
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_CHILD_EXISTS, AcnAddChild, root, Create(W(""))));
    EXPECT_EQ(child.Get(), FindChild(root, W("")).Get());
}

// --- Removing ------------------------------------------------------------------------------------

class Removing : public NodeTest {
protected:
    void SetUp() override {
        Root = Create(W("r"));
        for (const WCHAR* name : {W("a"), W("b"), W("c")})
            AddNew(Root, name);
    }

    Node Root;
};

TEST_F(Removing, RemovedChildIsFreeAndKeepsItsPath) {
    const Node child = FindChild(Root, W("b"));
    const Node below = AddNew(child, W("below"));
    EXPECT_TRUE(Succeeds(AcnRemoveChild, Root, child));
    EXPECT_EQ((Names{W("a"), W("c")}), ChildNames(Root));
    ExpectChildrenInStep(Root);
    EXPECT_EQ(nullptr, FindChild(Root, W("b")).Get());
    EXPECT_EQ(nullptr, Parent(child).Get());
    EXPECT_EQ(1u, References(child));
    EXPECT_EQ(W("\\r\\b"), Path(child));
    EXPECT_EQ(W("\\r\\b\\below"), Path(below));
}

TEST_F(Removing, RemovedChildDoesNotFollowTheOldParent) {
    const Node child = FindChild(Root, W("b"));
    ASSERT_EQ(S_OK, AcnRemoveChild(Root, child));
    ASSERT_EQ(S_OK, AcnSetNodeName(Root, NameShort, W("other")));
    EXPECT_EQ(W("\\r\\b"), Path(child));
    EXPECT_EQ(W("\\other\\a"), Path(ChildAt(Root, 0)));
}

TEST_F(Removing, RemovedChildCanBeAddedAgainAndStandsLast) {
    const Node child = FindChild(Root, W("a"));
    ASSERT_EQ(S_OK, AcnRemoveChild(Root, child));
    EXPECT_TRUE(Succeeds(AcnAddChild, Root, child));
    EXPECT_EQ((Names{W("b"), W("c"), W("a")}), ChildNames(Root));
    ExpectChildrenInStep(Root);
}

TEST_F(Removing, RemovedNameIsFreeForAnother) {
    ASSERT_EQ(S_OK, AcnRemoveChild(Root, FindChild(Root, W("a"))));
    AddNew(Root, W("a"));
    EXPECT_EQ((Names{W("b"), W("c"), W("a")}), ChildNames(Root));
}

TEST_F(Removing, WhatIsNoChildIsAMiss) {
    const Node stranger = Create(W("a"));
    const Node grandchild = AddNew(ChildAt(Root, 0), W("a"));
    const Node removed = FindChild(Root, W("c"));
    ASSERT_EQ(S_OK, AcnRemoveChild(Root, removed));
    for (IACNode* node : {stranger.Get(), grandchild.Get(), removed.Get(), Root.Get()})
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnRemoveChild, Root, node));
    EXPECT_EQ((Names{W("a"), W("b")}), ChildNames(Root));
    EXPECT_EQ(ChildAt(Root, 0).Get(), Parent(grandchild).Get());
}

TEST_F(Removing, NullAndForeignNodesAreRefused) {
    ForeignNode foreign;
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnRemoveChild, Root, nullptr));
    EXPECT_TRUE(FailsWithRecord(E_NOINTERFACE, AcnRemoveChild, Root, &foreign));
    EXPECT_EQ(1u, foreign.References);
    EXPECT_EQ(3u, ChildCount(Root));
}

TEST_F(Removing, IndexZeroMovesTheOthersDown) {
    const Node b = FindChild(Root, W("b")), c = FindChild(Root, W("c"));
    EXPECT_TRUE(Succeeds(AcnRemoveChildByIndex, Root, 0));
    EXPECT_EQ(b.Get(), ChildAt(Root, 0).Get());
    EXPECT_EQ(c.Get(), ChildAt(Root, 1).Get());
    EXPECT_EQ(2u, ChildCount(Root));
    EXPECT_EQ(nullptr, FindChild(Root, W("a")).Get());
    ExpectChildrenInStep(Root);
}

TEST_F(Removing, MiddleAndLastByIndex) {
    EXPECT_TRUE(Succeeds(AcnRemoveChildByIndex, Root, 1));
    EXPECT_EQ((Names{W("a"), W("c")}), ChildNames(Root));
    EXPECT_TRUE(Succeeds(AcnRemoveChildByIndex, Root, 1));
    EXPECT_TRUE(Succeeds(AcnRemoveChildByIndex, Root, 0));
    EXPECT_EQ(0u, ChildCount(Root));
    EXPECT_EQ(1, Made()); // nobody else held them
}

TEST_F(Removing, ChildRemovedByIndexLivesOnWithItsHolder) {
    const Node child = ChildAt(Root, 1);
    EXPECT_TRUE(Succeeds(AcnRemoveChildByIndex, Root, 1));
    EXPECT_EQ(nullptr, Parent(child).Get());
    EXPECT_EQ(W("\\r\\b"), Path(child));
    EXPECT_EQ(1u, References(child));
}

TEST_F(Removing, IndexOutOfRangeIsAMiss) {
    for (const uint64_t index :
         {uint64_t(3), uint64_t(4), uint64_t(0x100000000), uint64_t(0x100000001), ~uint64_t(0)})
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnRemoveChildByIndex, Root, index));
    EXPECT_EQ(3u, ChildCount(Root));
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnRemoveChildByIndex, Create(W("x")), 0));
}

} // namespace
} // namespace treevault::tests
