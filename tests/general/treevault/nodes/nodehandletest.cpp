// SPDX-License-Identifier: MIT
// Handles, interfaces of a node, and the thin functions: one check, then the operation.
#include "support/foreignnode.h"
#include "support/nodes.h"

namespace treevault::tests {
namespace {

constexpr GUID InnerAccess = {
    0x7F5C2747, 0x533B, 0x4A51, {0x87, 0xC9, 0x51, 0x28, 0xAE, 0x54, 0x15, 0x80}};

class Handles : public NodeTest {};

TEST_F(Handles, ClosingNullDoesNothing) {
    const PendingMarker marker;
    AcnCloseNodeHandle(nullptr);
    EXPECT_TRUE(marker.IsStillPending());
}

TEST_F(Handles, DuplicateIsTheSamePointerWithOneMoreReference) {
    Node node = Create(W("n"));
    IACNode* copy = nullptr;
    EXPECT_TRUE(Succeeds(AcnDuplicateNodeHandle, node, &copy));
    EXPECT_EQ(node.Get(), copy);
    EXPECT_EQ(2u, References(node));
    node.Close();
    EXPECT_EQ(1, Made());
    EXPECT_EQ(W("n"), Name(copy));
    AcnCloseNodeHandle(copy);
    EXPECT_EQ(0, Made());
}

TEST_F(Handles, DuplicateRefusesNullPlainly) {
    const Node node = Create(W("n"));
    IACNode* copy = Untouched();
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnDuplicateNodeHandle, nullptr, &copy));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnDuplicateNodeHandle, node, nullptr));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnDuplicateNodeHandle, nullptr, nullptr));
    EXPECT_EQ(Untouched(), copy);
    EXPECT_EQ(1u, References(node));
}

TEST_F(Handles, CountsAreThoseOfTheReferences) {
    const Node node = Create(W("n"));
    EXPECT_EQ(2u, node->AddRef());
    EXPECT_EQ(3u, node->AddRef());
    EXPECT_EQ(2u, node->Release());
    EXPECT_EQ(1u, node->Release());
}

TEST_F(Handles, InterfacesOfANode) {
    const Node node = Create(W("n"));
    void* same = nullptr;
    void* base = nullptr;
    void* inner = nullptr;
    EXPECT_EQ(S_OK, node->QueryInterface(&IID_IACNode, &same));
    EXPECT_EQ(S_OK, node->QueryInterface(&IID_IComponentUnknown, &base));
    EXPECT_EQ(S_OK, node->QueryInterface(&InnerAccess, &inner));
    EXPECT_EQ(node.Get(), same);
    EXPECT_EQ(base, inner);
    EXPECT_EQ(4u, References(node));
    void* again = nullptr;
    EXPECT_EQ(S_OK, static_cast<IComponentUnknown*>(base)->QueryInterface(&IID_IACNode, &again));
    EXPECT_EQ(node.Get(), again);
    for (int i = 0; i < 4; ++i)
        node->Release();
    EXPECT_EQ(1u, References(node));
}

TEST_F(Handles, LookupOfInterfacesFailsPlainly) {
    const Node node = Create(W("n"));
    const PendingMarker marker;
    void* out = Untouched();
    EXPECT_EQ(E_NOINTERFACE, node->QueryInterface(&IID_IWeakRef, &out));
    EXPECT_EQ(E_INVALIDARG, node->QueryInterface(nullptr, &out));
    EXPECT_EQ(E_INVALIDARG, node->QueryInterface(&IID_IACNode, nullptr));
    EXPECT_EQ(static_cast<void*>(Untouched()), out);
    EXPECT_EQ(1u, References(node));
    EXPECT_TRUE(marker.IsStillPending());
}

TEST_F(Handles, ClosingAndDuplicatingServeEveryHandle) {
    INodeSerializer* context = nullptr;
    const auto write = [](const char*, uint64_t, void*) -> HRESULT { return S_OK; };
    ASSERT_EQ(S_OK, AcnStartSerialization(TREEVAULT_FORMAT_XML, 0, write, nullptr, &context));
    EXPECT_EQ(1, Made());
    IACNode* copy = nullptr;
    EXPECT_TRUE(Succeeds(AcnDuplicateNodeHandle, reinterpret_cast<IACNode*>(context), &copy));
    EXPECT_EQ(static_cast<void*>(context), copy);
    AcnCloseNodeHandle(copy);
    EXPECT_EQ(1, Made());
    AcnCloseNodeHandle(reinterpret_cast<IACNode*>(context));
    EXPECT_EQ(0, Made());
    IACNode* node = Create(W("n")).Detach();
    AcnCloseSerializationContext(reinterpret_cast<INodeSerializer*>(node));
    EXPECT_EQ(0, Made());
    node = Create(W("n")).Detach();
    AcnCloseDeserializationContext(reinterpret_cast<INodeDeserializer*>(node));
    EXPECT_EQ(0, Made());
}

// --- Null handles --------------------------------------------------------------------------------

TEST_F(Handles, NullHandleIsRefusedPlainlyByEveryTextFunction) {
    WCHAR buffer[4] = {W('#')};
    size_t size = 4;
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetNodeName, nullptr, NameShort, buffer, &size));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetNodeName, nullptr, 99, nullptr, nullptr));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnSetNodeName, nullptr, NameShort, W("a")));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetNodeType, nullptr, buffer, &size));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetNodeType, nullptr, nullptr, nullptr));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnSetNodeType, nullptr, nullptr));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetAttributeNames, nullptr, buffer, &size));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetModifiedAttributeNames, nullptr, buffer, &size));
    EXPECT_EQ(4u, size);
    EXPECT_EQ(W('#'), buffer[0]);
}

TEST_F(Handles, NullHandleIsRefusedPlainlyByEveryAttributeFunction) {
    size_t size = 4;
    ValueType stored = 77;
    uint32_t state = 77;
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnSetAttribute, nullptr, nullptr, 8, nullptr, 1));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnDeleteAttribute, nullptr, nullptr));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetAttribute, nullptr, W("a"), nullptr, nullptr, &size,
                             &stored));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnSetModifiedState, nullptr, nullptr, 0));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetModifiedState, nullptr, nullptr, &state));
    EXPECT_EQ(4u, size);
    EXPECT_EQ(77u, stored);
    EXPECT_EQ(77u, state);
}

TEST_F(Handles, NullHandleIsRefusedPlainlyByEveryTreeFunction) {
    const Node node = Create(W("n"));
    IACNode* out = Untouched();
    size_t count = 77;
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnCloneNode, nullptr, 0, 0, &out));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnAddChild, nullptr, node));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnRemoveChild, nullptr, node));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnRemoveChildByIndex, nullptr, 0));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetChildCount, nullptr, &count));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetChildByIndex, nullptr, 0, &out));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetChildByName, nullptr, W("a"), &out));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnGetParent, nullptr, &out));
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnFinalizeSerialization, nullptr));
    EXPECT_EQ(Untouched(), out);
    EXPECT_EQ(77u, count);
}

// --- Forwarding ----------------------------------------------------------------------------------

// What the functions forward to a foreign node, and what comes back.
class Forwarding : public testing::Test {
protected:
    template <class... Parameters>
    void Expect(const std::string& call, HRESULT(TREEVAULT_CALL* function)(Parameters...),
                std::type_identity_t<Parameters>... arguments) {
        EXPECT_TRUE(Returns<Parameters...>(ForeignResult, function, arguments...)) << call;
        EXPECT_EQ(call, Foreign.LastCall);
    }

    // The call of an operation whose arguments are the places of this fixture.
    template <class... Arguments>
    static std::string Call(const char* operation, Arguments... arguments) {
        return ForeignNode::Call(operation, arguments...);
    }

    ForeignNode Foreign;
    const WCHAR* const Name = W("name");
    WCHAR Buffer[4] = {};
    size_t Size = 4;
    ValueType Wanted = VtBool, Stored = VtBool;
    uint32_t State = 5;
    IACNode* Out = Untouched();
};

TEST_F(Forwarding, NamesAndTypes) {
    Expect(Call("GetName", 9u, Buffer, &Size), AcnGetNodeName, &Foreign, 9, Buffer, &Size);
    Expect(Call("SetName", 9u, Name), AcnSetNodeName, &Foreign, 9, Name);
    Expect(Call("GetType", Buffer, &Size), AcnGetNodeType, &Foreign, Buffer, &Size);
    Expect(Call("SetType", Name), AcnSetNodeType, &Foreign, Name);
}

TEST_F(Forwarding, Attributes) {
    const size_t size = 0x123456789;
    Expect(Call("SetAttribute", Name, ValueType(9), Buffer, size), AcnSetAttribute, &Foreign, Name,
           9, Buffer, size);
    Expect(Call("DeleteAttribute", Name), AcnDeleteAttribute, &Foreign, Name);
    Expect(Call("GetAttribute", Name, &Wanted, Buffer, &Size, &Stored), AcnGetAttribute, &Foreign,
           Name, &Wanted, Buffer, &Size, &Stored);
    Expect(Call("GetAttributeNames", Buffer, &Size), AcnGetAttributeNames, &Foreign, Buffer, &Size);
    Expect(Call("SetModifiedState", Name, 7u), AcnSetModifiedState, &Foreign, Name, 7);
    Expect(Call("GetModifiedState", Name, &State), AcnGetModifiedState, &Foreign, Name, &State);
    Expect(Call("GetModifiedAttributeNames", Buffer, &Size), AcnGetModifiedAttributeNames, &Foreign,
           Buffer, &Size);
}

TEST_F(Forwarding, Tree) {
    const uint64_t index = 0x123456789ABCDEF0;
    Expect(Call("AddChild", &Foreign), AcnAddChild, &Foreign, &Foreign);
    Expect(Call("RemoveChild", &Foreign), AcnRemoveChild, &Foreign, &Foreign);
    Expect(Call("RemoveChildByIndex", index), AcnRemoveChildByIndex, &Foreign, index);
    Expect(Call("GetChildCount", &Size), AcnGetChildCount, &Foreign, &Size);
    Expect(Call("GetChildByIndex", index, &Out), AcnGetChildByIndex, &Foreign, index, &Out);
    Expect(Call("GetChildByName", Name, &Out), AcnGetChildByName, &Foreign, Name, &Out);
    Expect(Call("GetParent", &Out), AcnGetParent, &Foreign, &Out);
    Expect(Call("Clone", index, 6u, &Out), AcnCloneNode, &Foreign, index, 6, &Out);
    EXPECT_EQ(Untouched(), Out);
}

TEST_F(Forwarding, NullsBehindTheHandleAreTheNodesBusiness) {
    Expect(Call("GetName", 0u, nullptr, nullptr), AcnGetNodeName, &Foreign, 0, nullptr, nullptr);
    Expect(Call("AddChild", nullptr), AcnAddChild, &Foreign, nullptr);
    Expect(Call("GetParent", nullptr), AcnGetParent, &Foreign, nullptr);
    Expect(Call("Clone", uint64_t(0), 0u, nullptr), AcnCloneNode, &Foreign, 0, 0, nullptr);
}

TEST_F(Forwarding, HandlesAreCountedByTheirNode) {
    IACNode* copy = nullptr;
    EXPECT_TRUE(Succeeds(AcnDuplicateNodeHandle, &Foreign, &copy));
    EXPECT_EQ(&Foreign, copy);
    EXPECT_EQ(2u, Foreign.References);
    AcnCloseNodeHandle(copy);
    EXPECT_EQ(1u, Foreign.References);
}

} // namespace
} // namespace treevault::tests
