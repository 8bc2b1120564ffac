// SPDX-License-Identifier: MIT
// The write position of a conversion: it counts what is needed and writes what fits.
#ifndef TREEVAULT_VALUES_OUTPUTCURSOR_H
#define TREEVAULT_VALUES_OUTPUTCURSOR_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace treevault {

// Copies without a call where a value is small, as most are. Two copies of one width overlap.
inline void CopyBytes(uint8_t* to, const void* from, uint64_t size) noexcept {
    const auto* const bytes = static_cast<const uint8_t*>(from);
    const auto copyEnds = [&]<size_t width>(std::integral_constant<size_t, width>) {
        std::memcpy(to, bytes, width);
        std::memcpy(to + size - width, bytes + size - width, width);
    };
    if (size > 32)
        std::memcpy(to, from, size);
    else if (size >= 16)
        copyEnds(std::integral_constant<size_t, 16>());
    else if (size >= 8)
        copyEnds(std::integral_constant<size_t, 8>());
    else if (size >= 4)
        copyEnds(std::integral_constant<size_t, 4>());
    else if (size >= 2)
        copyEnds(std::integral_constant<size_t, 2>());
    else if (size == 1)
        *to = *bytes;
}

struct OutputCursor {
    void* Buffer = nullptr; // null counts only
    uint64_t Capacity = 0;
    uint64_t Used = 0; // bytes that were or would have been written

    // Advances by `size` and gives the place of these bytes, or null when they are not to be
    // written. The place has no particular alignment.
    uint8_t* Take(uint64_t size) noexcept {
        uint8_t* const place = Room(size);
        Used += size;
        return place;
    }

    // The place of the next bytes if `size` of them may be written there, or null. Whoever writes
    // there takes what was written.
    uint8_t* Room(uint64_t size) const noexcept {
        return Buffer && Used + size <= Capacity ? static_cast<uint8_t*>(Buffer) + Used : nullptr;
    }

    void Write(const void* data, uint64_t size) noexcept {
        if (uint8_t* const place = Take(size))
            CopyBytes(place, data, size);
    }

    template <class T>
    void WriteObject(const T& object) noexcept {
        if (uint8_t* const place = Take(sizeof(T)))
            std::memcpy(place, &object, sizeof(T));
    }
};

} // namespace treevault

#endif
