// SPDX-License-Identifier: MIT
// UTF-8 and UTF-16 by the system's converters. They count in `int` and want to be told the room for
// the result, so long text goes through them in pieces, none of which ends inside a character.
#include "platform/encoding.h"

#include <algorithm>

namespace treevault {
namespace {

constexpr size_t PieceLength = 0x10000;

// Up to three trailing bytes belong to a character that begins before them; more belong to none.
size_t PieceOf(std::string_view utf8) noexcept {
    if (utf8.size() <= PieceLength)
        return utf8.size();
    for (size_t cut = PieceLength; cut > PieceLength - 4; --cut)
        if ((utf8[cut] & 0xC0) != 0x80)
            return cut;
    return PieceLength;
}

size_t PieceOf(WideView wide) noexcept {
    if (wide.size() <= PieceLength)
        return wide.size();
    const bool cutsPair = (wide[PieceLength] & 0xFC00) == 0xDC00;
    return cutsPair ? PieceLength - 1 : PieceLength;
}

} // namespace

void AppendWide(std::string_view utf8, WideText& out) {
    while (!utf8.empty()) {
        const std::string_view piece = utf8.substr(0, PieceOf(utf8));
        utf8.remove_prefix(piece.size());
        const size_t start = out.size();
        // No byte gives more than one unit.
        out.resize(start + piece.size());
        const int length = static_cast<int>(piece.size());
        const int units =
            MultiByteToWideChar(CP_UTF8, 0, piece.data(), length, out.data() + start, length);
        out.resize(start + static_cast<size_t>(units));
    }
}

void AppendUtf8(WideView wide, std::string& out) {
    constexpr size_t most = 3; // bytes of a unit
    while (!wide.empty()) {
        const WideView piece = wide.substr(0, PieceOf(wide));
        wide.remove_prefix(piece.size());
        const size_t start = out.size();
        out.resize(start + most * piece.size());
        const int bytes = WideCharToMultiByte(
            CP_UTF8, 0, piece.data(), static_cast<int>(piece.size()), out.data() + start,
            static_cast<int>(most * piece.size()), nullptr, nullptr);
        out.resize(start + static_cast<size_t>(bytes));
    }
}

} // namespace treevault
