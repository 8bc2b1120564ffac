// SPDX-License-Identifier: MIT
// The node: name and path, type, attributes, children and parent, behind the interface IACNode.
//
// Any thread may call any operation. Each takes the lock of its node; between nodes a parent's lock
// comes before a child's, and no operation holds a child's lock while it asks for the parent's. A
// child whose lock was taken under the parent's stays as long as that lock is held, without a
// reference: a parent gives its references to a child up only when nobody is inside of it.
#ifndef TREEVAULT_NODES_ACNODEIMPL_H
#define TREEVAULT_NODES_ACNODEIMPL_H

#include "common/components/componentobject.h"
#include "common/widestring.h"
#include "general/treevault/nodes/attributetable.h"
#include "general/treevault/nodes/childlist.h"
#include "general/treevault/nodes/nodepath.h"
#include "platform/recursivelock.h"

#include <treevault/nodes.h>

namespace treevault {

// Gives the implementation behind a node; no client interface.
inline constexpr GUID IID_ACNodeImpl = {
    0x7F5C2747, 0x533B, 0x4A51, {0x87, 0xC9, 0x51, 0x28, 0xAE, 0x54, 0x15, 0x80}};

// What a node holds by itself, at one moment. Copies share it with the node and allocate nothing.
struct NodeContent {
    NodePath Path;
    AttributeTable Attributes;
    WideString TypeName;
};

class CACNodeImpl : public ComponentHead, public IACNode {
public:
    using ComponentHead::AddRef;
    using ComponentHead::QueryInterface;
    using ComponentHead::Release;

    // Both may be null. Raises 0x80040201 for a bad name.
    CACNodeImpl(const WCHAR* name, const WCHAR* type);

    // A clone of the node that these are from, with neither parent nor children.
    CACNodeImpl(const PathRef& above, const NodeName& name, const AttributeTable& attributes,
                const WideString& type);

    HRESULT Lookup(const GUID* iid, void** out) noexcept;
    void FinalRelease() noexcept;

    HRESULT TREEVAULT_CALL GetName(NodeNameKind kind, WCHAR* buffer, size_t* size) override;
    HRESULT TREEVAULT_CALL SetName(NodeNameKind kind, const WCHAR* name) override;
    HRESULT TREEVAULT_CALL GetType(WCHAR* buffer, size_t* size) override;
    HRESULT TREEVAULT_CALL SetType(const WCHAR* type) override;
    HRESULT TREEVAULT_CALL SetAttribute(const WCHAR* name, ValueType type, const void* data,
                                        size_t size) override;
    HRESULT TREEVAULT_CALL DeleteAttribute(const WCHAR* name) override;
    HRESULT TREEVAULT_CALL GetAttribute(const WCHAR* name, const ValueType* wantedType,
                                        void* buffer, size_t* size, ValueType* storedType) override;
    HRESULT TREEVAULT_CALL GetAttributeNames(WCHAR* buffer, size_t* size) override;
    HRESULT TREEVAULT_CALL SetModifiedState(const WCHAR* name, uint32_t state) override;
    HRESULT TREEVAULT_CALL GetModifiedState(const WCHAR* name, uint32_t* state) override;
    HRESULT TREEVAULT_CALL GetModifiedAttributeNames(WCHAR* buffer, size_t* size) override;
    HRESULT TREEVAULT_CALL AddChild(IACNode* child) override;
    HRESULT TREEVAULT_CALL RemoveChild(IACNode* child) override;
    HRESULT TREEVAULT_CALL RemoveChildByIndex(uint64_t index) override;
    HRESULT TREEVAULT_CALL GetChildCount(size_t* count) override;
    HRESULT TREEVAULT_CALL GetChildByIndex(uint64_t index, IACNode** child) override;
    HRESULT TREEVAULT_CALL GetChildByName(const WCHAR* name, IACNode** child) override;
    HRESULT TREEVAULT_CALL GetParent(IACNode** parent) override;
    HRESULT TREEVAULT_CALL Clone(uint64_t depth, uint32_t flags, IACNode** clone) override;

    // The implementation of a node; raises E_NOINTERFACE for a foreign one.
    static Ref<CACNodeImpl> GetImpl(IACNode* node);

    // The same, or none for a foreign node, also for one that stands before a node of the library.
    static Ref<CACNodeImpl> TryGetImpl(IACNode* node);

    // None if there is no child of that name.
    Ref<CACNodeImpl> FindChild(WideView name) const noexcept;

    // Follows the names of a path, which goes on at `begin`, before its end, as far as there are
    // children, and moves `begin` behind the last that was found. None if the first name is no
    // child's. The caller sees to it that this node stays.
    Ref<CACNodeImpl> FindBelow(WideView path, size_t& begin) const noexcept;

    NodePath GetPath() const noexcept;

    // Both as they are at one moment.
    void GetContent(AttributeTable& attributes, WideString& type) const noexcept;

    // False, and nothing is given, if the node has children.
    bool GetLeafContent(NodeContent& content) const noexcept;

    // A clone of this node alone with other attributes. The caller holds the lock.
    Ref<IACNode> MakeSnapshot(const AttributeTable& attributes) const;

    // The attributes as if each were set anew, and the type. The strong guarantee holds.
    void RestoreAttributes(AttributeTable table, const WideString& type);

    // What is mostly read after this node, to be prefetched: its children, or the attributes of one
    // that has none. Needs no lock.
    const void* Behind() const noexcept {
        const void* const children = Children.Peek();
        return children ? children : Attributes.Peek();
    }

    // Asks the processor for the names above; needs no lock.
    void PrefetchAbove() const noexcept { Above.Prefetch(); }

    // What a holder of Lock may read, or a holder of the parent's lock. References to children are
    // those of this node.
    WideView ShortName() const noexcept { return Name; }
    WideText FullPathUnderLock() const { return FullPathText(Above, Name); }
    const WideString& TypeUnderLock() const noexcept { return TypeName; }
    const AttributeTable& AttributesUnderLock() const noexcept { return Attributes; }
    AttributeTable& AttributesUnderLock() noexcept { return Attributes; }
    std::span<CACNodeImpl* const> ChildrenUnderLock() const noexcept { return Children.InOrder(); }

    mutable RecursiveLock Lock; // guards every field of this node, but see Parent

protected:
    ~CACNodeImpl() = default;

private:
    Ref<CACNodeImpl> GetStrongParent() const noexcept;
    void ClearParent() noexcept;
    const PathRef& PvtOwnLink();
    void PvtSetPath(const PathRef& above, const NodeName& name);
    bool PvtRenameChild(CACNodeImpl* child, const NodeName& newName);
    bool PvtTrySetName(NodeNameKind kind, WideView name);
    std::optional<NodePath> PvtNewPath(NodeNameKind kind, WideView name, bool hasParent) const;

    void PvtInsertChild(CACNodeImpl* child) noexcept;
    void PvtAdoptClaimed(CACNodeImpl* child);
    // The index of a child.
    size_t PvtPlaceOf(const CACNodeImpl* child) const noexcept;
    void PvtEraseChild(size_t index) noexcept;
    void PvtDropChildren(CACNodeImpl*& dying) noexcept;
    void PvtDropTraced(CACNodeImpl*& dying) noexcept;
    Ref<CACNodeImpl> PvtCloneAlone(uint32_t flags) const;
    void PvtCloneChildren(CACNodeImpl* clone, uint64_t depth, uint32_t flags) const;

    HRESULT PvtListNames(WCHAR* buffer, size_t* size, uint16_t mask) const;
    std::span<AttributeEntry> PvtRange(const WCHAR* name) const noexcept;
    HRESULT PvtMiss(HRESULT hr, const WCHAR* key, const WCHAR* value) noexcept;
    HRESULT PvtIndexMiss(uint64_t index);

    // What a walk along a path reads comes first, near the lock.
    AttributeTable Attributes; // none if no attribute was ever set or all were deleted at once

    ChildList Children;

    // Read under this node's lock or the parent's, and written under both; a parent that dies reads
    // no more names.
    NodeName Name;

    PathRef Above;   // none at the top; the same names as in the parent's own link
    PathRef OwnLink; // this node's name below Above, or none: made when a child is to lie below it

    // Not counted. Claimed from null by an atomic exchange, otherwise written under Lock. While a
    // node is torn down it links those that die with it.
    std::atomic<CACNodeImpl*> Parent{nullptr};

    WideString TypeName;
};

} // namespace treevault

#endif
