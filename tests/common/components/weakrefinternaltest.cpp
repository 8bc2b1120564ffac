// SPDX-License-Identifier: MIT
// Weak references: gaining the owner, its death, and the listeners.
#include "common/components/weakref.h"

#include "common/components/probe.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace treevault {
namespace {

using namespace tests;

Ref<IWeakRef> WeakOf(Probe& probe) {
    Ref<IWeakRef> weak;
    EXPECT_EQ(S_OK, probe.GetWeakReference(weak.Put()));
    return weak;
}

uint32_t CountOf(IComponentUnknown& object) {
    object.AddRef();
    return object.Release();
}

// Notes its name and what it was told.
class Listener final : public IWeakRefListener {
public:
    Listener(std::string& journal, char name) : Names(journal), Name(name) {}

    uint32_t TREEVAULT_CALL AddRef() override { return 1; }
    uint32_t TREEVAULT_CALL Release() override { return 1; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID*, void**) override { return E_NOINTERFACE; }

    void TREEVAULT_CALL OnDestroy(IWeakRef* reference) override {
        Names += Name;
        Told = reference;
        void* out = this;
        ResultInside = reference->Resolve(&IID_IProbe, &out);
        OutInside = out;
        if (RemoveInside)
            reference->RemoveListener(RemoveInside);
    }

    IWeakRef* Told = nullptr;
    HRESULT ResultInside = E_FAIL;
    void* OutInside = this;
    IWeakRefListener* RemoveInside = nullptr;

private:
    std::string& Names;
    char Name;
};

class WeakReference : public testing::Test {
protected:
    void TearDown() override {
        Object.Reset();
        Weak.Reset();
        EXPECT_EQ(Before, ComponentCount.load()) << "components leaked";
    }

    int32_t Before = ComponentCount.load();
    Journal Events;
    Ref<Probe> Object = MakeComponent<Probe>(Events);
    Ref<IWeakRef> Weak = WeakOf(*Object);
    std::string Names;
    Listener A{Names, 'a'}, B{Names, 'b'}, C{Names, 'c'};
};

TEST_F(WeakReference, IsOneObjectForItsOwner) {
    const Ref<IWeakRef> again = WeakOf(*Object);
    EXPECT_EQ(Weak.Get(), again.Get());
    EXPECT_EQ(Before + 2, ComponentCount.load()) << "the owner and the weak object";
    EXPECT_EQ(3u, CountOf(*Weak)) << "the owner's and two of callers";
}

TEST_F(WeakReference, DoesNotKeepItsOwnerAlive) {
    EXPECT_EQ(1u, CountOf(*static_cast<ComponentHead*>(Object.Get())));
    Object.Reset();
    EXPECT_EQ("destroyed count 0", Events.Entries.back());
}

TEST_F(WeakReference, HasTheInterfacesOfAComponent) {
    void* out = nullptr;
    EXPECT_EQ(S_OK, Weak->QueryInterface(&IID_IWeakRef, &out));
    EXPECT_EQ(Weak.Get(), out);
    Weak->Release();
    EXPECT_EQ(S_OK, Weak->QueryInterface(&IID_IComponentUnknown, &out));
    EXPECT_NE(nullptr, out);
    Weak->Release();
    EXPECT_EQ(E_NOINTERFACE, Weak->QueryInterface(&IID_IProbe, &out));
    EXPECT_EQ(E_INVALIDARG, Weak->QueryInterface(&IID_IWeakRef, nullptr));
    EXPECT_EQ(2u, CountOf(*Weak));
}

// --- Resolving -----------------------------------------------------------------------------------

TEST_F(WeakReference, ResolvesToAReferenceOfTheOwner) {
    void* out = nullptr;
    EXPECT_EQ(S_OK, Weak->Resolve(&IID_IProbe, &out));
    EXPECT_EQ(static_cast<IProbe*>(Object.Get()), out);
    EXPECT_EQ(1u, static_cast<IProbe*>(out)->Release());
}

TEST_F(WeakReference, KeepsTheReferenceGainedWhenTheLookupFails) {
    void* out = this;
    EXPECT_EQ(E_NOINTERFACE, Weak->Resolve(&IID_Unknown, &out));
    EXPECT_EQ(static_cast<void*>(this), out);
    EXPECT_EQ(1u, static_cast<ComponentHead*>(Object.Get())->Release());
}

TEST_F(WeakReference, ResolvesToNothingOnceTheOwnerIsGone) {
    Object.Reset();
    void* out = this;
    EXPECT_EQ(S_FALSE, Weak->Resolve(&IID_IProbe, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(1u, CountOf(*Weak)) << "the owner gave its reference back";
}

TEST_F(WeakReference, ResolvesToNothingWhileTheOwnerDies) {
    Events.Weak = Weak.Get();
    Object.Reset();
    EXPECT_EQ("final release count 0 gone", Events.Entries[1]);
    EXPECT_EQ("destroyed count 0 gone", Events.Entries[2]);
}

// --- Listeners -----------------------------------------------------------------------------------

TEST_F(WeakReference, TellsListenersInTheOrderOfTheirAdding) {
    for (Listener* listener : {&B, &A, &C})
        EXPECT_EQ(S_OK, Weak->AddListener(listener));
    EXPECT_EQ("", Names);
    Object.Reset();
    EXPECT_EQ("bac", Names);
    for (Listener* listener : {&A, &B, &C})
        EXPECT_EQ(Weak.Get(), listener->Told);
}

TEST_F(WeakReference, ResolvesToNothingWhileListenersAreTold) {
    Weak->AddListener(&A);
    Object.Reset();
    EXPECT_EQ(S_FALSE, A.ResultInside);
    EXPECT_EQ(nullptr, A.OutInside);
}

TEST_F(WeakReference, TellsAListenerAsOftenAsItWasAdded) {
    for (Listener* listener : {&A, &B, &A})
        Weak->AddListener(listener);
    Object.Reset();
    EXPECT_EQ("aba", Names);
}

TEST_F(WeakReference, RemovesAllEntriesOfAListenerAndKeepsTheOrder) {
    for (Listener* listener : {&A, &B, &A, &C, &A})
        Weak->AddListener(listener);
    EXPECT_EQ(S_OK, Weak->RemoveListener(&A));
    Object.Reset();
    EXPECT_EQ("bc", Names);
}

TEST_F(WeakReference, RemovesAnUnknownListenerWithoutHarm) {
    Weak->AddListener(&A);
    EXPECT_EQ(S_OK, Weak->RemoveListener(&B));
    Object.Reset();
    EXPECT_EQ("a", Names);
}

TEST_F(WeakReference, TellsAllListenersThatWereThereWhateverTheyDo) {
    A.RemoveInside = &B;
    Weak->AddListener(&A);
    Weak->AddListener(&B);
    Object.Reset();
    EXPECT_EQ("ab", Names);
}

TEST_F(WeakReference, TellsNobodyTwice) {
    Weak->AddListener(&A);
    Object.Reset();
    EXPECT_EQ(S_OK, Weak->AddListener(&B)) << "the owner is gone, nobody will tell it";
    Weak.Reset();
    EXPECT_EQ("a", Names);
}

TEST(WeakReferenceHolder, MakesNothingForAnOwnerThatWasNeverAsked) {
    Journal journal;
    const int32_t before = ComponentCount.load();
    {
        const Ref<Probe> probe = MakeComponent<Probe>(journal);
        EXPECT_EQ(before + 1, ComponentCount.load());
    }
    EXPECT_EQ(before, ComponentCount.load());
}

// --- Threads -------------------------------------------------------------------------------------

TEST(WeakReferenceThreads, GetOneObject) {
    constexpr int threadCount = 4;
    for (int round = 0; round < 200; ++round) {
        Journal journal;
        const int32_t before = ComponentCount.load();
        Ref<Probe> probe = MakeComponent<Probe>(journal);
        Ref<IWeakRef> found[threadCount];
        std::atomic<int> ready{0};
        std::vector<std::thread> threads;
        for (Ref<IWeakRef>& place : found)
            threads.emplace_back([&ready, &probe, &place] {
                ++ready;
                while (ready.load() < threadCount)
                    std::this_thread::yield();
                probe->GetWeakReference(place.Put());
            });
        for (std::thread& thread : threads)
            thread.join();
        for (const Ref<IWeakRef>& each : found)
            ASSERT_EQ(found[0].Get(), each.Get());
        ASSERT_EQ(before + 2, ComponentCount.load()) << "the losers' objects are destroyed";
        ASSERT_EQ(1u + threadCount, CountOf(*found[0]));
    }
}

TEST(WeakReferenceThreads, GainTheOwnerWholeOrNotAtAll) {
    for (int round = 0; round < 200; ++round) {
        Journal journal;
        Ref<Probe> probe = MakeComponent<Probe>(journal);
        const Ref<IWeakRef> weak = WeakOf(*probe);
        std::atomic<bool> started{false};
        std::thread thread([&] {
            started = true;
            void* out = nullptr;
            while (weak->Resolve(&IID_IProbe, &out) == S_OK) {
                ASSERT_EQ(7, static_cast<IProbe*>(out)->Number());
                static_cast<IProbe*>(out)->Release();
            }
            ASSERT_EQ(nullptr, out);
        });
        while (!started.load())
            std::this_thread::yield();
        probe.Reset();
        thread.join();
        ASSERT_EQ(3u, journal.Entries.size());
    }
}

} // namespace
} // namespace treevault
