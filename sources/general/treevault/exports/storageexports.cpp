// SPDX-License-Identifier: MIT
// The exported storage functions. Each checks its handle and forwards; the operations behind them
// are the boundaries.
#include "general/treevault/exports/forward.h"
#include "general/treevault/storage/storagefactory.h"

using namespace treevault;

extern "C" {

HRESULT TREEVAULT_CALL StgCreateStorage(const WCHAR* type, IACNode* config, const WCHAR* name,
                                        int32_t openIfExists, INodeStorage** storage) {
    return GetStorageFactory().CreateStorage(type, config, name, openIfExists, storage);
}

HRESULT TREEVAULT_CALL StgOpenStorageInstance(const WCHAR* name, INodeStorage** storage) {
    return GetStorageFactory().OpenStorageInstance(name, storage);
}

HRESULT TREEVAULT_CALL StgCreateOperationsGroup(INodeStorage* storage, IOperationsGroup** group) {
    return Forward(storage, &INodeStorage::CreateOperationsGroup, group);
}

HRESULT TREEVAULT_CALL StgFinalizeOperationsGroup(INodeStorage* storage, IOperationsGroup* group) {
    return Forward(storage, &INodeStorage::FinalizeOperationsGroup, group);
}

// The storage is never looked at.
void TREEVAULT_CALL StgCloseOperationsGroup(INodeStorage*, IOperationsGroup* group) {
    if (group)
        group->Release();
}

void TREEVAULT_CALL StgCloseRetrivalContext(INodeStorage* storage, IRetrievalContext* context)
    __attribute__((alias("StgCloseOperationsGroup")));

HRESULT TREEVAULT_CALL StgStoreData(INodeStorage* storage, IOperationsGroup* group, StoreMode mode,
                                    IACNode** nodes, uint64_t count) {
    return Forward(storage, &INodeStorage::StoreData, group, mode, nodes, count);
}

HRESULT TREEVAULT_CALL StgDeleteData(INodeStorage* storage, IOperationsGroup* group,
                                     IACNode* filter) {
    return Forward(storage, &INodeStorage::DeleteData, group, filter);
}

HRESULT TREEVAULT_CALL StgRetrieveData(INodeStorage* storage, IACNode* filter,
                                       IRetrievalContext** context, IACNode** nodes,
                                       uint64_t maxNodes, uint64_t* retrieved) {
    return Forward(storage, &INodeStorage::RetrieveData, filter, context, nodes, maxNodes,
                   retrieved);
}

HRESULT TREEVAULT_CALL StgRetrieveNextData(INodeStorage* storage, IRetrievalContext* context,
                                           IACNode** nodes, uint64_t maxNodes,
                                           uint64_t* retrieved) {
    return Forward(storage, &INodeStorage::RetrieveNextData, context, nodes, maxNodes, retrieved);
}

} // extern "C"
