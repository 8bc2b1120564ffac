// SPDX-License-Identifier: MIT
// The storage: a forest of nodes in memory that changes by groups of operations under one lock.
#ifndef TREEVAULT_STORAGE_MEMORYSTORAGE_H
#define TREEVAULT_STORAGE_MEMORYSTORAGE_H

#include "common/components/weakref.h"
#include "general/treevault/storage/anynode.h"
#include "general/treevault/storage/pendingoperations.h"
#include "general/treevault/storage/storagelock.h"
#include "platform/widetext.h"

#include <treevault/storage.h>

#include <map>

namespace treevault {

class CInnerModifySinkPool;
class GivenNode;
struct INodeFilter;

// Version data as a node. Part of the class, but not to be found by QueryInterface.
struct IStorageVersion : IComponentUnknown {
    // A node of type "StorageVersionInfo" with `StorageBackupId` (VtGuid) and `StorageUsn`, written
    // as VtInt64 and read as VtUInt64: the bits are kept.
    virtual HRESULT TREEVAULT_CALL GetVersionInfo(IACNode** out) = 0;

    // The two are not set as a unit: a failure to read the second leaves the first one set.
    virtual HRESULT TREEVAULT_CALL SetVersionInfo(IACNode* node) = 0;

protected:
    ~IStorageVersion() = default;
};

// Operations beginning with Pvt that touch the forest run under the lock. Their failures are
// raised. A node argument is the caller's reference.
class CMemoryStorage : public ComponentHead,
                       public INodeStorage,
                       public IStorageVersion,
                       public IModifySinkRegistry,
                       public IStorageConfig,
                       public IWeakRefSource {
public:
    using ComponentHead::AddRef;
    using ComponentHead::QueryInterface;
    using ComponentHead::Release;

    using NodeRef = Ref<IACNode>;
    class CNodesByPathFilter;

    CMemoryStorage();

    HRESULT Lookup(const GUID* iid, void** out) noexcept;

    HRESULT TREEVAULT_CALL CreateOperationsGroup(IOperationsGroup** group) override;
    HRESULT TREEVAULT_CALL FinalizeOperationsGroup(IOperationsGroup* group) override;
    HRESULT TREEVAULT_CALL StoreData(IOperationsGroup* group, StoreMode mode, IACNode** nodes,
                                     uint64_t count) override;
    HRESULT TREEVAULT_CALL DeleteData(IOperationsGroup* group, IACNode* filter) override;
    HRESULT TREEVAULT_CALL RetrieveData(IACNode* filter, IRetrievalContext** context,
                                        IACNode** nodes, uint64_t maxNodes,
                                        uint64_t* retrieved) override;
    HRESULT TREEVAULT_CALL RetrieveNextData(IRetrievalContext* context, IACNode** nodes,
                                            uint64_t maxNodes, uint64_t* retrieved) override;
    HRESULT TREEVAULT_CALL GetVersionInfo(IACNode** out) override;
    HRESULT TREEVAULT_CALL SetVersionInfo(IACNode* node) override;
    HRESULT TREEVAULT_CALL RegisterSink(IModifySink* sink, GUID* id) override;
    HRESULT TREEVAULT_CALL UnregisterSink(const GUID* id) override;
    HRESULT TREEVAULT_CALL Configure(IACNode* configuration) override;
    HRESULT TREEVAULT_CALL GetWeakReference(IWeakRef** out) override;

    // One more run of a group has succeeded.
    void CountRun() noexcept { StorageUsn.fetch_add(1); }

    // The node at a path, or null. `build` makes what is missing, as part of `group`.
    AnyNode PvtFindNodeByPath(WideView path, bool build, CPendingOperations* group);

    // The child of that name, or the root where the parent is null; null if there is none.
    AnyNode PvtFindChild(const AnyNode& parent, WideView name);

    // Each root, in the order of the names.
    template <class Visit>
    void PvtForEachRoot(const Visit& visit) const {
        for (const auto& [name, root] : RootNodes)
            visit(root);
    }

    // Attach or remove a node, with what undoes it and the notification; `parentFlags` collects
    // what happened to the children of the parent, which is null for a root.
    void PvtAddNode(const NodeRef& parent, const NodeRef& given, bool alreadyCloned,
                    CPendingOperations& group, ModifyMask* parentFlags);
    void PvtRemoveNode(const NodeRef& parent, const NodeRef& existing, CPendingOperations& group,
                       ModifyMask* parentFlags);

    // Whether somebody is told of changes, a sink or the log.
    bool PvtIsObserved() const noexcept;

    // Tells the sinks of a change; a failing sink is raised.
    void PvtSignalModified(IACNode* oldNode, IACNode* newNode, ModifyMask mask,
                           const WCHAR* changedNames);

protected:
    ~CMemoryStorage();

private:
    AnyNode PvtDescend(WideView path, size_t& begin);
    Ref<CPendingOperations> PvtJournalOf(IOperationsGroup* group);
    void PvtRunPrivateGroup(CPendingOperations& group);
    void PvtExecuteGroup(CPendingOperations& group);
    void PvtStoreNode(StoreMode mode, GivenNode& given, CPendingOperations& group);
    void PvtDeleteFiltered(INodeFilter& filter, CPendingOperations& group);
    void PvtAttachNode(IACNode* parent, const NodeRef& node, const WideText& name);
    bool PvtDetachNode(IACNode* parent, const NodeRef& node, const WideText& name);
    Ref<INodeFilter> CreateFilter(IACNode* filter, bool handOutStored);

    WeakReferenceHolder<CMemoryStorage> WeakHolder;
    StorageLock Lock; // guards RootNodes and every tree below
    bool BuildParentNodesIfMissing = true;
    bool MaintainAtomicity = true;
    std::map<WideText, AnyNode, std::less<>> RootNodes;
    Ref<CInnerModifySinkPool> ModifySinks; // none while the storage dies
    GUID StorageBackupId = {};
    std::atomic<uint64_t> StorageUsn{0};
};

} // namespace treevault

#endif
