// SPDX-License-Identifier: MIT
// Environment variables as the system keeps them.
#include "platform/environment.h"

namespace treevault {

bool ReadEnvironment(const WideText& name, WideText& value) {
    WideText buffer(260, 0);
    // Another thread may set a longer value between two calls.
    for (;;) {
        SetLastError(ERROR_SUCCESS);
        const DWORD length =
            GetEnvironmentVariableW(name.c_str(), buffer.data(), static_cast<DWORD>(buffer.size()));
        if (length == 0 && GetLastError() != ERROR_SUCCESS)
            return false;
        const bool fits = length < buffer.size();
        buffer.resize(length);
        if (fits)
            break;
    }
    value = std::move(buffer);
    return true;
}

WideText ExpandEnvironment(const WideText& text) {
    WideText buffer(260, 0);
    for (;;) {
        // The length tells the terminator too.
        const DWORD length = ExpandEnvironmentStringsW(text.c_str(), buffer.data(),
                                                       static_cast<DWORD>(buffer.size()));
        if (length == 0)
            return text;
        const bool fits = length <= buffer.size();
        buffer.resize(fits ? length - 1 : length);
        if (fits)
            return buffer;
    }
}

} // namespace treevault
