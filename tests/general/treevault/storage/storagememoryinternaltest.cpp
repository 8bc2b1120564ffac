// SPDX-License-Identifier: MIT
// Storages when memory runs out at each of their allocations: a group happens wholly or not at all,
// sinks learn its end, nothing leaks, and no lock stays held.
#include "support/failingmemory.h"
#include "support/leakcheck.h"
#include "support/logcapture.h"
#include "support/storage.h"

#include <atomic>
#include <optional>
#include <thread>

namespace treevault::tests {
namespace {

constexpr int MostAllocations = 20000;
using Mode = FailingMemory::Mode;

// Counts without allocating.
class CountingSink final : public IModifySink {
public:
    uint32_t TREEVAULT_CALL AddRef() override { return ++References; }
    uint32_t TREEVAULT_CALL Release() override { return --References; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID*, void**) override { return E_NOINTERFACE; }
    HRESULT TREEVAULT_CALL OnStart() override {
        ++Open;
        return S_OK;
    }
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification*) override { return S_OK; }
    HRESULT TREEVAULT_CALL OnPreCommit() override { return Veto; }
    void TREEVAULT_CALL OnFinish(int32_t result) override {
        --Open;
        Last = result;
    }

    uint32_t References = 1;
    int Open = 0; // groups that have started and not finished
    int32_t Last = -1;
    HRESULT Veto = S_OK;
};

// A storage with content, watched by a sink, and one call on it.
struct Scenario {
    Scenario() {
        EXPECT_EQ(S_OK, Subject.Store(StoreReplaceAll, Content));
        EXPECT_EQ(S_OK, Query<IModifySinkRegistry>(Subject, IID_IModifySinkRegistry)
                            ->RegisterSink(&Watcher, &Id));
    }
    virtual ~Scenario() {
        Subject.Close();
        EXPECT_EQ(1u, Watcher.References);
    }
    virtual HRESULT Act() = 0;
    virtual std::string After() = 0;
    virtual bool IsUnchanged(const std::string& left) { return left == Content; }

    static constexpr const char* Content =
        "a:T{x=1 y='a text that needs room on the heap'}(keep{k=1}(deep) gone(below)) b(c)";
    CountingSink Watcher;
    Storage Subject;
    GUID Id = {};
    HRESULT Expected = S_OK;
};

// Stores from another thread, which waits for ever where a lock stayed held. It is there all the
// time and at rest but for its stores, so that blocks may be counted.
class OtherThread {
public:
    OtherThread() : Thread([this] { Work(); }) {}
    ~OtherThread() {
        Ends = true;
        Thread.join();
    }

    void ExpectUnlocked(Storage& storage) {
        Subject = &storage;
        while (Subject.load())
            std::this_thread::yield();
    }

private:
    void Work() {
        while (!Ends)
            if (Storage* const storage = Subject.load()) {
                EXPECT_EQ(S_OK, storage->Store(StoreMergeAll, "other"));
                EXPECT_EQ(S_OK, storage->Delete("/other"));
                Subject = nullptr;
            } else {
                std::this_thread::yield();
            }
    }

    std::atomic<Storage*> Subject{nullptr};
    std::atomic<bool> Ends{false};
    std::thread Thread;
};

class StorageMemory : public NodeTest {
protected:
    template <class S>
    void Sweep() {
        ExpectNoLeak([this] { RunEach<S>(); });
    }

private:
    template <class S>
    void RunEach() {
        for (const Mode mode : {Mode::Once, Mode::ForGood}) {
            int nth = 1;
            while (nth < MostAllocations && RunOnce<S>(nth, mode) && !HasFailure())
                ++nth;
            EXPECT_LT(nth, MostAllocations);
            EXPECT_GT(nth, 1);
        }
    }

    // False when the allocation was not reached.
    template <class S>
    bool RunOnce(int nth, Mode mode) {
        SCOPED_TRACE(testing::Message() << "allocation " << nth
                                        << (mode == Mode::Once ? " alone" : " and all further"));
        S scenario;
        bool failed = false;
        const HRESULT hr = ActWithout(scenario, nth, mode, failed);
        EXPECT_EQ(0, scenario.Watcher.Open) << "a group without an end";
        const std::string left = Forest(scenario.Subject);
        if (hr == S_OK) {
            EXPECT_EQ(scenario.After(), left);
        } else if (mode == Mode::Once && hr != scenario.Expected) {
            EXPECT_TRUE(scenario.IsUnchanged(left)) << left;
        }
        scenario.Watcher.Veto = S_OK;
        Other.ExpectUnlocked(scenario.Subject);
        EXPECT_EQ(1, scenario.Watcher.Last);
        ClearRecord();
        return failed;
    }

    static HRESULT ActWithout(Scenario& scenario, int nth, Mode mode, bool& failed) {
        HRESULT hr = E_OUTOFMEMORY;
        {
            const FailingMemory memory(static_cast<uint64_t>(nth), mode);
            try {
                hr = scenario.Act();
            } catch (const std::bad_alloc&) {
            }
            failed = memory.Failed();
        }
        if (!failed || hr != E_OUTOFMEMORY) {
            EXPECT_EQ(CodeText(scenario.Expected), CodeText(hr));
        }
        return hr;
    }

    OtherThread Other;
};

// --- Stores --------------------------------------------------------------------------------------

struct StoreScenario : Scenario {
    StoreScenario() : Handles(Given.begin(), Given.end()) {}
    HRESULT Act() override {
        return StgStoreData(Subject, nullptr, StoreReplaceAll, Handles.data(), Handles.size());
    }
    std::string After() override {
        return "a:U{x=2 z='another text that needs room'}(keep{k=2}(deep(new))) b(c) "
               "built(by(path{p=1}))";
    }
    const Nodes Given = Trees("a:U{x=2 z='another text that needs room'}(keep{k=2}(deep(new))) "
                              "/built/by/path{p=1}");
    std::vector<IACNode*> Handles;
};

TEST_F(StorageMemory, Store) {
    Sweep<StoreScenario>();
}

// The rollback of a refused group may be what runs out of memory; the refusal is what is told.
struct RefusedScenario : StoreScenario {
    RefusedScenario() {
        Expected = Refusal;
        Watcher.Veto = Refusal;
    }
};

TEST_F(StorageMemory, RefusedStore) {
    Sweep<RefusedScenario>();
}

struct QueueScenario : StoreScenario {
    HRESULT Act() override {
        return StgStoreData(Subject, Pending.Get(), StoreReplaceAll, Handles.data(),
                            Handles.size());
    }
    std::string After() override { return Content; }
    Group Pending{Subject};
};

TEST_F(StorageMemory, QueueingOfAStore) {
    Sweep<QueueScenario>();
}

struct GroupScenario : Scenario {
    GroupScenario() {
        Pending.Store(StoreReplaceAll, "a:U{x=2}(keep{k=2}(deep(new)))")
            .Store(StoreMergeAll, "/built/by/path{p=1}")
            .Delete("/b/c");
    }
    HRESULT Act() override { return Pending.Finish(); }
    std::string After() override { return "a:U{x=2}(keep{k=2}(deep(new))) b built(by(path{p=1}))"; }
    Group Pending{Subject};
};

TEST_F(StorageMemory, Group) {
    Sweep<GroupScenario>();
}

// A group that fails may be finished again, as often as its owner likes.
TEST_F(StorageMemory, RefusedRunsOfAGroupDoNotAddUp) {
    Storage subject("a{v=1} b{v=1} c{v=1} d{v=1} e{v=1}");
    Group group(subject);
    group.Store(StoreMergeAll, "a{v=2} b{v=2} c{v=2} d{v=2} e{v=2} f{v=2}").Delete("\\");
    ExpectNoLeak([&] {
        for (int times = 0; times < 20; ++times)
            EXPECT_EQ(TREEVAULT_E_STG_BAD_PATH, group.Finish());
        ClearRecord();
    });
    EXPECT_EQ("a{v=1} b{v=1} c{v=1} d{v=1} e{v=1}", Forest(subject));
}

// --- Others --------------------------------------------------------------------------------------

struct DeleteScenario : Scenario {
    HRESULT Act() override { return StgDeleteData(Subject, nullptr, Children); }
    std::string After() override { return "a:T{x=1 y='a text that needs room on the heap'} b(c)"; }
    // A child that was put back stands behind its sibling.
    bool IsUnchanged(const std::string& left) override {
        return left == Content || left == "a:T{x=1 y='a text that needs room on the heap'}"
                                          "(gone(below) keep{k=1}(deep)) b(c)";
    }
    const Node Children = Filter("/a", Select::Children);
};

TEST_F(StorageMemory, Delete) {
    Sweep<DeleteScenario>();
}

struct RetrieveScenario : Scenario {
    HRESULT Act() override {
        uint64_t count = 0;
        const HRESULT hr = StgRetrieveData(Subject, Roots, nullptr, Handles, 2, &count);
        for (size_t at = 0; at < count; ++at)
            AcnCloseNodeHandle(Handles[at]);
        return hr;
    }
    std::string After() override { return Content; }
    const Node Roots = Filter("/", Select::Children);
    IACNode* Handles[2] = {};
};

TEST_F(StorageMemory, Retrieval) {
    Sweep<RetrieveScenario>();
}

struct CreateScenario : Scenario {
    HRESULT Act() override {
        INodeStorage* storage = nullptr;
        const HRESULT hr = StgCreateStorage(TREEVAULT_MEMORY_STORAGE, Config, Name, 0, &storage);
        StgCloseStorageHandle(storage);
        return hr;
    }
    std::string After() override {
        INodeStorage* out = nullptr;
        EXPECT_EQ(TREEVAULT_E_NOT_FOUND, StgOpenStorageInstance(Name, &out));
        return Content;
    }
    const Node Config = Configuration(true, true);
    const WCHAR* const Name = W("a name that needs room on the heap");
};

TEST_F(StorageMemory, CreationUnderAName) {
    Sweep<CreateScenario>();
    INodeStorage* out = nullptr;
    EXPECT_EQ(TREEVAULT_E_NOT_FOUND,
              StgOpenStorageInstance(W("a name that needs room on the heap"), &out));
    ClearRecord();
}

struct RegisterScenario : Scenario {
    ~RegisterScenario() override { EXPECT_EQ(1u, Other.References); }
    HRESULT Act() override {
        GUID id = {};
        IModifySinkRegistry* registry = nullptr;
        Subject->QueryInterface(&IID_IModifySinkRegistry, reinterpret_cast<void**>(&registry));
        HRESULT hr = E_OUTOFMEMORY;
        try {
            hr = registry->RegisterSink(&Other, &id);
        } catch (const std::bad_alloc&) {
        }
        EXPECT_EQ(hr == S_OK ? 2u : 1u, Other.References);
        if (hr == S_OK)
            registry->UnregisterSink(&id);
        registry->Release();
        return hr;
    }
    std::string After() override { return Content; }
    CountingSink Other;
};

TEST_F(StorageMemory, Registration) {
    Sweep<RegisterScenario>();
}

TEST_F(StorageMemory, ClosingNeedsNone) {
    const SeverityInForce quiet(SeverityNone); // a line needs some
    Storage storage(Scenario::Content);
    bool failed = true;
    {
        const FailingMemory memory(1, Mode::ForGood);
        storage.Close();
        failed = memory.Failed();
    }
    EXPECT_FALSE(failed);
}

// Refuses, and lets memory run out while the group is undone.
class RollbackBreaker final : public IModifySink {
public:
    RollbackBreaker(int nth, Mode mode) : Nth(nth), Kind(mode) {}

    uint32_t TREEVAULT_CALL AddRef() override { return 2; }
    uint32_t TREEVAULT_CALL Release() override { return 1; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID*, void**) override { return E_NOINTERFACE; }
    HRESULT TREEVAULT_CALL OnStart() override { return S_OK; }
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification*) override { return S_OK; }
    HRESULT TREEVAULT_CALL OnPreCommit() override {
        Memory.emplace(static_cast<uint64_t>(Nth), Kind);
        return Refusal;
    }
    void TREEVAULT_CALL OnFinish(int32_t) override {
        Failed = Memory->Failed();
        Memory.reset();
    }

    bool Failed = false;

private:
    int Nth;
    Mode Kind;
    std::optional<FailingMemory> Memory;
};

// A rollback that runs out of memory may leave new values, but never none.
TEST_F(StorageMemory, RollbackLosesNoAttribute) {
    for (const Mode mode : {Mode::Once, Mode::ForGood}) {
        int nth = 0;
        bool failed = true;
        while (failed) {
            Storage subject("n:T{a=1 b='a text that needs room on the heap'}");
            RollbackBreaker breaker(++nth, mode);
            GUID id;
            const auto registry = Query<IModifySinkRegistry>(subject, IID_IModifySinkRegistry);
            ASSERT_EQ(S_OK, registry->RegisterSink(&breaker, &id));
            const Node given = Tree("n:U{a=2 b=3}");
            IACNode* nodes[] = {given};
            EXPECT_EQ(Refusal, StgStoreData(subject, nullptr, StoreReplaceAll, nodes, 1));
            failed = breaker.Failed;
            const std::string left = Forest(subject);
            // Of two attributes that the group changed, each has its old value or its new one.
            if (!failed) {
                EXPECT_EQ("n:T{a=1 b='a text that needs room on the heap'}", left);
            } else {
                EXPECT_NE(std::string::npos, left.find("a=")) << left;
                EXPECT_NE(std::string::npos, left.find("b=")) << left;
            }
        }
        EXPECT_GT(nth, 3);
    }
    ClearRecord();
}

} // namespace
} // namespace treevault::tests
