// SPDX-License-Identifier: MIT
// Deleting: what a filter selects goes with its subtree, when the group runs.
#include "support/storage.h"

namespace treevault::tests {
namespace {

class Deleting : public NodeTest {
protected:
    Storage Subject{"b(d(e) c{x=1} a) a C"};
    Sink Watcher{Subject};
};

TEST_F(Deleting, NodeGoesWithItsSubtreeAndIsToldAlone) {
    EXPECT_TRUE(Succeeds(StgDeleteData, Subject, nullptr, Filter("/b/d")));
    EXPECT_EQ("C a b(c{x=1} a)", Forest(Subject));
    EXPECT_EQ(Framed({"deleted /b/d", "child- /b"}), Watcher.Told);
}

TEST_F(Deleting, RootHasNoParentToBeTold) {
    EXPECT_EQ(S_OK, Subject.Delete("/b"));
    EXPECT_EQ("C a", Forest(Subject));
    EXPECT_EQ(Framed({"deleted /b"}), Watcher.Told);
}

TEST_F(Deleting, ChildrenGoOneByOneInTheirOrder) {
    EXPECT_EQ(S_OK, Subject.Delete("/b", Select::Children));
    EXPECT_EQ("C a b", Forest(Subject));
    EXPECT_EQ(Framed({"deleted /b/d", "child- /b", "deleted /b/c", "child- /b", "deleted /b/a",
                      "child- /b"}),
              Watcher.Told);
}

TEST_F(Deleting, RootsGoOneByOneInTheOrderOfTheirNames) {
    EXPECT_EQ(S_OK, Subject.Delete("/", Select::Children));
    EXPECT_EQ("", Forest(Subject));
    EXPECT_EQ(Framed({"deleted /C", "deleted /a", "deleted /b"}), Watcher.Told);
}

TEST_F(Deleting, NothingSelectedIsASuccess) {
    EXPECT_EQ(S_OK, Subject.Delete("/x"));
    EXPECT_EQ(S_OK, Subject.Delete("/a", Select::Children));
    EXPECT_EQ("C a b(d(e) c{x=1} a)", Forest(Subject));
    Calls twice = Framed({});
    twice.insert(twice.end(), {"start", "precommit", "finish(1)"});
    EXPECT_EQ(twice, Watcher.Told);
}

TEST_F(Deleting, DepthDoesNotMatter) {
    EXPECT_EQ(S_OK, StgDeleteData(Subject, nullptr, FilterToDepth("/b", 0)));
    EXPECT_EQ("C a", Forest(Subject));
    EXPECT_EQ(Framed({"deleted /b"}), Watcher.Told);
}

TEST_F(Deleting, NotificationHoldsTheDeletedNodeItself) {
    Node held;
    Calls seen;
    Watcher.Inside = [&](const std::string&, const ModifyNotification* told) {
        if (!told)
            return;
        if (told->Mask == ModifyNodeDeleted) {
            told->OldNode->AddRef();
            held = Node(told->OldNode);
            seen.push_back(Show(held));
            EXPECT_EQ(nullptr, Parent(held).Get());
        } else {
            seen.push_back(Show(told->NewNode));
        }
    };
    EXPECT_EQ(S_OK, Subject.Delete("/b/d"));
    EXPECT_EQ((Calls{"d(e)", "b(c{x=1} a)"}), seen);
    EXPECT_EQ(1u, References(held));
    EXPECT_EQ(Text(W("\\b\\d")), Path(held));
}

TEST_F(Deleting, BuildsNothing) {
    EXPECT_EQ(S_OK, Subject.Delete("/new/x"));
    EXPECT_EQ("C a b(d(e) c{x=1} a)", Forest(Subject));
}

// --- Groups --------------------------------------------------------------------------------------

TEST_F(Deleting, GroupSelectsWhenItRuns) {
    Group group(Subject);
    group.Delete("/new").Store(StoreMergeAll, "new(x)").Delete("/new/x").Delete("/late");
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "late"));
    EXPECT_EQ("C a b(d(e) c{x=1} a) late", Forest(Subject));
    Watcher.Take();
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("C a b(d(e) c{x=1} a) new", Forest(Subject));
    EXPECT_EQ(Framed({"created /new", "deleted /new/x", "child- /new", "deleted /late"}),
              Watcher.Told);
}

TEST_F(Deleting, GroupReadsTheFilterAtOnce) {
    const Node filter = Filter("/a");
    Group group(Subject);
    EXPECT_EQ(S_OK, StgDeleteData(Subject, group.Get(), filter));
    EXPECT_EQ(1u, References(filter));
    EXPECT_EQ(S_OK, Set(filter, W("NodePath"), TextValue(W("\\b"))));
    EXPECT_EQ(Calls{}, Watcher.Told);
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("C b(d(e) c{x=1} a)", Forest(Subject));
}

TEST_F(Deleting, SecondRunSelectsAnew) {
    Group group(Subject);
    group.Delete("/b", Select::Children);
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "b(n m)"));
    Watcher.Take();
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("C a b", Forest(Subject));
    EXPECT_EQ(Framed({"deleted /b/n", "child- /b", "deleted /b/m", "child- /b"}), Watcher.Told);
}

TEST_F(Deleting, SecondRunKnowsNothingOfWhatARefusedOneLeft) {
    Group group(Subject);
    group.Delete("/b", Select::Children);
    Watcher.RefuseOn = "deleted /b/d";
    EXPECT_EQ(Refusal, group.Finish());
    EXPECT_EQ("C a b(c{x=1} a d(e))", Forest(Subject));
    Watcher.RefuseOn.clear();
    Watcher.Take();
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("C a b", Forest(Subject));
    EXPECT_EQ(Framed({"deleted /b/c", "child- /b", "deleted /b/a", "child- /b", "deleted /b/d",
                      "child- /b"}),
              Watcher.Told);
}

TEST_F(Deleting, SelectedRootThatANestedDeleteTookCostsNoOther) {
    Watcher.Inside = [&](const std::string& call, const ModifyNotification*) {
        if (call == "deleted /C") {
            EXPECT_EQ(S_OK, Subject.Delete("/a"));
            EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "a{other=1}"));
        }
    };
    EXPECT_EQ(S_OK, Subject.Delete("/", Select::Children));
    EXPECT_EQ("a{other=1}", Forest(Subject));
}

// --- Failures ------------------------------------------------------------------------------------

TEST_F(Deleting, PlaceAboveTheRootsIsRefusedWhenTheGroupRuns) {
    EXPECT_TRUE(
        FailsWithRecord(TREEVAULT_E_STG_BAD_PATH, StgDeleteData, Subject, nullptr, Filter("/")));
    EXPECT_EQ((Calls{"start", "finish(0)"}), Watcher.Take());
    Group group(Subject);
    group.Store(StoreMergeAll, "new").Delete("/").Store(StoreMergeAll, "never");
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_STG_BAD_PATH, StgFinalizeOperationsGroup, Subject,
                                group.Get()));
    EXPECT_EQ((Calls{"start", "created /new", "finish(0)"}), Watcher.Told);
    EXPECT_EQ("C a b(d(e) c{x=1} a)", Forest(Subject));
}

TEST_F(Deleting, FilterMustNotBeNull) {
    EXPECT_TRUE(FailsWithRecord(E_POINTER, StgDeleteData, Subject, nullptr, nullptr));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, StgDeleteData, Subject, Subject, nullptr));
    EXPECT_TRUE(FailsPlainly(E_POINTER, StgDeleteData, nullptr, nullptr, Filter("/a")));
    EXPECT_EQ(Calls{}, Watcher.Told);
}

TEST_F(Deleting, GroupMustBeOne) {
    EXPECT_TRUE(FailsWithRecord(E_NOINTERFACE, StgDeleteData, Subject, Subject, Filter("/a")));
    // The group is looked at before the filter.
    EXPECT_TRUE(FailsWithRecord(E_NOINTERFACE, StgDeleteData, Subject, Subject, Create()));
    EXPECT_EQ("C a b(d(e) c{x=1} a)", Forest(Subject));
}

} // namespace
} // namespace treevault::tests
