// SPDX-License-Identifier: MIT
// Renaming and moving of nodes.
#include "support/nodes.h"

namespace treevault::tests {
namespace {

class Renaming : public NodeTest {
protected:
    void SetUp() override {
        Root = Create(W("\\p\\r"));
        Child = AddNew(Root, W("c"));
        Sibling = AddNew(Root, W("s"));
        Below = AddNew(Child, W("below"));
    }

    // Names, order and paths are those of SetUp.
    void ExpectUnchanged() {
        EXPECT_EQ(W("\\p\\r"), Path(Root));
        EXPECT_EQ((Names{W("c"), W("s")}), ChildNames(Root));
        EXPECT_EQ(W("\\p\\r\\c"), Path(Child));
        EXPECT_EQ(W("\\p\\r\\s"), Path(Sibling));
        EXPECT_EQ(W("\\p\\r\\c\\below"), Path(Below));
        ExpectChildrenInStep(Root);
        EXPECT_EQ(Root.Get(), Parent(Child).Get());
    }

    Node Root, Child, Sibling, Below;
};

// --- Short names ---------------------------------------------------------------------------------

TEST_F(Renaming, FreeNodeByShortName) {
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Root, NameShort, W("new")));
    EXPECT_EQ(W("\\p\\new"), Path(Root));
    EXPECT_EQ(W("\\p\\new\\c\\below"), Path(Below));
    EXPECT_EQ(Child.Get(), FindChild(Root, W("c")).Get());
}

TEST_F(Renaming, ChildByShortNameIsRenamedInItsParent) {
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Child, NameShort, W("new")));
    EXPECT_EQ((Names{W("new"), W("s")}), ChildNames(Root));
    EXPECT_EQ(Child.Get(), FindChild(Root, W("new")).Get());
    EXPECT_EQ(nullptr, FindChild(Root, W("c")).Get());
    EXPECT_EQ(W("\\p\\r\\new"), Path(Child));
    EXPECT_EQ(W("\\p\\r\\new\\below"), Path(Below));
    ExpectChildrenInStep(Root);
}

TEST_F(Renaming, SameNameChangesNothing) {
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Child, NameShort, W("c")));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Root, NameShort, W("r")));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Child, NameParentPath, W("\\p\\r")));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Root, NameParentPath, W("\\p")));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Child, NameFullPath, W("\\p\\r\\c")));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Root, NameFullPath, W("\\p\\r")));
    ExpectUnchanged();
}

TEST_F(Renaming, NullAndEmptyAreTheEmptyName) {
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Child, NameShort, nullptr));
    EXPECT_EQ(W("\\p\\r\\"), Path(Child));
    EXPECT_EQ(Child.Get(), FindChild(Root, W("")).Get());
    EXPECT_TRUE(
        FailsWithRecord(TREEVAULT_E_CHILD_EXISTS, AcnSetNodeName, Sibling, NameShort, W("")));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Child, NameShort, W("c")));
    ExpectUnchanged();
}

TEST_F(Renaming, TakenNameIsRefused) {
    EXPECT_TRUE(
        FailsWithRecord(TREEVAULT_E_CHILD_EXISTS, AcnSetNodeName, Child, NameShort, W("s")));
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_CHILD_EXISTS, AcnSetNodeName, Child, NameFullPath,
                                W("\\p\\r\\s")));
    ExpectUnchanged();
}

TEST_F(Renaming, NameThatDiffersByCaseIsFree) {
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Child, NameShort, W("S")));
    EXPECT_EQ((Names{W("S"), W("s")}), ChildNames(Root));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Child, NameShort, W("C")));
    EXPECT_EQ(Child.Get(), FindChild(Root, W("C")).Get());
}

TEST_F(Renaming, OldNameIsFreeAgain) {
    ASSERT_EQ(S_OK, AcnSetNodeName(Child, NameShort, W("new")));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Sibling, NameShort, W("c")));
    EXPECT_EQ((Names{W("new"), W("c")}), ChildNames(Root));
    ExpectChildrenInStep(Root);
}

TEST_F(Renaming, SeparatorInAShortNameIsRefused) {
    for (const WCHAR* name : {W("\\"), W("a\\"), W("\\a"), W("a\\b")}) {
        EXPECT_TRUE(
            FailsWithRecord(TREEVAULT_E_INVALID_NAME, AcnSetNodeName, Child, NameShort, name));
        EXPECT_TRUE(
            FailsWithRecord(TREEVAULT_E_INVALID_NAME, AcnSetNodeName, Root, NameShort, name));
    }
    ExpectUnchanged();
}

TEST_F(Renaming, UnknownKindIsRefused) {
    for (const NodeNameKind kind : {3u, 0x100u, 0xFFFFFFFFu}) {
        EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, AcnSetNodeName, Child, kind, W("new")));
        EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, AcnSetNodeName, Root, kind, nullptr));
    }
    ExpectUnchanged();
}

// --- Parent paths --------------------------------------------------------------------------------

TEST_F(Renaming, ParentPathMovesAFreeNodeAndItsDescendants) {
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Root, NameParentPath, W("\\x\\y")));
    EXPECT_EQ(W("\\x\\y\\r"), Path(Root));
    EXPECT_EQ(W("r"), Name(Root));
    EXPECT_EQ(W("\\x\\y\\r\\c\\below"), Path(Below));
    EXPECT_EQ(Child.Get(), FindChild(Root, W("c")).Get());
    EXPECT_EQ(nullptr, Parent(Root).Get());
}

TEST_F(Renaming, SeparatorAloneMovesToTheTop) {
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Root, NameParentPath, W("\\")));
    EXPECT_EQ(W("\\r"), Path(Root));
    EXPECT_EQ(W("\\r\\c\\below"), Path(Below));
}

TEST_F(Renaming, RunsOfSeparatorsInAPathCountAsOne) {
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Root, NameParentPath, W("\\\\x\\\\\\y")));
    EXPECT_EQ(W("\\x\\y\\r"), Path(Root));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Root, NameFullPath, W("\\\\a\\\\b")));
    EXPECT_EQ(W("\\a\\b"), Path(Root));
}

TEST_F(Renaming, BadParentPathOfAFreeNodeIsRefused) {
    for (const WCHAR* path : {W(""), W("x"), W("x\\y"), W("\\x\\"), W("\\\\"), W(" \\x")})
        EXPECT_TRUE(
            FailsWithRecord(TREEVAULT_E_INVALID_NAME, AcnSetNodeName, Root, NameParentPath, path));
    EXPECT_TRUE(
        FailsWithRecord(TREEVAULT_E_INVALID_NAME, AcnSetNodeName, Root, NameParentPath, nullptr));
    ExpectUnchanged();
}

TEST_F(Renaming, AnyOtherParentPathOfAChildIsRefused) {
    // Good or bad makes no difference: the text is not the path of the parent.
    for (const WCHAR* path :
         {W("\\x"), W("\\"), W("\\p"), W("\\p\\R"), W("\\\\p\\r"), W("\\p\\r\\"), W("x"), W("")})
        EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_PARENT_PATH_FIXED, AcnSetNodeName, Child,
                                    NameParentPath, path));
    ExpectUnchanged();
}

// --- Full paths ----------------------------------------------------------------------------------

TEST_F(Renaming, FullPathRenamesAndMovesAFreeNode) {
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Root, NameFullPath, W("\\x\\y\\z")));
    EXPECT_EQ(W("z"), Name(Root));
    EXPECT_EQ(W("\\x\\y"), ParentPath(Root));
    EXPECT_EQ(W("\\x\\y\\z\\c\\below"), Path(Below));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Root, NameFullPath, W("\\x\\y\\w")));
    EXPECT_EQ(W("\\x\\y\\w\\c\\below"), Path(Below));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Root, NameFullPath, W("\\w")));
    EXPECT_EQ(W("\\w\\c\\below"), Path(Below));
}

TEST_F(Renaming, FullPathWithTheSameParentRenamesAChild) {
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Child, NameFullPath, W("\\\\p\\r\\\\new")));
    EXPECT_EQ((Names{W("new"), W("s")}), ChildNames(Root));
    EXPECT_EQ(W("\\p\\r\\new\\below"), Path(Below));
    ExpectChildrenInStep(Root);
}

TEST_F(Renaming, FullPathWithAnotherParentIsRefusedForAChild) {
    for (const WCHAR* path :
         {W("\\c"), W("\\p\\c"), W("\\p\\R\\c"), W("\\p\\r\\s\\c"), W("\\p\\r\\c\\c")})
        EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_PARENT_PATH_FIXED, AcnSetNodeName, Child,
                                    NameFullPath, path))
            << Narrow(path);
    ExpectUnchanged();
}

TEST_F(Renaming, BadFullPathIsRefused) {
    for (IACNode* node : {Root.Get(), Child.Get()}) {
        for (const WCHAR* path : {W("\\"), W(""), W("x"), W("\\\\"), W("\\p\\r\\"), W("p\\r\\c")})
            EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_INVALID_NAME, AcnSetNodeName, node,
                                        NameFullPath, path));
        EXPECT_TRUE(
            FailsWithRecord(TREEVAULT_E_INVALID_NAME, AcnSetNodeName, node, NameFullPath, nullptr));
    }
    ExpectUnchanged();
}

// --- What follows --------------------------------------------------------------------------------

TEST_F(Renaming, RemovedNodeIsFreeToMove) {
    ASSERT_EQ(S_OK, AcnRemoveChild(Root, Child));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Child, NameShort, W("s")));
    EXPECT_EQ(W("\\p\\r\\s"), Path(Child));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Child, NameFullPath, W("\\x")));
    EXPECT_EQ(W("\\x\\below"), Path(Below));
    EXPECT_EQ(Names{W("s")}, ChildNames(Root));
}

TEST_F(Renaming, RenameOfTheParentChangesNoName) {
    ASSERT_EQ(S_OK, AcnSetNodeName(Root, NameFullPath, W("\\q")));
    EXPECT_EQ((Names{W("c"), W("s")}), ChildNames(Root));
    EXPECT_EQ(W("\\q\\s"), Path(Sibling));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Child, NameFullPath, W("\\q\\d")));
    ExpectChildrenInStep(Root);
}

TEST_F(Renaming, ClonesKeepTheirNames) {
    const Node clone = Clone(Root);
    ASSERT_EQ(S_OK, AcnSetNodeName(Root, NameFullPath, W("\\q")));
    ASSERT_EQ(S_OK, AcnSetNodeName(Child, NameShort, W("d")));
    EXPECT_EQ(W("\\p\\r"), Path(clone));
    EXPECT_EQ(W("\\p\\r\\c\\below"), Path(ChildAt(ChildAt(clone, 0), 0)));
    ExpectChildrenInStep(clone);
}

// What children were named below does not outlive them.
TEST_F(Renaming, ChildThatComesAfterARenameLiesBelowTheNewName) {
    ASSERT_EQ(S_OK, AcnRemoveChild(Child, Below));
    ASSERT_EQ(S_OK, AcnSetNodeName(Child, NameShort, W("new")));
    EXPECT_EQ(W("\\p\\r\\new\\x"), Path(AddNew(Child, W("x"))));
    EXPECT_EQ(W("\\p\\r\\c\\below"), Path(Below));
}

TEST_F(Renaming, ChildThatComesAfterAnAncestorIsRenamedLiesBelowTheNewName) {
    ASSERT_EQ(S_OK, AcnRemoveChild(Child, Below));
    ASSERT_EQ(S_OK, AcnSetNodeName(Root, NameFullPath, W("\\q")));
    EXPECT_TRUE(Succeeds(AcnAddChild, Child, Below));
    EXPECT_EQ(W("\\q\\c\\below"), Path(Below));
    EXPECT_EQ(W("\\q\\s\\x"), Path(AddNew(Sibling, W("x"))));
}

TEST_F(Renaming, ChildThatComesAfterAMoveLiesBelowTheNewPlace) {
    ASSERT_EQ(S_OK, AcnRemoveChild(Child, Below));
    ASSERT_EQ(S_OK, AcnRemoveChild(Root, Child));
    EXPECT_TRUE(Succeeds(AcnAddChild, Sibling, Child));
    EXPECT_TRUE(Succeeds(AcnAddChild, Child, Below));
    EXPECT_EQ(W("\\p\\r\\s\\c\\below"), Path(Below));
}

// Around the length from which on a name lies outside its node.
TEST_F(Renaming, NamesOfAnyLengthAreFoundAndCloned) {
    for (size_t length = 12; length <= 40; ++length) {
        const Text name(length, TREEVAULT_WIDE('x'));
        ASSERT_EQ(S_OK, AcnSetNodeName(Child, NameShort, name.c_str()));
        EXPECT_EQ(Child.Get(), FindChild(Root, name.c_str()).Get()) << length;
        EXPECT_EQ(nullptr, FindChild(Root, name.c_str() + 1).Get()) << length;
        EXPECT_EQ(W("\\p\\r\\") + name + W("\\below"), Path(Below)) << length;
        const Node clone = Clone(Root);
        EXPECT_EQ(name, Name(FindChild(clone, name.c_str()))) << length;
        ASSERT_EQ(S_OK, AcnSetNodeName(FindChild(clone, name.c_str()), NameShort, W("c")));
        EXPECT_EQ(name, Name(Child)) << length;
    }
    ASSERT_EQ(S_OK, AcnSetNodeName(Child, NameShort, W("c")));
    ExpectUnchanged();
}

TEST_F(Renaming, ManyRenamesKeepIndexAndListInStep) {
    for (int i = 0; i < 300; ++i) {
        const std::string digits = std::to_string(i * 7919 % 1000);
        AddNew(Root, Text(digits.begin(), digits.end()).c_str());
    }
    for (uint64_t i = 0; i < 302; ++i) {
        const Node child = ChildAt(Root, i);
        const Text name = W("x") + Name(child);
        ASSERT_EQ(S_OK, AcnSetNodeName(child, NameShort, name.c_str()));
    }
    ExpectChildrenInStep(Root);
    EXPECT_EQ(302u, ChildCount(Root));
}

} // namespace
} // namespace treevault::tests
