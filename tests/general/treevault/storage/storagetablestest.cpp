// SPDX-License-Identifier: MIT
// What is frozen of storages: identifiers, modes, masks, the layout of a notification, signatures,
// and the order of operations, each of which is called by its place in its table.
#include "support/storage.h"

#include <cstddef>
#include <type_traits>

namespace treevault::tests {
namespace {

// --- Constants -----------------------------------------------------------------------------------

constexpr bool Is(const GUID& guid, uint32_t a, uint16_t b, uint16_t c, uint64_t d) {
    uint64_t last = 0;
    for (const uint8_t byte : guid.Data4)
        last = last << 8 | byte;
    return guid.Data1 == a && guid.Data2 == b && guid.Data3 == c && last == d;
}

static_assert(Is(IID_INodeStorage, 0x8EF91B5E, 0x1B76, 0x4811, 0x8A4FDFA0328AD473));
static_assert(Is(IID_IModifySinkRegistry, 0x35FB6A0B, 0xC2D7, 0x4410, 0xB5995D84F57E0D37));
static_assert(Is(IID_IStorageConfig, 0x9FD0681A, 0xA35D, 0x48EF, 0xA226DE3846E19D38));
static_assert(Is(IID_IModifySink, 0xDB181091, 0x87D3, 0x40CE, 0xAB527B2E0E59C84E));
static_assert(Is(CLSID_MemoryStorage, 0xA8F22B0C, 0x0132, 0x4F5C, 0x8BDE96BDDD90BEEB));

static_assert(sizeof(StoreMode) == 4 && std::is_signed_v<StoreMode>);
static_assert(StoreMergeAll == 0 && StoreMergeModified == 1 && StoreReplaceAttributes == 2 &&
              StoreReplaceAll == 3);
static_assert(sizeof(ModifyMask) == 4 && std::is_unsigned_v<ModifyMask>);
static_assert(ModifyNodeDeleted == 1 && ModifyNodeCreated == 2 && ModifyNodeChanged == 4 &&
              ModifyChildAdded == 8 && ModifyChildDeleted == 16);
static_assert(offsetof(ModifyNotification, Mask) == 0 && offsetof(ModifyNotification, Path) == 8 &&
              offsetof(ModifyNotification, OldNode) == 16 &&
              offsetof(ModifyNotification, NewNode) == 24 &&
              offsetof(ModifyNotification, ChangedAttributes) == 32 &&
              sizeof(ModifyNotification) == 40);
static_assert(static_cast<uint32_t>(TREEVAULT_E_STG_NAME_IN_USE) == 0x80040301 &&
              static_cast<uint32_t>(TREEVAULT_E_STG_PARENT_MISSING) == 0x80040303 &&
              static_cast<uint32_t>(TREEVAULT_E_STG_BAD_PATH) == 0x80040304 &&
              static_cast<uint32_t>(TREEVAULT_E_STG_BAD_FILTER) == 0x80040305);

TEST(StorageConstants, Texts) {
    EXPECT_EQ(Text(W("memory_storage")), Text(TREEVAULT_MEMORY_STORAGE));
    EXPECT_EQ(Text(W("FilterByPath")), Text(TREEVAULT_FILTER_BY_PATH));
}

// --- Signatures ----------------------------------------------------------------------------------

template <class Wanted, class Function>
constexpr bool HasType(Function*) {
    return std::is_same_v<Wanted, Function>;
}

static_assert(HasType<HRESULT TREEVAULT_CALL(const WCHAR*, IACNode*, const WCHAR*, int32_t,
                                             INodeStorage**)>(&StgCreateStorage));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(const WCHAR*, INodeStorage**)>(&StgOpenStorageInstance));
static_assert(HasType<void TREEVAULT_CALL(INodeStorage*)>(&StgCloseStorageHandle));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(INodeStorage*, INodeStorage**)>(&StgDuplicateStorageHandle));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(INodeStorage*, IOperationsGroup**)>(&StgCreateOperationsGroup));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(INodeStorage*, IOperationsGroup*)>(&StgFinalizeOperationsGroup));
static_assert(
    HasType<void TREEVAULT_CALL(INodeStorage*, IOperationsGroup*)>(&StgCloseOperationsGroup));
static_assert(
    HasType<void TREEVAULT_CALL(INodeStorage*, IRetrievalContext*)>(&StgCloseRetrivalContext));
static_assert(HasType<HRESULT TREEVAULT_CALL(INodeStorage*, IOperationsGroup*, int32_t, IACNode**,
                                             uint64_t)>(&StgStoreData));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(INodeStorage*, IOperationsGroup*, IACNode*)>(&StgDeleteData));
static_assert(HasType<HRESULT TREEVAULT_CALL(INodeStorage*, IACNode*, IRetrievalContext**,
                                             IACNode**, uint64_t, uint64_t*)>(&StgRetrieveData));
static_assert(HasType<HRESULT TREEVAULT_CALL(INodeStorage*, IRetrievalContext*, IACNode**, uint64_t,
                                             uint64_t*)>(&StgRetrieveNextData));

// --- Tables --------------------------------------------------------------------------------------

// Calls operation `index` of the object.
template <class Result = HRESULT, class... Arguments>
Result Call(void* object, size_t index, Arguments... arguments) {
    using Function = Result TREEVAULT_CALL(void*, Arguments...);
    void* const* const table = *static_cast<void* const* const*>(object);
    return reinterpret_cast<Function*>(table[index])(object, arguments...);
}

class StorageTables : public NodeTest {
protected:
    void* Ask(const GUID& iid) {
        void* out = nullptr;
        EXPECT_EQ(S_OK, Call(static_cast<void*>(Subject.operator INodeStorage*()), 2, &iid, &out));
        EXPECT_EQ(2u, Call<uint32_t>(out, 0) - 1);
        EXPECT_EQ(2u, Call<uint32_t>(out, 1));
        return out;
    }
    void Release(void* object) { EXPECT_EQ(1u, Call<uint32_t>(object, 1)); }

    Storage Subject;
};

TEST_F(StorageTables, OfTheStorage) {
    void* const storage = Ask(IID_INodeStorage);
    const Node node = Tree("n(a b)"), filter = Filter("/n", Select::Children), root = Filter("/n");
    IACNode* nodes[2] = {node, nullptr};
    IOperationsGroup* group = nullptr;
    EXPECT_EQ(S_OK, Call(storage, 3, &group));
    EXPECT_EQ(S_OK,
              Call(storage, 5, group, StoreMode{0}, static_cast<IACNode**>(nodes), uint64_t{1}));
    EXPECT_EQ(S_OK, Call(storage, 4, group));
    group->Release();
    EXPECT_EQ("n(a b)", Forest(Subject));
    IRetrievalContext* context = nullptr;
    uint64_t count = 0;
    EXPECT_EQ(S_OK, Call(storage, 7, filter.Get(), &context, static_cast<IACNode**>(nodes),
                         uint64_t{1}, &count));
    EXPECT_EQ("a", Show(Node(nodes[0])));
    EXPECT_EQ(S_OK, Call(storage, 8, context, static_cast<IACNode**>(nodes), uint64_t{2}, &count));
    EXPECT_EQ("b", Show(Node(nodes[0])));
    context->Release();
    EXPECT_EQ(S_OK, Call(storage, 6, static_cast<IOperationsGroup*>(nullptr), root.Get()));
    EXPECT_EQ("", Forest(Subject));
    Release(storage);
}

TEST_F(StorageTables, OfTheRegistryAndTheConfiguration) {
    void* const registry = Ask(IID_IModifySinkRegistry);
    Sink sink;
    GUID id = {};
    EXPECT_EQ(S_OK, Call(registry, 3, static_cast<IModifySink*>(&sink), &id));
    EXPECT_EQ(2u, sink.References);
    EXPECT_EQ(S_OK, Call(registry, 4, static_cast<const GUID*>(&id)));
    EXPECT_EQ(1u, sink.References);
    Release(registry);
    void* const config = Ask(IID_IStorageConfig);
    EXPECT_EQ(S_OK, Call(config, 3, Configuration(false, true).Get()));
    EXPECT_EQ(TREEVAULT_E_STG_PARENT_MISSING, Subject.Store(StoreMergeAll, "/a/b"));
    Release(config);
    void* const weak = Ask(IID_IWeakRefSource);
    Handle<IWeakRef> out;
    EXPECT_EQ(S_OK, Call(weak, 3, out.Put()));
    EXPECT_NE(nullptr, out.Get());
    Release(weak);
}

// --- A sink of another making --------------------------------------------------------------------

// What a client without C++ gives: a table of functions.
struct PlainSink {
    void* const* Table;
    Calls Told;
    uint32_t References = 1;
};

uint32_t TREEVAULT_CALL PlainAddRef(PlainSink* self) {
    return ++self->References;
}
uint32_t TREEVAULT_CALL PlainRelease(PlainSink* self) {
    return --self->References;
}
HRESULT TREEVAULT_CALL PlainQuery(PlainSink*, const GUID*, void**) {
    return E_NOINTERFACE;
}
HRESULT TREEVAULT_CALL PlainStart(PlainSink* self) {
    self->Told.push_back("start");
    return S_OK;
}
HRESULT TREEVAULT_CALL PlainModified(PlainSink* self, const ModifyNotification* notification) {
    self->Told.push_back(Describe(*notification));
    return S_OK;
}
HRESULT TREEVAULT_CALL PlainPreCommit(PlainSink* self) {
    self->Told.push_back("precommit");
    return S_OK;
}
void TREEVAULT_CALL PlainFinish(PlainSink* self, int32_t result) {
    self->Told.push_back("finish(" + std::to_string(result) + ")");
}

TEST_F(StorageTables, OfASink) {
    void* const table[] = {
        reinterpret_cast<void*>(&PlainAddRef),   reinterpret_cast<void*>(&PlainRelease),
        reinterpret_cast<void*>(&PlainQuery),    reinterpret_cast<void*>(&PlainStart),
        reinterpret_cast<void*>(&PlainModified), reinterpret_cast<void*>(&PlainPreCommit),
        reinterpret_cast<void*>(&PlainFinish)};
    PlainSink sink{table, {}};
    const auto registry = Query<IModifySinkRegistry>(Subject, IID_IModifySinkRegistry);
    GUID id = {};
    EXPECT_EQ(S_OK, registry->RegisterSink(reinterpret_cast<IModifySink*>(&sink), &id));
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "a{x=1} a{x=2}"));
    EXPECT_EQ(Framed({"created /a", "changed /a [x]"}), sink.Told);
    EXPECT_EQ(S_OK, registry->UnregisterSink(&id));
    EXPECT_EQ(1u, sink.References);
}

} // namespace
} // namespace treevault::tests
