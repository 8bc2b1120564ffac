// SPDX-License-Identifier: MIT
// Wide text as the standard library sees it: views to read, strings to build. The shared form that
// nodes keep is WideString.
#ifndef TREEVAULT_PLATFORM_WIDETEXT_H
#define TREEVAULT_PLATFORM_WIDETEXT_H

#include <treevault/platform.h>

#include <string>
#include <string_view>

// A literal of wide text.
#define TV_W(text) TREEVAULT_WIDE(text)

namespace treevault {

using WideView = std::basic_string_view<WCHAR>;
using WideText = std::basic_string<WCHAR>;

// Separates the names of a path and the folders of a file path, on every platform.
inline constexpr WCHAR PathSeparator = TV_W('\\');

// Length of a zero-terminated text; 0 for null.
inline size_t WideLength(const WCHAR* text) noexcept {
    return text ? std::char_traits<WCHAR>::length(text) : 0;
}

} // namespace treevault

#endif
