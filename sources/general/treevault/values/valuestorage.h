// SPDX-License-Identifier: MIT
// The bytes of a value that a node owns: up to 8 inline, more on the heap or in room that whoever
// holds the value lends it.
#ifndef TREEVAULT_VALUES_VALUESTORAGE_H
#define TREEVAULT_VALUES_VALUESTORAGE_H

#include <cstdint>

namespace treevault {

// Never shares its bytes. Lent room belongs to the holder of the value; it serves sizes from 9
// bytes up to its own. A copy never lies in it, a move takes it along.
class ValueStorage {
public:
    static constexpr uint32_t InlineCapacity = 8;

    ValueStorage() noexcept : Bytes{}, Length(0), RoomSize(0) {}
    ValueStorage(const void* data, uint64_t size) : ValueStorage() { Assign(data, size); }

    // In lent room, which must suffice; for more than 8 bytes.
    ValueStorage(void* room, uint32_t roomSize, const void* data, uint32_t size) noexcept;

    ValueStorage(const ValueStorage& other) : ValueStorage() {
        if (other.LiesOutside()) {
            Assign(other.Bytes.Outside, other.Length);
        } else {
            Bytes = other.Bytes;
            Length = other.Length;
        }
    }
    ValueStorage(ValueStorage&& other) noexcept : ValueStorage() { Take(other); }
    ~ValueStorage() {
        if (LiesOutside() && !LiesInRoom())
            Release();
    }

    // The old bytes are given up only after the new ones were made.
    ValueStorage& operator=(const ValueStorage& other) { return *this = ValueStorage(other); }
    ValueStorage& operator=(ValueStorage&& other) noexcept;

    // Takes the size `size`; what was held is not kept, unless the size is the same. Raises
    // 0x80070057 for more than 32 bits (nothing changes) and 0x8007000E when memory runs out (the
    // storage is then empty).
    void Resize(uint64_t size);

    // Resizes and copies; null data gives zeros. `data` is not to lie in this storage.
    void Assign(const void* data, uint64_t size);

    // Whether so many bytes can be assigned without memory of their own.
    bool Fits(uint64_t size) const noexcept {
        return size == Length || (LiesInRoom() && size <= RoomSize && size > InlineCapacity);
    }

    // How much room was lent, 0 for none.
    uint32_t LentRoom() const noexcept { return RoomSize; }

    // Moves the bytes from lent room into other room of the same size.
    void MoveRoom(void* room) noexcept;

    // Never null.
    void* Data() noexcept { return LiesOutside() ? Bytes.Outside : Bytes.Inline; }
    const void* Data() const noexcept { return LiesOutside() ? Bytes.Outside : Bytes.Inline; }
    uint32_t Size() const noexcept { return Length; }

private:
    bool LiesOutside() const noexcept { return Length > InlineCapacity; }
    bool LiesInRoom() const noexcept { return RoomSize != 0; }
    void Take(ValueStorage& other) noexcept;
    void Release() noexcept;

    union {
        uint8_t Inline[InlineCapacity];
        void* Outside;
    } Bytes;
    uint32_t Length;
    uint32_t RoomSize; // 0 unless the bytes lie in lent room
};

static_assert(sizeof(ValueStorage) == 16);

} // namespace treevault

#endif
