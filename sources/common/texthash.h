// SPDX-License-Identifier: MIT
// The hash of a name. It depends on a number that each process draws anew, so that nobody can
// choose names that meet; it must not leave the process.
#ifndef TREEVAULT_COMMON_TEXTHASH_H
#define TREEVAULT_COMMON_TEXTHASH_H

#include "platform/widetext.h"

#include <cstdint>
#include <cstring>

namespace treevault {

namespace detail {
extern const uint64_t HashSeed;
inline constexpr uint64_t HashFactor = 0x9E3779B97F4A7C15u;

__extension__ typedef unsigned __int128 Product;

// Both halves of the product, folded.
inline uint64_t MixHash(uint64_t left, uint64_t right) noexcept {
    const Product product = Product(left) * right;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}
} // namespace detail

// Takes eight code units at a time; the last eight may overlap those before. Names that count up
// are spread over the low bits with any seed.
inline uint32_t HashText(WideView text, uint64_t seed = detail::HashSeed) noexcept {
    const auto four = [&](size_t at) {
        uint64_t units;
        static_assert(sizeof units == 4 * sizeof(WCHAR));
        std::memcpy(&units, text.data() + at, sizeof units);
        return units;
    };
    const size_t size = text.size();
    // The length is spread, so that no unit makes up for it.
    uint64_t hash = seed + size * detail::HashFactor;
    const auto take = [&](uint64_t first, uint64_t second) {
        hash = detail::MixHash(first ^ hash, second ^ seed);
    };
    if (size >= 8) {
        for (size_t at = 0; at + 8 < size; at += 8)
            take(four(at), four(at + 4));
        take(four(size - 8), four(size - 4));
    } else if (size >= 4) {
        take(four(0), four(size - 4));
    } else if (size != 0) {
        take(text[0], uint64_t{text[size / 2]} << 16 | text[size - 1]);
    }
    // With some seeds the product alone leaves names that differ little close together.
    return static_cast<uint32_t>((hash ^ (hash >> 32)) * detail::HashFactor >> 32);
}

} // namespace treevault

#endif
