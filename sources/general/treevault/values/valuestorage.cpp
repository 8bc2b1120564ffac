// SPDX-License-Identifier: MIT
// Ownership of the bytes of a value.
#include "general/treevault/values/valuestorage.h"

#include "common/errorhandling.h"
#include "general/treevault/values/values.h"

#include <cstring>
#include <new>
#include <utility>

namespace treevault {

ValueStorage::ValueStorage(void* room, uint32_t roomSize, const void* data, uint32_t size) noexcept
    : Length(size), RoomSize(roomSize) {
    Bytes.Outside = room;
    Assign(data, size);
}

void ValueStorage::Release() noexcept {
    if (LiesOutside() && !LiesInRoom())
        ::operator delete(Bytes.Outside);
    Length = 0;
    RoomSize = 0;
}

void ValueStorage::Take(ValueStorage& other) noexcept {
    Bytes = other.Bytes;
    Length = std::exchange(other.Length, 0);
    RoomSize = std::exchange(other.RoomSize, 0);
}

ValueStorage& ValueStorage::operator=(ValueStorage&& other) noexcept {
    if (this != &other) {
        Release();
        Take(other);
    }
    return *this;
}

void ValueStorage::Resize(uint64_t size) {
    if (size == Length)
        return;
    if (size > MaximumValueSize)
        ThrowHr(E_INVALIDARG);
    if (!Fits(size)) {
        Release();
        if (size > InlineCapacity) {
            Bytes.Outside = ::operator new(size, std::nothrow);
            if (!Bytes.Outside)
                ThrowOutOfMemory();
        }
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

void ValueStorage::MoveRoom(void* room) noexcept {
    std::memcpy(room, Bytes.Outside, Length);
    Bytes.Outside = room;
}

} // namespace treevault
