/* SPDX-License-Identifier: MIT
 *
 * Plain C: a sink prints every change of a storage, and refuses to let a node go. */
#include <treevault/treevault.h>

#include <stdio.h>
#include <stdlib.h>

/* The address of the sink is that of the watcher. */
struct Watcher {
    IModifySink Sink;
    uint32_t References;
};

static void Check(HRESULT result, const char* what) {
    if (FAILED(result)) {
        fprintf(stderr, "%s failed: 0x%08X\n", what, (unsigned)result);
        exit(1);
    }
}

static size_t Length(const WCHAR* text) {
    size_t length = 0;
    while (text[length] != 0)
        ++length;
    return length;
}

static HRESULT Print(const char* before, const WCHAR* wide) {
    char text[256];
    uint64_t size = sizeof(text);
    const uint64_t wideSize = (Length(wide) + 1) * sizeof(WCHAR);
    const HRESULT result = AcnConvertData(VtStringW, wide, wideSize, VtStringA, text, &size);
    if (SUCCEEDED(result))
        printf("%s%s", before, text);
    return result;
}

/* --- The operations of the sink -------------------------------------------------------------- */

static uint32_t TREEVAULT_CALL AddRef(IModifySink* self) {
    return ++((struct Watcher*)self)->References;
}

static uint32_t TREEVAULT_CALL Release(IModifySink* self) {
    return --((struct Watcher*)self)->References;
}

static HRESULT TREEVAULT_CALL QueryInterface(IModifySink* self, const GUID* iid, void** out) {
    (void)self;
    (void)iid;
    (void)out;
    return E_NOINTERFACE;
}

static HRESULT TREEVAULT_CALL OnStart(IModifySink* self) {
    (void)self;
    printf("start\n");
    return S_OK;
}

static const char* Verb(ModifyMask mask) {
    switch (mask) {
    case ModifyNodeDeleted:
        return "  deleted ";
    case ModifyNodeCreated:
        return "  created ";
    case ModifyNodeChanged:
        return "  changed ";
    default:
        return "  children of ";
    }
}

static HRESULT TREEVAULT_CALL OnModified(IModifySink* self,
                                         const ModifyNotification* notification) {
    const WCHAR* name = notification->ChangedAttributes;
    HRESULT result = Print(Verb(notification->Mask), notification->Path);
    (void)self;
    while (SUCCEEDED(result) && name != NULL && *name != 0) {
        result = Print(" @", name);
        name += Length(name) + 1;
    }
    printf("\n");
    if (SUCCEEDED(result) && notification->Mask == ModifyNodeDeleted)
        result = E_ABORT; /* undoes the whole group */
    return result;
}

static HRESULT TREEVAULT_CALL OnPreCommit(IModifySink* self) {
    (void)self;
    printf("pre-commit\n");
    return S_OK;
}

static void TREEVAULT_CALL OnFinish(IModifySink* self, int32_t result) {
    (void)self;
    printf("finish: %d\n", (int)result);
}

static const IModifySinkTable WatcherTable = {AddRef,     Release,     QueryInterface, OnStart,
                                              OnModified, OnPreCommit, OnFinish};

/* --- What is watched ------------------------------------------------------------------------- */

/* Every handle begins with a pointer to its table. */
static IModifySinkRegistry* FindRegistry(INodeStorage* storage) {
    const IComponentUnknownTable* table = *(const IComponentUnknownTable* const*)(void*)storage;
    void* registry = NULL;
    Check(table->QueryInterface(storage, &IID_IModifySinkRegistry, &registry), "QueryInterface");
    return registry;
}

static void StoreSeats(INodeStorage* storage, IOperationsGroup* group, int32_t seats) {
    IACNode* kitchen = NULL;
    Check(AcnCreateNode(TREEVAULT_WIDE("\\house\\kitchen"), NULL, &kitchen), "AcnCreateNode");
    Check(AcnSetAttribute(kitchen, TREEVAULT_WIDE("seats"), VtInt32, &seats, sizeof(seats)),
          "AcnSetAttribute");
    Check(StgStoreData(storage, group, StoreMergeAll, &kitchen, 1), "StgStoreData");
    AcnCloseNodeHandle(kitchen);
}

static IACNode* KitchenFilter(void) {
    static const WCHAR path[] = TREEVAULT_WIDE("\\house\\kitchen");
    IACNode* filter = NULL;
    Check(AcnCreateNode(NULL, TREEVAULT_FILTER_BY_PATH, &filter), "AcnCreateNode");
    Check(AcnSetAttribute(filter, TREEVAULT_WIDE("NodePath"), VtStringW, path, sizeof(path)),
          "AcnSetAttribute");
    return filter;
}

static void PrintSeats(INodeStorage* storage, IACNode* filter) {
    const ValueType wanted = VtInt32;
    IACNode* kitchen = NULL;
    uint64_t found = 0;
    int32_t seats = 0;
    size_t size = sizeof(seats);
    Check(StgRetrieveData(storage, filter, NULL, &kitchen, 1, &found), "StgRetrieveData");
    if (found == 1)
        Check(AcnGetAttribute(kitchen, TREEVAULT_WIDE("seats"), &wanted, &seats, &size, NULL),
              "AcnGetAttribute");
    AcnCloseNodeHandle(kitchen);
    printf("seats: %d\n", (int)seats);
}

/* Changes the kitchen and takes it away, in one group. */
static void TakeAway(INodeStorage* storage, IACNode* filter) {
    IOperationsGroup* group = NULL;
    Check(StgCreateOperationsGroup(storage, &group), "StgCreateOperationsGroup");
    StoreSeats(storage, group, 0);
    Check(StgDeleteData(storage, group, filter), "StgDeleteData");
    printf("result: 0x%08X\n", (unsigned)StgFinalizeOperationsGroup(storage, group));
    StgCloseOperationsGroup(storage, group);
}

int main(void) {
    struct Watcher watcher = {{&WatcherTable}, 1};
    INodeStorage* storage = NULL;
    IModifySinkRegistry* registry;
    IACNode* filter = KitchenFilter();
    GUID id;
    Check(StgCreateStorage(TREEVAULT_MEMORY_STORAGE, NULL, NULL, 0, &storage), "StgCreateStorage");
    registry = FindRegistry(storage);
    Check(registry->Table->RegisterSink(registry, &watcher.Sink, &id), "RegisterSink");

    StoreSeats(storage, NULL, 4);
    StoreSeats(storage, NULL, 5);
    TakeAway(storage, filter);
    PrintSeats(storage, filter);

    Check(registry->Table->UnregisterSink(registry, &id), "UnregisterSink");
    registry->Table->Release(registry);
    AcnCloseNodeHandle(filter);
    StgCloseStorageHandle(storage);
    return watcher.References == 1 ? 0 : 1;
}
