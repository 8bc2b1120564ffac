/* SPDX-License-Identifier: MIT
 *
 * The plain C client: storages. */
#include "plainclient.h"

static IACNode* MakeFilter(const WCHAR* path, uint64_t bytes) {
    IACNode* filter = NULL;
    EXPECT(AcnCreateNode(NULL, TREEVAULT_FILTER_BY_PATH, &filter) == S_OK);
    EXPECT(AcnSetAttribute(filter, TREEVAULT_WIDE("NodePath"), VtStringW, path, (size_t)bytes) ==
           S_OK);
    return filter;
}

/* Stores a node "a" as part of a group. */
static void StoreInGroup(INodeStorage* storage) {
    IACNode* node = NULL;
    IOperationsGroup* group = NULL;
    EXPECT(AcnCreateNode(TREEVAULT_WIDE("a"), NULL, &node) == S_OK);
    EXPECT(StgCreateOperationsGroup(storage, &group) == S_OK);
    EXPECT(StgStoreData(storage, group, StoreMergeAll, &node, 1) == S_OK);
    EXPECT(StgFinalizeOperationsGroup(storage, group) == S_OK);
    StgCloseOperationsGroup(storage, group);
    StgCloseOperationsGroup(NULL, NULL);
    AcnCloseNodeHandle(node);
}

static void RetrieveAndDelete(INodeStorage* storage) {
    static const WCHAR path[] = TREEVAULT_WIDE("\\a");
    IACNode* filter = MakeFilter(path, sizeof(path));
    IACNode* found = NULL;
    IRetrievalContext* context = NULL;
    uint64_t count = 7;
    EXPECT(StgRetrieveData(storage, filter, &context, &found, 1, &count) == S_OK);
    EXPECT(count == 1);
    AcnCloseNodeHandle(found);
    EXPECT(StgRetrieveNextData(storage, context, &found, 1, &count) == S_OK);
    EXPECT(count == 0);
    StgCloseRetrivalContext(storage, context);
    EXPECT(StgDeleteData(storage, NULL, filter) == S_OK);
    EXPECT(StgRetrieveData(storage, filter, NULL, &found, 1, &count) == S_OK);
    EXPECT(count == 0);
    AcnCloseNodeHandle(filter);
}

void TestStorage(void) {
    INodeStorage* storage = NULL;
    INodeStorage* opened = NULL;
    INodeStorage* copy = NULL;
    EXPECT(StgCreateStorage(TREEVAULT_MEMORY_STORAGE, NULL, TREEVAULT_WIDE("c client"), 0,
                            &storage) == S_OK);
    EXPECT(StgOpenStorageInstance(TREEVAULT_WIDE("c client"), &opened) == S_OK);
    EXPECT(opened == storage);
    EXPECT(StgDuplicateStorageHandle(storage, &copy) == S_OK);
    EXPECT(copy == storage);
    StgCloseStorageHandle(opened);
    StgCloseStorageHandle(copy);
    StoreInGroup(storage);
    RetrieveAndDelete(storage);
    StgCloseStorageHandle(storage);
    EXPECT(StgOpenStorageInstance(TREEVAULT_WIDE("c client"), &opened) == TREEVAULT_E_NOT_FOUND);
}
