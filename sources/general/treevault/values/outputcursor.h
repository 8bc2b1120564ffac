// SPDX-License-Identifier: MIT
// The write position of a conversion: it counts what is needed and writes what fits.
#ifndef TREEVAULT_GENERAL_TREEVAULT_VALUES_OUTPUTCURSOR_H
#define TREEVAULT_GENERAL_TREEVAULT_VALUES_OUTPUTCURSOR_H

#include <cstdint>
#include <cstring>

namespace treevault {

struct OutputCursor {
    void* Buffer = nullptr; // null counts only
    uint64_t Capacity = 0;
    uint64_t Used = 0; // bytes that were or would have been written

    // Advances by `size` and gives the place of these bytes, or null when they are not to be
    // written. The place has no particular alignment.
    uint8_t* Take(uint64_t size) noexcept {
        uint8_t* place = nullptr;
        if (Buffer && Used + size <= Capacity)
            place = static_cast<uint8_t*>(Buffer) + Used;
        Used += size;
        return place;
    }

    void Write(const void* data, uint64_t size) noexcept {
        uint8_t* place = Take(size);
        if (place && size != 0)
            std::memcpy(place, data, size);
    }

    template <class T>
    void WriteObject(const T& object) noexcept {
        Write(&object, sizeof(T));
    }
};

} // namespace treevault

#endif
