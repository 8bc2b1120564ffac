// SPDX-License-Identifier: MIT
// A group of changes of all kinds, refused at each of its notifications in turn.
#include "support/storage.h"

namespace treevault::tests {
namespace {

const char* const Original = "a:T{x=1 y='old'}(keep{k=1}(deep) gone(below)) b(c(d) e) r{v=1}(s)";
const char* const Changed = "a:U{x=2}(keep{k=2}(deep(new))) b(e) built(by(path{p=1})) r{v=2 w=3}";

void Fill(Group& group) {
    group.Store(StoreReplaceAll, "a:U{x=2}(keep{k=2}(deep(new)))")
        .Store(StoreMergeAll, "/built/by/path{p=1}")
        .Delete("/b/c")
        .Store(StoreMergeModified, "r{v=2 w=3}")
        .Delete("/r", Select::Children)
        .Store(StoreMergeAll, "temporary{t=1}")
        .Store(StoreReplaceAttributes, "temporary{t=2}")
        .Delete("/temporary");
}

// In the order of the operations.
const Calls All = {"changed /a [x y]",
                   "changed /a/keep [k]",
                   "created /a/keep/deep/new",
                   "child+ /a/keep/deep",
                   "deleted /a/gone",
                   "child- /a",
                   "created /built",
                   "created /built/by",
                   "child+ /built",
                   "created /built/by/path",
                   "child+ /built/by",
                   "deleted /b/c",
                   "child- /b",
                   "changed /r [v w]",
                   "deleted /r/s",
                   "child- /r",
                   "created /temporary",
                   "changed /temporary [t]",
                   "deleted /temporary",
                   "precommit"};

class RefusedAt : public NodeTest, public testing::WithParamInterface<int> {
protected:
    // What a group that is refused at the parameter tells.
    static Calls Told() {
        Calls calls(All.begin(), All.begin() + GetParam());
        calls.insert(calls.begin(), "start");
        calls.push_back("finish(0)");
        return calls;
    }

    Storage Subject{Original};
    Sink Watcher{Subject};
};

TEST_P(RefusedAt, ForestIsWhatItWas) {
    Group group(Subject);
    Fill(group);
    Watcher.RefuseAt = GetParam();
    EXPECT_TRUE(FailsWithRecord(Refusal, StgFinalizeOperationsGroup, Subject, group.Get()));
    EXPECT_EQ(Told(), Watcher.Told);
    // Only a child that was removed stands elsewhere now, behind its siblings.
    const char* const left =
        GetParam() >= 12 ? "a:T{x=1 y='old'}(keep{k=1}(deep) gone(below)) b(e c(d)) r{v=1}(s)"
                         : Original;
    EXPECT_EQ(left, Forest(Subject));
    for (const Node& root : Retrieve(Subject, Filter("/", Select::Children)))
        ExpectChildrenInStep(root);
}

TEST_P(RefusedAt, SecondRunSucceeds) {
    Group group(Subject);
    Fill(group);
    Watcher.RefuseAt = GetParam();
    EXPECT_EQ(Refusal, group.Finish());
    Watcher.Take();
    EXPECT_EQ(S_OK, group.Finish());
    // What moved into the storage from a copy and out again is the copy's child no longer; the new
    // node was the only one.
    const bool moved = GetParam() >= 3;
    EXPECT_EQ(moved ? "a:U{x=2}(keep{k=2}(deep)) b(e) built(by(path{p=1})) r{v=2 w=3}" : Changed,
              Forest(Subject));
}

TEST_P(RefusedAt, WithoutAtomicityNodesStayAndAttributesGoBack) {
    Subject.Configure(true, false);
    Group group(Subject);
    Fill(group);
    Watcher.RefuseAt = GetParam();
    EXPECT_EQ(Refusal, group.Finish());
    EXPECT_EQ(Told(), Watcher.Told);
    const int at = GetParam();
    std::string left = "a:T{x=1 y='old'}(keep{k=1}";
    left += at >= 3 ? "(deep(new))" : "(deep)";
    left += at >= 5 ? ") " : " gone(below)) ";
    left += at >= 12 ? "b(e)" : "b(c(d) e)";
    left += at >= 10 ? " built(by(path{p=1}))" : at >= 8 ? " built(by)" : at >= 7 ? " built" : "";
    left += at >= 15 ? " r{v=1}" : " r{v=1}(s)";
    left += at >= 17 && at < 19 ? " temporary{t=1}" : "";
    EXPECT_EQ(left, Forest(Subject));
}

INSTANTIATE_TEST_SUITE_P(EachCall, RefusedAt, testing::Range(1, 21));

TEST(RefusedNowhere, GroupDoesItsWork) {
    Storage storage(Original);
    Sink sink(storage);
    Group group(storage);
    Fill(group);
    EXPECT_EQ(S_OK, group.Finish());
    Calls told = All;
    told.insert(told.begin(), "start");
    told.push_back("finish(1)");
    EXPECT_EQ(told, sink.Told);
    EXPECT_EQ(Changed, Forest(storage));
}

} // namespace
} // namespace treevault::tests
