// SPDX-License-Identifier: MIT
// Paths as they stand on the command line.
#ifndef TREEVAULT_PROGRAM_PATH_H
#define TREEVAULT_PROGRAM_PATH_H

#include "widetext.h"

namespace treevault::program {

inline constexpr WCHAR PathSeparator = '\\';

// The form that the library gives a path: one separator in front of each name, or "\" alone.
// Throws UsageFailure.
WideText ParsePath(const std::string& text);

} // namespace treevault::program

#endif
