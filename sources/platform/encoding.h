// SPDX-License-Identifier: MIT
// Conversion between UTF-8 and UTF-16. Text is taken by length, NULs included. Malformed input
// never fails: each maximal ill-formed run, and each lone surrogate, becomes U+FFFD.
#ifndef TREEVAULT_PLATFORM_ENCODING_H
#define TREEVAULT_PLATFORM_ENCODING_H

#include "platform/widetext.h"

#include <string>
#include <string_view>

namespace treevault {

// Each appends to `out`; std::bad_alloc leaves `out` valid.
void AppendWide(std::string_view utf8, WideText& out);
void AppendUtf8(WideView wide, std::string& out);

inline WideText ToWide(std::string_view utf8) {
    WideText text;
    AppendWide(utf8, text);
    return text;
}

inline std::string ToUtf8(WideView wide) {
    std::string text;
    AppendUtf8(wide, text);
    return text;
}

} // namespace treevault

#endif
