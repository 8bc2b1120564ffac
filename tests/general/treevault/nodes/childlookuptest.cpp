// SPDX-License-Identifier: MIT
// Finding of children and parents, and what becomes of a tree when its parents go.
#include "support/nodes.h"

namespace treevault::tests {
namespace {

class Lookup : public NodeTest {
protected:
    void SetUp() override {
        Root = Create(W("r"));
        First = AddNew(Root, W("a"));
        Second = AddNew(Root, W("b"));
    }

    Node Root, First, Second;
};

TEST_F(Lookup, ByIndexGivesTheSamePointerAndAReference) {
    const uint32_t references = References(Second);
    const Node found = ChildAt(Root, 1);
    EXPECT_EQ(Second.Get(), found.Get());
    EXPECT_EQ(references + 1, References(Second));
}

TEST_F(Lookup, ByNameGivesTheSamePointerAndAReference) {
    const uint32_t references = References(Second);
    const Node found = FindChild(Root, W("b"));
    EXPECT_EQ(Second.Get(), found.Get());
    EXPECT_EQ(references + 1, References(Second));
}

TEST_F(Lookup, IndexOutOfRangeIsAMiss) {
    for (const uint64_t index : {uint64_t(2), uint64_t(3), uint64_t(0x100000000), ~uint64_t(0)}) {
        IACNode* child = Untouched();
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnGetChildByIndex, Root, index, &child));
        EXPECT_EQ(Untouched(), child);
    }
    IACNode* child = Untouched();
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnGetChildByIndex, First, 0, &child));
    EXPECT_EQ(Untouched(), child);
}

TEST_F(Lookup, UnknownNameIsAMiss) {
    AddNew(First, W("c"));
    for (const WCHAR* name : {W("A"), W(""), W("ab"), W("c"), W("\\r\\a"), W("a\\c"), W("r")}) {
        IACNode* child = Untouched();
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnGetChildByName, Root, name, &child));
        EXPECT_EQ(Untouched(), child);
    }
    IACNode* child = Untouched();
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnGetChildByName, Second, W("a"), &child));
    EXPECT_EQ(Untouched(), child);
}

TEST_F(Lookup, NullArgumentsAreRefused) {
    IACNode* child = Untouched();
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetChildByIndex, Root, 0, nullptr));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetChildByIndex, Root, 99, nullptr));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetChildByName, Root, nullptr, &child));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetChildByName, Root, W("a"), nullptr));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetChildByName, Root, nullptr, nullptr));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetChildCount, Root, nullptr));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetParent, Root, nullptr));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetParent, First, nullptr));
    EXPECT_EQ(Untouched(), child);
}

TEST_F(Lookup, CountIsThatOfTheChildrenAlone) {
    AddNew(First, W("c"));
    AddNew(First, W("d"));
    EXPECT_EQ(2u, ChildCount(Root));
    EXPECT_EQ(2u, ChildCount(First));
    EXPECT_EQ(0u, ChildCount(Second));
}

TEST_F(Lookup, ParentIsTheSamePointerWithAReference) {
    IACNode* parent = Untouched();
    EXPECT_TRUE(Succeeds(AcnGetParent, First, &parent));
    const Node held(parent);
    EXPECT_EQ(Root.Get(), held.Get());
    EXPECT_EQ(2u, References(Root));
}

TEST_F(Lookup, FreeNodeHasANullParentAndSuccess) {
    IACNode* parent = Untouched();
    EXPECT_TRUE(Succeeds(AcnGetParent, Root, &parent));
    EXPECT_EQ(nullptr, parent);
}

// --- Lifetime ------------------------------------------------------------------------------------

class TreeLifetime : public NodeTest {};

TEST_F(TreeLifetime, HeldChildOutlivesItsParent) {
    Node root = Create(W("r"));
    const Node held = AddNew(root, W("held"));
    AddNew(root, W("other"));
    const Node below = AddNew(held, W("below"));
    root.Close();
    EXPECT_EQ(2, Made());
    EXPECT_EQ(nullptr, Parent(held).Get());
    EXPECT_EQ(1u, References(held));
    EXPECT_EQ(W("\\r\\held"), Path(held));
    EXPECT_EQ(held.Get(), Parent(below).Get());
    EXPECT_EQ(W("\\r\\held\\below"), Path(below));
}

TEST_F(TreeLifetime, OrphanCanBeRenamedMovedAndAdded) {
    Node root = Create(W("r"));
    const Node orphan = AddNew(root, W("c"));
    const Node below = AddNew(orphan, W("below"));
    root.Close();
    EXPECT_TRUE(Succeeds(AcnSetNodeName, orphan, NameShort, W("d")));
    EXPECT_EQ(W("\\r\\d\\below"), Path(below));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, orphan, NameParentPath, W("\\x")));
    EXPECT_EQ(W("\\x\\d\\below"), Path(below));
    const Node other = Create(W("o"));
    EXPECT_TRUE(Succeeds(AcnAddChild, other, orphan));
    EXPECT_EQ(W("\\o\\d\\below"), Path(below));
}

TEST_F(TreeLifetime, HeldGrandchildLosesItsParentWithTheTree) {
    Node root = Create(W("r"));
    Node child = AddNew(root, W("c"));
    const Node held = AddNew(child, W("held"));
    child.Close();
    EXPECT_EQ(3, Made());
    root.Close();
    EXPECT_EQ(1, Made());
    EXPECT_EQ(nullptr, Parent(held).Get());
    EXPECT_EQ(W("\\r\\c\\held"), Path(held));
}

TEST_F(TreeLifetime, HeldChildKeepsNotItsSiblings) {
    Node root = Create(W("r"));
    Node held;
    for (const WCHAR* name : {W("1"), W("2"), W("3")}) {
        const Node child = AddNew(root, name);
        AddNew(child, W("x"));
        if (name[0] == W('2'))
            held = child;
    }
    EXPECT_EQ(7, Made());
    root.Close();
    EXPECT_EQ(2, Made());
    EXPECT_EQ(Names{W("x")}, ChildNames(held));
}

TEST_F(TreeLifetime, ParentHandleKeepsTheTree) {
    Node root = Create(W("r"));
    const Node child = AddNew(root, W("c"));
    const Node parent = Parent(child);
    root.Close();
    EXPECT_EQ(parent.Get(), Parent(child).Get());
    EXPECT_EQ(Names{W("c")}, ChildNames(parent));
}

TEST_F(TreeLifetime, SubtreeRemovedAndClosedDies) {
    const Node root = Create(W("r"));
    Node child = AddNew(root, W("c"));
    AddNew(child, W("below"));
    ASSERT_EQ(S_OK, AcnRemoveChild(root, child));
    EXPECT_EQ(3, Made());
    child.Close();
    EXPECT_EQ(1, Made());
}

// --- Wide nodes ----------------------------------------------------------------------------------

constexpr int ManyChildren = 100000;

// Names that come in no order of any kind.
Text ScatteredName(int i) {
    const std::string digits = std::to_string(static_cast<uint32_t>(i) * 2654435761u);
    return Text(digits.begin(), digits.end());
}

TEST_F(TreeLifetime, ManyChildrenAreFoundAndRemoved) {
    Node root = Create(W("r"));
    std::vector<IACNode*> expected;
    for (int i = 0; i < ManyChildren; ++i)
        expected.push_back(AddNew(root, ScatteredName(i).c_str()).Get());
    ASSERT_EQ(size_t(ManyChildren), ChildCount(root));
    for (int i = 0; i < ManyChildren; ++i) {
        Node byName, byIndex;
        ASSERT_EQ(S_OK, AcnGetChildByName(root, ScatteredName(i).c_str(), byName.Put()));
        ASSERT_EQ(S_OK, AcnGetChildByIndex(root, static_cast<uint64_t>(i), byIndex.Put()));
        ASSERT_EQ(expected[static_cast<size_t>(i)], byName.Get());
        ASSERT_EQ(expected[static_cast<size_t>(i)], byIndex.Get());
    }
    // From the front, where all others move; then every other one of the rest from the back.
    for (int i = 0; i < 500; ++i)
        ASSERT_EQ(S_OK, AcnRemoveChildByIndex(root, 0));
    for (int i = ManyChildren - 1; i > ManyChildren - 10000; i -= 2)
        ASSERT_EQ(S_OK, AcnRemoveChildByIndex(root, static_cast<uint64_t>(i - 500)));
    ASSERT_EQ(size_t(ManyChildren - 500 - 5000), ChildCount(root));
    for (int i = 0; i < ManyChildren; ++i) {
        const bool removed =
            i < 500 || (i > ManyChildren - 10000 && (ManyChildren - 1 - i) % 2 == 0);
        ASSERT_EQ(removed ? nullptr : expected[static_cast<size_t>(i)],
                  FindChild(root, ScatteredName(i).c_str()).Get())
            << i;
    }
    EXPECT_EQ(1 + ManyChildren - 500 - 5000, Made());
}

TEST_F(TreeLifetime, ManyChildrenAreClonedAndRenamed) {
    Node root = Create(W("r"));
    for (int i = 0; i < ManyChildren; ++i)
        AddNew(root, ScatteredName(i).c_str());
    const Node clone = Clone(root);
    root.Close();
    EXPECT_EQ(1 + ManyChildren, Made());
    for (int i = 0; i < ManyChildren; i += 97) {
        const Node child = ChildAt(clone, static_cast<uint64_t>(i));
        ASSERT_EQ(child.Get(), FindChild(clone, ScatteredName(i).c_str()).Get());
        const Text name = W("renamed") + ScatteredName(i);
        ASSERT_EQ(S_OK, AcnSetNodeName(child, NameShort, name.c_str()));
        ASSERT_EQ(child.Get(), ChildAt(clone, static_cast<uint64_t>(i)).Get());
        ASSERT_EQ(child.Get(), FindChild(clone, name.c_str()).Get());
        ASSERT_EQ(nullptr, FindChild(clone, ScatteredName(i).c_str()).Get());
    }
}

} // namespace
} // namespace treevault::tests
