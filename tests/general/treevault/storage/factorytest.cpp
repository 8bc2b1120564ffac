// SPDX-License-Identifier: MIT
// Creating storages, opening them by name, and the life of names and handles.
#include "support/storage.h"

#include <atomic>
#include <thread>

namespace treevault::tests {
namespace {

using StorageHandle = Handle<INodeStorage>;

class Factory : public NodeTest {
protected:
    static StorageHandle Named(const WCHAR* name, int32_t openIfExists = 0,
                               IACNode* config = nullptr) {
        StorageHandle storage;
        EXPECT_TRUE(Succeeds(StgCreateStorage, TREEVAULT_MEMORY_STORAGE, config, name, openIfExists,
                             storage.Put()));
        return storage;
    }

    static StorageHandle Open(const WCHAR* name) {
        StorageHandle storage;
        EXPECT_TRUE(Succeeds(StgOpenStorageInstance, name, storage.Put()));
        return storage;
    }

    static void ExpectNoStorage(const WCHAR* name) {
        INodeStorage* out = Nowhere();
        EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_NOT_FOUND, StgOpenStorageInstance, name, &out));
        EXPECT_EQ(Nowhere(), out);
    }

    static INodeStorage* Nowhere() { return reinterpret_cast<INodeStorage*>(Untouched()); }

    static HRESULT StoreOne(INodeStorage* storage, const char* tree) {
        return StoreNodes(storage, nullptr, StoreMergeAll, Trees(tree));
    }
};

// --- Creation ------------------------------------------------------------------------------------

TEST_F(Factory, TypeIsComparedExactly) {
    for (const WCHAR* type : {W("Memory_storage"), W("MEMORY_STORAGE"), W("memory_storage "),
                              W("memory_storag"), W(""), W("file_storage")}) {
        INodeStorage* out = Nowhere();
        EXPECT_TRUE(
            FailsWithRecord(E_NOTIMPL, StgCreateStorage, type, nullptr, W("name"), 1, &out));
        EXPECT_EQ(Nowhere(), out);
    }
    ExpectNoStorage(W("name"));
}

TEST_F(Factory, ArgumentsMustNotBeNull) {
    INodeStorage* out = Nowhere();
    EXPECT_TRUE(FailsWithRecord(E_POINTER, StgCreateStorage, nullptr, nullptr, nullptr, 0, &out));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, StgCreateStorage, TREEVAULT_MEMORY_STORAGE, nullptr,
                                nullptr, 0, nullptr));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, StgOpenStorageInstance, nullptr, &out));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, StgOpenStorageInstance, W("name"), nullptr));
    EXPECT_EQ(Nowhere(), out);
}

TEST_F(Factory, NewStorageIsEmptyAndUsable) {
    const StorageHandle storage = Named(nullptr);
    EXPECT_EQ("", Forest(storage));
    EXPECT_EQ(S_OK, StoreOne(storage, "/a/b"));
    EXPECT_EQ("a(b)", Forest(storage));
}

TEST_F(Factory, ModuleCreatesAnUnnamedStorage) {
    IComponentsModule* module = nullptr;
    ASSERT_EQ(S_OK, GetComponentsModuleObject(&module));
    StorageHandle storage;
    EXPECT_EQ(S_OK, module->CreateInstance(&CLSID_MemoryStorage, &IID_INodeStorage,
                                           reinterpret_cast<void**>(storage.Put())));
    EXPECT_EQ(S_OK, StoreOne(storage, "/a/b"));
    EXPECT_EQ("a(b)", Forest(storage));
    void* out = nullptr;
    EXPECT_EQ(E_NOINTERFACE, module->CreateInstance(&CLSID_MemoryStorage, &IID_IACNode, &out));
}

// --- Names ---------------------------------------------------------------------------------------

TEST_F(Factory, NameInUse) {
    const StorageHandle first = Named(W("name"));
    EXPECT_EQ(S_OK, StoreOne(first, "a"));
    INodeStorage* out = Nowhere();
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_STG_NAME_IN_USE, StgCreateStorage,
                                TREEVAULT_MEMORY_STORAGE, nullptr, W("name"), 0, &out));
    EXPECT_EQ(Nowhere(), out);
    EXPECT_EQ("a", Forest(first));
    EXPECT_EQ(first.Get(), Open(W("name")).Get());
}

TEST_F(Factory, ExistingStorageIsOpenedAsItStands) {
    const StorageHandle first = Named(W("name"), 1);
    for (const int32_t open : {1, 2, -1})
        EXPECT_EQ(first.Get(), Named(W("name"), open).Get());
    // Neither the type nor the configuration matters then.
    StorageHandle again;
    EXPECT_TRUE(Succeeds(StgCreateStorage, W("unknown"), Configuration(false, true), W("name"), 1,
                         again.Put()));
    EXPECT_EQ(first.Get(), again.Get());
    EXPECT_EQ(S_OK, StoreOne(again, "/a/b"));
    EXPECT_EQ("a(b)", Forest(first));
}

TEST_F(Factory, NameInUseIsFoundBeforeTheTypeIsLookedAt) {
    const StorageHandle first = Named(W("name"));
    INodeStorage* out = nullptr;
    EXPECT_EQ(TREEVAULT_E_STG_NAME_IN_USE,
              StgCreateStorage(W("unknown"), nullptr, W("name"), 0, &out));
}

TEST_F(Factory, NamesAreCaseSensitive) {
    const StorageHandle lower = Named(W("name")), upper = Named(W("NAME"));
    EXPECT_NE(lower.Get(), upper.Get());
    EXPECT_EQ(lower.Get(), Open(W("name")).Get());
    EXPECT_EQ(upper.Get(), Open(W("NAME")).Get());
    ExpectNoStorage(W("Name"));
    ExpectNoStorage(W("nam"));
}

TEST_F(Factory, NullAndEmptyNamesAreNone) {
    const StorageHandle one = Named(nullptr), two = Named(nullptr, 1), three = Named(W("")),
                        four = Named(W(""), 1);
    EXPECT_NE(one.Get(), two.Get());
    EXPECT_NE(three.Get(), four.Get());
    ExpectNoStorage(W(""));
}

TEST_F(Factory, LastHandleFreesTheName) {
    StorageHandle first = Named(W("name"));
    StorageHandle second = Open(W("name"));
    first.Close();
    first = Open(W("name"));
    EXPECT_EQ(second.Get(), first.Get());
    first.Close();
    second.Close();
    ExpectNoStorage(W("name"));
    const StorageHandle anew = Named(W("name"));
    EXPECT_EQ("", Forest(anew));
    EXPECT_EQ(anew.Get(), Open(W("name")).Get());
}

TEST_F(Factory, FailedConfigurationRegistersNoName) {
    const Node config = Create();
    ASSERT_EQ(S_OK, Set(config, W("MaintainAtomicity"), TextValue(W("perhaps"))));
    const int32_t before = LiveComponents();
    INodeStorage* out = Nowhere();
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_CANNOT_CONVERT, StgCreateStorage,
                                TREEVAULT_MEMORY_STORAGE, config, W("name"), 0, &out));
    EXPECT_EQ(Nowhere(), out);
    EXPECT_EQ(before, LiveComponents());
    ExpectNoStorage(W("name"));
    Named(W("name"));
}

// --- Handles -------------------------------------------------------------------------------------

TEST_F(Factory, DuplicateIsTheSamePointer) {
    const StorageHandle storage = Named(nullptr);
    INodeStorage* copy = nullptr;
    EXPECT_TRUE(Succeeds(StgDuplicateStorageHandle, storage, &copy));
    EXPECT_EQ(storage.Get(), copy);
    EXPECT_EQ(3u, copy->AddRef());
    EXPECT_EQ(2u, copy->Release());
    StgCloseStorageHandle(copy);
    EXPECT_EQ(2u, storage->AddRef());
    EXPECT_EQ(1u, storage->Release());
}

TEST_F(Factory, DuplicatingNeedsBoth) {
    const StorageHandle storage = Named(nullptr);
    INodeStorage* copy = Nowhere();
    EXPECT_TRUE(FailsPlainly(E_POINTER, StgDuplicateStorageHandle, nullptr, &copy));
    EXPECT_TRUE(FailsPlainly(E_POINTER, StgDuplicateStorageHandle, storage, nullptr));
    EXPECT_EQ(Nowhere(), copy);
}

TEST_F(Factory, ClosingNullDoesNothing) {
    StgCloseStorageHandle(nullptr);
}

// --- Interfaces ----------------------------------------------------------------------------------

TEST_F(Factory, InterfacesOfAStorage) {
    const StorageHandle storage = Named(nullptr);
    for (const GUID& iid : {IID_IComponentUnknown, IID_INodeStorage, IID_IModifySinkRegistry,
                            IID_IStorageConfig, IID_IWeakRefSource}) {
        const auto found = Query<IComponentUnknown>(storage, iid);
        const auto back = Query<INodeStorage>(found, IID_INodeStorage);
        EXPECT_EQ(storage.Get(), back.Get());
    }
    void* out = nullptr;
    EXPECT_EQ(E_NOINTERFACE, storage->QueryInterface(&IID_IModifySink, &out));
    EXPECT_EQ(E_NOINTERFACE, storage->QueryInterface(&IID_IACNode, &out));
    EXPECT_EQ(E_INVALIDARG, storage->QueryInterface(nullptr, &out));
    EXPECT_EQ(E_INVALIDARG, storage->QueryInterface(&IID_INodeStorage, nullptr));
    EXPECT_EQ(nullptr, out);
}

TEST_F(Factory, WeakReference) {
    StorageHandle storage = Named(W("name"));
    Handle<IWeakRef> weak, again;
    const auto source = Query<IWeakRefSource>(storage, IID_IWeakRefSource);
    EXPECT_EQ(S_OK, source->GetWeakReference(weak.Put()));
    EXPECT_EQ(S_OK, source->GetWeakReference(again.Put()));
    EXPECT_EQ(weak.Get(), again.Get());
    ClearRecord();
    EXPECT_EQ(E_POINTER, source->GetWeakReference(nullptr));
    Text record;
    EXPECT_TRUE(TakeRecord(record));
    StorageHandle resolved;
    EXPECT_EQ(S_OK, weak->Resolve(&IID_INodeStorage, reinterpret_cast<void**>(resolved.Put())));
    EXPECT_EQ(storage.Get(), resolved.Get());
}

// Tells what is left of a storage when it dies.
class Mourner final : public IWeakRefListener {
public:
    uint32_t TREEVAULT_CALL AddRef() override { return 1; }
    uint32_t TREEVAULT_CALL Release() override { return 1; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID*, void**) override { return E_NOINTERFACE; }
    void TREEVAULT_CALL OnDestroy(IWeakRef*) override { AtDeath(); }
    std::function<void()> AtDeath;
};

TEST_F(Factory, DyingStorageHasLostItsContentAndCannotBeOpened) {
    StorageHandle storage = Named(W("name"));
    ASSERT_EQ(S_OK, StoreOne(storage, "a(b)"));
    Handle<IWeakRef> weak;
    Sink sink;
    {
        const auto registry = Query<IModifySinkRegistry>(storage, IID_IModifySinkRegistry);
        ASSERT_EQ(S_OK, registry->RegisterSink(&sink, &sink.Id));
        const auto source = Query<IWeakRefSource>(storage, IID_IWeakRefSource);
        ASSERT_EQ(S_OK, source->GetWeakReference(weak.Put()));
    }
    Mourner mourner;
    bool told = false;
    const int32_t before = LiveComponents();
    mourner.AtDeath = [&] {
        told = true;
        EXPECT_EQ(1u, sink.References);
        EXPECT_GE(before - 3, LiveComponents()); // less two nodes and the pool of sinks
        void* out = &told;
        EXPECT_EQ(S_FALSE, weak->Resolve(&IID_INodeStorage, &out));
        EXPECT_EQ(nullptr, out);
    };
    ASSERT_EQ(S_OK, weak->AddListener(&mourner));
    storage.Close();
    EXPECT_TRUE(told);
    ExpectNoStorage(W("name"));
}

// The sinks go first, while the name is still known.
TEST_F(Factory, NameOfADyingStorageIsStillInUse) {
    StorageHandle storage = Named(W("name"));
    struct Last final : IModifySink {
        std::function<void()> AtEnd;
        uint32_t References = 1;
        uint32_t TREEVAULT_CALL AddRef() override { return ++References; }
        uint32_t TREEVAULT_CALL Release() override {
            AtEnd();
            return --References;
        }
        HRESULT TREEVAULT_CALL QueryInterface(const GUID*, void**) override {
            return E_NOINTERFACE;
        }
        HRESULT TREEVAULT_CALL OnStart() override { return S_OK; }
        HRESULT TREEVAULT_CALL OnModified(const ModifyNotification*) override { return S_OK; }
        HRESULT TREEVAULT_CALL OnPreCommit() override { return S_OK; }
        void TREEVAULT_CALL OnFinish(int32_t) override {}
    } last;
    bool told = false;
    last.AtEnd = [&] {
        told = true;
        ExpectNoStorage(W("name"));
        INodeStorage* out = Nowhere();
        EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_STG_NAME_IN_USE, StgCreateStorage,
                                    TREEVAULT_MEMORY_STORAGE, nullptr, W("name"), 0, &out));
        EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_NOT_FOUND, StgCreateStorage,
                                    TREEVAULT_MEMORY_STORAGE, nullptr, W("name"), 1, &out));
        EXPECT_EQ(Nowhere(), out);
    };
    GUID id = {};
    ASSERT_EQ(
        S_OK,
        Query<IModifySinkRegistry>(storage, IID_IModifySinkRegistry)->RegisterSink(&last, &id));
    storage.Close();
    EXPECT_TRUE(told);
    ExpectNoStorage(W("name"));
}

// --- Threads -------------------------------------------------------------------------------------

TEST_F(Factory, ThreadsCreateOpenAndCloseOneName) {
    std::atomic<int> failures{0};
    const auto work = [&] {
        for (int round = 0; round < 300; ++round) {
            INodeStorage* storage = nullptr;
            const HRESULT hr = round % 3 == 0
                                   ? StgOpenStorageInstance(W("shared"), &storage)
                                   : StgCreateStorage(TREEVAULT_MEMORY_STORAGE, nullptr,
                                                      W("shared"), round % 3 == 1, &storage);
            const bool expected = hr == S_OK || hr == TREEVAULT_E_NOT_FOUND ||
                                  (hr == TREEVAULT_E_STG_NAME_IN_USE && round % 3 == 2);
            failures += !expected || (hr == S_OK) != (storage != nullptr);
            StgCloseStorageHandle(storage);
        }
        ClearRecord();
    };
    std::thread threads[4];
    for (std::thread& thread : threads)
        thread = std::thread(work);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(0, failures);
    ExpectNoStorage(W("shared"));
}

} // namespace
} // namespace treevault::tests
