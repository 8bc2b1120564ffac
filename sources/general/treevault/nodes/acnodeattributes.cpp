// SPDX-License-Identifier: MIT
// The attributes of a node: setting, reading, deleting, listing.
#include "common/errorhandling.h"
#include "common/functiontrace.h"
#include "general/treevault/nodes/acnodeimpl.h"
#include "general/treevault/values/conversion.h"

#include <cstring>

namespace treevault {

namespace {

// A line for a miss that the caller may well expect; its text is made from the code alone.
template <class WriteName>
void LogMiss(uint32_t severity, HRESULT hr, const WriteName& writeName) {
    LogTraced(severity, [&](WideStream& line) {
        writeName(line);
        line << TV_W(" failed: ");
        AppendErrorText(line, hr);
    });
}

void LogName(const WCHAR* name) {
    LogTraced(SeverityDbg3, [&](WideStream& line) { line << TV_W("Name: ") << name; });
}

} // namespace

HRESULT CACNodeImpl::SetAttribute(const WCHAR* name, ValueType type, const void* data,
                                  size_t size) {
    const auto writeName = [](WideStream& line) { line << TV_W("CACNodeImpl::SetAttribute"); };
    return NamedBoundary(SeverityDbg3, writeName, [&] {
        const FunctionTrace trace(TV_W("CACNodeImpl::SetAttribute"));
        LogName(name);
        LogTraced(SeverityDbg3, [&](WideStream& line) { line << TV_W("Type: ") << type; });
        const LockGuard guard(Lock);
        CheckValue(type, data, size);
        Attributes.EnsureOwn();
        Attributes.Set(name, type, data, size, AttributeModified);
    });
}

void CACNodeImpl::RestoreAttributes(AttributeTable table, const WideString& type) {
    if (table.Entries().empty())
        table = AttributeTable();
    else
        table.EnsureOwn();
    for (AttributeEntry& entry : table.Entries())
        entry.StoreFlags(AttributeModified);
    const LockGuard guard(Lock);
    std::swap(Attributes, table);
    TypeName = type;
}

HRESULT CACNodeImpl::DeleteAttribute(const WCHAR* name) {
    const auto writeName = [&](WideStream& line) {
        line << TV_W("DeleteAttribute('") << name << TV_W("')");
    };
    return NamedBoundary(SeverityDbg2, writeName, [&]() -> HRESULT {
        const FunctionTrace trace(TV_W("CACNodeImpl::DeleteAttribute"));
        LogName(name);
        const LockGuard guard(Lock);
        if (!name) {
            Attributes = AttributeTable();
            return S_OK;
        }
        Attributes.EnsureOwn();
        if (AttributeEntry* entry = Attributes.Find(name)) {
            Attributes.Erase(entry);
            return S_OK;
        }
        LogMiss(SeverityDbg2, TREEVAULT_E_NOT_FOUND, writeName);
        return PvtMiss(TREEVAULT_E_NOT_FOUND, TV_W("Attribute"), name);
    });
}

namespace {

// Copies the value, converted if that was asked for. `*size` receives the bytes needed.
void ValueOut(const AttributeEntry& entry, ValueType wantedType, void* buffer, size_t capacity,
              size_t* size) {
    if (wantedType != entry.Type) {
        uint64_t needed = 0;
        ConvertValue({entry.Type, entry.Value.Data(), entry.Value.Size()}, wantedType, buffer,
                     capacity, &needed);
        *size = static_cast<size_t>(needed);
        return;
    }
    const size_t bytes = entry.Value.Size();
    if (buffer && bytes != 0 && bytes <= capacity)
        std::memcpy(buffer, entry.Value.Data(), bytes);
    *size = bytes;
}

} // namespace

HRESULT CACNodeImpl::GetAttribute(const WCHAR* name, const ValueType* wantedType, void* buffer,
                                  size_t* size, ValueType* storedType) {
    const auto writeName = [&](WideStream& line) {
        line << TV_W("GetAttribute('") << name << TV_W("')");
    };
    return NamedBoundary(SeverityDbg2, writeName, [&]() -> HRESULT {
        const FunctionTrace trace(TV_W("CACNodeImpl::GetAttribute"));
        LogName(name);
        CheckOutPointer(name);
        if (buffer && !size)
            ThrowHr(E_INVALIDARG);
        const LockGuard guard(Lock);
        const size_t capacity = size ? *size : 0;
        const AttributeEntry* entry = Attributes.Find(name);
        if (!entry) {
            LogMiss(SeverityDbg2, TREEVAULT_E_NOT_FOUND, writeName);
            return PvtMiss(TREEVAULT_E_NOT_FOUND, TV_W("Attribute"), name);
        }
        // The caller may use one variable for both types.
        const ValueType wanted = wantedType ? *wantedType : entry->Type;
        if (storedType)
            *storedType = entry->Type;
        if (!size)
            return S_OK;
        ValueOut(*entry, wanted, buffer, capacity, size);
        if (!buffer || *size <= capacity)
            return S_OK;
        LogMiss(SeverityDbg3, TREEVAULT_E_INSUFFICIENT_BUFFER,
                [](WideStream& line) { line << TV_W("CACNodeImpl::GetAttribute"); });
        return TREEVAULT_E_INSUFFICIENT_BUFFER;
    });
}

// The names that carry every bit of `mask`, each with its terminator.
HRESULT CACNodeImpl::PvtListNames(WCHAR* buffer, size_t* size, uint16_t mask) const {
    const size_t capacity = *size;
    size_t offset = 0;
    for (const AttributeEntry& entry : Attributes.Entries()) {
        if ((entry.LoadFlags() & mask) != mask)
            continue;
        const WCHAR* name = Attributes.Name(entry);
        const size_t length = WideLength(name) + 1;
        if (buffer && offset + length <= capacity)
            std::memcpy(buffer + offset, name, length * sizeof(WCHAR));
        offset += length;
    }
    *size = offset;
    return buffer && offset > capacity ? TREEVAULT_E_INSUFFICIENT_BUFFER : S_OK;
}

HRESULT CACNodeImpl::GetAttributeNames(WCHAR* buffer, size_t* size) {
    const auto writeName = [](WideStream& line) { line << TV_W("CACNodeImpl::GetAttributeNames"); };
    return NamedBoundary(SeverityDbg3, writeName, [&] {
        const FunctionTrace trace(TV_W("CACNodeImpl::GetAttributeNames"));
        const LockGuard guard(Lock);
        CheckOutPointer(size);
        const HRESULT hr = PvtListNames(buffer, size, 0);
        return SUCCEEDED(hr) ? hr : PvtMiss(hr, nullptr, nullptr);
    });
}

HRESULT CACNodeImpl::GetModifiedAttributeNames(WCHAR* buffer, size_t* size) {
    return Boundary([&] {
        const LockGuard guard(Lock);
        CheckOutPointer(size);
        return PvtListNames(buffer, size, AttributeModified);
    });
}

// The entry of `name`, or all for null.
std::span<AttributeEntry> CACNodeImpl::PvtRange(const WCHAR* name) const noexcept {
    if (!name)
        return Attributes.Entries();
    AttributeEntry* entry = Attributes.Find(name);
    return {entry, entry ? 1u : 0u};
}

// Writes the flags in place, in a shared table too: they belong to the values that are shared.
HRESULT CACNodeImpl::SetModifiedState(const WCHAR* name, uint32_t state) {
    return Boundary([&]() -> HRESULT {
        const LockGuard guard(Lock);
        if (!Attributes)
            return S_OK;
        const std::span<AttributeEntry> range = PvtRange(name);
        if (range.empty())
            return PvtMiss(TREEVAULT_E_NOT_FOUND, TV_W("Attribute"), name);
        for (AttributeEntry& entry : range) {
            const auto others = static_cast<uint16_t>(entry.LoadFlags() & ~AttributeModified);
            entry.StoreFlags(static_cast<uint16_t>(others | (state != 0 ? AttributeModified : 0)));
        }
        return S_OK;
    });
}

HRESULT CACNodeImpl::GetModifiedState(const WCHAR* name, uint32_t* state) {
    return Boundary([&]() -> HRESULT {
        CheckOutPointer(state);
        const LockGuard guard(Lock);
        if (!Attributes && !name) {
            *state = 0;
            return S_OK;
        }
        const std::span<AttributeEntry> range = PvtRange(name);
        if (range.empty())
            return PvtMiss(TREEVAULT_E_NOT_FOUND, TV_W("Attribute"), name);
        uint16_t flags = 0;
        for (const AttributeEntry& entry : range)
            flags = static_cast<uint16_t>(flags | entry.LoadFlags());
        *state = flags & AttributeModified;
        return S_OK;
    });
}

} // namespace treevault
