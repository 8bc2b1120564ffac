// SPDX-License-Identifier: MIT
// Text of the command line and of files is UTF-8, text of the library is UTF-16; the library itself
// converts between them.
#ifndef TREEVAULT_PROGRAM_WIDETEXT_H
#define TREEVAULT_PROGRAM_WIDETEXT_H

#include <treevault/platform.h>

#include <string>
#include <string_view>

namespace treevault::program {

using WideText = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;

// What is malformed becomes U+FFFD.
WideText ToWide(const std::string& utf8);
std::string ToUtf8(WideView wide);

} // namespace treevault::program

#endif
