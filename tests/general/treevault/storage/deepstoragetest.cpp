// SPDX-License-Identifier: MIT
// Trees of a hundred thousand levels in a storage: depth must cost neither stack nor more than
// linear time. Each notification carries a whole path, so that few levels may change at once.
#include "support/storage.h"

namespace treevault::tests {
namespace {

constexpr size_t Levels = 100000;

class DeepStorage : public NodeTest {
protected:
    // A chain of nodes, the first "r" and the others "n".
    static Node Chain(size_t levels = Levels) {
        Node root = Create(W("r"));
        Node leaf = root;
        for (size_t level = 1; level < levels; ++level) {
            Node child;
            if (AcnCreateNode(W("n"), nullptr, child.Put()) != S_OK ||
                AcnAddChild(leaf, child) != S_OK)
                ADD_FAILURE() << level;
            leaf = std::move(child);
        }
        return root;
    }

    static Node LeafOf(Node node) {
        Node child;
        while (AcnGetChildByIndex(node, 0, child.Put()) == S_OK)
            node = std::move(child);
        return node;
    }

    static std::string PathOf(size_t levels) {
        std::string path = "/r";
        for (size_t level = 1; level < levels; ++level)
            path += "/n";
        return path;
    }

    HRESULT Store(const Node& node, StoreMode mode, IOperationsGroup* group = nullptr) {
        return StoreNodes(Subject, group, mode, {node});
    }

    // The number of levels stored, and the value of "x" in the lowest.
    void ExpectStored(size_t levels, int32_t x = 0) {
        const Nodes roots = Retrieve(Subject, Filter("/", Select::Children));
        ASSERT_EQ(levels == 0 ? 0u : 1u, roots.size());
        if (levels == 0)
            return;
        const Node leaf = LeafOf(roots.front());
        EXPECT_EQ(PathOf(levels), Plain(Path(leaf)));
        EXPECT_EQ(x != 0, HasAttribute(leaf, W("x")));
        if (x != 0) {
            EXPECT_EQ(Int32Value(x), Get(leaf, W("x")));
        }
    }

    Storage Subject;
    Sink Watcher{Subject};
};

TEST_F(DeepStorage, StoreAndDelete) {
    for (const StoreMode mode : {StoreMergeAll, StoreReplaceAll}) {
        EXPECT_EQ(S_OK, Store(Chain(), mode));
        EXPECT_EQ(Framed({"created /r"}), Watcher.Take());
        ExpectStored(Levels);
        EXPECT_EQ(S_OK, Subject.Delete("/r"));
        EXPECT_EQ(Framed({"deleted /r"}), Watcher.Take());
        ExpectStored(0);
    }
}

TEST_F(DeepStorage, MergeOfEqualTrees) {
    const Node chain = Chain();
    EXPECT_EQ(S_OK, Store(chain, StoreMergeAll));
    Watcher.Take();
    for (const StoreMode mode : {StoreMergeAll, StoreMergeModified, StoreReplaceAll})
        EXPECT_EQ(S_OK, Store(chain, mode));
    EXPECT_EQ(9u, Watcher.Told.size()); // three frames
    ExpectStored(Levels);
}

TEST_F(DeepStorage, MergeThatChangesTheLowest) {
    const Node chain = Chain();
    EXPECT_EQ(S_OK, Store(chain, StoreMergeAll));
    Watcher.Take();
    EXPECT_EQ(S_OK, SetInt(LeafOf(chain), W("x"), 1));
    EXPECT_EQ(S_OK, Store(chain, StoreMergeModified));
    EXPECT_EQ(Framed({"changed " + PathOf(Levels) + " [x]"}), Watcher.Told);
    ExpectStored(Levels, 1);
}

TEST_F(DeepStorage, MergeThatAddsMostLevels) {
    EXPECT_EQ(S_OK, Store(Chain(2), StoreMergeAll));
    Watcher.Take();
    Group group(Subject);
    EXPECT_EQ(S_OK, Store(Chain(), StoreMergeAll, group.Get()));
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(Framed({"created /r/n/n", "child+ /r/n"}), Watcher.Told);
    ExpectStored(Levels);
}

TEST_F(DeepStorage, ReplaceThatRemovesMostLevels) {
    EXPECT_EQ(S_OK, Store(Chain(), StoreMergeAll));
    Watcher.Take();
    EXPECT_EQ(S_OK, Store(Chain(2), StoreReplaceAll));
    EXPECT_EQ(Framed({"deleted /r/n/n", "child- /r/n"}), Watcher.Told);
    ExpectStored(2);
}

TEST_F(DeepStorage, Rollback) {
    const Node chain = Chain();
    Watcher.RefuseOn = "precommit";
    EXPECT_EQ(Refusal, Store(chain, StoreMergeAll));
    ExpectStored(0);
    Watcher.RefuseOn.clear();
    EXPECT_EQ(S_OK, Store(chain, StoreMergeAll));
    EXPECT_EQ(S_OK, SetInt(LeafOf(chain), W("x"), 1));
    Watcher.RefuseOn = "precommit";
    EXPECT_EQ(Refusal, Store(chain, StoreMergeAll));
    ExpectStored(Levels);
    EXPECT_EQ(Refusal, Subject.Delete("/r/n"));
    ExpectStored(Levels);
    EXPECT_EQ(Refusal, Store(Chain(2), StoreReplaceAll));
    ExpectStored(Levels);
}

TEST_F(DeepStorage, LowestIsReachedByItsPath) {
    EXPECT_EQ(S_OK, Store(Chain(), StoreMergeAll));
    Watcher.Take();
    const std::string path = PathOf(Levels);
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, path + "{x=2}"));
    ExpectStored(Levels, 2);
    EXPECT_EQ(1u, Retrieve(Subject, Filter(path)).size());
    EXPECT_EQ(S_OK, Subject.Delete(path));
    EXPECT_EQ((Calls{"start", "deleted " + path, "child- " + PathOf(Levels - 1), "precommit",
                     "finish(1)"}),
              Calls(Watcher.Told.end() - 5, Watcher.Told.end()));
    ExpectStored(Levels - 1);
}

TEST_F(DeepStorage, ManyChangesInOneGroupRollBack) {
    Group group(Subject);
    for (size_t i = 0; i < 20000; ++i)
        group.Store(StoreMergeAll, "n{x=" + std::to_string(i) + "}(c" + std::to_string(i) + ")");
    Watcher.RefuseOn = "precommit";
    EXPECT_EQ(Refusal, group.Finish());
    EXPECT_EQ("", Forest(Subject));
    EXPECT_EQ(1u + 1u + 3u * 19999u + 2u, Watcher.Told.size());
}

} // namespace
} // namespace treevault::tests
