// SPDX-License-Identifier: MIT
// A file that is open cannot be opened for oneself alone.
#include "support/openfiles.h"

#include <windows.h>

namespace treevault::tests {

bool IsOpen(const std::filesystem::path& file) {
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return GetLastError() == ERROR_SHARING_VIOLATION;
    CloseHandle(handle);
    return false;
}

bool AppendsWhole() {
    const HMODULE system = GetModuleHandleW(L"ntdll.dll");
    return !system || !GetProcAddress(system, "wine_get_version");
}

} // namespace treevault::tests
