// SPDX-License-Identifier: MIT
// What of the factory no exported function reaches: names of instances, its own interfaces, the
// telling of deaths, and its end.
#include "general/treevault/storage/storagefactory.h"
#include "support/logcapture.h"
#include "support/storage.h"

#include <memory>

namespace treevault::tests {
namespace {

class FactoryInside : public NodeTest {
protected:
    using StorageHandle = Handle<INodeStorage>;

    StorageHandle Make(const WCHAR* name) {
        StorageHandle storage;
        EXPECT_EQ(S_OK, Subject->CreateStorage(TREEVAULT_MEMORY_STORAGE, nullptr, name, 0,
                                               storage.Put()));
        return storage;
    }

    static Handle<IWeakRef> WeakOf(INodeStorage* storage) {
        Handle<IWeakRef> weak;
        EXPECT_EQ(S_OK,
                  Query<IWeakRefSource>(storage, IID_IWeakRefSource)->GetWeakReference(weak.Put()));
        return weak;
    }

    HRESULT Open(const WCHAR* name) {
        StorageHandle storage;
        return Subject->OpenStorageInstance(name, storage.Put());
    }

    std::unique_ptr<CStorageFactory> Subject = std::make_unique<CStorageFactory>();
};

// --- Names of instances --------------------------------------------------------------------------

TEST_F(FactoryInside, NameOfAnInstance) {
    const StorageHandle storage = Make(W("name"));
    WCHAR buffer[6] = {W('?'), W('?'), W('?'), W('?'), W('?'), W('?')};
    uint64_t needed = 777;
    EXPECT_EQ(S_OK, Subject->GetStorageInstanceName(storage, nullptr, 0, &needed));
    EXPECT_EQ(5u, needed);
    needed = 777;
    EXPECT_EQ(TREEVAULT_E_INSUFFICIENT_BUFFER,
              Subject->GetStorageInstanceName(storage, buffer, 4, &needed));
    EXPECT_EQ(5u, needed);
    EXPECT_EQ(W('?'), buffer[0]);
    needed = 777;
    EXPECT_EQ(S_OK, Subject->GetStorageInstanceName(storage, buffer, 5, &needed));
    EXPECT_EQ(5u, needed);
    EXPECT_EQ(Text(W("name")), Text(buffer));
    EXPECT_EQ(W('?'), buffer[5]);
}

TEST_F(FactoryInside, EveryInterfaceOfTheStorageGivesItsName) {
    const StorageHandle storage = Make(W("name"));
    const auto config = Query<IStorageConfig>(storage, IID_IStorageConfig);
    uint64_t needed = 0;
    EXPECT_EQ(S_OK, Subject->GetStorageInstanceName(config, nullptr, 0, &needed));
    EXPECT_EQ(5u, needed);
}

TEST_F(FactoryInside, UnknownInstances) {
    const StorageHandle unnamed = Make(nullptr);
    const Storage elsewhere;
    const Node node = Create();
    uint64_t needed = 777;
    EXPECT_EQ(TREEVAULT_E_NOT_FOUND, Subject->GetStorageInstanceName(unnamed, nullptr, 0, &needed));
    EXPECT_EQ(TREEVAULT_E_NOT_FOUND,
              Subject->GetStorageInstanceName(elsewhere, nullptr, 0, &needed));
    EXPECT_EQ(E_NOINTERFACE, Subject->GetStorageInstanceName(node.Get(), nullptr, 0, &needed));
    ClearRecord();
    EXPECT_EQ(E_POINTER, Subject->GetStorageInstanceName(nullptr, nullptr, 0, &needed));
    Text record;
    EXPECT_TRUE(TakeRecord(record));
    EXPECT_EQ(777u, needed);
}

// --- The object ----------------------------------------------------------------------------------

TEST_F(FactoryInside, IsOneObjectThatDoesNotCount) {
    CStorageFactory& factory = GetStorageFactory();
    EXPECT_EQ(&factory, &GetStorageFactory());
    EXPECT_EQ(0xFFFFFFFFu, factory.AddRef());
    EXPECT_EQ(0xFFFFFFFFu, factory.Release());
    void* out = nullptr;
    EXPECT_EQ(S_OK, factory.QueryInterface(&IID_IStorageFactory, &out));
    EXPECT_EQ(static_cast<void*>(static_cast<IStorageFactory*>(&factory)), out);
    EXPECT_EQ(S_OK, factory.QueryInterface(&IID_IComponentUnknown, &out));
    EXPECT_EQ(static_cast<void*>(static_cast<ComponentHead*>(&factory)), out);
    EXPECT_EQ(E_NOINTERFACE, factory.QueryInterface(&IID_INodeStorage, &out));
    EXPECT_EQ(E_INVALIDARG, factory.QueryInterface(nullptr, &out));
}

TEST_F(FactoryInside, ReservedOperations) {
    EXPECT_EQ(E_NOTIMPL, Subject->Reserved1());
    EXPECT_EQ(E_NOTIMPL, Subject->Reserved2());
}

TEST_F(FactoryInside, ExportsUseTheOneOfTheProcess) {
    StorageHandle storage;
    ASSERT_EQ(S_OK,
              StgCreateStorage(TREEVAULT_MEMORY_STORAGE, nullptr, W("name"), 0, storage.Put()));
    uint64_t needed = 0;
    EXPECT_EQ(S_OK, GetStorageFactory().GetStorageInstanceName(storage, nullptr, 0, &needed));
    EXPECT_EQ(5u, needed);
    EXPECT_EQ(TREEVAULT_E_NOT_FOUND, Open(W("name")));
}

// --- Deaths --------------------------------------------------------------------------------------

TEST_F(FactoryInside, ToldOfADeathItForgetsTheName) {
    const StorageHandle storage = Make(W("name"));
    const Handle<IWeakRef> weak = WeakOf(storage);
    Subject->OnDestroy(weak);
    EXPECT_EQ(TREEVAULT_E_NOT_FOUND, Open(W("name")));
    uint64_t needed = 0;
    EXPECT_EQ(TREEVAULT_E_NOT_FOUND, Subject->GetStorageInstanceName(storage, nullptr, 0, &needed));
    // The name is free, and the death of its former bearer does not concern its new one.
    const StorageHandle heir = Make(W("name"));
    Subject->OnDestroy(weak);
    EXPECT_EQ(S_OK, Open(W("name")));
}

TEST_F(FactoryInside, DeathOfAnUnknownStorageIsNoFailure) {
    const StorageHandle storage = Make(W("name"));
    const Storage other;
    const SeverityInForce severity(SeverityErr);
    const LogCapture log;
    Subject->OnDestroy(WeakOf(other));
    EXPECT_EQ(S_OK, Open(W("name")));
    EXPECT_TRUE(log.Lines().empty());
}

TEST_F(FactoryInside, DeathOfNothingIsLogged) {
    const SeverityInForce severity(SeverityErr);
    const LogCapture log;
    Subject->OnDestroy(nullptr);
    ASSERT_EQ(1u, log.Lines().size());
    EXPECT_EQ("ERR ", log.Entry(0).Severity.substr(1, 4));
    EXPECT_EQ(0u, log.Entry(0).Message.find("CStorageFactory::OnDestroy failed: 0x80004003 "))
        << log.Entry(0).Message;
    ClearRecord();
}

TEST_F(FactoryInside, EndsBeforeItsStorages) {
    StorageHandle storage = Make(W("name"));
    const Handle<IWeakRef> weak = WeakOf(storage);
    EXPECT_EQ(4u, weak->AddRef()); // the storage, the factory and this test hold the others
    weak->Release();
    Subject.reset();
    EXPECT_EQ(S_OK, StoreNodes(storage, nullptr, StoreMergeAll, Trees("a")));
    storage.Close();
    void* out = nullptr;
    EXPECT_EQ(S_FALSE, weak->Resolve(&IID_INodeStorage, &out));
}

// --- Aliases -------------------------------------------------------------------------------------

// Read through a volatile place, so that the compiler does not decide the comparison by itself.
template <class Function>
void* Address(Function* function) {
    Function* volatile place = function;
    return reinterpret_cast<void*>(place);
}

TEST(StorageAliases, AreOneFunction) {
    EXPECT_EQ(Address(AcnCloseNodeHandle), Address(StgCloseStorageHandle));
    EXPECT_EQ(Address(AcnDuplicateNodeHandle), Address(StgDuplicateStorageHandle));
    EXPECT_EQ(Address(StgCloseOperationsGroup), Address(StgCloseRetrivalContext));
    EXPECT_NE(Address(StgCloseOperationsGroup), Address(StgCloseStorageHandle));
}

} // namespace
} // namespace treevault::tests
