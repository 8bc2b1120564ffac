// SPDX-License-Identifier: MIT
// UTF-8 and UTF-16. Text of this library is ASCII most of the time, so that goes eight characters
// at a time; what is valid beside it is left to utfcpp, and only ill-formed text is looked at here.
#include "platform/encoding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utf8.h>

namespace treevault {
namespace {

constexpr size_t Stride = 8; // characters of the ASCII path
constexpr WCHAR Replacement = 0xFFFD;

bool AsciiAhead(const char* at) noexcept {
    uint64_t bytes;
    std::memcpy(&bytes, at, sizeof bytes);
    return (bytes & 0x8080808080808080u) == 0;
}

bool AsciiAhead(const WCHAR* at) noexcept {
    uint64_t units[2];
    std::memcpy(units, at, sizeof units);
    return ((units[0] | units[1]) & 0xFF80FF80FF80FF80u) == 0;
}

// Goes through local blocks, which the compiler knows to lie apart.
template <class From, class To>
void CopyStride(const From* from, To* to) noexcept {
    From block[Stride];
    std::memcpy(block, from, sizeof block);
    To converted[Stride];
    for (size_t index = 0; index < Stride; ++index)
        converted[index] = static_cast<To>(block[index]);
    std::memcpy(to, converted, sizeof converted);
}

// How many bytes are replaced together: the longest beginning of a well-formed sequence, or else
// one byte.
size_t IllFormedLength(const unsigned char* at, size_t available) noexcept {
    const unsigned char lead = at[0];
    if (lead < 0xC2 || lead > 0xF4 || available < 2)
        return 1;
    // The second byte excludes overlong forms, surrogates, and what lies beyond U+10FFFF.
    const unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (at[1] < low || at[1] > high)
        return 1;
    // The bytes behind end before the sequence would be whole, or it would not be ill-formed.
    size_t length = 2;
    while (length < available && (at[length] & 0xC0) == 0x80)
        ++length;
    return length;
}

// Converts text without ASCII.
WCHAR* PutStretch(const char* at, const char* end, WCHAR* to) {
    while (at != end) {
        const char* const valid = utf8::find_invalid(at, end);
        to = utf8::unchecked::utf8to16(at, valid, to);
        at = valid;
        if (at != end) {
            *to++ = Replacement;
            at += IllFormedLength(reinterpret_cast<const unsigned char*>(at),
                                  static_cast<size_t>(end - at));
        }
    }
    return to;
}

bool IsHighSurrogate(uint32_t unit) noexcept {
    return (unit & 0xFC00) == 0xD800;
}

bool IsLowSurrogate(uint32_t unit) noexcept {
    return (unit & 0xFC00) == 0xDC00;
}

// Converts one character and moves behind it.
char* PutCharacter(const WCHAR*& at, const WCHAR* end, char* to) noexcept {
    const uint32_t unit = *at++;
    if (unit < 0x80) {
        *to = static_cast<char>(unit);
        return to + 1;
    }
    if (IsHighSurrogate(unit) && at != end && IsLowSurrogate(*at))
        return utf8::unchecked::append(0x10000 + ((unit & 0x3FF) << 10) + (*at++ & 0x3FFu), to);
    const bool lone = IsHighSurrogate(unit) || IsLowSurrogate(unit);
    return utf8::unchecked::append(lone ? uint32_t{Replacement} : unit, to);
}

} // namespace

void AppendWide(std::string_view utf8, WideText& out) {
    const size_t start = out.size();
    // No byte gives more than one unit.
    out.resize(start + utf8.size());
    WCHAR* to = out.data() + start;
    const char* at = utf8.data();
    const char* const end = at + utf8.size();
    const auto isAscii = [](char c) { return (c & 0x80) == 0; };
    while (at != end) {
        while (static_cast<size_t>(end - at) >= Stride && AsciiAhead(at)) {
            CopyStride(at, to);
            at += Stride;
            to += Stride;
        }
        while (at != end && isAscii(*at))
            *to++ = static_cast<WCHAR>(*at++);
        const char* const stretch = at;
        at = std::find_if(at, end, isAscii);
        to = PutStretch(stretch, at, to);
    }
    out.resize(static_cast<size_t>(to - out.data()));
}

void AppendUtf8(WideView wide, std::string& out) {
    out.reserve(out.size() + wide.size());
    const WCHAR* at = wide.data();
    const WCHAR* const end = at + wide.size();
    while (at != end) {
        std::array<char, 1024> buffer;
        char* to = buffer.data();
        // A character takes four bytes at most.
        char* const full = to + buffer.size() - Stride;
        while (at != end && to <= full) {
            if (static_cast<size_t>(end - at) >= Stride && AsciiAhead(at)) {
                CopyStride(at, to);
                at += Stride;
                to += Stride;
            } else {
                to = PutCharacter(at, end, to);
            }
        }
        out.append(buffer.data(), to);
    }
}

} // namespace treevault
