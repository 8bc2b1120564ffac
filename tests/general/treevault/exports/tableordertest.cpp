// SPDX-License-Identifier: MIT
// The order of operations: every operation is called by its place in the table, as a caller does
// that was built with another compiler or by hand.
#include "support/errorrecords.h"
#include "support/nodes.h"
#include "support/xml.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace treevault::tests {
namespace {

// Calls operation `index` of the object.
template <class Result = HRESULT, class... Arguments>
Result Call(void* object, size_t index, Arguments... arguments) {
    using Function = Result TREEVAULT_CALL(void*, Arguments...);
    void* const* const table = *static_cast<void* const* const*>(object);
    return reinterpret_cast<Function*>(table[index])(object, arguments...);
}

void ExpectBaseOperations(void* object, const GUID* own) {
    void* out = nullptr;
    const auto count = Call<uint32_t>(object, 0);
    EXPECT_EQ(count - 1, Call<uint32_t>(object, 1));
    EXPECT_EQ(S_OK, Call(object, 2, own, &out));
    EXPECT_EQ(object, out);
    EXPECT_EQ(count - 1, Call<uint32_t>(object, 1));
}

class NodeTable : public testing::Test {
protected:
    void* Table() { return Object.Get(); }

    Text Name(NodeNameKind kind) {
        WCHAR buffer[100];
        size_t size = 100;
        EXPECT_EQ(S_OK, Call(Table(), 3, kind, static_cast<WCHAR*>(buffer), &size));
        return buffer;
    }

    size_t Children() {
        size_t count = 777;
        EXPECT_EQ(S_OK, Call(Table(), 17, &count));
        return count;
    }

    Node Object = Create(W("\\top\\name"), W("type"));
    WCHAR Buffer[100] = {};
    size_t Size = 100;
};

TEST_F(NodeTable, BeginsWithTheBase) {
    ExpectBaseOperations(Table(), &IID_IACNode);
}

TEST_F(NodeTable, GoesOnWithNameAndType) {
    EXPECT_EQ(Text(W("name")), Name(0));
    EXPECT_EQ(Text(W("\\top")), Name(1));
    EXPECT_EQ(Text(W("\\top\\name")), Name(2));
    EXPECT_EQ(S_OK, Call(Table(), 4, NodeNameKind{0}, W("other")));
    EXPECT_EQ(Text(W("\\top\\other")), Name(2));
    EXPECT_EQ(S_OK, Call(Table(), 5, static_cast<WCHAR*>(Buffer), &Size));
    EXPECT_EQ(Text(W("type")), Text(Buffer));
    EXPECT_EQ(S_OK, Call(Table(), 6, W("another")));
    Size = 100;
    EXPECT_EQ(S_OK, Call(Table(), 5, static_cast<WCHAR*>(Buffer), &Size));
    EXPECT_EQ(Text(W("another")), Text(Buffer));
}

TEST_F(NodeTable, GoesOnWithAttributesAndTheirState) {
    const int32_t number = 5;
    EXPECT_EQ(S_OK, Call(Table(), 7, W("a"), ValueType{VtInt32}, static_cast<const void*>(&number),
                         sizeof number));
    int32_t read = 0;
    Size = sizeof read;
    ValueType stored = 0;
    const ValueType* const wanted = nullptr;
    EXPECT_EQ(S_OK, Call(Table(), 9, W("a"), wanted, static_cast<void*>(&read), &Size, &stored));
    EXPECT_EQ(5, read);
    EXPECT_EQ(VtInt32, stored);
    Size = 100;
    EXPECT_EQ(S_OK, Call(Table(), 10, static_cast<WCHAR*>(Buffer), &Size));
    EXPECT_EQ(2u, Size);
    uint32_t state = 77;
    EXPECT_EQ(S_OK, Call(Table(), 12, W("a"), &state));
    EXPECT_EQ(1u, state);
    Size = 100;
    EXPECT_EQ(S_OK, Call(Table(), 13, static_cast<WCHAR*>(Buffer), &Size));
    EXPECT_EQ(2u, Size);
    EXPECT_EQ(S_OK, Call(Table(), 11, W("a"), uint32_t{0}));
    EXPECT_EQ(S_OK, Call(Table(), 12, W("a"), &state));
    EXPECT_EQ(0u, state);
    Size = 100;
    EXPECT_EQ(S_OK, Call(Table(), 13, static_cast<WCHAR*>(Buffer), &Size));
    EXPECT_EQ(0u, Size);
    EXPECT_EQ(S_OK, Call(Table(), 8, W("a")));
    EXPECT_EQ(TREEVAULT_E_NOT_FOUND, Call(Table(), 8, W("a")));
}

TEST_F(NodeTable, GoesOnWithChildrenParentAndClone) {
    const Node first = Create(W("first"));
    const Node second = Create(W("second"));
    EXPECT_EQ(S_OK, Call(Table(), 14, first.Get()));
    EXPECT_EQ(S_OK, Call(Table(), 14, second.Get()));
    EXPECT_EQ(2u, Children());
    Node found;
    EXPECT_EQ(S_OK, Call(Table(), 18, uint64_t{1}, found.Put()));
    EXPECT_EQ(second.Get(), found.Get());
    EXPECT_EQ(S_OK, Call(Table(), 19, W("first"), found.Put()));
    EXPECT_EQ(first.Get(), found.Get());
    EXPECT_EQ(S_OK, Call(static_cast<void*>(first.Get()), 20, found.Put()));
    EXPECT_EQ(Object.Get(), found.Get());
    EXPECT_EQ(S_OK, Call(Table(), 21, uint64_t{0}, uint32_t{0}, found.Put()));
    EXPECT_NE(Object.Get(), found.Get());
    EXPECT_EQ(Text(W("\\top\\name")), Path(found));
    EXPECT_EQ(S_OK, Call(Table(), 15, first.Get()));
    EXPECT_EQ(1u, Children());
    EXPECT_EQ(S_OK, Call(Table(), 16, uint64_t{0}));
    EXPECT_EQ(0u, Children());
}

TEST(ModuleTable, HasItsOrder) {
    IComponentsModule* module = nullptr;
    ASSERT_EQ(S_OK, GetComponentsModuleObject(&module));
    void* const object = module;
    EXPECT_EQ(0xFFFFFFFFu, Call<uint32_t>(object, 0));
    EXPECT_EQ(0xFFFFFFFFu, Call<uint32_t>(object, 1));
    void* out = nullptr;
    EXPECT_EQ(S_OK, Call(object, 2, &IID_IComponentsModule, &out));
    EXPECT_EQ(object, out);
    EXPECT_EQ(S_OK, Call(object, 3));
    EXPECT_EQ(S_OK, Call(object, 4));
    const int32_t before = LiveComponents();
    EXPECT_EQ(before + 1, Call<int32_t>(object, 5));
    EXPECT_EQ(before, Call<int32_t>(object, 6));
    int32_t locked = 77;
    EXPECT_EQ(S_OK, Call(object, 7, &locked));
    EXPECT_EQ(before != 0, locked != 0);
    EXPECT_EQ(S_OK, Call(object, 8, &CLSID_ACNode, &IID_IACNode, &out));
    AcnCloseNodeHandle(static_cast<IACNode*>(out));
}

TEST(SerializerTable, HasItsOrder) {
    const Node node = Create(W("a"));
    Writer writer;
    void* const object = writer.Get();
    ExpectBaseOperations(object, &IID_INodeSerializer);
    IACNode* nodes[] = {node.Get()};
    EXPECT_EQ(S_OK, Call(object, 3, static_cast<IACNode**>(nodes), uint64_t{1}, uint64_t{0}));
    EXPECT_EQ(S_OK, Call(object, 4));
    EXPECT_EQ("<nr><n n=\"a\"/></nr>", writer.Text);
}

TEST(DeserializerTable, HasItsOrder) {
    const Reader reader("<nr><n n='a'/></nr>");
    void* const object = reader.Get();
    ExpectBaseOperations(object, &IID_INodeDeserializer);
    Node node;
    uint64_t retrieved = 0;
    EXPECT_EQ(S_OK, Call(object, 3, node.Put(), uint64_t{1}, &retrieved));
    EXPECT_EQ(1u, retrieved);
    EXPECT_EQ(Text(W("a")), Name(node));
}

// --- The platform's records ----------------------------------------------------------------------

TEST(RecordTables, HaveThePlatformsOrder) {
    ICreateErrorInfo* created = nullptr;
    ASSERT_EQ(S_OK, CreateErrorInfo(&created));
    void* const maker = created;
    void* reader = nullptr;
    EXPECT_EQ(S_OK, Call(maker, 0, &IID_IErrorInfo, &reader));
    EXPECT_EQ(3u, Call<ULONG>(maker, 1));
    EXPECT_EQ(2u, Call<ULONG>(maker, 2));

    Text source = W("source");
    Text description = W("description");
    Text helpFile = W("help");
    EXPECT_EQ(S_OK, Call(maker, 3, &ForeignMarker));
    EXPECT_EQ(S_OK, Call(maker, 4, source.data()));
    EXPECT_EQ(S_OK, Call(maker, 5, description.data()));
    EXPECT_EQ(S_OK, Call(maker, 6, helpFile.data()));
    EXPECT_EQ(S_OK, Call(maker, 7, DWORD{9}));

    GUID guid = {};
    EXPECT_EQ(S_OK, Call(reader, 3, &guid));
    EXPECT_TRUE(IsSameGuid(ForeignMarker, guid));
    const Text* const wanted[] = {&source, &description, &helpFile};
    for (size_t i = 0; i < 3; ++i) {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, Call(reader, 4 + i, &text));
        EXPECT_EQ(*wanted[i], Text(text, SysStringLen(text)));
        SysFreeString(text);
    }
    DWORD helpContext = 0;
    EXPECT_EQ(S_OK, Call(reader, 7, &helpContext));
    EXPECT_EQ(9u, helpContext);
    EXPECT_EQ(1u, Call<ULONG>(reader, 2));
    EXPECT_EQ(0u, Call<ULONG>(maker, 2));
}

// --- Aliases -------------------------------------------------------------------------------------

TEST(AliasedExports, ReleaseAnything) {
    const int32_t before = LiveComponents();
    INodeSerializer* context = nullptr;
    ASSERT_EQ(S_OK,
              AcnStartSerialization(
                  TREEVAULT_FORMAT_XML, 0,
                  [](const char*, uint64_t, void*) -> HRESULT { return S_OK; }, nullptr, &context));
    EXPECT_EQ(before + 1, LiveComponents());
    AcnCloseNodeHandle(reinterpret_cast<IACNode*>(context));
    EXPECT_EQ(before, LiveComponents());
    AcnCloseSerializationContext(reinterpret_cast<INodeSerializer*>(Create().Detach()));
    AcnCloseDeserializationContext(reinterpret_cast<INodeDeserializer*>(Create().Detach()));
    EXPECT_EQ(before, LiveComponents());
}

} // namespace
} // namespace treevault::tests
