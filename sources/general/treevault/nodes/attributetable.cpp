// SPDX-License-Identifier: MIT
// The block of an attribute table: a head, the entries, and an area for their names and short
// values.
#include "general/treevault/nodes/attributetable.h"

#include "common/errorhandling.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace treevault {

namespace {

// Four attributes of the usual kind need no second block.
constexpr size_t FirstCapacity = 4;
constexpr size_t FirstAreaSize = 128;

// Longer values lie in blocks of their own: they would be copied whenever the table grows.
constexpr uint32_t LongestInTable = 64;

// Room is aligned and counted in steps of 8 bytes, enough for the elements of any array.
constexpr size_t RoundUp(size_t size) noexcept {
    return (size + 7) & ~size_t{7};
}

size_t NameSize(const WCHAR* name) noexcept {
    return (WideLength(name) + 1) * sizeof(WCHAR);
}

// Entries are moved as bytes: nothing points at them.
void MoveEntries(AttributeEntry* to, const AttributeEntry* from, size_t count) noexcept {
    std::memmove(static_cast<void*>(to), static_cast<const void*>(from),
                 count * sizeof(AttributeEntry));
}

} // namespace

uint32_t AttributeTable::Block::AppendName(const WCHAR* name, size_t size) noexcept {
    const uint32_t offset = NamesSize / uint32_t{sizeof(WCHAR)};
    std::memcpy(Area() + NamesSize, name, size);
    NamesSize += static_cast<uint32_t>(size);
    return offset;
}

void* AttributeTable::Block::TakeRoom(uint32_t size) noexcept {
    RoomSize += size;
    return Area() + (AreaSize - RoomSize);
}

AttributeTable::Block* AttributeTable::Allocate(size_t entries, size_t areaSize) {
    static_assert(sizeof(Block) % alignof(AttributeEntry) == 0);
    if (areaSize > std::numeric_limits<uint32_t>::max())
        ThrowHr(E_INVALIDARG);
    void* memory = ::operator new(sizeof(Block) + entries * sizeof(AttributeEntry) + areaSize);
    return new (memory)
        Block{1, 0, static_cast<uint32_t>(entries), static_cast<uint32_t>(areaSize), 0, 0};
}

void AttributeTable::Free(Block* block) noexcept {
    std::destroy_n(block->Entries(), block->Count);
    ::operator delete(block);
}

// Sets `at` to where the entry of `name` is or would be; tells whether it is there.
bool AttributeTable::Search(const WCHAR* name, size_t& at) const noexcept {
    const std::span<const AttributeEntry> entries = Entries();
    size_t begin = 0;
    size_t end = entries.size();
    while (begin != end) {
        const size_t middle = (begin + end) / 2;
        const int order = CompareNames(Name(entries[middle]), name);
        if (order == 0) {
            at = middle;
            return true;
        }
        if (order < 0)
            begin = middle + 1;
        else
            end = middle;
    }
    at = begin;
    return false;
}

AttributeEntry* AttributeTable::Find(const WCHAR* name) const noexcept {
    size_t at;
    return Search(name, at) ? &Entries()[at] : nullptr;
}

bool AttributeTable::IsNamedLike(const AttributeTable& other) const noexcept {
    const std::span<const AttributeEntry> entries = Entries();
    const std::span<const AttributeEntry> others = other.Entries();
    if (entries.empty() || entries.size() != others.size() ||
        Shared->NamesSize != other.Shared->NamesSize)
        return false;
    for (size_t at = 0; at < entries.size(); ++at)
        if (entries[at].NameOffset != others[at].NameOffset)
            return false;
    return std::memcmp(Shared->Names(), other.Shared->Names(), Shared->NamesSize) == 0;
}

// Names keep their places; rooms are as large as their values need.
AttributeTable AttributeTable::Copy() const {
    AttributeTable copy;
    copy.Shared = Allocate(std::max<size_t>(Shared->Count, FirstCapacity), Shared->AreaSize);
    Block& target = *copy.Shared;
    std::memcpy(target.Area(), Shared->Area(), Shared->NamesSize);
    target.NamesSize = Shared->NamesSize;
    for (const AttributeEntry& entry : Entries()) {
        new (target.Entries() + target.Count)
            AttributeEntry{entry.NameOffset, entry.Type, entry.LoadFlags(),
                           copy.MakeValue(entry.Value.Data(), entry.Value.Size())};
        ++target.Count;
    }
    return copy;
}

void AttributeTable::EnsureOwn() {
    if (!Shared)
        Shared = Allocate(FirstCapacity, FirstAreaSize);
    else if (IsShared())
        *this = Copy();
}

// Sees to it that one more entry fits, and its name, in a new block if need be; what erased entries
// left behind is dropped then.
void AttributeTable::Reserve(size_t nameSize) {
    if (Shared->Count < Shared->Capacity && nameSize <= Shared->FreeSize())
        return;
    size_t used = nameSize;
    for (const AttributeEntry& entry : Entries())
        used += NameSize(Name(entry)) + entry.Value.LentRoom();
    const size_t entries =
        Shared->Count < Shared->Capacity ? Shared->Capacity : Shared->Capacity * size_t{2};
    const size_t area = std::max<size_t>(Shared->AreaSize, used + used / 2);
    Block* const grown =
        Allocate(entries, RoundUp(std::max(area, entries * FirstAreaSize / FirstCapacity)));
    MoveEntries(grown->Entries(), Shared->Entries(), Shared->Count);
    for (AttributeEntry& entry : std::span(grown->Entries(), Shared->Count)) {
        const WCHAR* name = Name(entry);
        entry.NameOffset = grown->AppendName(name, NameSize(name));
        if (const uint32_t room = entry.Value.LentRoom())
            entry.Value.MoveRoom(grown->TakeRoom(room));
    }
    grown->Count = Shared->Count;
    ::operator delete(std::exchange(Shared, grown));
}

// A value of an entry, in the block if it is short and there is room beside what is to be kept
// free.
ValueStorage AttributeTable::MakeValue(const void* data, uint64_t size, size_t kept) {
    if (size <= ValueStorage::InlineCapacity || size > LongestInTable ||
        RoundUp(size) + kept > Shared->FreeSize())
        return ValueStorage(data, size);
    const auto room = static_cast<uint32_t>(RoundUp(size));
    return ValueStorage(Shared->TakeRoom(room), room, data, static_cast<uint32_t>(size));
}

void AttributeTable::Overwrite(AttributeEntry& entry, ValueType type, const void* data,
                               uint64_t size, uint16_t flags) {
    if (entry.Value.Fits(size))
        entry.Value.Assign(data, size);
    else
        entry.Value = MakeValue(data, size);
    entry.Type = type;
    entry.StoreFlags(flags);
}

void AttributeTable::Set(const WCHAR* name, ValueType type, const void* data, uint64_t size,
                         uint16_t flags) {
    size_t at;
    if (Search(name, at)) {
        Overwrite(Entries()[at], type, data, size, flags);
        return;
    }
    const size_t nameSize = NameSize(name);
    Reserve(nameSize);
    ValueStorage value = MakeValue(data, size, nameSize);
    AttributeEntry* const place = Shared->Entries() + at;
    MoveEntries(place + 1, place, Shared->Count - at);
    new (place) AttributeEntry{Shared->AppendName(name, nameSize), type, flags, std::move(value)};
    ++Shared->Count;
}

void AttributeTable::Erase(AttributeEntry* entry) noexcept {
    entry->~AttributeEntry();
    const auto behind = static_cast<size_t>(Shared->Entries() + Shared->Count - (entry + 1));
    MoveEntries(entry, entry + 1, behind);
    --Shared->Count;
}

} // namespace treevault
