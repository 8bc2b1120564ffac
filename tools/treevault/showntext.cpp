// SPDX-License-Identifier: MIT
#include "showntext.h"

#include <algorithm>
#include <cstdio>

namespace treevault::program {

namespace {

struct UnitRange {
    unsigned First, Last;
};

// C0 and C1 controls, marks and overrides of direction, line and paragraph ends, the byte order
// mark.
constexpr UnitRange UnsafeRanges[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0x061C, 0x061C},
                                      {0x200B, 0x200B}, {0x200E, 0x200F}, {0x2028, 0x202E},
                                      {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}};

bool IsUnsafe(WCHAR unit) {
    return std::ranges::any_of(UnsafeRanges, [unit](const UnitRange& range) {
        return unit >= range.First && unit <= range.Last;
    });
}

void Append(const char* text, WideText& out) {
    for (; *text != '\0'; ++text)
        out += static_cast<WCHAR>(*text);
}

void AppendEscape(WCHAR unit, WideText& out) {
    switch (unit) {
    case '\n':
        return Append("\\n", out);
    case '\r':
        return Append("\\r", out);
    case '\t':
        return Append("\\t", out);
    default:
        char escape[16];
        std::snprintf(escape, sizeof(escape), "\\u{%X}", static_cast<unsigned>(unit));
        return Append(escape, out);
    }
}

// `text` less what is behind the limit; a pair of surrogates is not torn.
WideView Cut(WideView text, size_t limit) {
    if (text.size() <= limit)
        return text;
    const bool tears = limit > 0 && text[limit - 1] >= 0xD800 && text[limit - 1] <= 0xDBFF;
    return text.substr(0, tears ? limit - 1 : limit);
}

std::string Show(WideView text, size_t limit, bool isQuoted) {
    const WideView shown = Cut(text, limit);
    WideText out;
    if (isQuoted)
        out += WCHAR('"');
    for (const WCHAR unit : shown) {
        if (IsUnsafe(unit)) {
            AppendEscape(unit, out);
            continue;
        }
        if (isQuoted && (unit == '"' || unit == '\\'))
            out += WCHAR('\\');
        out += unit;
    }
    if (isQuoted)
        out += WCHAR('"');
    if (shown.size() != text.size())
        Append("...", out);
    return ToUtf8(out);
}

} // namespace

std::string Escaped(WideView text, size_t limit) {
    return Show(text, limit, false);
}

std::string Quoted(WideView text, size_t limit) {
    return Show(text, limit, true);
}

std::string Plain(WideView text) {
    const bool isPlain = !text.empty() && std::ranges::none_of(text, [](WCHAR unit) {
        return IsUnsafe(unit) || unit == ' ' || unit == '"' || unit == '\'';
    });
    return isPlain ? ToUtf8(text) : Quoted(text);
}

} // namespace treevault::program
