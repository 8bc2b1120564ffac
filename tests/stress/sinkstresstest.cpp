// SPDX-License-Identifier: MIT
// Sinks that are told of groups while others come and go and while they store themselves.
#include "stresssink.h"

namespace treevault::tests {
namespace {

class SinkStress : public NodeTest {
protected:
    Storage Subject;
};

// The groups of this file. A group of a root "/w..." adds the root, adds a child to it and deletes
// it: created /w, created /w/b, child+ /w, deleted /w.
constexpr int ChangesOfAGroup = 4;

HRESULT RunGroup(INodeStorage* storage, const std::string& root) {
    Group group(storage);
    group.Store(StoreMergeAll, root + "(a)").Store(StoreMergeAll, root + "(b)");
    group.Delete('/' + root);
    return group.Finish();
}

class Watcher final : public FrameSink {
public:
    explicit Watcher(INodeStorage* storage) : Registered(storage, *this) {}
    ~Watcher() { EXPECT_TRUE(IsBetweenGroups()); }

private:
    void OnGroup(const std::string& root, int changes) override {
        EXPECT_EQ(root.starts_with("/w") ? ChangesOfAGroup : 1, changes) << root;
    }

    Registration Registered;
};

// Refuses a change of the groups of "/w-refused", and those of "/w-late" at their end.
class Refuser final : public StressSink {
public:
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification* told) override {
        const std::string path = Plain(told->Path);
        Refuses = path == "/w-late" && told->Mask == ModifyNodeDeleted;
        return path == "/w-refused/b" ? Refusal : S_OK;
    }
    HRESULT TREEVAULT_CALL OnPreCommit() override {
        return std::exchange(Refuses, false) ? Refusal : S_OK;
    }

private:
    bool Refuses = false;
};

// Whoever has been removed is told nothing any more.
class Passenger final : public StressSink {
public:
    HRESULT TREEVAULT_CALL OnStart() override { return Note(); }
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification*) override { return Note(); }
    HRESULT TREEVAULT_CALL OnPreCommit() override { return Note(); }
    void TREEVAULT_CALL OnFinish(int32_t) override { Note(); }

    std::atomic<bool> IsAboard{false};

private:
    HRESULT Note() {
        EXPECT_TRUE(IsAboard);
        return S_OK;
    }
};

void RideOnce(INodeStorage* storage, Choices& choices) {
    Passenger passenger;
    {
        passenger.IsAboard = true;
        const Registration registered(storage, passenger);
        for (size_t i = choices.Below(50); i != 0; --i)
            std::this_thread::yield();
    }
    passenger.IsAboard = false;
    EXPECT_EQ(1u, passenger.References);
}

TEST_F(SinkStress, EachGroupIsToldWholeWhileOthersComeAndGo) {
    const Watcher first(Subject), second(Subject);
    std::atomic<int> groups{0};
    const auto write = [&](const char* root) {
        return [&, root](Choices&) {
            ASSERT_EQ(S_OK, RunGroup(Subject, root));
            ++groups;
        };
    };
    const Work ride = [&](Choices& choices) { RideOnce(Subject, choices); };
    WorkTogether({write("w1"), write("w2"), ride, ride});
    EXPECT_LT(0, groups);
    for (const Watcher* each : {&first, &second}) {
        EXPECT_EQ(groups, each->Successes);
        EXPECT_EQ(0, each->Failures);
    }
}

TEST_F(SinkStress, RefusedGroupsAreToldToTheEnd) {
    const Watcher first(Subject), second(Subject);
    Refuser refuser;
    const Registration registered(Subject, refuser);
    std::atomic<int> good{0}, refused{0};
    const auto write = [&](const char* root, HRESULT expected, std::atomic<int>& count) {
        return [&, root, expected](Choices&) {
            ASSERT_EQ(CodeText(expected), CodeText(RunGroup(Subject, root)));
            ++count;
        };
    };
    const Work ride = [&](Choices& choices) { RideOnce(Subject, choices); };
    WorkTogether({write("w1", S_OK, good), write("w-refused", Refusal, refused),
                  write("w-late", Refusal, refused), ride});
    EXPECT_EQ("", Forest(Subject));
    for (const Watcher* each : {&first, &second}) {
        EXPECT_EQ(good, each->Successes);
        EXPECT_EQ(refused, each->Failures);
    }
}

// Stores inside of each group of the writers.
class Nester final : public StressSink {
public:
    explicit Nester(INodeStorage* storage) : Subject(storage), Registered(storage, *this) {}

    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification* told) override {
        if (told->Mask != ModifyChildAdded) // roots send no such thing
            return S_OK;
        EXPECT_EQ(S_OK, StoreNodes(Subject, nullptr, StoreMergeAll, Trees("nested")));
        EXPECT_EQ(S_OK, StgDeleteData(Subject, nullptr, Filter("/nested")));
        ++Groups;
        return S_OK;
    }

    int Groups = 0;

private:
    INodeStorage* Subject;
    Registration Registered;
};

// While somebody waits to be registered, the sinks of the group inside must be told all the same.
TEST_F(SinkStress, SinksStoreWhileOthersWaitToBeRegistered) {
    const Watcher first(Subject), second(Subject);
    const Nester nester(Subject);
    std::atomic<int> groups{0};
    const auto write = [&](const char* root) {
        return [&, root](Choices&) {
            ASSERT_EQ(S_OK, RunGroup(Subject, root));
            ++groups;
        };
    };
    const Work ride = [&](Choices& choices) { RideOnce(Subject, choices); };
    WorkTogether({write("w1"), write("w2"), ride, ride});
    EXPECT_EQ(groups, nester.Groups);
    for (const Watcher* each : {&first, &second})
        EXPECT_EQ(3 * groups, each->Successes); // the group and the two inside of it
    EXPECT_EQ("", Forest(Subject));
}

} // namespace
} // namespace treevault::tests
