// SPDX-License-Identifier: MIT
// The module object: its class table and its count. What clients see of it is tested with the
// exports.
#include "common/components/componentsmodule.h"

#include "common/components/probe.h"
#include "common/errorhandling.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>

namespace treevault {
namespace {

using namespace tests;

constexpr GUID CLSID_Probe = {
    0xB0000001, 0x0002, 0x0003, {0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B}};

Journal events;

HRESULT CreateProbe(const GUID* iid, void** out) {
    return CreateComponent<Probe>(iid, out, events, 1);
}

HRESULT CreateOtherProbe(const GUID* iid, void** out) {
    return CreateComponent<Probe>(iid, out, events, 2);
}

// The number of a new object of the class; -1 when there is none.
int32_t NumberOfNew() {
    void* out = nullptr;
    if (GetComponentsModule().CreateInstance(&CLSID_Probe, &IID_IProbe, &out) != S_OK)
        return -1;
    auto* const probe = static_cast<IProbe*>(out);
    const int32_t number = probe->Number();
    EXPECT_EQ(0u, probe->Release());
    return number;
}

TEST(ClassTable, CreatesByClass) {
    EXPECT_EQ(-1, NumberOfNew());
    {
        const ClassRegistration registration(CLSID_Probe, CreateProbe);
        EXPECT_EQ(1, NumberOfNew());
    }
    EXPECT_EQ(-1, NumberOfNew());
}

TEST(ClassTable, LeavesTheFirstRegistrationInPlace) {
    const ClassRegistration registration(CLSID_Probe, CreateProbe);
    GetComponentsModule().AddClass(CLSID_Probe, CreateOtherProbe);
    EXPECT_EQ(1, NumberOfNew());
}

TEST(ClassTable, TakesTheNextRegistrationAfterARemoval) {
    GetComponentsModule().AddClass(CLSID_Probe, CreateProbe);
    GetComponentsModule().RemoveClass(CLSID_Probe);
    GetComponentsModule().AddClass(CLSID_Probe, CreateOtherProbe);
    EXPECT_EQ(2, NumberOfNew());
    GetComponentsModule().RemoveClass(CLSID_Probe);
}

TEST(ClassTable, RefusesAnUnknownClass) {
    void* out = &events;
    EXPECT_EQ(static_cast<HRESULT>(0x80040154),
              GetComponentsModule().CreateInstance(&CLSID_Probe, &IID_IProbe, &out));
    EXPECT_EQ(&events, out);
}

TEST(ClassTable, ReturnsWhatTheFunctionReturns) {
    const ClassRegistration registration(CLSID_Probe, CreateProbe);
    const int32_t before = ComponentCount.load();
    void* out = &events;
    CComponentsModule& module = GetComponentsModule();
    EXPECT_EQ(E_NOINTERFACE, module.CreateInstance(&CLSID_Probe, &IID_Unknown, &out));
    EXPECT_EQ(E_INVALIDARG, module.CreateInstance(&CLSID_Probe, nullptr, &out));
    EXPECT_EQ(E_INVALIDARG, module.CreateInstance(&CLSID_Probe, &IID_IProbe, nullptr));
    EXPECT_EQ(&events, out);
    EXPECT_EQ(before, ComponentCount.load());
}

TEST(ClassTable, LetsAFunctionComeBackToTheModule) {
    const ClassRegistration registration(CLSID_Probe, [](const GUID* iid, void** out) {
        // The registration itself may go while its function runs: a copy is called.
        GetComponentsModule().RemoveClass(CLSID_Probe);
        EXPECT_EQ(-1, NumberOfNew());
        return CreateProbe(iid, out);
    });
    EXPECT_EQ(1, NumberOfNew());
}

TEST(ClassTable, CallsACopyOfTheFunction) {
    const auto state = std::make_shared<int>(5);
    int seen = 0;
    GetComponentsModule().AddClass(CLSID_Probe, [state, &seen](const GUID*, void**) {
        GetComponentsModule().RemoveClass(CLSID_Probe);
        seen = *state;
        return E_ABORT;
    });
    void* out = nullptr;
    EXPECT_EQ(E_ABORT, GetComponentsModule().CreateInstance(&CLSID_Probe, &IID_IProbe, &out));
    EXPECT_EQ(5, seen);
    EXPECT_EQ(1, state.use_count());
}

TEST(ClassTable, TurnsAFailureOfAFunctionIntoItsCode) {
    const ClassRegistration registration(CLSID_Probe,
                                         [](const GUID*, void**) -> HRESULT { ThrowHr(E_ABORT); });
    void* out = nullptr;
    EXPECT_EQ(E_ABORT, GetComponentsModule().CreateInstance(&CLSID_Probe, &IID_IProbe, &out));
    SetErrorInfo(0, nullptr);
}

TEST(ClassTable, LetsTheLackOfMemoryThrough) {
    const ClassRegistration registration(
        CLSID_Probe, [](const GUID*, void**) -> HRESULT { throw std::bad_alloc(); });
    void* out = nullptr;
    EXPECT_THROW(GetComponentsModule().CreateInstance(&CLSID_Probe, &IID_IProbe, &out),
                 std::bad_alloc);
}

TEST(ComponentsModule, CountsLiveComponentsAndLocks) {
    CComponentsModule& module = GetComponentsModule();
    const int32_t before = ComponentCount.load();
    EXPECT_EQ(before + 1, module.LockModule());
    {
        const Ref<Probe> probe = MakeComponent<Probe>(events);
        EXPECT_EQ(before + 3, module.LockModule());
        EXPECT_EQ(before + 2, module.UnlockModule());
    }
    EXPECT_EQ(before, module.UnlockModule());
}

TEST(ComponentsModule, TellsWhetherAnythingLives) {
    CComponentsModule& module = GetComponentsModule();
    ASSERT_EQ(0, ComponentCount.load());
    int32_t locked = 77;
    EXPECT_EQ(S_OK, module.GetLockState(&locked));
    EXPECT_EQ(0, locked);
    {
        const Ref<Probe> probe = MakeComponent<Probe>(events);
        EXPECT_EQ(S_OK, module.GetLockState(&locked));
        EXPECT_EQ(1, locked);
        const Ref<Probe> second = MakeComponent<Probe>(events);
        EXPECT_EQ(S_OK, module.GetLockState(&locked));
        EXPECT_EQ(1, locked);
    }
    // Not 0, whatever its sign.
    module.UnlockModule();
    EXPECT_EQ(S_OK, module.GetLockState(&locked));
    EXPECT_EQ(1, locked);
    module.LockModule();
    EXPECT_EQ(E_POINTER, module.GetLockState(nullptr));
}

TEST(ComponentsModule, IsOne) {
    EXPECT_EQ(&GetComponentsModule(), &GetComponentsModule());
}

} // namespace
} // namespace treevault
