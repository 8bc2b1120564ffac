/* SPDX-License-Identifier: MIT
 *
 * Storages: forests of nodes that take changes as atomic groups and tell observers.
 *
 * A storage handle is an `INodeStorage*`, a group handle an `IOperationsGroup*`, a retrieval
 * context an `IRetrievalContext*`; each owns one reference. A storage may be used from any thread
 * at any time, a group or a context from one thread at a time. What a caller stores is cloned, and
 * what it retrieves is a clone. The general conventions stand in treevault.h; every failure sets an
 * error record unless the contract says otherwise. */
#ifndef TREEVAULT_STORAGE_H
#define TREEVAULT_STORAGE_H

#include <treevault/nodes.h>

TREEVAULT_CONSTANT_GUID IID_INodeStorage = {
    0x8EF91B5E, 0x1B76, 0x4811, {0x8A, 0x4F, 0xDF, 0xA0, 0x32, 0x8A, 0xD4, 0x73}};
TREEVAULT_CONSTANT_GUID IID_IModifySinkRegistry = {
    0x35FB6A0B, 0xC2D7, 0x4410, {0xB5, 0x99, 0x5D, 0x84, 0xF5, 0x7E, 0x0D, 0x37}};
TREEVAULT_CONSTANT_GUID IID_IStorageConfig = {
    0x9FD0681A, 0xA35D, 0x48EF, {0xA2, 0x26, 0xDE, 0x38, 0x46, 0xE1, 0x9D, 0x38}};
TREEVAULT_CONSTANT_GUID IID_IModifySink = {
    0xDB181091, 0x87D3, 0x40CE, {0xAB, 0x52, 0x7B, 0x2E, 0x0E, 0x59, 0xC8, 0x4E}};

/* Class of IComponentsModule::CreateInstance: an unnamed storage with the default configuration. */
TREEVAULT_CONSTANT_GUID CLSID_MemoryStorage = {
    0xA8F22B0C, 0x0132, 0x4F5C, {0x8B, 0xDE, 0x96, 0xBD, 0xDD, 0x90, 0xBE, 0xEB}};

/* The one type of storage there is. */
#define TREEVAULT_MEMORY_STORAGE TREEVAULT_WIDE("memory_storage")

/* The one type of filter node there is. Its attributes:
 *   NodePath  text, required: the absolute path of a node, or "\"
 *   IsParent  VtBool, false by default: select the node's children (for "\" the roots) instead
 *   MaxDepth  VtUInt32: levels below a selected node that a retrieval hands out; 0 is the node
 *             alone, 0xFFFFFFFF (the default) all */
#define TREEVAULT_FILTER_BY_PATH TREEVAULT_WIDE("FilterByPath")

/* How a stored node and a given one of the same path are merged. A node that is not stored yet is
 * added whole. Children meet by name and are merged by the same mode. */
typedef int32_t StoreMode;

enum {
    StoreMergeAll = 0,      /* given attributes are set; the type is taken if it is not empty */
    StoreMergeModified = 1, /* modified attributes are set or, if gone, deleted; type as above */
    StoreReplaceAttributes = 2, /* attributes and type become those given; children stay */
    StoreReplaceAll = 3         /* the same, and children that are not given are removed */
};

/* What a notification tells. */
typedef uint32_t ModifyMask;

enum {
    ModifyNodeDeleted = 0x01, /* the node left the storage, with its subtree; OldNode alone */
    ModifyNodeCreated = 0x02, /* the node came into the storage, with its subtree; NewNode alone */
    ModifyNodeChanged = 0x04, /* attributes changed; OldNode holds the old ones */
    ModifyChildAdded = 0x08,  /* at least one child was added; both are the stored node */
    ModifyChildDeleted = 0x10 /* at least one child was removed; both are the stored node */
};

/* One change. Everything in it is borrowed for the call; nodes are the stored ones (OldNode of a
 * change of attributes: a copy) and are not to be changed. */
typedef struct ModifyNotification {
    ModifyMask Mask;
    const WCHAR* Path; /* full path of NewNode, or of OldNode if that is null */
    IACNode* OldNode;
    IACNode* NewNode;
    const WCHAR* ChangedAttributes; /* with ModifyNodeChanged: each changed name with its
                                       terminator, and an empty one at the end; else null */
} ModifyNotification;

#ifdef __cplusplus

/* An observer. Its operations are called on the thread that changes the storage, while the storage
 * is locked for others; on that thread it may read and store, but neither register nor remove
 * sinks. What it stores there is a group of its own, which the group under way does not undo. A
 * sink that stores into another storage waits for that one's lock: two such sinks must not do so
 * crosswise. Sinks are called in no order that could be relied on. */
struct IModifySink : IComponentUnknown {
    /* A group begins. The result does not matter to the group, but sinks behind a failing one are
     * not called. */
    virtual HRESULT TREEVAULT_CALL OnStart() = 0;

    /* One change, already visible in the storage. Failing undoes the group. */
    virtual HRESULT TREEVAULT_CALL OnModified(const ModifyNotification* notification) = 0;

    /* All changes are made. Failing undoes the group. */
    virtual HRESULT TREEVAULT_CALL OnPreCommit() = 0;

    /* The group is over: `result` is 1 after success; 0 after a failure, when what OnModified told
     * is to be forgotten. */
    virtual void TREEVAULT_CALL OnFinish(int32_t result) = 0;

protected:
    ~IModifySink() = default;
};

/* Offered by storages. */
struct IModifySinkRegistry : IComponentUnknown {
    /* Adds a reference to the sink until it is removed or the storage dies; `*id` names it.
     * E_POINTER for a null argument. Both operations call AddRef and Release of the sink while
     * notifications are held back: neither these nor the sink's destructor may use the storage. */
    virtual HRESULT TREEVAULT_CALL RegisterSink(IModifySink* sink, GUID* id) = 0;

    /* Waits for notifications under way. E_POINTER for null, E_INVALIDARG for an unknown id. */
    virtual HRESULT TREEVAULT_CALL UnregisterSink(const GUID* id) = 0;

protected:
    ~IModifySinkRegistry() = default;
};

/* Offered by storages. */
struct IStorageConfig : IComponentUnknown {
    /* Reads two attributes of the node, both true by default, as VtBool:
     *   BuildParentNodesIfMissing  a store makes the parents that its nodes lack
     *   MaintainAtomicity          a failed group takes back added and removed nodes too
     * Meant to be called before the first operation, and not while the storage is in use: it takes
     * no lock. E_POINTER for null; the code of a conversion that fails, and what was read before it
     * stays set. */
    virtual HRESULT TREEVAULT_CALL Configure(IACNode* configuration) = 0;

protected:
    ~IStorageConfig() = default;
};

/* They have no operations of their own for callers. */
typedef IComponentUnknown IOperationsGroup;
typedef IComponentUnknown IRetrievalContext;

/* The operations behind the functions below, where the contracts stand. */
struct INodeStorage : IComponentUnknown {
    virtual HRESULT TREEVAULT_CALL CreateOperationsGroup(IOperationsGroup** group) = 0;
    virtual HRESULT TREEVAULT_CALL FinalizeOperationsGroup(IOperationsGroup* group) = 0;
    virtual HRESULT TREEVAULT_CALL StoreData(IOperationsGroup* group, StoreMode mode,
                                             IACNode** nodes, uint64_t count) = 0;
    virtual HRESULT TREEVAULT_CALL DeleteData(IOperationsGroup* group, IACNode* filter) = 0;
    virtual HRESULT TREEVAULT_CALL RetrieveData(IACNode* filter, IRetrievalContext** context,
                                                IACNode** nodes, uint64_t maxNodes,
                                                uint64_t* retrieved) = 0;
    virtual HRESULT TREEVAULT_CALL RetrieveNextData(IRetrievalContext* context, IACNode** nodes,
                                                    uint64_t maxNodes, uint64_t* retrieved) = 0;

protected:
    ~INodeStorage() = default;
};

#else

typedef struct INodeStorage INodeStorage;
typedef struct IOperationsGroup IOperationsGroup;
typedef struct IRetrievalContext IRetrievalContext;

/* Observing from C: a sink is a structure that begins with a pointer to its table, and the storage
 * is asked for its registry through the table that every handle begins with. The contracts stand
 * with the C++ interfaces. */
typedef struct IModifySink IModifySink;
typedef struct IModifySinkRegistry IModifySinkRegistry;

typedef struct IComponentUnknownTable {
    uint32_t(TREEVAULT_CALL* AddRef)(void* self);
    uint32_t(TREEVAULT_CALL* Release)(void* self);
    HRESULT(TREEVAULT_CALL* QueryInterface)(void* self, const GUID* iid, void** out);
} IComponentUnknownTable;

typedef struct IModifySinkTable {
    uint32_t(TREEVAULT_CALL* AddRef)(IModifySink* self);
    uint32_t(TREEVAULT_CALL* Release)(IModifySink* self);
    HRESULT(TREEVAULT_CALL* QueryInterface)(IModifySink* self, const GUID* iid, void** out);
    HRESULT(TREEVAULT_CALL* OnStart)(IModifySink* self);
    HRESULT(TREEVAULT_CALL* OnModified)(IModifySink* self, const ModifyNotification* notification);
    HRESULT(TREEVAULT_CALL* OnPreCommit)(IModifySink* self);
    void(TREEVAULT_CALL* OnFinish)(IModifySink* self, int32_t result);
} IModifySinkTable;

struct IModifySink {
    const IModifySinkTable* Table;
};

typedef struct IModifySinkRegistryTable {
    uint32_t(TREEVAULT_CALL* AddRef)(IModifySinkRegistry* self);
    uint32_t(TREEVAULT_CALL* Release)(IModifySinkRegistry* self);
    HRESULT(TREEVAULT_CALL* QueryInterface)(IModifySinkRegistry* self, const GUID* iid, void** out);
    HRESULT(TREEVAULT_CALL* RegisterSink)(IModifySinkRegistry* self, IModifySink* sink, GUID* id);
    HRESULT(TREEVAULT_CALL* UnregisterSink)(IModifySinkRegistry* self, const GUID* id);
} IModifySinkRegistryTable;

struct IModifySinkRegistry {
    const IModifySinkRegistryTable* Table;
};

#endif

TREEVAULT_EXTERN_C_BEGIN

/* Creates a storage, or opens the one of that name.
 * `type`          TREEVAULT_MEMORY_STORAGE.
 * `config`        see IStorageConfig, or null for the defaults; not looked at when the storage
 *                 exists.
 * `name`          makes the storage known in the process for as long as it lives; null or empty for
 *                 none.
 * `openIfExists`  not 0: a storage of that name is opened as it stands.
 * E_POINTER for a null `type` or `storage`; 0x80040301 when the name is in use; 0x80070490 when the
 * storage to be opened is dying; E_NOTIMPL for another type; what Configure returned. On failure no
 * name is registered and `*storage` is untouched. */
HRESULT TREEVAULT_CALL StgCreateStorage(const WCHAR* type, IACNode* config, const WCHAR* name,
                                        int32_t openIfExists, INodeStorage** storage);

/* Opens a storage by name. E_POINTER for null; 0x80070490 when there is none. */
HRESULT TREEVAULT_CALL StgOpenStorageInstance(const WCHAR* name, INodeStorage** storage);

/* Gives a handle back. Null does nothing. The last handle ends the storage and frees its name. */
void TREEVAULT_CALL StgCloseStorageHandle(INodeStorage* storage);

/* `*copy` receives the same pointer, with a reference of its own. E_POINTER when either is null,
 * without a record. */
HRESULT TREEVAULT_CALL StgDuplicateStorageHandle(INodeStorage* storage, INodeStorage** copy);

/* Makes an empty group. It must not outlive its storage, and is used with no other. E_INVALIDARG
 * for a null `group`, without a record. */
HRESULT TREEVAULT_CALL StgCreateOperationsGroup(INodeStorage* storage, IOperationsGroup** group);

/* Runs the operations of a group in order, as one: observers are told, and a failure of an
 * operation or a veto undoes what the group did, from the last change to the first. Not undone are
 * the change of a type without one of an attribute, the place of a deleted child among its siblings
 * (it comes back as the last), the modified state of attributes, and, where MaintainAtomicity is
 * off, nodes that were added or removed. When memory runs out while undoing, the rest stays.
 * The group stays as it is. Finalizing it again runs the operations again, on the nodes that the
 * first run left; a failure then undoes the earlier runs of the group too.
 * E_POINTER for a null `group`, E_NOINTERFACE for what is no group; otherwise the code of the
 * operation or observer that failed. */
HRESULT TREEVAULT_CALL StgFinalizeOperationsGroup(INodeStorage* storage, IOperationsGroup* group);

/* Gives a group back; what was not finalized has changed nothing. `storage` is not looked at; a
 * null `group` does nothing. */
void TREEVAULT_CALL StgCloseOperationsGroup(INodeStorage* storage, IOperationsGroup* group);

/* Stores nodes, each at the path that it has, with all its children: added where there is no such
 * node, and else merged with what is there by the mode. With a group they are copied now and stored
 * when the group is finalized; without one they are stored at once, as a group of their own, and a
 * failure leaves what StgFinalizeOperationsGroup tells. The nodes given stay the caller's and are
 * not changed. `mode` is not checked: an unknown one replaces attributes and leaves types and
 * children as StoreMergeAll does. `nodes` must not be null, even for a `count` of 0, which runs an
 * empty group. Parents that are missing are made, see IStorageConfig.
 * E_POINTER for a null `nodes` (or, with a group, a null entry: those before it stay queued);
 * E_NOINTERFACE for what is no group; 0x80040303 when a parent is missing and is not to be built,
 * or for a null entry without a group; what an observer returned. */
HRESULT TREEVAULT_CALL StgStoreData(INodeStorage* storage, IOperationsGroup* group, StoreMode mode,
                                    IACNode** nodes, uint64_t count);

/* Deletes what a filter node selects when the group runs, each with its subtree; MaxDepth does not
 * matter. Selecting nothing is a success.
 * E_POINTER for a null `filter`; E_NOINTERFACE for what is no group; for a bad filter node, at
 * once: 0x80040305 (type), 0x80070490 (no NodePath), E_NOTIMPL (NodePath without "\"), 0x80040304
 * (NodePath not absolute, or "\" alone without IsParent, this one when the group runs). */
HRESULT TREEVAULT_CALL StgDeleteData(INodeStorage* storage, IOperationsGroup* group,
                                     IACNode* filter);

/* Selects nodes and hands out the first `maxNodes` of them. `*context` (may be null) receives what
 * the others are read from. `retrieved` (may be null) receives the number handed out; fewer than
 * `maxNodes` means the end. The handles are the caller's. The selection is fixed now, the content
 * is read when a node is handed out.
 * E_POINTER for a null `filter` or `nodes`; codes of a bad filter node as above; 0x80070057 for a
 * `maxNodes` above 0x1FFFFFFFFFFFFFFF. On failure nothing is written. */
HRESULT TREEVAULT_CALL StgRetrieveData(INodeStorage* storage, IACNode* filter,
                                       IRetrievalContext** context, IACNode** nodes,
                                       uint64_t maxNodes, uint64_t* retrieved);

/* Hands out the next nodes of a context into the `maxNodes` places of `nodes`. E_POINTER for a null
 * `context` or `nodes`; E_NOINTERFACE for what is no context; 0x80070057 as above; the code of a
 * copy that could not be made. On failure nothing is written, and the nodes of the batch that were
 * taken from the context are lost to it. */
HRESULT TREEVAULT_CALL StgRetrieveNextData(INodeStorage* storage, IRetrievalContext* context,
                                           IACNode** nodes, uint64_t maxNodes, uint64_t* retrieved);

/* Gives a context back. `storage` is not looked at; a null `context` does nothing. */
void TREEVAULT_CALL StgCloseRetrivalContext(INodeStorage* storage, IRetrievalContext* context);

TREEVAULT_EXTERN_C_END

#endif
