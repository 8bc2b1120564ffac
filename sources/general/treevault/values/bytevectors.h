// SPDX-License-Identifier: MIT
// Sixteen characters at a time, in the vectors that GCC and Clang compile for every processor.
#ifndef TREEVAULT_VALUES_BYTEVECTORS_H
#define TREEVAULT_VALUES_BYTEVECTORS_H

#include "platform/widetext.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace treevault {

static_assert(std::endian::native == std::endian::little, "the low byte of a unit comes first");

using ByteVector [[gnu::vector_size(16)]] = uint8_t;
inline constexpr size_t VectorSize = sizeof(ByteVector);

inline ByteVector LoadBytes(const void* from) noexcept {
    ByteVector bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

inline void StoreBytes(void* to, ByteVector bytes) noexcept {
    std::memcpy(to, &bytes, sizeof bytes);
}

// The bytes at even and at odd places of two vectors, taken as one.
inline ByteVector EvenBytes(ByteVector a, ByteVector b) noexcept {
    return __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
}
inline ByteVector OddBytes(ByteVector a, ByteVector b) noexcept {
    return __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
}

// Stores the bytes of both in turn: even[0], odd[0], even[1] and so on.
inline void StoreInTurn(uint8_t* to, ByteVector even, ByteVector odd) noexcept {
    StoreBytes(to, __builtin_shufflevector(even, odd, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6,
                                           22, 7, 23));
    StoreBytes(to + VectorSize, __builtin_shufflevector(even, odd, 8, 24, 9, 25, 10, 26, 11, 27, 12,
                                                        28, 13, 29, 14, 30, 15, 31));
}

inline bool HasAnyBit(ByteVector bytes) noexcept {
    uint64_t halves[2];
    std::memcpy(halves, &bytes, sizeof halves);
    return (halves[0] | halves[1]) != 0;
}

// Sixteen characters as bytes. Where one is no ASCII, its byte is not to be used and bits are set
// in `others`.
inline ByteVector LoadAscii(const char* text, ByteVector& others) noexcept {
    const ByteVector bytes = LoadBytes(text);
    others |= bytes & 0x80;
    return bytes;
}

inline ByteVector LoadAscii(const WCHAR* text, ByteVector& others) noexcept {
    const ByteVector first = LoadBytes(text);
    const ByteVector second = LoadBytes(text + VectorSize / sizeof(WCHAR));
    using Units [[gnu::vector_size(sizeof(ByteVector))]] = uint16_t;
    others |= reinterpret_cast<ByteVector>(reinterpret_cast<Units>(first | second) & 0xFF80);
    return EvenBytes(first, second);
}

// Stores sixteen ASCII characters.
template <class Char>
void StoreAscii(uint8_t* to, ByteVector text) noexcept {
    if constexpr (sizeof(Char) == 1)
        StoreBytes(to, text);
    else
        StoreInTurn(to, text, ByteVector{});
}

// The values of sixteen hexadecimal digits. What is no digit sets bits in `others`.
inline ByteVector HexValues(ByteVector text, ByteVector& others) noexcept {
    const auto isDecimal = reinterpret_cast<ByteVector>(text - '0' < 10);
    const auto isLetter = reinterpret_cast<ByteVector>((text | 0x20) - 'a' < 6);
    others |= ~(isDecimal | isLetter);
    return (text & 15) + (isLetter & 9);
}

// Sixteen bytes from the values of their digits, of which the first is the high one.
inline ByteVector JoinHexValues(ByteVector first, ByteVector second) noexcept {
    return EvenBytes(first, second) << 4 | OddBytes(first, second);
}

} // namespace treevault

#endif
