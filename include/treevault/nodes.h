/* SPDX-License-Identifier: MIT
 *
 * Nodes: named, typed objects with typed attributes and ordered children.
 *
 * A node handle is an `IACNode*` that owns one reference; two handles to one node are equal. Any
 * thread may use any node at any time: each node locks itself for each call. A parent owns its
 * children; a child does not own its parent. The general conventions stand in treevault.h. */
#ifndef TREEVAULT_NODES_H
#define TREEVAULT_NODES_H

#include <treevault/components.h>
#include <treevault/values.h>

TREEVAULT_CONSTANT_GUID IID_IACNode = {
    0xF31ECCC1, 0xDD32, 0x41C6, {0x93, 0x43, 0x4B, 0x73, 0xD0, 0x4F, 0x4C, 0xDB}};

/* Which text of a node's name. A path is "\" and the names from the top down, joined with "\". */
typedef uint32_t NodeNameKind;

enum {
    NameShort = 0,      /* the short name */
    NameParentPath = 1, /* the path of the parent; "\" at the top */
    NameFullPath = 2    /* the whole path */
};

/* Bits of AcnCloneNode's `flags`; others are ignored. */
enum {
    CloneOwnAttributes = 1 /* the clone gets attribute tables of its own at once */
};

/* The depth that means all levels, and the only one that is not counted down. */
#define TREEVAULT_ALL_LEVELS ((uint64_t)0x7FFFFFFF)

#ifdef __cplusplus

/* The operations behind the functions below, which only check their handle and forward. The
 * contracts stand there. */
struct IACNode : IComponentUnknown {
    virtual HRESULT TREEVAULT_CALL GetName(NodeNameKind kind, WCHAR* buffer, size_t* size) = 0;
    virtual HRESULT TREEVAULT_CALL SetName(NodeNameKind kind, const WCHAR* name) = 0;
    virtual HRESULT TREEVAULT_CALL GetType(WCHAR* buffer, size_t* size) = 0;
    virtual HRESULT TREEVAULT_CALL SetType(const WCHAR* type) = 0;
    virtual HRESULT TREEVAULT_CALL SetAttribute(const WCHAR* name, ValueType type, const void* data,
                                                size_t size) = 0;
    virtual HRESULT TREEVAULT_CALL DeleteAttribute(const WCHAR* name) = 0;
    virtual HRESULT TREEVAULT_CALL GetAttribute(const WCHAR* name, const ValueType* wantedType,
                                                void* buffer, size_t* size,
                                                ValueType* storedType) = 0;
    virtual HRESULT TREEVAULT_CALL GetAttributeNames(WCHAR* buffer, size_t* size) = 0;
    virtual HRESULT TREEVAULT_CALL SetModifiedState(const WCHAR* name, uint32_t state) = 0;
    virtual HRESULT TREEVAULT_CALL GetModifiedState(const WCHAR* name, uint32_t* state) = 0;
    virtual HRESULT TREEVAULT_CALL GetModifiedAttributeNames(WCHAR* buffer, size_t* size) = 0;
    virtual HRESULT TREEVAULT_CALL AddChild(IACNode* child) = 0;
    virtual HRESULT TREEVAULT_CALL RemoveChild(IACNode* child) = 0;
    virtual HRESULT TREEVAULT_CALL RemoveChildByIndex(uint64_t index) = 0;
    virtual HRESULT TREEVAULT_CALL GetChildCount(size_t* count) = 0;
    virtual HRESULT TREEVAULT_CALL GetChildByIndex(uint64_t index, IACNode** child) = 0;
    virtual HRESULT TREEVAULT_CALL GetChildByName(const WCHAR* name, IACNode** child) = 0;
    virtual HRESULT TREEVAULT_CALL GetParent(IACNode** parent) = 0;
    virtual HRESULT TREEVAULT_CALL Clone(uint64_t depth, uint32_t flags, IACNode** clone) = 0;

protected:
    ~IACNode() = default;
};

#else
typedef struct IACNode IACNode;
#endif

TREEVAULT_EXTERN_C_BEGIN

/* --- Life ------------------------------------------------------------------------------------ */

/* Creates a free node; `*node` receives a handle.
 * `name`  a short name (may be empty), a path that begins with "\" (its last name is the short
 *         name), or null for a fresh GUID: 36 lower-case characters without braces.
 * `type`  any text; null for none.
 * E_POINTER for a null `node`; 0x80040201 for a bad name. Both set a record. */
HRESULT TREEVAULT_CALL AcnCreateNode(const WCHAR* name, const WCHAR* type, IACNode** node);

/* Copies a node: name, path, type, attributes with their modified state, and children down to
 * `depth` levels (0: the node alone; TREEVAULT_ALL_LEVELS: everything). The clone has no parent
 * and keeps the full path. Attribute tables are shared until either side writes a value, so that
 * SetModifiedState on one shows on the other until then; see CloneOwnAttributes.
 * E_POINTER for a null `clone`, with a record. A failure leaves nothing behind. */
HRESULT TREEVAULT_CALL AcnCloneNode(IACNode* node, uint64_t depth, uint32_t flags, IACNode** clone);

/* `*copy` receives the same pointer, with a reference of its own. E_POINTER when either is null,
 * without a record. Works for every handle of the library. */
HRESULT TREEVAULT_CALL AcnDuplicateNodeHandle(IACNode* node, IACNode** copy);

/* Gives a handle back. Null does nothing. Works for every handle of the library. The last handle
 * to a free node ends it; children that others hold live on as free nodes and keep their path. */
void TREEVAULT_CALL AcnCloseNodeHandle(IACNode* node);

/* --- Name and type --------------------------------------------------------------------------- */

/* Text out, see treevault.h. E_POINTER for a null `size` and E_INVALIDARG for an unknown `kind`,
 * both with a record. */
HRESULT TREEVAULT_CALL AcnGetNodeName(IACNode* node, NodeNameKind kind, WCHAR* buffer,
                                      size_t* size);

/* Renames a node, or moves a free one to another path; descendants follow. Null is the empty text.
 * A failure changes nothing and sets a record:
 *   0x80040201  a "\" in a short name, a bad path, or "\" as a full path
 *   0x80040202  the node has a parent and `name` gives another parent path
 *   0x80040206  the parent has a child of the new short name
 *   0x80070057  unknown `kind` */
HRESULT TREEVAULT_CALL AcnSetNodeName(IACNode* node, NodeNameKind kind, const WCHAR* name);

/* Text out, see treevault.h; `size` must not be null. */
HRESULT TREEVAULT_CALL AcnGetNodeType(IACNode* node, WCHAR* buffer, size_t* size);

/* Any text. E_POINTER for a null `type`, with a record. */
HRESULT TREEVAULT_CALL AcnSetNodeType(IACNode* node, const WCHAR* type);

/* --- Attributes ------------------------------------------------------------------------------ */

/* Sets an attribute and marks it as modified, also when the value is the same. `name` must not be
 * null; any text is a name. `size` in bytes; the bytes are copied.
 * A failure leaves the attribute as it was and sets a record:
 *   0x80040203  unsupported tag
 *   0x8007000D  the bytes don't fit the tag
 *   0x80070057  a size above 0xFFFFFFFF
 *   0x8007000E  no memory */
HRESULT TREEVAULT_CALL AcnSetAttribute(IACNode* node, const WCHAR* name, ValueType type,
                                       const void* data, size_t size);

/* Deletes an attribute, or all of them when `name` is null. 0x80070490 for an unknown name,
 * without a record. */
HRESULT TREEVAULT_CALL AcnDeleteAttribute(IACNode* node, const WCHAR* name);

/* Reads an attribute, converting it when `wantedType` is given and differs from its type.
 * `buffer`, `size`  a value out: `*size` is the capacity in bytes, then the bytes needed. Both
 *                   null: a test of existence and type.
 * `storedType`      receives the attribute's own type, or null.
 * Without a record: 0x80070490 for an unknown name (nothing is written), 0x8007007A when the
 * buffer is too small. With a record: E_POINTER for a null `name`, E_INVALIDARG for a buffer
 * without a size, and the codes of AcnConvertData (`*size` is untouched, `*storedType` is
 * written). */
HRESULT TREEVAULT_CALL AcnGetAttribute(IACNode* node, const WCHAR* name,
                                       const ValueType* wantedType, void* buffer, size_t* size,
                                       ValueType* storedType);

/* The names in code-unit order, each with its terminator, back to back and with nothing behind the
 * last; `*size` counts characters and is 0 when there are none. A buffer that is too small holds
 * those names that fitted; 0x8007007A, without a record. E_POINTER for a null `size`, with one. */
HRESULT TREEVAULT_CALL AcnGetAttributeNames(IACNode* node, WCHAR* buffer, size_t* size);

/* --- Modification state ---------------------------------------------------------------------- */

/* Marks an attribute, or all when `name` is null: 0 clears, any other value sets. Shows on clones
 * that still share the attributes. On a node that has no attribute table (none was ever set, or
 * all were deleted at once) it does nothing and returns 0. 0x80070490 for an unknown name or when
 * the table is empty, without a record. */
HRESULT TREEVAULT_CALL AcnSetModifiedState(IACNode* node, const WCHAR* name, uint32_t state);

/* `*state` is 1 when the attribute, or any when `name` is null, is marked, and 0 otherwise.
 * 0x80070490 as above (but for a node without a table only when a name is given), without a
 * record. E_POINTER for a null `state`, with one. */
HRESULT TREEVAULT_CALL AcnGetModifiedState(IACNode* node, const WCHAR* name, uint32_t* state);

/* As AcnGetAttributeNames, for the marked ones. */
HRESULT TREEVAULT_CALL AcnGetModifiedAttributeNames(IACNode* node, WCHAR* buffer, size_t* size);

/* --- Tree ------------------------------------------------------------------------------------ */

/* Appends a free node as the last child. The parent takes references of its own; the child's path
 * becomes the parent's path and the child's short name, and its descendants follow. Adding a node
 * below itself is a breach of contract. A failure changes nothing and sets a record:
 *   0x80004003  `child` is null
 *   0x80004002  `child` is not a node of this library
 *   0x80040205  `child` has a parent
 *   0x80040206  a child of that name exists */
HRESULT TREEVAULT_CALL AcnAddChild(IACNode* node, IACNode* child);

/* Takes a child out; it keeps its path. 0x80070490 when it is not a child of this node, without a
 * record; E_POINTER and 0x80004002 as above, with one. */
HRESULT TREEVAULT_CALL AcnRemoveChild(IACNode* node, IACNode* child);

/* 0x80070490 for an index that is not below the count, without a record. */
HRESULT TREEVAULT_CALL AcnRemoveChildByIndex(IACNode* node, uint64_t index);

/* E_POINTER for a null `count`, with a record. */
HRESULT TREEVAULT_CALL AcnGetChildCount(IACNode* node, size_t* count);

/* `*child` receives a handle. 0x80070490 when there is no such child, without a record; E_POINTER
 * for a null argument, with one. `*child` is written on success only. */
HRESULT TREEVAULT_CALL AcnGetChildByIndex(IACNode* node, uint64_t index, IACNode** child);
HRESULT TREEVAULT_CALL AcnGetChildByName(IACNode* node, const WCHAR* name, IACNode** child);

/* `*parent` receives a handle, or null for a free node; the result is 0 for both. E_POINTER for a
 * null `parent`, with a record. */
HRESULT TREEVAULT_CALL AcnGetParent(IACNode* node, IACNode** parent);

/* --- Nodes as text --------------------------------------------------------------------------- */

/* The node as readable text, the way the library's log shows it: "ACNode[0x", its address in 16
 * digits, "]:", CR LF, and its XML with the full path as the name; "ACNode[<null>]" for a null
 * `node`. `mode` 1 shows the whole subtree, any other value the node alone.
 * Attributes that the setting `HiddenNodeTypeAttrs` of section "Logger" names are shown as
 * "********", of a clone whose address is the one told; the node is not changed. The setting is
 * read once for the process.
 * Text out, see treevault.h, except that a null `buffer` counts as one without room; `size` must
 * not be null. A failure sets a record and leaves `buffer` and `*size` untouched:
 *   0x80070057  the setting is malformed
 *   0x80004002  not a node of this library
 *   0x80070490  a child went away meanwhile */
HRESULT TREEVAULT_CALL AcnGetStringPresentation(IACNode* node, uint32_t mode, WCHAR* buffer,
                                                size_t* size);

TREEVAULT_EXTERN_C_END

#endif
