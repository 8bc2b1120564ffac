// SPDX-License-Identifier: MIT
#include "widetext.h"

#include "value.h"

#include <cstring>

namespace treevault::program {

WideText ToWide(const std::string& utf8) {
    const Value value =
        Converted({VtStringA, std::string(utf8.c_str(), utf8.size() + 1)}, VtStringW);
    WideText wide(value.Bytes.size() / sizeof(WCHAR) - 1, WCHAR());
    std::memcpy(wide.data(), value.Bytes.data(), wide.size() * sizeof(WCHAR));
    return wide;
}

std::string ToUtf8(WideView wide) {
    Value value{VtStringW, std::string((wide.size() + 1) * sizeof(WCHAR), '\0')};
    std::memcpy(value.Bytes.data(), wide.data(), wide.size() * sizeof(WCHAR));
    std::string utf8 = Converted(value, VtStringA).Bytes;
    utf8.pop_back();
    return utf8;
}

} // namespace treevault::program
