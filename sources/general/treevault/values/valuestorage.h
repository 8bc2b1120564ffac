// SPDX-License-Identifier: MIT
// The bytes of a value that a node owns: up to 8 inline, more on the heap.
#ifndef TREEVAULT_VALUES_VALUESTORAGE_H
#define TREEVAULT_VALUES_VALUESTORAGE_H

#include <cstdint>

namespace treevault {

// Owns its block alone. The last 4 of its 16 bytes are padding that a structure may fill: a member
// marked [[no_unique_address]], or a base, is followed directly by what comes next.
class ValueStorage {
public:
    static constexpr uint32_t InlineCapacity = 8;

    ValueStorage() noexcept : Bytes{}, Length(0) {}
    ValueStorage(const void* data, uint64_t size) : ValueStorage() { Assign(data, size); }
    ValueStorage(const ValueStorage& other) : ValueStorage() {
        if (other.IsOnHeap()) {
            Assign(other.Bytes.Block, other.Length);
        } else {
            Bytes = other.Bytes;
            Length = other.Length;
        }
    }
    ValueStorage(ValueStorage&& other) noexcept : Bytes(other.Bytes), Length(other.Length) {
        other.Length = 0;
    }
    ~ValueStorage() {
        if (IsOnHeap())
            Release();
    }

    // The old bytes are given up only after the new ones were made.
    ValueStorage& operator=(const ValueStorage& other) { return *this = ValueStorage(other); }
    ValueStorage& operator=(ValueStorage&& other) noexcept;

    // Makes room for `size` bytes; what was held is not kept, unless the size is the same. Raises
    // 0x80070057 for more than 32 bits (nothing changes) and 0x8007000E when memory runs out (the
    // storage is then empty).
    void Resize(uint64_t size);

    // Resizes and copies; null data gives zeros. `data` is not to lie in this storage.
    void Assign(const void* data, uint64_t size);

    // Never null.
    void* Data() noexcept { return IsOnHeap() ? Bytes.Block : Bytes.Inline; }
    const void* Data() const noexcept { return IsOnHeap() ? Bytes.Block : Bytes.Inline; }
    uint32_t Size() const noexcept { return Length; }

private:
    bool IsOnHeap() const noexcept { return Length > InlineCapacity; }
    void Release() noexcept;

    union {
        uint8_t Inline[InlineCapacity];
        void* Block;
    } Bytes;
    uint32_t Length;
};

static_assert(sizeof(ValueStorage) == 16);

} // namespace treevault

#endif
