// SPDX-License-Identifier: MIT
// The block of an attribute table: a head, the entries, and the characters of their names.
#include "general/treevault/nodes/attributetable.h"

#include "common/errorhandling.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace treevault {

namespace {

constexpr size_t FirstCapacity = 4;
constexpr size_t FirstNameCapacity = 32;

// Entries are moved as bytes: nothing in them points into the block or into themselves.
void MoveEntries(AttributeEntry* to, const AttributeEntry* from, size_t count) noexcept {
    std::memmove(static_cast<void*>(to), static_cast<const void*>(from),
                 count * sizeof(AttributeEntry));
}

} // namespace

AttributeTable::Block* AttributeTable::Allocate(size_t entries, size_t nameUnits) {
    static_assert(sizeof(Block) % alignof(AttributeEntry) == 0);
    if (nameUnits > std::numeric_limits<uint32_t>::max())
        ThrowHr(E_INVALIDARG);
    void* memory = ::operator new(sizeof(Block) + entries * sizeof(AttributeEntry) +
                                  nameUnits * sizeof(WCHAR));
    return new (memory)
        Block{1, 0, static_cast<uint32_t>(entries), 0, static_cast<uint32_t>(nameUnits)};
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

AttributeTable AttributeTable::Copy() const {
    AttributeTable copy;
    copy.Shared = Allocate(std::max<size_t>(Shared->Count, FirstCapacity), Shared->NameCapacity);
    Block& target = *copy.Shared;
    std::memcpy(target.Names(), Shared->Names(), Shared->NameUnits * sizeof(WCHAR));
    target.NameUnits = Shared->NameUnits;
    for (const AttributeEntry& entry : Entries()) {
        new (target.Entries() + target.Count) AttributeEntry{
            entry.NameOffset, entry.Type, entry.LoadFlags(), ValueStorage(entry.Value)};
        ++target.Count;
    }
    return copy;
}

void AttributeTable::EnsureOwn() {
    if (!Shared)
        Shared = Allocate(FirstCapacity, FirstNameCapacity);
    else if (IsShared())
        *this = Copy();
}

// Makes room for one more entry and for the characters of its name, in a new block if need be; what
// erased names left behind is dropped then.
void AttributeTable::Reserve(size_t nameUnits) {
    if (Shared->Count < Shared->Capacity && nameUnits <= Shared->NameCapacity - Shared->NameUnits)
        return;
    size_t used = 0;
    for (const AttributeEntry& entry : Entries())
        used += WideLength(Name(entry)) + 1;
    const size_t entries =
        Shared->Count < Shared->Capacity ? Shared->Capacity : Shared->Capacity * 2u;
    const size_t names =
        std::max<size_t>(Shared->NameCapacity, used + nameUnits + (used + nameUnits) / 2);
    Block* const grown = Allocate(entries, names);
    MoveEntries(grown->Entries(), Shared->Entries(), Shared->Count);
    for (AttributeEntry& entry : std::span(grown->Entries(), Shared->Count)) {
        const WCHAR* name = Name(entry);
        const size_t units = WideLength(name) + 1;
        std::memcpy(grown->Names() + grown->NameUnits, name, units * sizeof(WCHAR));
        entry.NameOffset = grown->NameUnits;
        grown->NameUnits += static_cast<uint32_t>(units);
    }
    grown->Count = Shared->Count;
    ::operator delete(std::exchange(Shared, grown));
}

void AttributeTable::Set(const WCHAR* name, ValueType type, const void* data, uint64_t size,
                         uint16_t flags) {
    size_t at;
    if (Search(name, at)) {
        AttributeEntry& entry = Entries()[at];
        if (entry.Value.Size() == size)
            entry.Value.Assign(data, size);
        else
            entry.Value = ValueStorage(data, size);
        entry.Type = type;
        entry.StoreFlags(flags);
        return;
    }
    ValueStorage value(data, size);
    const size_t units = WideLength(name) + 1;
    Reserve(units);
    std::memcpy(Shared->Names() + Shared->NameUnits, name, units * sizeof(WCHAR));
    AttributeEntry* const place = Shared->Entries() + at;
    MoveEntries(place + 1, place, Shared->Count - at);
    new (place) AttributeEntry{Shared->NameUnits, type, flags, std::move(value)};
    Shared->NameUnits += static_cast<uint32_t>(units);
    ++Shared->Count;
}

void AttributeTable::Erase(AttributeEntry* entry) noexcept {
    entry->~AttributeEntry();
    const auto behind = static_cast<size_t>(Shared->Entries() + Shared->Count - (entry + 1));
    MoveEntries(entry, entry + 1, behind);
    --Shared->Count;
}

} // namespace treevault
