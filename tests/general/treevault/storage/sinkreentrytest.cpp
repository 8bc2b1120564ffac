// SPDX-License-Identifier: MIT
// Sinks that come back into their storage, and other threads at the same time.
#include "support/storage.h"

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

namespace treevault::tests {
namespace {

using namespace std::chrono_literals;

class SinkReentry : public NodeTest {
protected:
    // Runs `work` once, inside of one call of the sink.
    void On(const std::string& wanted, const std::function<void()>& work) {
        Entered = false;
        Watcher.Inside = [this, wanted, work](const std::string& call, const ModifyNotification*) {
            if (call == wanted && !std::exchange(Entered, true))
                work();
        };
    }

    Storage Subject{"n{x=1}(c)"};
    Sink Watcher{Subject};
    bool Entered = false;
};

// --- On the same thread --------------------------------------------------------------------------

TEST_F(SinkReentry, ReadingSeesWhatHasBeenDoneSoFar) {
    std::string seen;
    On("changed /n [x]", [&] { seen = Forest(Subject); });
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "n{x=2}(d) m"));
    EXPECT_EQ("n{x=2}(c)", seen);
}

// The children of a given node come after its attributes, whatever they are by then.
TEST_F(SinkReentry, ChildThatTheGivenNodeGetsMeanwhileIsStoredToo) {
    for (const StoreMode mode :
         {StoreMergeAll, StoreMergeModified, StoreReplaceAttributes, StoreReplaceAll}) {
        Storage subject{"n{x=1}"};
        Sink watcher{subject};
        const Node given = Create(W("n"));
        EXPECT_EQ(S_OK, SetInt(given, W("x"), 2));
        watcher.Inside = [&](const std::string& call, const ModifyNotification*) {
            if (call == "changed /n [x]")
                AddNew(given, W("late"));
        };
        IACNode* nodes[] = {given};
        EXPECT_EQ(S_OK, StgStoreData(subject, nullptr, mode, nodes, 1));
        EXPECT_EQ("n{x=2}(late)", Forest(subject)) << mode;
    }
}

TEST_F(SinkReentry, NestedStoreIsAGroupOfItsOwn) {
    for (const char* call : {"start", "created /m", "precommit", "finish(1)"}) {
        Watcher.Inside = nullptr;
        EXPECT_EQ(S_OK, Subject.Delete("/m"));
        EXPECT_EQ(S_OK, Subject.Delete("/nested"));
        Watcher.Take();
        On(call, [&] { EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "nested")); });
        EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "m"));
        Calls told = Framed({"created /m"});
        const Calls inner = Framed({"created /nested"});
        told.insert(std::find(told.begin(), told.end(), call) + 1, inner.begin(), inner.end());
        EXPECT_EQ(told, Watcher.Take());
        EXPECT_EQ("m n{x=1}(c) nested", Forest(Subject));
    }
}

TEST_F(SinkReentry, NestedStoreOutlivesTheRollbackOfTheOuterGroup) {
    On("changed /n [x]", [&] { EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "/n/nested m")); });
    Watcher.RefuseOn = "created /last";
    EXPECT_EQ(Refusal, Subject.Store(StoreMergeAll, "n{x=2} last"));
    EXPECT_EQ("m n{x=1}(c nested)", Forest(Subject));
}

TEST_F(SinkReentry, RefusedNestedStoreConcernsTheOuterGroupOnlyIfTheSinkSaysSo) {
    On("changed /n [x]", [&] {
        Watcher.RefuseOn = "created /nested";
        EXPECT_EQ(Refusal, Subject.Store(StoreMergeAll, "nested"));
    });
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "n{x=2} m"));
    EXPECT_EQ("m n{x=2}(c)", Forest(Subject));
}

TEST_F(SinkReentry, NestedDeleteBeforeTheChildrenAreLookedAt) {
    On("changed /n [x]", [&] { EXPECT_EQ(S_OK, Subject.Delete("/n/c")); });
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "n{x=2}(c{y=1} d)"));
    EXPECT_EQ("n{x=2}(c{y=1} d)", Forest(Subject));
}

// The child has met its given counterpart already, and is merged where it is now.
TEST_F(SinkReentry, NestedDeleteOfAChildThatIsStillToBeMerged) {
    On("created /n/a", [&] { EXPECT_EQ(S_OK, Subject.Delete("/n/c")); });
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "n(a c{y=1})"));
    EXPECT_EQ("n{x=1}(a)", Forest(Subject));
    EXPECT_EQ((Calls{"start", "created /n/a", "start", "deleted /n/c", "child- /n", "precommit",
                     "finish(1)", "changed /n/c [y]", "child+ /n", "precommit", "finish(1)"}),
              Watcher.Told);
}

TEST_F(SinkReentry, NestedFinishOfAGroup) {
    Group group(Subject);
    group.Store(StoreMergeAll, "nested").Delete("/n/c");
    On("created /m", [&] { EXPECT_EQ(S_OK, group.Finish()); });
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "m"));
    EXPECT_EQ("m n{x=1} nested", Forest(Subject));
}

// The outer run is still at the place above the node that the nested one stores and finishes.
TEST_F(SinkReentry, NestedFinishOfTheGroupThatRuns) {
    Group group(Subject);
    group.Store(StoreMergeAll, "/p/q/x{y=1}");
    On("created /p", [&] { EXPECT_EQ(S_OK, group.Finish()); });
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ((Calls{"start", "created /p", "start", "created /p/q", "child+ /p", "created /p/q/x",
                     "child+ /p/q", "precommit", "finish(1)", "precommit", "finish(1)"}),
              Watcher.Told);
    EXPECT_EQ("n{x=1}(c) p(q(x{y=1}))", Forest(Subject));
}

TEST_F(SinkReentry, NestedConfigurationAndDuplicateHandles) {
    On("created /m", [&] {
        Subject.Configure(false, true);
        INodeStorage* copy = nullptr;
        EXPECT_EQ(S_OK, StgDuplicateStorageHandle(Subject, &copy));
        StgCloseStorageHandle(copy);
    });
    EXPECT_EQ(TREEVAULT_E_STG_PARENT_MISSING, Subject.Store(StoreMergeAll, "m /p/q"));
    EXPECT_EQ("n{x=1}(c)", Forest(Subject));
}

// The outer group tells of the node that it selected, but it does not put back what it did not
// take.
TEST_F(SinkReentry, NestedDeleteOfANodeThatIsStillToBeDeleted) {
    ASSERT_EQ(S_OK, Subject.Store(StoreMergeAll, "n(d) d"));
    Watcher.Take();
    On("deleted /n/c", [&] { EXPECT_EQ(S_OK, Subject.Delete("/n/d")); });
    Watcher.RefuseOn = "deleted /n/d";
    Watcher.RefuseAt = 0;
    int refusals = 0;
    const auto inner = Watcher.Inside;
    Watcher.Inside = [&](const std::string& call, const ModifyNotification* told) {
        // The nested group is let pass, the second time is the outer one's.
        Watcher.RefuseOn = call == "deleted /n/d" && ++refusals == 2 ? call : "";
        inner(call, told);
    };
    EXPECT_EQ(Refusal, Subject.Delete("/n", Select::Children));
    EXPECT_EQ((Calls{"start", "deleted /n/c", "start", "deleted /n/d", "child- /n", "precommit",
                     "finish(1)", "child- /n", "deleted /n/d", "finish(0)"}),
              Watcher.Take());
    EXPECT_EQ("d n{x=1}(c)", Forest(Subject));
}

// --- Beside other threads ------------------------------------------------------------------------

// While a thread waits to register, a nested store must still be able to tell the sinks.
TEST_F(SinkReentry, NestedStoreWhileAnotherThreadWaitsToRegister) {
    const auto registry = Query<IModifySinkRegistry>(Subject, IID_IModifySinkRegistry);
    Sink late;
    GUID id = {};
    std::atomic<bool> coming{false};
    std::thread other;
    On("created /m", [&] {
        other = std::thread([&] {
            coming = true;
            EXPECT_EQ(S_OK, registry->RegisterSink(&late, &id));
        });
        while (!coming)
            std::this_thread::yield();
        std::this_thread::sleep_for(50ms); // for the other to be waiting
        EXPECT_EQ(1u, late.References);
        EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "nested"));
    });
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "m"));
    other.join();
    EXPECT_EQ("m n{x=1}(c) nested", Forest(Subject));
    EXPECT_EQ(2u, late.References);
    EXPECT_EQ(S_OK, registry->UnregisterSink(&id));
}

TEST_F(SinkReentry, OtherThreadsReadBeforeOrAfterAGroup) {
    std::future<std::string> read;
    On("changed /n [x]", [&] {
        read = std::async(std::launch::async, [&] { return Forest(Subject); });
        EXPECT_EQ(std::future_status::timeout, read.wait_for(100ms));
    });
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "n{x=2} m"));
    EXPECT_EQ("m n{x=2}(c)", read.get());
}

TEST_F(SinkReentry, OtherThreadsStoreAfterAGroup) {
    std::future<HRESULT> stored;
    On("created /m", [&] {
        stored =
            std::async(std::launch::async, [&] { return Subject.Store(StoreMergeAll, "other"); });
        EXPECT_EQ(std::future_status::timeout, stored.wait_for(100ms));
    });
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "m l"));
    EXPECT_EQ(S_OK, stored.get());
    EXPECT_EQ((Calls{"start", "created /m", "created /l", "precommit", "finish(1)", "start",
                     "created /other", "precommit", "finish(1)"}),
              Watcher.Told);
}

TEST_F(SinkReentry, FurtherBatchesWaitForNobody) {
    IRetrievalContext* context = nullptr;
    IACNode* handles[1] = {};
    uint64_t count = 0;
    ASSERT_EQ(S_OK, StgRetrieveData(Subject, Filter("/", Select::Children), &context, handles, 0,
                                    nullptr));
    On("changed /n [x]", [&] {
        std::async(std::launch::async, [&] {
            EXPECT_EQ(S_OK, StgRetrieveNextData(Subject, context, handles, 1, &count));
        }).get();
    });
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "n{x=2} m"));
    ASSERT_EQ(1u, count);
    EXPECT_EQ("n{x=2}(c)", Show(Node(handles[0])));
    StgCloseRetrivalContext(Subject, context);
}

} // namespace
} // namespace treevault::tests
