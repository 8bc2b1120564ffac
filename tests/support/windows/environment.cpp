// SPDX-License-Identifier: MIT
// Setting of variables on Windows, where the runtime keeps a copy that the system does not see.
#include "support/environment.h"

#include <windows.h>

namespace treevault::tests {

namespace {

std::wstring Widen(const char* text) {
    const int length = MultiByteToWideChar(CP_UTF8, 0, text, -1, nullptr, 0);
    std::wstring wide(static_cast<size_t>(length), 0);
    MultiByteToWideChar(CP_UTF8, 0, text, -1, wide.data(), length);
    return wide;
}

} // namespace

void SetVariable(const char* name, const char* value) {
    SetEnvironmentVariableW(Widen(name).c_str(), value ? Widen(value).c_str() : nullptr);
}

} // namespace treevault::tests
