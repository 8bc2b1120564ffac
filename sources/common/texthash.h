// SPDX-License-Identifier: MIT
// The hash of a name. It depends on a number that each process draws anew, so that nobody can
// choose names that meet; it must not leave the process.
#ifndef TREEVAULT_COMMON_TEXTHASH_H
#define TREEVAULT_COMMON_TEXTHASH_H

#include "platform/widetext.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace treevault {

namespace detail {
extern const uint64_t HashSeed;

__extension__ typedef unsigned __int128 Product;

// Both halves of the product, folded.
inline uint64_t MixHash(uint64_t left, uint64_t right) noexcept {
    const Product product = Product(left) * right;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}
} // namespace detail

// Takes eight code units at a time.
inline uint32_t HashText(WideView text) noexcept {
    constexpr size_t step = 2 * sizeof(uint64_t) / sizeof(WCHAR);
    uint64_t hash = detail::HashSeed ^ text.size();
    size_t at = 0;
    do {
        uint64_t units[2] = {};
        const size_t count = std::min(step, text.size() - at);
        std::memcpy(units, text.data() + at, count * sizeof(WCHAR));
        hash = detail::MixHash(units[0] ^ hash, units[1] ^ detail::HashSeed);
        at += step;
    } while (at < text.size());
    return static_cast<uint32_t>(hash ^ (hash >> 32));
}

} // namespace treevault

#endif
