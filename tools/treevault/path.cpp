// SPDX-License-Identifier: MIT
#include "path.h"

#include "failure.h"

namespace treevault::program {

WideText ParsePath(const std::string& text) {
    if (!text.starts_with('\\') || (text.size() > 1 && text.ends_with('\\')))
        throw UsageFailure("'" + text + "' is no path; a path is written \\a\\b");
    WideText path;
    for (const WCHAR unit : ToWide(text))
        if (unit != PathSeparator || path.empty() || path.back() != PathSeparator)
            path += unit;
    return path;
}

} // namespace treevault::program
