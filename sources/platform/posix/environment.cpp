// SPDX-License-Identifier: MIT
// Environment variables, which are UTF-8 here.
#include "platform/environment.h"

#include "platform/encoding.h"

#include <cstdlib>

namespace treevault {

bool ReadEnvironment(const WideText& name, WideText& value) {
    const char* const found = std::getenv(ToUtf8(name).c_str());
    if (!found)
        return false;
    value = ToWide(found);
    return true;
}

WideText ExpandEnvironment(const WideText& text) {
    WideText result;
    size_t at = 0;
    for (;;) {
        const size_t open = text.find(TV_W('%'), at);
        const size_t close = open == WideText::npos ? open : text.find(TV_W('%'), open + 1);
        if (close == WideText::npos)
            return result.append(text, at);
        result.append(text, at, open - at);
        WideText value;
        if (ReadEnvironment(text.substr(open + 1, close - open - 1), value))
            result += value;
        else
            result.append(text, open, close + 1 - open);
        at = close + 1;
    }
}

} // namespace treevault
