// SPDX-License-Identifier: MIT
// Reading of names, paths and types: the texts, and the contract of a text out.
#include "support/nodes.h"

namespace treevault::tests {
namespace {

class NodeNames : public NodeTest {};

TEST_F(NodeNames, KindsOfANodeInATree) {
    const Node root = Create(W("r"));
    const Node middle = AddNew(root, W("m"));
    const Node leaf = AddNew(middle, W("l"));
    EXPECT_EQ(W("l"), NameOf(leaf, NameShort));
    EXPECT_EQ(W("\\r\\m"), NameOf(leaf, NameParentPath));
    EXPECT_EQ(W("\\r\\m\\l"), NameOf(leaf, NameFullPath));
}

TEST_F(NodeNames, EmptyNamesKeepTheirSeparators) {
    const Node root = Create(W("a"));
    const Node child = AddNew(root, W(""));
    const Node grandchild = AddNew(child, W("c"));
    EXPECT_EQ(W("\\a\\"), Path(child));
    EXPECT_EQ(W("\\a\\"), ParentPath(grandchild));
    EXPECT_EQ(W("\\a\\\\c"), Path(grandchild));
}

TEST_F(NodeNames, ChildOfTheEmptyNameAtTheTop) {
    const Node root = Create(W(""));
    const Node child = AddNew(root, W("c"));
    EXPECT_EQ(W("\\"), ParentPath(child));
    EXPECT_EQ(W("\\\\c"), Path(child));
}

TEST_F(NodeNames, ParentPathAtTheTopNeedsTwoCharacters) {
    const Node node = Create(W("a"));
    size_t size = 77;
    EXPECT_TRUE(Succeeds(AcnGetNodeName, node, NameParentPath, nullptr, &size));
    EXPECT_EQ(2u, size);
    WCHAR buffer[2] = {W('x'), W('x')};
    EXPECT_TRUE(Succeeds(AcnGetNodeName, node, NameParentPath, buffer, &size));
    EXPECT_EQ(W('\\'), buffer[0]);
    EXPECT_EQ(WCHAR(0), buffer[1]);
}

// A text out of four characters, terminator included, under each capacity.
template <class Read>
void ExpectTextOut(Read&& read) {
    for (size_t capacity = 0; capacity <= 6; ++capacity) {
        WCHAR buffer[6] = {W('#'), W('#'), W('#'), W('#'), W('#'), W('#')};
        size_t size = capacity;
        if (capacity < 4) {
            EXPECT_TRUE(read(TREEVAULT_E_INSUFFICIENT_BUFFER, buffer, &size)) << capacity;
            EXPECT_EQ(Text(6, W('#')), Text(buffer, 6)) << capacity;
        } else {
            EXPECT_TRUE(read(S_OK, buffer, &size)) << capacity;
            EXPECT_EQ(Text(W("abc\0##"), 6), Text(buffer, 6)) << capacity;
        }
        EXPECT_EQ(4u, size) << capacity;
        size = capacity;
        EXPECT_TRUE(read(S_OK, nullptr, &size)) << capacity;
        EXPECT_EQ(4u, size) << capacity;
    }
}

TEST_F(NodeNames, ShortNameIsATextOut) {
    const Node node = Create(W("abc"));
    ExpectTextOut([&](HRESULT code, WCHAR* buffer, size_t* size) {
        return Returns(code, AcnGetNodeName, node, NameShort, buffer, size);
    });
}

TEST_F(NodeNames, ParentPathAndFullPathAreTextsOut) {
    const Node node = Create(W("abc"));
    const Node child = Create(W("\\ab\\c"));
    WCHAR buffer[8] = {};
    size_t size = 4;
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetNodeName, node, NameFullPath,
                             buffer, &size));
    EXPECT_EQ(5u, size);
    EXPECT_EQ(WCHAR(0), buffer[0]);
    EXPECT_TRUE(Succeeds(AcnGetNodeName, node, NameFullPath, buffer, &size));
    EXPECT_EQ(Text(W("\\abc")), buffer);
    size = 3;
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetNodeName, child, NameParentPath,
                             buffer, &size));
    EXPECT_EQ(4u, size);
    EXPECT_EQ(Text(W("\\abc")), buffer);
    EXPECT_TRUE(Succeeds(AcnGetNodeName, child, NameParentPath, buffer, &size));
    EXPECT_EQ(Text(W("\\ab")), buffer);
}

TEST_F(NodeNames, TypeIsATextOut) {
    const Node node = Create(W("n"), W("abc"));
    ExpectTextOut([&](HRESULT code, WCHAR* buffer, size_t* size) {
        return Returns(code, AcnGetNodeType, node, buffer, size);
    });
}

TEST_F(NodeNames, EmptyTextNeedsOneCharacter) {
    const Node node = Create(W(""));
    size_t size = 0;
    EXPECT_TRUE(Succeeds(AcnGetNodeName, node, NameShort, nullptr, &size));
    EXPECT_EQ(1u, size);
    size = 0;
    WCHAR buffer[1] = {W('#')};
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetNodeType, node, buffer, &size));
    EXPECT_EQ(1u, size);
    EXPECT_EQ(W('#'), buffer[0]);
}

TEST_F(NodeNames, NullSizeIsRefused) {
    const Node node = Create(W("a"));
    WCHAR buffer[8] = {W('#')};
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetNodeName, node, NameShort, nullptr, nullptr));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetNodeName, node, NameFullPath, buffer, nullptr));
    EXPECT_EQ(W('#'), buffer[0]);
}

TEST_F(NodeNames, NullSizeIsRefusedBeforeTheKind) {
    const Node node = Create(W("a"));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnGetNodeName, node, 3, nullptr, nullptr));
}

TEST_F(NodeNames, UnknownKindIsRefused) {
    const Node node = Create(W("a"));
    for (const NodeNameKind kind : {3u, 4u, 0x100u, 0x80000000u, 0xFFFFFFFFu}) {
        WCHAR buffer[8] = {W('#')};
        size_t size = 77;
        EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, AcnGetNodeName, node, kind, buffer, &size));
        EXPECT_EQ(77u, size);
        EXPECT_EQ(W('#'), buffer[0]);
    }
}

// --- Types ---------------------------------------------------------------------------------------

class NodeTypes : public NodeTest {};

TEST_F(NodeTypes, AnyTextIsAType) {
    const Node node = Create(W("n"), W("first"));
    for (const WCHAR* type : {W("second"), W(""), W("a\\b"), W("\\"), W("\u4e2d ")}) {
        EXPECT_TRUE(Succeeds(AcnSetNodeType, node, type));
        EXPECT_EQ(type, Type(node));
    }
}

TEST_F(NodeTypes, NullIsRefusedAndChangesNothing) {
    const Node node = Create(W("n"), W("first"));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnSetNodeType, node, nullptr));
    EXPECT_EQ(W("first"), Type(node));
}

TEST_F(NodeTypes, TypeTouchesNeitherPathNorLookupNorModifiedState) {
    const Node root = Create(W("r"));
    const Node node = AddNew(root, W("n"), W("first"));
    ASSERT_EQ(S_OK, SetInt(node, W("a"), 1));
    ASSERT_EQ(S_OK, AcnSetModifiedState(node, nullptr, 0));
    EXPECT_TRUE(Succeeds(AcnSetNodeType, node, W("second")));
    EXPECT_EQ(W("\\r\\n"), Path(node));
    EXPECT_EQ(node.Get(), FindChild(root, W("n")).Get());
    EXPECT_EQ(0u, ModifiedState(node, nullptr));
    EXPECT_EQ(W(""), Type(root));
}

TEST_F(NodeTypes, ChangeIsNotSeenByClones) {
    const Node node = Create(W("n"), W("first"));
    const Node clone = Clone(node);
    EXPECT_TRUE(Succeeds(AcnSetNodeType, node, W("second")));
    EXPECT_EQ(W("first"), Type(clone));
    EXPECT_TRUE(Succeeds(AcnSetNodeType, clone, W("third")));
    EXPECT_EQ(W("second"), Type(node));
}

} // namespace
} // namespace treevault::tests
