// SPDX-License-Identifier: MIT
// The module object and the interfaces of nodes, as a client sees them.
#include "support/nodes.h"

#include <gtest/gtest.h>

namespace treevault::tests {
namespace {

// The inner interface of the node class, which is answered with the primary pointer.
constexpr GUID IID_InnerNode = {
    0x7F5C2747, 0x533B, 0x4A51, {0x87, 0xC9, 0x51, 0x28, 0xAE, 0x54, 0x15, 0x80}};
constexpr GUID IID_Nobodys = {
    0x00000001, 0x0002, 0x0003, {0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B}};

IComponentsModule* Module() {
    IComponentsModule* module = nullptr;
    EXPECT_EQ(S_OK, GetComponentsModuleObject(&module));
    return module;
}

int32_t LockState() {
    int32_t locked = 77;
    EXPECT_EQ(S_OK, Module()->GetLockState(&locked));
    return locked;
}

// --- The module ----------------------------------------------------------------------------------

TEST(Module, NeedsAnOutPointer) {
    EXPECT_TRUE(FailsPlainly(E_INVALIDARG, GetComponentsModuleObject, nullptr));
    EXPECT_NE(nullptr, Module());
}

TEST(Module, IsAlwaysTheSame) {
    EXPECT_TRUE(Module() == Module());
}

TEST(Module, IsNotCounted) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(0xFFFFFFFFu, Module()->AddRef());
        EXPECT_EQ(0xFFFFFFFFu, Module()->Release());
        EXPECT_EQ(0xFFFFFFFFu, Module()->Release());
    }
    EXPECT_EQ(S_OK, Module()->Reserved());
}

TEST(Module, AnswersItsInterfaces) {
    void* out = nullptr;
    EXPECT_EQ(S_OK, Module()->QueryInterface(&IID_IComponentsModule, &out));
    EXPECT_EQ(static_cast<void*>(Module()), out);
    void* primary = nullptr;
    EXPECT_EQ(S_OK, Module()->QueryInterface(&IID_IComponentUnknown, &primary));
    auto* const base = static_cast<IComponentUnknown*>(primary);
    EXPECT_EQ(0xFFFFFFFFu, base->AddRef());
    EXPECT_EQ(S_OK, base->QueryInterface(&IID_IComponentsModule, &out));
    EXPECT_EQ(static_cast<void*>(Module()), out);
}

TEST(Module, RefusesOtherInterfacesAndNulls) {
    const PendingMarker marker;
    void* out = Untouched();
    EXPECT_EQ(E_NOINTERFACE, Module()->QueryInterface(&IID_IACNode, &out));
    EXPECT_EQ(E_INVALIDARG, Module()->QueryInterface(nullptr, &out));
    EXPECT_EQ(E_INVALIDARG, Module()->QueryInterface(&IID_IComponentsModule, nullptr));
    EXPECT_EQ(static_cast<void*>(Untouched()), out);
    EXPECT_TRUE(marker.IsStillPending());
}

TEST(Module, HasOperationsThatDoNothing) {
    const int32_t before = LiveComponents();
    EXPECT_EQ(S_OK, Module()->Reserved());
    EXPECT_EQ(S_OK, Module()->ReportAliveObjects());
    EXPECT_EQ(before, LiveComponents());
}

TEST(Module, CountsLiveNodes) {
    const int32_t before = LiveComponents();
    Node first = Create();
    const Node second = Create();
    EXPECT_EQ(before + 2, LiveComponents());
    first.Close();
    EXPECT_EQ(before + 1, LiveComponents());
}

TEST(Module, CountsNodesAndNotTheirHandles) {
    const int32_t before = LiveComponents();
    const Node node = Create();
    const Node copy = node;
    EXPECT_EQ(before + 1, LiveComponents());
}

TEST(Module, CountsLocks) {
    const int32_t before = LiveComponents();
    EXPECT_EQ(before + 1, Module()->LockModule());
    EXPECT_EQ(before + 2, Module()->LockModule());
    EXPECT_EQ(before + 1, Module()->UnlockModule());
    EXPECT_EQ(before, Module()->UnlockModule());
}

TEST(Module, TellsWhetherAnythingLives) {
    ASSERT_EQ(0, LiveComponents());
    EXPECT_EQ(0, LockState());
    {
        const Node first = Create();
        const Node second = Create();
        EXPECT_EQ(1, LockState());
    }
    EXPECT_EQ(0, LockState());
    Module()->LockModule();
    EXPECT_EQ(1, LockState());
    Module()->UnlockModule();
    EXPECT_EQ(0, LockState());
    const PendingMarker marker;
    EXPECT_EQ(E_POINTER, Module()->GetLockState(nullptr));
    EXPECT_TRUE(marker.IsStillPending());
}

// --- Creation by class ---------------------------------------------------------------------------

TEST(CreateInstance, MakesANodeWithNoType) {
    const int32_t before = LiveComponents();
    void* out = nullptr;
    ASSERT_EQ(S_OK, Module()->CreateInstance(&CLSID_ACNode, &IID_IACNode, &out));
    {
        const Node node(static_cast<IACNode*>(out));
        EXPECT_EQ(before + 1, LiveComponents());
        EXPECT_EQ(1u, References(node));
        EXPECT_EQ(Text(), Type(node));
        EXPECT_EQ(0u, ChildCount(node));
        EXPECT_TRUE(AttributeNames(node).empty());
        EXPECT_EQ(S_OK, AcnSetNodeName(node, NameShort, W("renamed")));
        EXPECT_EQ(Text(W("\\renamed")), Path(node));
    }
    EXPECT_EQ(before, LiveComponents());
}

TEST(CreateInstance, GivesTheInterfaceAskedFor) {
    void* out = nullptr;
    ASSERT_EQ(S_OK, Module()->CreateInstance(&CLSID_ACNode, &IID_IComponentUnknown, &out));
    auto* const base = static_cast<IComponentUnknown*>(out);
    void* node = nullptr;
    EXPECT_EQ(S_OK, base->QueryInterface(&IID_IACNode, &node));
    EXPECT_EQ(1u, base->Release());
    AcnCloseNodeHandle(static_cast<IACNode*>(node));
}

TEST(CreateInstance, RefusesAnUnknownClass) {
    void* out = Untouched();
    EXPECT_EQ(static_cast<HRESULT>(0x80040154),
              Module()->CreateInstance(&IID_Nobodys, &IID_IACNode, &out));
    EXPECT_EQ(static_cast<HRESULT>(0x80040154),
              Module()->CreateInstance(&IID_IACNode, &IID_IACNode, &out));
    EXPECT_EQ(static_cast<void*>(Untouched()), out);
}

TEST(CreateInstance, LeavesNothingBehindWhenTheInterfaceIsMissing) {
    const int32_t before = LiveComponents();
    void* out = Untouched();
    EXPECT_EQ(E_NOINTERFACE, Module()->CreateInstance(&CLSID_ACNode, &IID_Nobodys, &out));
    EXPECT_EQ(E_INVALIDARG, Module()->CreateInstance(&CLSID_ACNode, nullptr, &out));
    EXPECT_EQ(E_INVALIDARG, Module()->CreateInstance(&CLSID_ACNode, &IID_IACNode, nullptr));
    EXPECT_EQ(static_cast<void*>(Untouched()), out);
    EXPECT_EQ(before, LiveComponents());
}

// --- Interfaces of a node ------------------------------------------------------------------------

class NodeInterfaces : public NodeTest {
protected:
    void TearDown() override {
        Object.Close();
        NodeTest::TearDown();
    }

    Node Object = Create();
    void* Out = Untouched();
};

TEST_F(NodeInterfaces, BeginWithOneReference) {
    EXPECT_EQ(2u, Object->AddRef());
    EXPECT_EQ(1u, Object->Release());
}

TEST_F(NodeInterfaces, AreFoundByTheirGuids) {
    EXPECT_EQ(S_OK, Object->QueryInterface(&IID_IACNode, &Out));
    EXPECT_EQ(static_cast<void*>(Object.Get()), Out);
    EXPECT_EQ(2u, References(Object));
    Object->Release();
}

TEST_F(NodeInterfaces, HaveOnePrimaryPointer) {
    void* fromBase = nullptr;
    void* inner = nullptr;
    EXPECT_EQ(S_OK, Object->QueryInterface(&IID_IComponentUnknown, &Out));
    auto* const base = static_cast<IComponentUnknown*>(Out);
    EXPECT_EQ(S_OK, base->QueryInterface(&IID_IComponentUnknown, &fromBase));
    EXPECT_EQ(Out, fromBase);
    EXPECT_EQ(S_OK, Object->QueryInterface(&IID_InnerNode, &inner));
    EXPECT_EQ(Out, inner);
    void* node = nullptr;
    EXPECT_EQ(S_OK, base->QueryInterface(&IID_IACNode, &node));
    EXPECT_EQ(static_cast<void*>(Object.Get()), node);
    EXPECT_EQ(5u, References(Object));
    for (int i = 0; i < 4; ++i)
        base->Release();
}

TEST_F(NodeInterfaces, AreRefusedPlainlyWhenUnknownOrNull) {
    const PendingMarker marker;
    EXPECT_EQ(E_NOINTERFACE, Object->QueryInterface(&IID_Nobodys, &Out));
    EXPECT_EQ(E_NOINTERFACE, Object->QueryInterface(&IID_IComponentsModule, &Out));
    EXPECT_EQ(E_INVALIDARG, Object->QueryInterface(nullptr, &Out));
    EXPECT_EQ(E_INVALIDARG, Object->QueryInterface(&IID_IACNode, nullptr));
    EXPECT_EQ(E_INVALIDARG, Object->QueryInterface(nullptr, nullptr));
    EXPECT_EQ(static_cast<void*>(Untouched()), Out);
    EXPECT_EQ(1u, References(Object));
    EXPECT_TRUE(marker.IsStillPending());
}

} // namespace
} // namespace treevault::tests
