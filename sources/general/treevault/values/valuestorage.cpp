// SPDX-License-Identifier: MIT
// Ownership of the bytes of a value.
#include "general/treevault/values/valuestorage.h"

#include "common/errorhandling.h"
#include "general/treevault/values/values.h"

#include <cstring>
#include <new>

namespace treevault {

void ValueStorage::Release() noexcept {
    if (IsOnHeap())
        ::operator delete(Bytes.Block);
    Length = 0;
}

ValueStorage& ValueStorage::operator=(ValueStorage&& other) noexcept {
    if (this != &other) {
        Release();
        Bytes = other.Bytes;
        Length = other.Length;
        other.Length = 0;
    }
    return *this;
}

void ValueStorage::Resize(uint64_t size) {
    if (size == Length)
        return;
    if (size > MaximumValueSize)
        ThrowHr(E_INVALIDARG);
    Release();
    if (size > InlineCapacity) {
        Bytes.Block = ::operator new(size, std::nothrow);
        if (!Bytes.Block)
            ThrowOutOfMemory();
    }
    Length = static_cast<uint32_t>(size);
}

void ValueStorage::Assign(const void* data, uint64_t size) {
    Resize(size);
    if (!data)
        std::memset(Data(), 0, size);
    else
        std::memcpy(Data(), data, size);
}

} // namespace treevault
