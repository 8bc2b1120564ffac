// SPDX-License-Identifier: MIT
// Groups: the order of what sinks are told, what a second run does, and what is refused.
#include "support/storage.h"

namespace treevault::tests {
namespace {

class Groups : public NodeTest {
protected:
    Storage Subject{"a{x=1} b(c)"};
    Sink Watcher{Subject};
};

// --- The frame -----------------------------------------------------------------------------------

TEST_F(Groups, OperationsRunInTheirOrderWithinOneFrame) {
    Group group(Subject);
    group.Store(StoreMergeAll, "a{x=2} d").Delete("/b/c").Store(StoreMergeAll, "/b/c{y=1}");
    EXPECT_EQ(Calls{}, Watcher.Told);
    EXPECT_TRUE(Succeeds(StgFinalizeOperationsGroup, Subject, group.Get()));
    EXPECT_EQ(Framed({"changed /a [x]", "created /d", "deleted /b/c", "child- /b", "created /b/c",
                      "child+ /b"}),
              Watcher.Told);
    EXPECT_EQ("a{x=2} b(c{y=1}) d", Forest(Subject));
}

TEST_F(Groups, EmptyGroupIsAFrame) {
    Group group(Subject);
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ((Calls{"start", "precommit", "finish(1)"}), Watcher.Told);
}

TEST_F(Groups, ClosedUnfinishedGroupChangesNothing) {
    {
        Group group(Subject);
        group.Store(StoreMergeAll, "a{x=2} d(e)").Delete("/b");
    }
    EXPECT_EQ(Calls{}, Watcher.Told);
    EXPECT_EQ("a{x=1} b(c)", Forest(Subject));
}

TEST_F(Groups, ChangesAreVisibleAsTheyAreTold) {
    Calls seen;
    Watcher.Inside = [&](const std::string& call, const ModifyNotification*) {
        seen.push_back(call + ": " + Forest(Subject));
    };
    EXPECT_EQ(S_OK, Subject.Store(StoreReplaceAll, "b{n=1}(d)"));
    EXPECT_EQ((Calls{"start: a{x=1} b(c)", "changed /b [n]: a{x=1} b{n=1}(c)",
                     "created /b/d: a{x=1} b{n=1}(c d)", "deleted /b/c: a{x=1} b{n=1}(d)",
                     "child+- /b: a{x=1} b{n=1}(d)", "precommit: a{x=1} b{n=1}(d)",
                     "finish(1): a{x=1} b{n=1}(d)"}),
              seen);
}

TEST_F(Groups, FailedGroupIsUndoneBeforeItsFinishIsTold) {
    Calls seen;
    Watcher.Inside = [&](const std::string& call, const ModifyNotification*) {
        seen.push_back(call + ": " + Forest(Subject));
    };
    Watcher.RefuseOn = "precommit";
    EXPECT_EQ(Refusal, Subject.Store(StoreMergeAll, "a{x=2}"));
    EXPECT_EQ((Calls{"start: a{x=1} b(c)", "changed /a [x]: a{x=2} b(c)", "precommit: a{x=2} b(c)",
                     "finish(0): a{x=1} b(c)"}),
              seen);
}

TEST_F(Groups, SecondOfThreeStoresFails) {
    Subject.Configure(false, true);
    Group group(Subject);
    group.Store(StoreMergeAll, "first").Store(StoreMergeAll, "/none/n").Store(StoreMergeAll, "z");
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_STG_PARENT_MISSING, StgFinalizeOperationsGroup, Subject,
                                group.Get()));
    EXPECT_EQ((Calls{"start", "created /first", "finish(0)"}), Watcher.Told);
    EXPECT_EQ("a{x=1} b(c)", Forest(Subject));
}

TEST_F(Groups, RefusedStartIsIgnored) {
    Watcher.RefuseOn = "start";
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "n"));
    EXPECT_EQ(Framed({"created /n"}), Watcher.Told);
    EXPECT_EQ("a{x=1} b(c) n", Forest(Subject));
}

TEST_F(Groups, RecordOfARefusedStartStays) {
    Watcher.RefuseOn = "start";
    ClearRecord();
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "n"));
    Text record;
    ASSERT_TRUE(TakeRecord(record));
    EXPECT_EQ(0u, Narrow(record).find(CodeText(Refusal))) << Narrow(record);
}

// --- Second runs ---------------------------------------------------------------------------------

TEST_F(Groups, SecondRunOfEqualContentIsAFrame) {
    Group group(Subject);
    group.Store(StoreMergeAll, "a{x=2} n{y=1}(m)");
    EXPECT_EQ(S_OK, group.Finish());
    Watcher.Take();
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(Framed({}), Watcher.Told);
    EXPECT_EQ("a{x=2} b(c) n{y=1}(m)", Forest(Subject));
}

TEST_F(Groups, SecondRunRestoresWhatWasChangedMeanwhile) {
    Group group(Subject);
    group.Store(StoreMergeAll, "a{x=2}");
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "a{x=3 y=1}"));
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("a{x=2 y=1} b(c)", Forest(Subject));
}

// The copies of the first run have become the stored nodes.
TEST_F(Groups, SecondRunUsesTheNodesOfTheFirst) {
    Group group(Subject);
    group.Store(StoreMergeAll, "n{x=1}(m)");
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "n{x=2}(o)"));
    Watcher.Take();
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(Framed({}), Watcher.Take());
    EXPECT_EQ(S_OK, Subject.Delete("/n"));
    Watcher.Take();
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(Framed({"created /n"}), Watcher.Told);
    EXPECT_EQ("a{x=1} b(c) n{x=2}(m o)", Forest(Subject));
}

TEST_F(Groups, SecondRunUsesTheNodeWithoutChildrenOfTheFirst) {
    Group group(Subject);
    group.Store(StoreMergeAll, "n{x=1}");
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "n{x=2}"));
    Watcher.Take();
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(Framed({}), Watcher.Take());
    EXPECT_EQ("a{x=1} b(c) n{x=2}", Forest(Subject));
}

// Neither of the stored node that it merges into nor as a new node.
TEST_F(Groups, WhatBecomesOfAGivenNodeMeanwhileDoesNotMatter) {
    for (const char* place : {"a", "n"}) {
        Group group(Subject);
        const Node given = std::move(Trees(std::string(place) + "{x=2}").front());
        IACNode* nodes[] = {given};
        ASSERT_EQ(S_OK, StgStoreData(Subject, group.Get(), StoreMergeModified, nodes, 1));
        const int32_t number = 3;
        ASSERT_EQ(S_OK, AcnSetAttribute(given, W("x"), VtInt32, &number, sizeof number));
        ASSERT_EQ(S_OK, AcnSetAttribute(given, W("y"), VtInt32, &number, sizeof number));
        ASSERT_EQ(S_OK, AcnSetModifiedState(given, nullptr, 0));
        ASSERT_EQ(S_OK, AcnSetNodeName(given, NameFullPath, W("\\b\\other")));
        ASSERT_EQ(S_OK, AcnSetNodeType(given, W("Type")));
        AddNew(given, W("child"));
        EXPECT_EQ(S_OK, group.Finish());
    }
    EXPECT_EQ("a{x=2} b(c) n{x=2}", Forest(Subject));
}

TEST_F(Groups, ChildrenThatMovedInWithTheFirstRunAreNotGivenInTheSecond) {
    Group group(Subject);
    group.Store(StoreReplaceAll, "b(c new)");
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("a{x=1} b(c new)", Forest(Subject));
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("a{x=1} b(c)", Forest(Subject));
}

TEST_F(Groups, MoreMayBeAddedToAGroupThatHasRun) {
    Group group(Subject);
    group.Store(StoreMergeAll, "n{x=1}");
    EXPECT_EQ(S_OK, group.Finish());
    Watcher.Take();
    group.Store(StoreMergeAll, "n{x=2}");
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(Framed({"changed /n [x]"}), Watcher.Told);
    // Now the first store finds its own node with the value of the second.
    Watcher.Take();
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(Framed({}), Watcher.Told);
}

TEST_F(Groups, FailureOfALaterRunUndoesTheEarlierOnes) {
    Group group(Subject);
    group.Store(StoreMergeAll, "a{x=2} n").Delete("/b/c");
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("a{x=2} b n", Forest(Subject));
    Watcher.Take();
    Watcher.RefuseOn = "precommit";
    EXPECT_EQ(Refusal, group.Finish());
    EXPECT_EQ((Calls{"start", "precommit", "finish(0)"}), Watcher.Told);
    EXPECT_EQ("a{x=1} b(c)", Forest(Subject));
}

TEST_F(Groups, RefusedGroupMayRunAgain) {
    Group group(Subject);
    group.Store(StoreMergeAll, "a{x=2} n(m)").Delete("/b");
    Watcher.RefuseOn = "precommit";
    EXPECT_EQ(Refusal, group.Finish());
    EXPECT_EQ("a{x=1} b(c)", Forest(Subject));
    Watcher.RefuseOn.clear();
    Watcher.Take();
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(Framed({"changed /a [x]", "created /n", "deleted /b"}), Watcher.Told);
    EXPECT_EQ("a{x=2} n(m)", Forest(Subject));
}

// --- Other storages ------------------------------------------------------------------------------

TEST_F(Groups, FinishedOnAnotherStorageTheFrameIsThatOnes) {
    Storage other("a{x=5}");
    Sink otherWatcher(other);
    Group group(Subject);
    group.Store(StoreMergeAll, "a{x=2}");
    EXPECT_EQ(S_OK, StgFinalizeOperationsGroup(other, group.Get()));
    EXPECT_EQ((Calls{"changed /a [x]"}), Watcher.Told);
    EXPECT_EQ((Calls{"start", "precommit", "finish(1)"}), otherWatcher.Told);
    EXPECT_EQ("a{x=2} b(c)", Forest(Subject));
    EXPECT_EQ("a{x=5}", Forest(other));
}

TEST_F(Groups, VetoOfTheStorageCalledUndoesWhatTheOtherStored) {
    Storage other;
    Sink otherWatcher(other);
    otherWatcher.RefuseOn = "precommit";
    Group group(Subject);
    group.Store(StoreMergeAll, "a{x=2} n").Delete("/b");
    EXPECT_EQ(Refusal, StgFinalizeOperationsGroup(other, group.Get()));
    EXPECT_EQ((Calls{"start", "precommit", "finish(0)"}), otherWatcher.Told);
    EXPECT_EQ("a{x=1} b(c)", Forest(Subject));
}

// --- Arguments -----------------------------------------------------------------------------------

TEST_F(Groups, OutMustNotBeNull) {
    const int32_t before = LiveComponents();
    EXPECT_TRUE(FailsPlainly(E_INVALIDARG, StgCreateOperationsGroup, Subject, nullptr));
    IOperationsGroup* out = nullptr;
    EXPECT_TRUE(FailsPlainly(E_POINTER, StgCreateOperationsGroup, nullptr, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(before, LiveComponents());
}

TEST_F(Groups, GroupMustBeOne) {
    const Node node = Create();
    const Group group(Subject);
    EXPECT_TRUE(FailsWithRecord(E_POINTER, StgFinalizeOperationsGroup, Subject, nullptr));
    EXPECT_TRUE(FailsWithRecord(E_NOINTERFACE, StgFinalizeOperationsGroup, Subject, Subject));
    EXPECT_TRUE(FailsWithRecord(E_NOINTERFACE, StgFinalizeOperationsGroup, Subject, node.Get()));
    EXPECT_TRUE(FailsPlainly(E_POINTER, StgFinalizeOperationsGroup, nullptr, group.Get()));
    EXPECT_EQ(Calls{}, Watcher.Told);
    // Nothing holds the storage locked afterwards.
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "n"));
}

TEST_F(Groups, GroupHasOnlyTheBaseInterfaceForCallers) {
    const Group group(Subject);
    void* out = nullptr;
    EXPECT_EQ(S_OK, group.Get()->QueryInterface(&IID_IComponentUnknown, &out));
    EXPECT_EQ(group.Get(), out);
    EXPECT_EQ(1u, group.Get()->Release());
    EXPECT_EQ(E_NOINTERFACE, group.Get()->QueryInterface(&IID_INodeStorage, &out));
    EXPECT_EQ(E_NOINTERFACE, group.Get()->QueryInterface(&IID_IACNode, &out));
}

TEST_F(Groups, ClosingLooksAtTheGroupAlone) {
    StgCloseOperationsGroup(nullptr, nullptr);
    StgCloseOperationsGroup(Subject, nullptr);
    StgCloseRetrivalContext(reinterpret_cast<INodeStorage*>(Untouched()), nullptr);
    IOperationsGroup* group = nullptr;
    ASSERT_EQ(S_OK, StgCreateOperationsGroup(Subject, &group));
    const int32_t before = LiveComponents();
    StgCloseOperationsGroup(reinterpret_cast<INodeStorage*>(Untouched()), group);
    EXPECT_EQ(before - 1, LiveComponents());
}

} // namespace
} // namespace treevault::tests
