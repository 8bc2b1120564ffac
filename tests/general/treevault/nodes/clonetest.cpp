// SPDX-License-Identifier: MIT
// Cloning: what a clone holds, how deep it goes, and what it shares.
#include "support/nodes.h"

namespace treevault::tests {
namespace {

class Cloning : public NodeTest {
protected:
    // Five levels: r, a and b below it, c below a, d below c, e below d.
    Node MakeTree() {
        Node root = Create(W("\\p\\r"), W("root type"));
        const Node a = AddNew(root, W("a"), W("a type"));
        AddNew(root, W("b"));
        const Node c = AddNew(a, W("c"));
        const Node d = AddNew(c, W("d"));
        AddNew(d, W("e"));
        EXPECT_EQ(S_OK, SetInt(root, W("x"), 1));
        EXPECT_EQ(S_OK, SetInt(c, W("y"), 2));
        return root;
    }
};

// How many levels there are below a node along the first children.
size_t LevelsBelow(IACNode* node) {
    return ChildCount(node) == 0 ? 0 : 1 + LevelsBelow(ChildAt(node, 0));
}

TEST_F(Cloning, CloneOfOneNodeIsFreeAndKeepsThePath) {
    const Node root = MakeTree();
    const Node a = FindChild(root, W("a"));
    const Node clone = Clone(a, 0);
    EXPECT_NE(a.Get(), clone.Get());
    EXPECT_EQ(W("a"), Name(clone));
    EXPECT_EQ(W("\\p\\r\\a"), Path(clone));
    EXPECT_EQ(W("a type"), Type(clone));
    EXPECT_EQ(nullptr, Parent(clone).Get());
    EXPECT_EQ(0u, ChildCount(clone));
    EXPECT_EQ(1u, References(clone));
    EXPECT_EQ(7, Made());
}

TEST_F(Cloning, DepthOneCopiesTheChildrenAlone) {
    const Node root = MakeTree();
    const Node clone = Clone(root, 1);
    EXPECT_EQ((Names{W("a"), W("b")}), ChildNames(clone));
    EXPECT_EQ(0u, ChildCount(ChildAt(clone, 0)));
    EXPECT_EQ(6 + 3, Made());
}

TEST_F(Cloning, DepthIsCountedDown) {
    const Node root = MakeTree();
    EXPECT_EQ(0u, LevelsBelow(Clone(root, 0)));
    EXPECT_EQ(1u, LevelsBelow(Clone(root, 1)));
    EXPECT_EQ(2u, LevelsBelow(Clone(root, 2)));
    EXPECT_EQ(3u, LevelsBelow(Clone(root, 3)));
    EXPECT_EQ(4u, LevelsBelow(Clone(root, 4)));
    EXPECT_EQ(4u, LevelsBelow(Clone(root, 5)));
}

TEST_F(Cloning, DepthHas64Bits) {
    const Node root = MakeTree();
    for (const uint64_t depth :
         {TREEVAULT_ALL_LEVELS, TREEVAULT_ALL_LEVELS - 1, TREEVAULT_ALL_LEVELS + 1,
          uint64_t(0x80000001), uint64_t(0xFFFFFFFF), uint64_t(0x100000000), uint64_t(0x100000001),
          uint64_t(0x8000000000000000), ~uint64_t(0)})
        EXPECT_EQ(4u, LevelsBelow(Clone(root, depth))) << depth;
}

TEST_F(Cloning, WholeSubtreeIsEqualAndItsOwn) {
    Node root = MakeTree();
    const Node clone = Clone(root);
    EXPECT_EQ(12, Made());
    root.Close();
    EXPECT_EQ(6, Made());
    EXPECT_EQ(W("\\p\\r"), Path(clone));
    EXPECT_EQ(W("root type"), Type(clone));
    EXPECT_EQ(Int32Value(1), Get(clone, W("x")));
    ExpectChildrenInStep(clone);
    const Node c = FindChild(FindChild(clone, W("a")), W("c"));
    EXPECT_EQ(W("\\p\\r\\a\\c"), Path(c));
    EXPECT_EQ(Int32Value(2), Get(c, W("y")));
    EXPECT_EQ(Names{W("y")}, ModifiedNames(c));
    EXPECT_EQ(W("\\p\\r\\a\\c\\d\\e"), Path(ChildAt(ChildAt(c, 0), 0)));
}

TEST_F(Cloning, ChildrenKeepTheirOrderNotThatOfTheirNames) {
    const Node root = Create(W("r"));
    for (const WCHAR* name : {W("z"), W("a"), W("m"), W("B")})
        AddNew(root, name);
    const Node clone = Clone(root);
    EXPECT_EQ((Names{W("z"), W("a"), W("m"), W("B")}), ChildNames(clone));
    ExpectChildrenInStep(clone);
}

TEST_F(Cloning, TreesGoTheirOwnWays) {
    const Node root = MakeTree();
    const Node clone = Clone(root);
    AddNew(clone, W("new"));
    EXPECT_EQ(S_OK, AcnSetNodeName(ChildAt(clone, 0), NameShort, W("renamed")));
    EXPECT_EQ(S_OK, AcnRemoveChildByIndex(root, 1));
    EXPECT_EQ(Names{W("a")}, ChildNames(root));
    EXPECT_EQ((Names{W("renamed"), W("b"), W("new")}), ChildNames(clone));
    EXPECT_EQ(W("\\p\\r\\a\\c"), Path(ChildAt(ChildAt(root, 0), 0)));
    EXPECT_EQ(W("\\p\\r\\renamed\\c"), Path(ChildAt(ChildAt(clone, 0), 0)));
}

TEST_F(Cloning, RemovedNodeIsClonedWithItsOldPath) {
    const Node root = MakeTree();
    const Node a = FindChild(root, W("a"));
    ASSERT_EQ(S_OK, AcnRemoveChild(root, a));
    EXPECT_EQ(S_OK, AcnSetNodeName(root, NameShort, W("other")));
    const Node clone = Clone(a);
    EXPECT_EQ(W("\\p\\r\\a"), Path(clone));
    EXPECT_EQ(W("\\p\\r\\a\\c"), Path(ChildAt(clone, 0)));
}

TEST_F(Cloning, CloneCanBeAddedBesideItsSourceUnderAnotherName) {
    const Node root = MakeTree();
    const Node clone = Clone(FindChild(root, W("a")));
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_CHILD_EXISTS, AcnAddChild, root, clone));
    ASSERT_EQ(S_OK, AcnSetNodeName(clone, NameShort, W("a2")));
    EXPECT_TRUE(Succeeds(AcnAddChild, root, clone));
    EXPECT_EQ((Names{W("a"), W("b"), W("a2")}), ChildNames(root));
    EXPECT_EQ(W("\\p\\r\\a2\\c"), Path(ChildAt(clone, 0)));
}

TEST_F(Cloning, UnknownFlagsAreIgnored) {
    const Node root = MakeTree();
    const Node clone = Clone(root, TREEVAULT_ALL_LEVELS, 0xFFFFFFFE);
    EXPECT_EQ(4u, LevelsBelow(clone));
    ASSERT_EQ(S_OK, AcnSetModifiedState(root, nullptr, 0));
    EXPECT_EQ(0u, ModifiedState(clone, nullptr)); // still one table
}

TEST_F(Cloning, NullOutIsRefused) {
    const Node root = MakeTree();
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnCloneNode, root, TREEVAULT_ALL_LEVELS, 0, nullptr));
    EXPECT_EQ(6, Made());
}

// --- Attribute tables ----------------------------------------------------------------------------

class SharedAttributes : public NodeTest {
protected:
    SharedAttributes() {
        EXPECT_EQ(S_OK, SetInt(Source, W("a"), 1));
        EXPECT_EQ(S_OK, Set(Source, W("b"), TextValue(W("a value on the heap"))));
    }

    const Node Source = Create(W("n"));
};

TEST_F(SharedAttributes, WriteOnTheCloneIsNotSeenByTheSource) {
    const Node clone = Clone(Source);
    ASSERT_EQ(S_OK, SetInt(clone, W("a"), 2));
    ASSERT_EQ(S_OK, SetInt(clone, W("c"), 3));
    EXPECT_EQ(Int32Value(1), Get(Source, W("a")));
    EXPECT_EQ((Names{W("a"), W("b")}), AttributeNames(Source));
    EXPECT_EQ(Int32Value(2), Get(clone, W("a")));
    EXPECT_EQ(TextValue(W("a value on the heap")), Get(clone, W("b")));
    EXPECT_EQ((Names{W("a"), W("b"), W("c")}), AttributeNames(clone));
}

TEST_F(SharedAttributes, WriteOnTheSourceIsNotSeenByTheClone) {
    const Node clone = Clone(Source);
    ASSERT_EQ(S_OK, Set(Source, W("b"), TextValue(W("new"))));
    ASSERT_EQ(S_OK, AcnDeleteAttribute(Source, W("a")));
    EXPECT_EQ((Names{W("a"), W("b")}), AttributeNames(clone));
    EXPECT_EQ(TextValue(W("a value on the heap")), Get(clone, W("b")));
    EXPECT_EQ(Names{W("b")}, AttributeNames(Source));
}

TEST_F(SharedAttributes, DeletionOnTheCloneIsNotSeenByTheSource) {
    const Node one = Clone(Source), all = Clone(Source);
    ASSERT_EQ(S_OK, AcnDeleteAttribute(one, W("b")));
    ASSERT_EQ(S_OK, AcnDeleteAttribute(all, nullptr));
    EXPECT_EQ((Names{W("a"), W("b")}), AttributeNames(Source));
    EXPECT_EQ(Names{W("a")}, AttributeNames(one));
    EXPECT_EQ(Table::None, TableOf(all));
}

TEST_F(SharedAttributes, ManySharersPartOneByOne) {
    std::vector<Node> clones;
    for (int i = 0; i < 10; ++i)
        clones.push_back(Clone(i % 2 == 0 || i < 3 ? Source : clones[2]));
    for (int i = 0; i < 10; ++i)
        ASSERT_EQ(S_OK, SetInt(clones[static_cast<size_t>(i)], W("a"), 100 + i));
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(Int32Value(100 + i), Get(clones[static_cast<size_t>(i)], W("a")));
    EXPECT_EQ(Int32Value(1), Get(Source, W("a")));
}

TEST_F(SharedAttributes, CloneOutlivesItsSource) {
    Node source = Clone(Source, 0, CloneOwnAttributes);
    const Node clone = Clone(source);
    source.Close();
    EXPECT_EQ(TextValue(W("a value on the heap")), Get(clone, W("b")));
    ASSERT_EQ(S_OK, SetInt(clone, W("b"), 5));
    EXPECT_EQ(Int32Value(5), Get(clone, W("b")));
}

TEST_F(SharedAttributes, CloneOfANodeWithoutTableHasNone) {
    const Node bare = Create(W("bare"));
    EXPECT_EQ(Table::None, TableOf(Clone(bare)));
}

TEST_F(SharedAttributes, OwnAttributesWhereThereAreNoneAreAnEmptyTable) {
    const Node root = Create(W("r"));
    AddNew(root, W("c"));
    const Node clone = Clone(root, TREEVAULT_ALL_LEVELS, CloneOwnAttributes);
    EXPECT_EQ(Table::Empty, TableOf(clone));
    EXPECT_EQ(Table::Empty, TableOf(ChildAt(clone, 0)));
    EXPECT_EQ(Table::None, TableOf(root));
    EXPECT_EQ(Table::None, TableOf(ChildAt(root, 0)));
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnSetModifiedState, clone, W("x"), 0));
}

TEST_F(SharedAttributes, FlagReachesEachLevel) {
    const Node root = Create(W("r"));
    ASSERT_EQ(S_OK, AcnAddChild(root, Source));
    const Node sharing = Clone(root);
    const Node owning = Clone(root, TREEVAULT_ALL_LEVELS, 3);
    ASSERT_EQ(S_OK, AcnSetModifiedState(Source, nullptr, 0));
    EXPECT_EQ(0u, ModifiedState(ChildAt(sharing, 0), nullptr));
    EXPECT_EQ(1u, ModifiedState(ChildAt(owning, 0), nullptr));
    ASSERT_EQ(S_OK, AcnRemoveChild(root, Source));
}

} // namespace
} // namespace treevault::tests
