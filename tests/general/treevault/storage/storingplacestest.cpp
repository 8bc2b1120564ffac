// SPDX-License-Identifier: MIT
// Storing: where nodes go, parents that are missing, and what is refused.
#include "support/storage.h"

namespace treevault::tests {
namespace {

class StoringPlaces : public NodeTest {
protected:
    Storage Store;
    Sink Watcher{Store};
};

// --- Paths ---------------------------------------------------------------------------------------

TEST_F(StoringPlaces, MissingParentsAreBuiltFromTheTop) {
    EXPECT_EQ(S_OK, Store.Store(StoreMergeAll, "/A/B/C:T{x=1}(D)"));
    EXPECT_EQ("A(B(C:T{x=1}(D)))", Forest(Store));
    EXPECT_EQ(Framed({"created /A", "created /A/B", "child+ /A", "created /A/B/C", "child+ /A/B"}),
              Watcher.Told);
}

TEST_F(StoringPlaces, OnlyWhatIsMissingIsBuilt) {
    EXPECT_EQ(S_OK, Store.Store(StoreMergeAll, "A:T{x=1}"));
    Watcher.Take();
    EXPECT_EQ(S_OK, Store.Store(StoreReplaceAll, "/A/B/C"));
    EXPECT_EQ("A:T{x=1}(B(C))", Forest(Store));
    EXPECT_EQ(Framed({"created /A/B", "child+ /A", "created /A/B/C", "child+ /A/B"}), Watcher.Told);
}

TEST_F(StoringPlaces, ParentIsToldOnlyOfChildrenThatAreNew) {
    EXPECT_EQ(S_OK, Store.Store(StoreMergeAll, "A(B{x=1})"));
    Watcher.Take();
    EXPECT_EQ(S_OK, Store.Store(StoreReplaceAll, "/A/B{x=2}"));
    EXPECT_EQ(Framed({"changed /A/B [x]"}), Watcher.Told);
}

TEST_F(StoringPlaces, NodeBelowOthersGoesToItsPath) {
    const Node top = Tree("p:T{x=1}(q{y=1}(r{z=1}) s)");
    const Node below = ChildAt(ChildAt(top, 0), 0);
    EXPECT_EQ(S_OK, StoreNodes(Store, nullptr, StoreReplaceAll, {below}));
    EXPECT_EQ("p(q(r{z=1}))", Forest(Store));
}

TEST_F(StoringPlaces, NamesMayBeEmpty) {
    EXPECT_EQ(S_OK, Store.Store(StoreMergeAll, "{x=1}"));
    EXPECT_EQ(Framed({"created /"}), Watcher.Take());
    const Node top = Tree("a((b(c)))");
    const Node lowest = ChildAt(ChildAt(ChildAt(top, 0), 0), 0);
    EXPECT_EQ(S_OK, StoreNodes(Store, nullptr, StoreMergeAll, {lowest}));
    EXPECT_EQ("{x=1} a((b(c)))", Forest(Store));
    EXPECT_EQ(Framed({"created /a", "created /a/", "child+ /a", "created /a//b", "child+ /a/",
                      "created /a//b/c", "child+ /a//b"}),
              Watcher.Take());
}

// A separator at the end of a path says nothing, so that such a child goes one level higher.
TEST_F(StoringPlaces, ChildOfANamelessParentMissesIt) {
    const Node top = Tree("a((b))");
    EXPECT_EQ(S_OK, StoreNodes(Store, nullptr, StoreMergeAll, {ChildAt(ChildAt(top, 0), 0)}));
    EXPECT_EQ("a(b)", Forest(Store));
    EXPECT_EQ(S_OK, Store.Store(StoreMergeAll, "a((b))"));
    EXPECT_EQ("a(b (b))", Forest(Store));
}

TEST_F(StoringPlaces, SeveralNodesGoInTheirOrder) {
    EXPECT_EQ(S_OK, Store.Store(StoreMergeAll, "z /z/y a{x=1} z{x=2} a{x=1}"));
    EXPECT_EQ("a{x=1} z{x=2}(y)", Forest(Store));
    EXPECT_EQ(Framed({"created /z", "created /z/y", "child+ /z", "created /a", "changed /z [x]"}),
              Watcher.Told);
}

TEST_F(StoringPlaces, WithoutBuildingAMissingParentIsRefused) {
    Store.Configure(false, true);
    const Nodes nodes = Trees("a /a/b /c/d e");
    std::vector<IACNode*> handles(nodes.begin(), nodes.end());
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_STG_PARENT_MISSING, StgStoreData, Store, nullptr,
                                StoreMergeAll, handles.data(), handles.size()));
    EXPECT_EQ("", Forest(Store));
    EXPECT_EQ((Calls{"start", "created /a", "created /a/b", "child+ /a", "finish(0)"}),
              Watcher.Told);
}

TEST_F(StoringPlaces, WithoutBuildingAGrandparentAloneIsNotEnough) {
    Store.Configure(false, true);
    EXPECT_EQ(S_OK, Store.Store(StoreMergeAll, "a"));
    EXPECT_EQ(TREEVAULT_E_STG_PARENT_MISSING, Store.Store(StoreMergeAll, "/a/b/c"));
    EXPECT_EQ(S_OK, Store.Store(StoreMergeAll, "/a/b"));
    EXPECT_EQ("a(b)", Forest(Store));
}

// --- Whose nodes they are ------------------------------------------------------------------------

TEST_F(StoringPlaces, GivenNodesAreNotAttached) {
    const Node given = Tree("n{x=1}(c)");
    EXPECT_EQ(S_OK, StoreNodes(Store, nullptr, StoreMergeAll, {given}));
    EXPECT_EQ(1u, References(given));
    EXPECT_EQ(S_OK, SetInt(given, W("x"), 2));
    EXPECT_EQ(S_OK, AcnSetNodeType(given, W("T")));
    AddNew(given, W("d"));
    EXPECT_EQ("n{x=1}(c)", Forest(Store));
}

TEST_F(StoringPlaces, ChildOfAGivenNodeStaysThere) {
    EXPECT_EQ(S_OK, Store.Store(StoreMergeAll, "n(a)"));
    const Node given = Tree("n(a(x) b(y))");
    EXPECT_EQ(S_OK, StoreNodes(Store, nullptr, StoreMergeAll, {given}));
    EXPECT_EQ("n(a(x) b(y))", Show(given));
    ExpectChildrenInStep(given);
    EXPECT_EQ("n(a(x) b(y))", Forest(Store));
}

TEST_F(StoringPlaces, GroupCopiesWhatItIsGiven) {
    const Node given = Tree("n{x=1}(c)");
    Group group(Store);
    EXPECT_EQ(S_OK, StoreNodes(Store, group.Get(), StoreMergeAll, {given}));
    EXPECT_EQ(S_OK, SetInt(given, W("x"), 2));
    EXPECT_EQ(S_OK, AcnSetNodeName(given, NameShort, W("m")));
    AddNew(given, W("d"));
    EXPECT_EQ(Calls{}, Watcher.Told);
    EXPECT_EQ("", Forest(Store));
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("n{x=1}(c)", Forest(Store));
}

TEST_F(StoringPlaces, CopiedChildrenMoveFromTheCopyIntoTheStorage) {
    EXPECT_EQ(S_OK, Store.Store(StoreMergeAll, "n(b)"));
    Group group(Store);
    group.Store(StoreMergeAll, "/p/q/n(a(x) b(y(z)) c)").Store(StoreMergeAll, "n(a(x) b(y(z)) c)");
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("n(b(y(z)) a(x) c) p(q(n(a(x) b(y(z)) c)))", Forest(Store));
    for (const Node& root : Retrieve(Store, Filter("/", Select::Children)))
        ExpectChildrenInStep(root);
    EXPECT_EQ("z", Show(Retrieve(Store, Filter("/n/b/y/z"))));
}

TEST_F(StoringPlaces, StoresOfOneGroupMeetWhatEarlierOnesLeft) {
    Group group(Store);
    group.Store(StoreMergeAll, "n{x=1}(a)").Store(StoreReplaceAll, "n{y=2}(b)");
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("n{y=2}(b)", Forest(Store));
    EXPECT_EQ(
        Framed({"created /n", "changed /n [y x]", "created /n/b", "deleted /n/a", "child+- /n"}),
        Watcher.Told);
}

// --- Arguments -----------------------------------------------------------------------------------

TEST_F(StoringPlaces, NoNodesAreAGroupAllTheSame) {
    EXPECT_EQ(S_OK, Store.Store(StoreMergeAll, ""));
    EXPECT_EQ(Framed({}), Watcher.Told);
}

TEST_F(StoringPlaces, ArrayMustNotBeNull) {
    EXPECT_TRUE(
        FailsWithRecord(E_POINTER, StgStoreData, Store, nullptr, StoreMergeAll, nullptr, 0));
    EXPECT_TRUE(
        FailsWithRecord(E_POINTER, StgStoreData, Store, nullptr, StoreMergeAll, nullptr, 1));
    Group group(Store);
    EXPECT_TRUE(
        FailsWithRecord(E_POINTER, StgStoreData, Store, group.Get(), StoreMergeAll, nullptr, 0));
    EXPECT_EQ(Calls{}, Watcher.Told);
}

TEST_F(StoringPlaces, NullEntryHasNoParent) {
    const Node first = Create(W("a")), last = Create(W("b"));
    IACNode* nodes[] = {first, nullptr, last};
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_STG_PARENT_MISSING, StgStoreData, Store, nullptr,
                                StoreMergeAll, nodes, 3));
    EXPECT_EQ("", Forest(Store));
    EXPECT_EQ((Calls{"start", "created /a", "finish(0)"}), Watcher.Told);
}

TEST_F(StoringPlaces, NullEntryOfAGroupIsRefusedAtOnceAndEarlierOnesStayQueued) {
    const Node first = Create(W("a")), last = Create(W("b"));
    IACNode* nodes[] = {first, nullptr, last};
    Group group(Store);
    EXPECT_TRUE(
        FailsWithRecord(E_POINTER, StgStoreData, Store, group.Get(), StoreMergeAll, nodes, 3));
    EXPECT_EQ(Calls{}, Watcher.Told);
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("a", Forest(Store));
}

TEST_F(StoringPlaces, GroupMustBeOne) {
    Node node = Create(W("a"));
    IACNode* nodes[] = {node};
    for (IComponentUnknown* other :
         {static_cast<IComponentUnknown*>(node.Get()), static_cast<IComponentUnknown*>(Store)})
        EXPECT_TRUE(
            FailsWithRecord(E_NOINTERFACE, StgStoreData, Store, other, StoreMergeAll, nodes, 1));
    EXPECT_EQ(Calls{}, Watcher.Told);
    EXPECT_EQ("", Forest(Store));
}

TEST_F(StoringPlaces, NullStorageIsRefusedPlainly) {
    IACNode* nodes[] = {nullptr};
    EXPECT_TRUE(FailsPlainly(E_POINTER, StgStoreData, nullptr, nullptr, StoreMergeAll, nodes, 1));
}

} // namespace
} // namespace treevault::tests
