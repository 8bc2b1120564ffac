// SPDX-License-Identifier: MIT
// The merging of a given tree into what is stored, by a mode.
#ifndef TREEVAULT_STORAGE_NODEMERGE_H
#define TREEVAULT_STORAGE_NODEMERGE_H

#include "common/inlinememory.h"
#include "general/treevault/nodes/acnodeimpl.h"
#include "general/treevault/nodes/nodereading.h"
#include "general/treevault/storage/givennode.h"
#include "general/treevault/storage/memorystorage.h"

#include <cstdint>
#include <map>
#include <vector>

namespace treevault {

// Lives for one given tree. Descends in a loop, so that the depth of the tree costs no stack.
class NodeMerge {
public:
    NodeMerge(CMemoryStorage& storage, StoreMode mode, bool alreadyCloned,
              CPendingOperations& group) noexcept
        : Storage(storage), Mode(mode), AlreadyCloned(alreadyCloned), Group(group) {}

    // Adds, or merges with what exists, whichever is there. `parentFlags` collects what happened to
    // the parent's list of children.
    void Apply(const AnyNode& parent, const AnyNode& existing, GivenNode& given,
               ModifyMask* parentFlags);

private:
    // A given child, and the stored one that bore its name when the parents met.
    struct Pair {
        AnyNode Given;
        AnyNode Stored;
    };

    // An attribute that the stored node is to get, or to lose where there is no entry.
    struct Change {
        static constexpr size_t Nowhere = SIZE_MAX;

        const WCHAR* Name;
        const AttributeEntry* Entry;
        size_t Place; // in the stored table, or nowhere
    };

    // Two nodes that have met, and how far their children are through.
    struct Level {
        AnyNode Existing;
        std::vector<Pair> Children;
        std::map<WideText, Ref<IACNode>> Others; // stored children that are to be removed
        size_t NextChild = 0;
        ModifyMask Flags = 0;
    };

    void ApplyNode(const AnyNode& parent, const AnyNode& existing, const AnyNode& given,
                   ModifyMask* parentFlags);
    Level Meet(const AnyNode& existing, const AnyNode& given);
    void PairChildren(Level& level, IACNode* given);
    void FinishLevel(Level& level);

    void MergeAttributes(const AnyNode& existing, const AnyNode& given);
    void MergeLeaf(const AnyNode& existing, const NodeContent& given);
    void BeginPair() noexcept;
    void TellChanges(const AnyNode& existing);
    void MergeContent(CACNodeImpl& existing, const AttributeTable& given, WideView givenType);
    bool IsTaken(const AttributeTable& given, const AttributeEntry* oldEntry,
                 const AttributeEntry* entry) const noexcept;
    void ListChanges(const AttributeTable& old, const AttributeTable& given);
    void KeepBefore(CACNodeImpl& existing, AttributeTable before);
    void MakeChanges(AttributeTable& stored);
    void MergeForeignAttributes(IACNode* existing, IACNode* given);
    void MergeAttribute(IACNode* existing, IACNode* given, const WCHAR* name);
    void ReplaceAttributes(IACNode* existing, IACNode* given);
    void MergeType(IACNode* existing, WideView oldType, WideView givenType);
    void EnsureSnapshot(IACNode* existing);
    void BeginChange(IACNode* existing, const WCHAR* name);
    bool ReplacesAttributes() const noexcept {
        return Mode != StoreMergeAll && Mode != StoreMergeModified;
    }

    CMemoryStorage& Storage;
    StoreMode Mode;
    bool AlreadyCloned;
    CPendingOperations& Group;

    // Of the pair of nodes at work. Where both are of the library, the first two are but for those
    // who are told.
    Ref<IACNode> Snapshot; // the stored node before its first change
    WideText ChangedNames; // each changed attribute with its terminator
    static constexpr size_t ChangesInside = 8;
    InlineMemory<ChangesInside * sizeof(Change)> ChangesMemory;
    std::pmr::vector<Change> Changes{
        ChangesMemory.Resource()}; // where both are nodes of the library

    RawAttribute GivenValue;
    RawAttribute StoredValue;
};

} // namespace treevault

#endif
