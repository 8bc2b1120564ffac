// SPDX-License-Identifier: MIT
// Folders, and paths as the system joins them.
#include "platform/folders.h"

#include <shlwapi.h>

namespace treevault {

void MakeFolder(const WideText& path) {
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES)
        return;
    const DWORD code = GetLastError();
    if (code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND)
        CreateDirectoryW(path.c_str(), nullptr);
}

WideText JoinPath(const WideText& folder, const WideText& name) {
    WCHAR buffer[MAX_PATH];
    if (PathCombineW(buffer, folder.c_str(), name.c_str()))
        return buffer;
    return folder + PathSeparator + name; // longer than what the system joins
}

} // namespace treevault
