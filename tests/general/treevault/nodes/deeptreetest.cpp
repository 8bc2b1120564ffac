// SPDX-License-Identifier: MIT
// Trees and paths of a million levels: depth must cost neither stack nor more than linear time.
#include "support/nodes.h"

namespace treevault::tests {
namespace {

constexpr size_t Levels = 1000000;

class DeepTrees : public NodeTest {
protected:
    // A chain of `Levels` nodes, each called "n" but the root, which is called "r". It is built
    // from the root down, so that each adding moves a leaf alone.
    void SetUp() override {
        Root = Create(W("r"));
        Leaf = Root;
        for (size_t level = 1; level < Levels; ++level) {
            Node child(MakeNode());
            ASSERT_EQ(S_OK, AcnAddChild(Leaf, child));
            Leaf = std::move(child);
        }
        ASSERT_EQ(Levels, static_cast<size_t>(Made()));
    }

    static IACNode* MakeNode() {
        IACNode* node = nullptr;
        EXPECT_EQ(S_OK, AcnCreateNode(W("n"), nullptr, &node));
        return node;
    }

    // The path of a leaf under a root of that name.
    static Text LeafPath(const Text& root) {
        Text path = W("\\") + root;
        for (size_t level = 1; level < Levels; ++level)
            path += W("\\n");
        return path;
    }

    static Node LeafOf(Node node) {
        Node child;
        while (AcnGetChildByIndex(node, 0, child.Put()) == S_OK)
            node = std::move(child);
        return node;
    }

    Node Root, Leaf;
};

TEST_F(DeepTrees, RootIsRenamed) {
    EXPECT_TRUE(Path(Leaf) == LeafPath(W("r")));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Root, NameShort, W("renamed")));
    EXPECT_TRUE(Path(Leaf) == LeafPath(W("renamed")));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Leaf, NameShort, W("leaf")));
    EXPECT_EQ(W("leaf"), Name(Leaf));
}

TEST_F(DeepTrees, RootIsAddedAndRemoved) {
    const Node parent = Create(W("\\x\\p"));
    EXPECT_TRUE(Succeeds(AcnAddChild, parent, Root));
    EXPECT_TRUE(Path(Leaf) == LeafPath(W("x\\p\\r")));
    EXPECT_TRUE(Succeeds(AcnRemoveChild, parent, Root));
}

TEST_F(DeepTrees, WholeTreeIsCloned) {
    Node clone = Clone(Root);
    EXPECT_EQ(2 * Levels, static_cast<size_t>(Made()));
    Root.Close();
    Leaf.Close();
    EXPECT_EQ(Levels, static_cast<size_t>(Made()));
    EXPECT_TRUE(Path(LeafOf(clone)) == LeafPath(W("r")));
}

TEST_F(DeepTrees, CloneOfACountedDepthEndsThere) {
    const Node clone = Clone(Root, Levels / 2);
    EXPECT_EQ(Levels + Levels / 2 + 1, static_cast<size_t>(Made()));
}

TEST_F(DeepTrees, HeldLeafOutlivesTheTree) {
    Root.Close();
    EXPECT_EQ(1, Made());
    EXPECT_EQ(nullptr, Parent(Leaf).Get());
    EXPECT_TRUE(Path(Leaf) == LeafPath(W("r")));
    // Moves the leaf to the top, and with that lets the long chain of names go.
    EXPECT_TRUE(Succeeds(AcnSetNodeName, Leaf, NameParentPath, W("\\")));
    EXPECT_EQ(W("\\n"), Path(Leaf));
}

TEST_F(DeepTrees, HeldMiddleKeepsWhatIsBelow) {
    Node middle = Leaf;
    for (size_t level = 0; level < 1000; ++level)
        middle = Parent(middle);
    Root.Close();
    EXPECT_EQ(1001, Made());
    EXPECT_EQ(nullptr, Parent(middle).Get());
}

TEST(DeepPaths, PathOfAMillionNames) {
    const int32_t before = LiveComponents();
    Text path;
    for (size_t level = 0; level < Levels; ++level)
        path += W("\\n");
    Node node = Create(path.c_str());
    EXPECT_TRUE(Path(node) == path);
    EXPECT_TRUE(Succeeds(AcnSetNodeName, node, NameFullPath, path.c_str()));
    EXPECT_TRUE(Succeeds(AcnSetNodeName, node, NameFullPath, (path + W("x")).c_str()));
    EXPECT_EQ(W("nx"), Name(node));
    const Node clone = Clone(node);
    node.Close();
    EXPECT_TRUE(Path(clone) == path + W("x"));
    EXPECT_EQ(before + 1, LiveComponents());
}

} // namespace
} // namespace treevault::tests
