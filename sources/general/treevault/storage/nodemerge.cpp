// SPDX-License-Identifier: MIT
// Merging of attributes, type and children.
#include "general/treevault/storage/nodemerge.h"

#include "common/errorhandling.h"
#include "general/treevault/storage/nodemaking.h"

#include <algorithm>
#include <cstring>

namespace treevault {

namespace {

bool IsLeaf(const AnyNode& node) {
    const CACNodeImpl* const own = node.Own();
    if (!own)
        return false;
    const LockGuard guard(own->Lock);
    return own->ChildrenUnderLock().empty();
}

std::vector<Ref<IACNode>> ListChildren(IACNode* node) {
    size_t count = 0;
    HRES{node->GetChildCount(&count)};
    std::vector<Ref<IACNode>> children(count);
    for (size_t at = 0; at < count; ++at)
        HRES{node->GetChildByIndex(at, children[at].Put())};
    return children;
}

} // namespace

void NodeMerge::Apply(const AnyNode& parent, const AnyNode& existing, GivenNode& given,
                      ModifyMask* parentFlags) {
    if (given.Leaf() && existing.Own() && Mode != StoreReplaceAll)
        MergeLeaf(existing, *given.Leaf());
    else
        ApplyNode(parent, existing, given.Node(), parentFlags);
}

void NodeMerge::ApplyNode(const AnyNode& parent, const AnyNode& existing, const AnyNode& given,
                          ModifyMask* parentFlags) {
    if (!existing) {
        Storage.PvtAddNode(parent, given, AlreadyCloned, Group, parentFlags);
        return;
    }
    MergeAttributes(existing, given);
    if (Mode != StoreReplaceAll && IsLeaf(given))
        return;
    std::vector<Level> levels;
    levels.push_back(Meet(existing, given));
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.NextChild == level.Children.size()) {
            FinishLevel(level);
            levels.pop_back();
            continue;
        }
        const Pair child = std::move(level.Children[level.NextChild++]);
        if (!child.Stored) {
            Storage.PvtAddNode(level.Existing, child.Given, AlreadyCloned, Group, &level.Flags);
            continue;
        }
        MergeAttributes(child.Stored, child.Given);
        levels.push_back(Meet(child.Stored, child.Given));
    }
}

// The attributes are merged by now; the children follow level by level.
NodeMerge::Level NodeMerge::Meet(const AnyNode& existing, const AnyNode& given) {
    Level level;
    level.Existing = existing;
    PairChildren(level, given.Get());
    return level;
}

// Costs what is given and not what is stored, unless the mode has to look at all of that.
void NodeMerge::PairChildren(Level& level, IACNode* given) {
    if (Mode == StoreReplaceAll)
        for (Ref<IACNode>& child : ListChildren(level.Existing.Get())) {
            WideText name = ReadName(child.Get());
            level.Others.emplace(std::move(name), std::move(child));
        }
    for (Ref<IACNode>& child : ListChildren(given)) {
        const WideText name = ReadName(child.Get());
        AnyNode stored;
        if (Mode != StoreReplaceAll)
            stored = Storage.PvtFindChild(level.Existing, name);
        else if (auto entry = level.Others.extract(name))
            stored = AnyNode(std::move(entry.mapped()));
        level.Children.push_back({AnyNode(std::move(child)), std::move(stored)});
    }
}

void NodeMerge::FinishLevel(Level& level) {
    for (const auto& [name, child] : level.Others)
        Storage.PvtRemoveNode(level.Existing, child, Group, &level.Flags);
    if (level.Flags != 0)
        Storage.PvtSignalModified(level.Existing.Get(), level.Existing.Get(), level.Flags, nullptr);
}

namespace {

// The names of a list, each zero-terminated where it stands.
std::vector<WideView> SplitNames(const WideText& names) {
    std::vector<WideView> split;
    for (size_t begin = 0; begin < names.size(); begin += split.back().size() + 1)
        split.emplace_back(names.c_str() + begin);
    std::sort(split.begin(), split.end());
    return split;
}

bool Holds(const std::vector<WideView>& sortedNames, WideView name) {
    return std::binary_search(sortedNames.begin(), sortedNames.end(), name);
}

// Makes the attributes of a stored node those of the snapshot. What was there is taken away last,
// so that memory that runs out meanwhile costs no value.
void RestoreAttributes(IACNode* snapshot, IACNode* node) {
    const WideText snapshotNames = ReadAttributeNames(snapshot);
    if (snapshotNames.empty()) {
        HRES{node->DeleteAttribute(nullptr)};
        return;
    }
    const std::vector<WideView> kept = SplitNames(snapshotNames);
    RawAttribute value;
    for (const WideView name : kept)
        if (value.Read(snapshot, name.data()))
            HRES{node->SetAttribute(name.data(), value.Type, value.Buffer.data(), value.Size)};
    const WideText names = ReadAttributeNames(node);
    for (const WideView name : SplitNames(names))
        if (!Holds(kept, name))
            HRES{node->DeleteAttribute(name.data())};
}

} // namespace

void NodeMerge::EnsureSnapshot(IACNode* existing) {
    if (!Snapshot)
        Snapshot = CloneNode(existing, 0);
}

// What undoes the changes of a node stands before the first of them is made.
void NodeMerge::BeginChange(IACNode* existing, const WCHAR* name) {
    EnsureSnapshot(existing);
    if (ChangedNames.empty()) {
        const auto stored = Ref<IACNode>::Share(existing);
        Group.AddUndo(Group.MakeUndo([snapshot = Snapshot, stored] {
            if (snapshot.Get() != stored.Get())
                RestoreAttributes(snapshot.Get(), stored.Get());
            HRES{stored->SetType(ReadType(snapshot.Get()).c_str())};
        }));
    }
    ChangedNames.append(name).push_back(0);
}

// Equal values are left alone: they cost no copy and no notification.
void NodeMerge::MergeAttribute(IACNode* existing, IACNode* given, const WCHAR* name) {
    if (!GivenValue.Read(given, name)) {
        ValueType type = VtEmpty;
        const HRESULT hr = existing->GetAttribute(name, nullptr, nullptr, nullptr, &type);
        if (hr == TREEVAULT_E_NOT_FOUND)
            return;
        HRES{hr};
        BeginChange(existing, name);
        HRES{existing->DeleteAttribute(name)};
        return;
    }
    if (StoredValue.Read(existing, name) && StoredValue.Type == GivenValue.Type &&
        StoredValue.Size == GivenValue.Size &&
        std::memcmp(StoredValue.Buffer.data(), GivenValue.Buffer.data(), GivenValue.Size) == 0)
        return;
    BeginChange(existing, name);
    HRES{existing->SetAttribute(name, GivenValue.Type, GivenValue.Buffer.data(), GivenValue.Size)};
}

// Those of the stored node that the given one lacks are merged too, which deletes them.
void NodeMerge::ReplaceAttributes(IACNode* existing, IACNode* given) {
    const WideText givenNames = ReadAttributeNames(given);
    const std::vector<WideView> kept = SplitNames(givenNames);
    for (const WideView name : kept)
        if (!name.empty())
            MergeAttribute(existing, given, name.data());
    ForEachName(ReadAttributeNames(existing), [&](const WCHAR* name) {
        if (!Holds(kept, name))
            MergeAttribute(existing, given, name);
    });
}

void NodeMerge::MergeType(IACNode* existing, WideView oldType, WideView givenType) {
    const bool takesAnyType = Mode == StoreReplaceAttributes || Mode == StoreReplaceAll;
    if (givenType == oldType || (givenType.empty() && !takesAnyType))
        return;
    HRES{existing->SetType(WideText(givenType).c_str())};
}

void NodeMerge::MergeForeignAttributes(IACNode* existing, IACNode* given) {
    if (ReplacesAttributes())
        ReplaceAttributes(existing, given);
    else
        ForEachName(Mode == StoreMergeModified ? ReadModifiedAttributeNames(given)
                                               : ReadAttributeNames(given),
                    [&](const WCHAR* name) { MergeAttribute(existing, given, name); });
    MergeType(existing, ReadType(existing), ReadType(given));
}

namespace {

bool EqualValues(const AttributeEntry& left, const AttributeEntry& right) noexcept {
    return left.Type == right.Type && left.Value.Size() == right.Value.Size() &&
           std::memcmp(left.Value.Data(), right.Value.Data(), left.Value.Size()) == 0;
}

} // namespace

// Whether the given entry takes the place of the old one, of which either may be null.
bool NodeMerge::IsTaken(const AttributeTable& given, const AttributeEntry* oldEntry,
                        const AttributeEntry* entry) const noexcept {
    return entry && *given.Name(*entry) != 0 &&
           (Mode != StoreMergeModified || (entry->LoadFlags() & AttributeModified) != 0) &&
           !(oldEntry && EqualValues(*oldEntry, *entry));
}

// What is set comes before what goes.
void NodeMerge::ListChanges(const AttributeTable& old, const AttributeTable& given) {
    Changes.reserve(ChangesInside);
    const auto placeOf = [&](const AttributeEntry* oldEntry) {
        return oldEntry ? static_cast<size_t>(oldEntry - old.Entries().data()) : Change::Nowhere;
    };
    AttributeTable::ForEachPair(old, given, [&](auto* oldEntry, auto* entry) {
        if (!IsTaken(given, oldEntry, entry))
            return;
        Changes.push_back({given.Name(*entry), entry, placeOf(oldEntry)});
    });
    if (ReplacesAttributes())
        AttributeTable::ForEachPair(old, given, [&](auto* oldEntry, auto* entry) {
            if (!entry && *old.Name(*oldEntry) != 0)
                Changes.push_back({old.Name(*oldEntry), nullptr, placeOf(oldEntry)});
        });
}

// What the table holds before goes to the undo list, and to those who are told, as a snapshot.
void NodeMerge::KeepBefore(CACNodeImpl& existing, AttributeTable before) {
    if (Storage.PvtIsObserved()) {
        Snapshot = existing.MakeSnapshot(before);
        for (const Change& change : Changes)
            ChangedNames.append(change.Name).push_back(0);
    }
    Group.AddUndo(
        Group.MakeUndo([stored = Ref<CACNodeImpl>::Share(&existing), table = std::move(before),
                        type = WideString(existing.TypeUnderLock())]() mutable {
            stored->RestoreAttributes(std::move(table), type);
        }));
}

// Values change where they are. What goes is erased from the last place to the first, so that the
// others keep theirs; what is new comes last, since it moves the places.
void NodeMerge::MakeChanges(AttributeTable& stored) {
    stored.EnsureOwn();
    for (const auto& [name, entry, place] : Changes)
        if (entry && place != Change::Nowhere)
            stored.Overwrite(stored.Entries()[place], entry->Type, entry->Value.Data(),
                             entry->Value.Size(), AttributeModified);
    for (auto change = Changes.rbegin(); change != Changes.rend(); ++change)
        if (!change->Entry)
            stored.Erase(&stored.Entries()[change->Place]);
    for (const auto& [name, entry, place] : Changes)
        if (entry && place == Change::Nowhere)
            stored.Set(name, entry->Type, entry->Value.Data(), entry->Value.Size(),
                       AttributeModified);
}

// Nodes of the library are compared where their values lie; the caller sees to it that nobody
// changes the given table. What undoes the changes stands before the first of them is made.
void NodeMerge::MergeContent(CACNodeImpl& existing, const AttributeTable& given,
                             WideView givenType) {
    const LockGuard guard(existing.Lock);
    AttributeTable& stored = existing.AttributesUnderLock();
    ListChanges(stored, given);
    if (!Changes.empty()) {
        KeepBefore(existing, stored.Keep());
        MakeChanges(stored);
    }
    MergeType(&existing, existing.TypeUnderLock(), givenType);
}

void NodeMerge::BeginPair() noexcept {
    Snapshot.Reset();
    ChangedNames.clear();
    Changes.clear();
}

// A change of type alone is neither undone nor told.
void NodeMerge::TellChanges(const AnyNode& existing) {
    if (!ChangedNames.empty())
        Storage.PvtSignalModified(Snapshot.Get(), existing.Get(), ModifyNodeChanged,
                                  ChangedNames.c_str());
}

void NodeMerge::MergeAttributes(const AnyNode& existing, const AnyNode& given) {
    BeginPair();
    if (existing.Own() && given.Own()) {
        AttributeTable attributes;
        WideString type;
        given.Own()->GetContent(attributes, type);
        MergeContent(*existing.Own(), attributes, type);
    } else {
        MergeForeignAttributes(existing.Get(), given.Get());
    }
    TellChanges(existing);
}

void NodeMerge::MergeLeaf(const AnyNode& existing, const NodeContent& given) {
    BeginPair();
    MergeContent(*existing.Own(), given.Attributes, given.TypeName);
    TellChanges(existing);
}

} // namespace treevault
