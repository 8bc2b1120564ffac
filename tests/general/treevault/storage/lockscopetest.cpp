// SPDX-License-Identifier: MIT
// Which lock keeps other threads out while a group is finalized or a sink is told.
#include "support/storage.h"

#include <chrono>
#include <future>

namespace treevault::tests {
namespace {

using namespace std::chrono_literals;

class LockScope : public NodeTest {
protected:
    static std::future<std::string> ReadBeside(INodeStorage* storage) {
        return std::async(std::launch::async, [storage] { return Forest(storage); });
    }

    Storage Subject{"a{x=1}"};
    Sink Watcher{Subject};
};

TEST_F(LockScope, ReadersWaitForAGroupThatIsFinalized) {
    std::future<std::string> read;
    Watcher.Inside = [&](const std::string& call, const ModifyNotification*) {
        if (call == "start") {
            read = ReadBeside(Subject);
            EXPECT_EQ(std::future_status::timeout, read.wait_for(100ms));
        }
    };
    Group group(Subject);
    group.Store(StoreMergeAll, "a{x=2}");
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("a{x=2}", read.get());
}

TEST_F(LockScope, ReadersWaitUntilTheFinishIsTold) {
    std::future<std::string> read;
    Watcher.RefuseOn = "precommit";
    Watcher.Inside = [&](const std::string& call, const ModifyNotification*) {
        if (call == "finish(0)") {
            read = ReadBeside(Subject);
            EXPECT_EQ(std::future_status::timeout, read.wait_for(100ms));
        }
    };
    EXPECT_EQ(Refusal, Subject.Delete("/a"));
    EXPECT_EQ("a{x=1}", read.get());
}

TEST_F(LockScope, GroupFinalizedOnAnotherStorageLocksThatOneAlone) {
    Storage other("b");
    std::future<std::string> read;
    Watcher.Inside = [&](const std::string& call, const ModifyNotification*) {
        if (call == "changed /a [x]") {
            EXPECT_EQ("a{x=2}", ReadBeside(Subject).get());
            read = ReadBeside(other);
            EXPECT_EQ(std::future_status::timeout, read.wait_for(100ms));
        }
    };
    Group group(Subject);
    group.Store(StoreMergeAll, "a{x=2}");
    EXPECT_EQ(S_OK, StgFinalizeOperationsGroup(other, group.Get()));
    EXPECT_EQ("b", read.get());
}

// A sink that has been removed is told nothing any more, and nothing is under way.
TEST_F(LockScope, RemovalOfASinkWaitsForTheNotificationUnderWay) {
    const auto registry = Query<IModifySinkRegistry>(Subject, IID_IModifySinkRegistry);
    Sink leaving;
    GUID id = {};
    ASSERT_EQ(S_OK, registry->RegisterSink(&leaving, &id));
    std::future<HRESULT> removed;
    Watcher.Inside = [&](const std::string& call, const ModifyNotification*) {
        if (call == "created /m") {
            removed = std::async(std::launch::async, [&] { return registry->UnregisterSink(&id); });
            EXPECT_EQ(std::future_status::timeout, removed.wait_for(100ms));
        }
    };
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "m"));
    EXPECT_EQ(S_OK, removed.get());
    EXPECT_EQ(1u, leaving.References);
}

} // namespace
} // namespace treevault::tests
