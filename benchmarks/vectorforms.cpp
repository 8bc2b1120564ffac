// SPDX-License-Identifier: MIT
// Sixteen bytes at once, and the rest one by one.
#include "vectorforms.h"

#include <immintrin.h>

namespace treevault::benchmarks {

namespace {

__m128i Load(const void* from) {
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

void Store(void* to, __m128i value) {
    _mm_storeu_si128(static_cast<__m128i*>(to), value);
}

// All ones where the unsigned byte is at most `limit`.
__m128i AtMost(__m128i bytes, char limit) {
    return _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(limit)), bytes);
}

// The values of sixteen digits; what is no digit leaves zeros in `good`.
__m128i DigitsOf(__m128i text, __m128i& good) {
    const __m128i number = _mm_sub_epi8(text, _mm_set1_epi8('0'));
    const __m128i letter =
        _mm_sub_epi8(_mm_or_si128(text, _mm_set1_epi8(0x20)), _mm_set1_epi8('a'));
    const __m128i isNumber = AtMost(number, 9);
    const __m128i isLetter = AtMost(letter, 5);
    good = _mm_and_si128(good, _mm_or_si128(isNumber, isLetter));
    const __m128i letterValue = _mm_add_epi8(letter, _mm_set1_epi8(10));
    return _mm_or_si128(_mm_and_si128(isNumber, number), _mm_andnot_si128(isNumber, letterValue));
}

} // namespace

[[gnu::target("ssse3")]] void FormatHexByVectors(const uint8_t* bytes, size_t size, char* text) {
    const __m128i digits = _mm_setr_epi8('0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'a', 'b',
                                         'c', 'd', 'e', 'f');
    const __m128i mask = _mm_set1_epi8(15);
    size_t at = 0;
    for (; at + 16 <= size; at += 16) {
        const __m128i block = Load(bytes + at);
        const __m128i high =
            _mm_shuffle_epi8(digits, _mm_and_si128(_mm_srli_epi16(block, 4), mask));
        const __m128i low = _mm_shuffle_epi8(digits, _mm_and_si128(block, mask));
        Store(text + 2 * at, _mm_unpacklo_epi8(high, low));
        Store(text + 2 * at + 16, _mm_unpackhi_epi8(high, low));
    }
    FormatHex(bytes + at, size - at, text + 2 * at);
}

[[gnu::target("ssse3")]] bool ParseHexByVectors(const char* text, size_t size, uint8_t* bytes) {
    const __m128i weights = _mm_set1_epi16(0x0110); // 16 for the first digit, 1 for the second
    __m128i good = _mm_set1_epi8(-1);
    size_t at = 0;
    for (; at + 16 <= size; at += 16) {
        const __m128i first = DigitsOf(Load(text + 2 * at), good);
        const __m128i second = DigitsOf(Load(text + 2 * at + 16), good);
        Store(bytes + at, _mm_packus_epi16(_mm_maddubs_epi16(first, weights),
                                           _mm_maddubs_epi16(second, weights)));
    }
    return _mm_movemask_epi8(good) == 0xFFFF && ParseHex(text + 2 * at, size - at, bytes + at);
}

bool WidenByVectors(const char* text, size_t length, WCHAR* wide) {
    const __m128i zero = _mm_setzero_si128();
    __m128i seen = zero;
    size_t at = 0;
    for (; at + 16 <= length; at += 16) {
        const __m128i block = Load(text + at);
        seen = _mm_or_si128(seen, block);
        Store(wide + at, _mm_unpacklo_epi8(block, zero));
        Store(wide + at + 8, _mm_unpackhi_epi8(block, zero));
    }
    unsigned rest = 0;
    for (; at < length; ++at) {
        wide[at] = static_cast<unsigned char>(text[at]);
        rest |= wide[at];
    }
    return _mm_movemask_epi8(seen) == 0 && rest < 0x80;
}

bool NarrowByVectors(const WCHAR* wide, size_t length, char* text) {
    const __m128i zero = _mm_setzero_si128();
    __m128i seen = zero;
    size_t at = 0;
    for (; at + 16 <= length; at += 16) {
        const __m128i first = Load(wide + at);
        const __m128i second = Load(wide + at + 8);
        seen = _mm_or_si128(seen, _mm_or_si128(first, second));
        Store(text + at, _mm_packus_epi16(first, second));
    }
    unsigned rest = 0;
    for (; at < length; ++at) {
        text[at] = static_cast<char>(wide[at]);
        rest |= wide[at];
    }
    const __m128i above = _mm_and_si128(seen, _mm_set1_epi16(static_cast<short>(0xFF80)));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(above, zero)) == 0xFFFF && rest < 0x80;
}

} // namespace treevault::benchmarks
