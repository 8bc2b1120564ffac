// SPDX-License-Identifier: MIT
// The storage through the flat functions alone. A filter node is made once and given another path
// each time, as a statement of a database is prepared once.
#include "vaultstore.h"

#include "measure.h"
#include "vaulttree.h"

namespace treevault::benchmarks {

// It belongs to the store, whatever its references.
class VaultStore::Sink final : public IModifySink {
public:
    explicit Sink(INodeStorage* storage) {
        Require(
            storage->QueryInterface(&IID_IModifySinkRegistry, reinterpret_cast<void**>(&Registry)));
        Require(Registry->RegisterSink(this, &Id));
    }
    ~Sink() {
        Require(Registry->UnregisterSink(&Id));
        Registry->Release();
    }
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;

    uint32_t TREEVAULT_CALL AddRef() override { return 2; }
    uint32_t TREEVAULT_CALL Release() override { return 1; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID*, void**) override { return E_NOINTERFACE; }
    HRESULT TREEVAULT_CALL OnStart() override { return S_OK; }
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification* notification) override {
        if (notification->Mask & (ModifyNodeChanged | ModifyNodeDeleted))
            ++Told;
        return S_OK;
    }
    HRESULT TREEVAULT_CALL OnPreCommit() override {
        SinceEnd = Stopwatch();
        return Refuses ? E_FAIL : S_OK;
    }
    void TREEVAULT_CALL OnFinish(int32_t) override {}

    uint64_t Told = 0;
    bool Refuses = false;
    Stopwatch SinceEnd; // of the changes of the last group

private:
    IModifySinkRegistry* Registry = nullptr;
    GUID Id{};
};

namespace {

void SetPath(IACNode* filter, const Text& path) {
    Require(AcnSetAttribute(filter, TREEVAULT_WIDE("NodePath"), VtStringW, path.c_str(),
                            (path.size() + 1) * sizeof(WCHAR)));
}

IACNode* MakeFilter() {
    IACNode* filter = nullptr;
    Require(AcnCreateNode(nullptr, TREEVAULT_FILTER_BY_PATH, &filter));
    return filter;
}

void Store(INodeStorage* storage, IOperationsGroup* group, const StoredNode& place,
           const StoredNode& values) {
    IACNode* node = nullptr;
    Require(AcnCreateNode(place.Path.c_str(), place.Data->Type->c_str(), &node));
    SetAttributes(node, *values.Data);
    Require(StgStoreData(storage, group, StoreMergeAll, &node, 1));
    AcnCloseNodeHandle(node);
}

} // namespace

VaultStore::VaultStore(const Workload& workload) : Filter(MakeFilter()) {
    Require(StgCreateStorage(TREEVAULT_MEMORY_STORAGE, nullptr, nullptr, 0, &Storage));
    VaultTree tree(workload);
    Require(StgStoreData(Storage, nullptr, StoreMergeAll, &tree.Root, 1));
}

VaultStore::~VaultStore() {
    Sinks.clear();
    AcnCloseNodeHandle(Filter);
    StgCloseStorageHandle(Storage);
}

void VaultStore::Observe(size_t sinks) {
    Sinks.clear();
    for (size_t at = 0; at < sinks; ++at)
        Sinks.push_back(std::make_unique<Sink>(Storage));
}

void VaultStore::Upsert(const StoredNode& place, const StoredNode& values) {
    Store(Storage, nullptr, place, values);
}

void VaultStore::Delete(const StoredNode& place) {
    SetPath(Filter, place.Path);
    Require(StgDeleteData(Storage, nullptr, Filter));
}

void VaultStore::Begin() {
    Require(StgCreateOperationsGroup(Storage, &Group));
}

void VaultStore::Add(const StoredNode& place, const StoredNode& values) {
    Store(Storage, Group, place, values);
}

void VaultStore::Commit() {
    Require(StgFinalizeOperationsGroup(Storage, Group));
    StgCloseOperationsGroup(Storage, Group);
}

// A sink refuses the group when everything is done. Without sinks the group has a last operation
// that fails: the place above the roots cannot be deleted.
void VaultStore::Rollback() {
    if (Sinks.empty()) {
        SetPath(Filter, TREEVAULT_WIDE("\\"));
        Require(StgDeleteData(Storage, Group, Filter));
    } else {
        Sinks.front()->Refuses = true;
    }
    const HRESULT wanted = Sinks.empty() ? TREEVAULT_E_STG_BAD_PATH : E_FAIL;
    const HRESULT hr = StgFinalizeOperationsGroup(Storage, Group);
    if (hr != wanted)
        Require(hr == S_OK ? E_UNEXPECTED : hr);
    if (!Sinks.empty())
        Sinks.front()->Refuses = false;
    StgCloseOperationsGroup(Storage, Group);
}

double VaultStore::TimedRollback() {
    Sink& sink = *Sinks.front();
    sink.Refuses = true;
    const HRESULT hr = StgFinalizeOperationsGroup(Storage, Group);
    const double seconds = sink.SinceEnd.Seconds();
    sink.Refuses = false;
    Require(hr == E_FAIL ? S_OK : E_UNEXPECTED);
    StgCloseOperationsGroup(Storage, Group);
    return seconds;
}

int32_t VaultStore::NumberAt(const StoredNode& place) {
    return Reader(*this).NumberAt(place);
}

uint64_t VaultStore::Told() const {
    uint64_t told = 0;
    for (const auto& sink : Sinks)
        told += sink->Told;
    return told;
}

VaultStore::Reader::Reader(VaultStore& store) : Storage(store.Storage), Filter(MakeFilter()) {}

IACNode* VaultStore::Reader::Get(const StoredNode& place) {
    SetPath(Filter, place.Path);
    IACNode* node = nullptr;
    uint64_t count = 0;
    Require(StgRetrieveData(Storage, Filter, nullptr, &node, 1, &count));
    Require(count == 1 ? S_OK : E_UNEXPECTED);
    return node;
}

void VaultStore::Reader::Retrieve(const StoredNode& place) {
    AcnCloseNodeHandle(Get(place));
}

int32_t VaultStore::Reader::NumberAt(const StoredNode& place) {
    IACNode* const node = Get(place);
    int32_t number = 0;
    size_t size = sizeof number;
    Require(AcnGetAttribute(node, NumberName, nullptr, &number, &size, nullptr));
    AcnCloseNodeHandle(node);
    return number;
}

} // namespace treevault::benchmarks
