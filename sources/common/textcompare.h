// SPDX-License-Identifier: MIT
// Equality of names, and search in paths several code units at a time.
#ifndef TREEVAULT_COMMON_TEXTCOMPARE_H
#define TREEVAULT_COMMON_TEXTCOMPARE_H

#include "platform/widetext.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace treevault {

// The first place of `unit` from `begin` on, or the end.
inline size_t FindUnit(WideView text, WCHAR unit, size_t begin = 0) noexcept {
    constexpr size_t step = sizeof(uint64_t) / sizeof(WCHAR);
    constexpr uint64_t ones = 0x0001000100010001u;
    const uint64_t wanted = ones * static_cast<uint16_t>(unit);
    for (; begin + step <= text.size(); begin += step) {
        uint64_t units;
        std::memcpy(&units, text.data() + begin, sizeof units);
        // The top bit of each unit that has become 0; above the first of them it may err.
        const uint64_t rest = units ^ wanted;
        if (const uint64_t found = (rest - ones) & ~rest & (ones << 15)) {
            static_assert(std::endian::native == std::endian::little);
            return begin + static_cast<size_t>(std::countr_zero(found)) / 16;
        }
    }
    while (begin < text.size() && text[begin] != unit)
        ++begin;
    return begin;
}

inline bool EqualText(WideView left, WideView right) noexcept {
    return left.size() == right.size() &&
           std::memcmp(left.data(), right.data(), left.size() * sizeof(WCHAR)) == 0;
}

} // namespace treevault

#endif
