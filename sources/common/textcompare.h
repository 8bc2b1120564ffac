// SPDX-License-Identifier: MIT
// Comparison of names and search in paths by code unit, several units at a time.
#ifndef TREEVAULT_COMMON_TEXTCOMPARE_H
#define TREEVAULT_COMMON_TEXTCOMPARE_H

#include "platform/widetext.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace treevault {

// The first place at which the two differ, or `length`.
inline size_t FirstDifference(const WCHAR* left, const WCHAR* right, size_t length) noexcept {
    constexpr size_t step = sizeof(uint64_t) / sizeof(WCHAR);
    size_t at = 0;
    for (; length - at >= step; at += step) {
        uint64_t leftUnits, rightUnits;
        std::memcpy(&leftUnits, left + at, sizeof leftUnits);
        std::memcpy(&rightUnits, right + at, sizeof rightUnits);
        if (const uint64_t difference = leftUnits ^ rightUnits) {
            static_assert(std::endian::native == std::endian::little);
            return at + static_cast<size_t>(std::countr_zero(difference)) / 16;
        }
    }
    while (at < length && left[at] == right[at])
        ++at;
    return at;
}

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

// Negative, 0 or positive; code units are unsigned, and a text comes behind its own beginning.
inline int CompareText(WideView left, WideView right) noexcept {
    const size_t length = left.size() < right.size() ? left.size() : right.size();
    const size_t at = FirstDifference(left.data(), right.data(), length);
    if (at != length)
        return left[at] < right[at] ? -1 : 1;
    return left.size() == right.size() ? 0 : left.size() < right.size() ? -1 : 1;
}

inline bool EqualText(WideView left, WideView right) noexcept {
    return left.size() == right.size() &&
           std::memcmp(left.data(), right.data(), left.size() * sizeof(WCHAR)) == 0;
}

} // namespace treevault

#endif
