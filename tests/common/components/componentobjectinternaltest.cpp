// SPDX-License-Identifier: MIT
// Components: life, lookup of interfaces, and the layout that callers by table depend on.
#include "common/components/componentobject.h"

#include "common/components/probe.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <stdexcept>
#include <thread>
#include <vector>

namespace treevault {
namespace {

using namespace tests;

using Entries = std::vector<std::string>;

// --- Life ----------------------------------------------------------------------------------------

TEST(ComponentObject, BeginsWithOneReference) {
    Journal journal;
    Probe* const probe = MakeComponent<Probe>(journal).Detach();
    EXPECT_EQ(2u, probe->AddRef());
    EXPECT_EQ(3u, probe->AddRef());
    EXPECT_EQ(2u, probe->Release());
    EXPECT_EQ(1u, probe->Release());
    EXPECT_EQ((Entries{"constructed count 1"}), journal.Entries);
    EXPECT_EQ(0u, probe->Release());
}

TEST(ComponentObject, HandsItsArgumentsToTheClass) {
    Journal journal;
    EXPECT_EQ(7, MakeComponent<Probe>(journal)->Number());
    EXPECT_EQ(-3, MakeComponent<Probe>(journal, -3)->Number());
}

TEST(ComponentObject, IsReleasedFinallyAtCountZeroAndThenDestroyed) {
    Journal journal;
    MakeComponent<Probe>(journal);
    EXPECT_EQ((Entries{"constructed count 1", "final release count 0", "destroyed count 0"}),
              journal.Entries);
}

TEST(ComponentObject, IsCountedAfterItsClassIsConstructed) {
    Journal journal;
    const int32_t before = ComponentCount.load();
    {
        const Ref<Probe> probe = MakeComponent<Probe>(journal);
        EXPECT_EQ(before, probe->CountBefore);
        EXPECT_EQ(before + 1, ComponentCount.load());
    }
    EXPECT_EQ(before, ComponentCount.load());
}

// Notes how many components live at each step of its life.
class CountingProbe : public ComponentHead {
public:
    struct Numbers {
        int32_t Constructor = -1, FinalRelease = -1, Destructor = -1;
    };

    explicit CountingProbe(Numbers& numbers) : Seen(numbers) {
        Seen.Constructor = ComponentCount.load();
    }
    HRESULT Lookup(const GUID* iid, void** out) noexcept { return LookupInterface(iid, out, this); }
    void FinalRelease() noexcept { Seen.FinalRelease = ComponentCount.load(); }

protected:
    ~CountingProbe() { Seen.Destructor = ComponentCount.load(); }

private:
    Numbers& Seen;
};

TEST(ComponentObject, IsNoLongerCountedWhenItsClassIsDestroyed) {
    const int32_t before = ComponentCount.load();
    CountingProbe::Numbers numbers;
    MakeComponent<CountingProbe>(numbers);
    EXPECT_EQ(before, numbers.Constructor);
    EXPECT_EQ(before + 1, numbers.FinalRelease);
    EXPECT_EQ(before, numbers.Destructor);
}

class ThrowingProbe : public ComponentHead {
public:
    ThrowingProbe() { throw std::runtime_error("no"); }
    HRESULT Lookup(const GUID* iid, void** out) noexcept { return LookupInterface(iid, out, this); }

protected:
    ~ThrowingProbe() = default;
};

TEST(ComponentObject, IsNotCountedWhenItsClassThrows) {
    const int32_t before = ComponentCount.load();
    void* out = nullptr;
    EXPECT_THROW(MakeComponent<ThrowingProbe>(), std::runtime_error);
    EXPECT_THROW(CreateComponent<ThrowingProbe>(&IID_IComponentUnknown, &out), std::runtime_error);
    EXPECT_EQ(before, ComponentCount.load());
    EXPECT_EQ(nullptr, out);
}

TEST(ComponentObject, IsCountedByManyThreads) {
    Journal journal;
    const Ref<Probe> probe = MakeComponent<Probe>(journal);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&probe] {
            for (int round = 0; round < 20000; ++round) {
                void* out = nullptr;
                probe->AddRef();
                probe->QueryInterface(&IID_IProbe, &out);
                static_cast<IProbe*>(out)->Release();
                probe->Release();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(2u, probe->AddRef());
    EXPECT_EQ(1u, probe->Release());
}

TEST(ComponentObject, RaisesNoCountOfZero) {
    Journal journal;
    Probe* const probe = MakeComponent<Probe>(journal).Detach();
    EXPECT_TRUE(probe->CountUpIfAlive());
    EXPECT_EQ(1u, probe->CountDown());
    EXPECT_EQ(0u, probe->CountDown());
    EXPECT_FALSE(probe->CountUpIfAlive());
    probe->DeletingDestructor(1);
}

// --- Lookup --------------------------------------------------------------------------------------

class ComponentLookup : public testing::Test {
protected:
    uint32_t Count() {
        Object->AddRef();
        return Object->Release();
    }

    Journal Events;
    Ref<Probe> Object = MakeComponent<Probe>(Events);
    void* Out = this;
};

TEST_F(ComponentLookup, AnswersTheBaseWithThePrimaryPointer) {
    EXPECT_EQ(S_OK, Object->QueryInterface(&IID_IComponentUnknown, &Out));
    EXPECT_EQ(static_cast<ComponentHead*>(Object.Get()), Out);
    EXPECT_EQ(2u, Count());
    Object->Release();
}

TEST_F(ComponentLookup, AnswersAnInterfaceWithItsOwnPointer) {
    EXPECT_EQ(S_OK, Object->QueryInterface(&IID_IProbe, &Out));
    EXPECT_EQ(static_cast<IProbe*>(Object.Get()), Out);
    EXPECT_EQ(7, static_cast<IProbe*>(Out)->Number());
    EXPECT_EQ(1u, static_cast<IProbe*>(Out)->Release());
    EXPECT_EQ(S_OK, Object->QueryInterface(&IID_IWeakRefSource, &Out));
    EXPECT_EQ(static_cast<IWeakRefSource*>(Object.Get()), Out);
    Object->Release();
}

TEST_F(ComponentLookup, GivesTheSamePrimaryPointerFromEveryInterface) {
    void* primary = nullptr;
    IProbe* const probe = Object.Get();
    EXPECT_EQ(S_OK, probe->QueryInterface(&IID_IComponentUnknown, &primary));
    EXPECT_EQ(static_cast<ComponentHead*>(Object.Get()), primary);
    EXPECT_NE(static_cast<void*>(probe), primary);
    Object->Release();
}

TEST_F(ComponentLookup, RefusesNullArguments) {
    EXPECT_EQ(E_INVALIDARG, Object->QueryInterface(nullptr, &Out));
    EXPECT_EQ(E_INVALIDARG, Object->QueryInterface(&IID_IProbe, nullptr));
    EXPECT_EQ(E_INVALIDARG, Object->QueryInterface(nullptr, nullptr));
    EXPECT_EQ(static_cast<void*>(this), Out);
    EXPECT_EQ(1u, Count());
}

TEST_F(ComponentLookup, RefusesAnUnknownInterface) {
    EXPECT_EQ(E_NOINTERFACE, Object->QueryInterface(&IID_Unknown, &Out));
    EXPECT_EQ(static_cast<void*>(this), Out);
    EXPECT_EQ(1u, Count());
}

TEST_F(ComponentLookup, WithoutCountingLeavesTheCount) {
    EXPECT_EQ(S_OK, Object->Lookup(&IID_IProbe, &Out));
    EXPECT_EQ(static_cast<IProbe*>(Object.Get()), Out);
    EXPECT_EQ(1u, Count());
}

// --- Creation ------------------------------------------------------------------------------------

TEST(CreateComponent, HandsTheFirstReferenceOut) {
    Journal journal;
    void* out = nullptr;
    EXPECT_EQ(S_OK, CreateComponent<Probe>(&IID_IProbe, &out, journal, 9));
    auto* const probe = static_cast<IProbe*>(out);
    EXPECT_EQ(9, probe->Number());
    EXPECT_EQ(0u, probe->Release());
}

TEST(CreateComponent, DestroysWhatLacksTheInterface) {
    const int32_t before = ComponentCount.load();
    Journal journal;
    void* out = &journal;
    EXPECT_EQ(E_NOINTERFACE, CreateComponent<Probe>(&IID_Unknown, &out, journal));
    EXPECT_EQ(&journal, out);
    EXPECT_EQ((Entries{"constructed count 1", "final release count 0", "destroyed count 0"}),
              journal.Entries);
    EXPECT_EQ(E_INVALIDARG, CreateComponent<Probe>(nullptr, &out, journal));
    EXPECT_EQ(E_INVALIDARG, CreateComponent<Probe>(&IID_IProbe, nullptr, journal));
    EXPECT_EQ(before, ComponentCount.load());
}

// --- Layout --------------------------------------------------------------------------------------

// The table that an interface pointer begins with.
void* const* TableOf(void* pointer) {
    return *static_cast<void* const* const*>(pointer);
}

template <class Function>
Function* Entry(void* pointer, size_t index) {
    return reinterpret_cast<Function*>(TableOf(pointer)[index]);
}

using CountFunction = uint32_t TREEVAULT_CALL(void*);
using QueryFunction = HRESULT TREEVAULT_CALL(void*, const GUID*, void**);
using DestroyFunction = void TREEVAULT_CALL(void*, uint32_t);
using NumberFunction = int32_t TREEVAULT_CALL(void*);

TEST(ComponentLayout, HasTheCountBehindThePrimaryTableAndThenTheFurtherTables) {
    Journal journal;
    const Ref<Probe> probe = MakeComponent<Probe>(journal);
    void* const primary = static_cast<ComponentHead*>(probe.Get());
    EXPECT_EQ(static_cast<void*>(probe.Get()), primary);
    auto* const bytes = static_cast<char*>(primary);
    uint32_t count = 0;
    std::memcpy(&count, bytes + 8, sizeof count);
    EXPECT_EQ(1u, count);
    EXPECT_EQ(static_cast<void*>(bytes + 16), static_cast<IProbe*>(probe.Get()));
    EXPECT_EQ(static_cast<void*>(bytes + 24), static_cast<IWeakRefSource*>(probe.Get()));
}

TEST(ComponentLayout, HasTheBaseOperationsFirstInThePrimaryTable) {
    Journal journal;
    const Ref<Probe> probe = MakeComponent<Probe>(journal);
    void* const primary = static_cast<ComponentHead*>(probe.Get());
    EXPECT_EQ(2u, Entry<CountFunction>(primary, 0)(primary));
    EXPECT_EQ(1u, Entry<CountFunction>(primary, 1)(primary));
    void* out = nullptr;
    EXPECT_EQ(S_OK, Entry<QueryFunction>(primary, 2)(primary, &IID_IComponentUnknown, &out));
    EXPECT_EQ(primary, out);
    probe->Release();
}

TEST(ComponentLayout, HasTheDeletingDestructorFourthInThePrimaryTable) {
    Journal journal;
    const int32_t before = ComponentCount.load();
    alignas(CComponentObject<Probe>) char place[sizeof(CComponentObject<Probe>)];
    auto* const kept = new (place) CComponentObject<Probe>(journal);
    void* primary = static_cast<ComponentHead*>(kept);
    // The memory is not the heap's: only the destructor may run.
    Entry<DestroyFunction>(primary, 3)(primary, 0);
    EXPECT_EQ((Entries{"constructed count 1", "destroyed count 1"}), journal.Entries);
    EXPECT_EQ(before, ComponentCount.load());

    primary = static_cast<ComponentHead*>(MakeComponent<Probe>(journal).Detach());
    Entry<DestroyFunction>(primary, 3)(primary, 1);
    EXPECT_EQ(4u, journal.Entries.size());
    EXPECT_EQ(before, ComponentCount.load());
}

TEST(ComponentLayout, HasTheBaseOperationsFirstInAFurtherTable) {
    Journal journal;
    const Ref<Probe> probe = MakeComponent<Probe>(journal);
    void* const further = static_cast<IProbe*>(probe.Get());
    EXPECT_EQ(2u, Entry<CountFunction>(further, 0)(further));
    EXPECT_EQ(1u, Entry<CountFunction>(further, 1)(further));
    void* out = nullptr;
    EXPECT_EQ(S_OK, Entry<QueryFunction>(further, 2)(further, &IID_IProbe, &out));
    EXPECT_EQ(further, out);
    probe->Release();
    EXPECT_EQ(7, Entry<NumberFunction>(further, 3)(further));
}

} // namespace
} // namespace treevault
