// SPDX-License-Identifier: MIT
// Loading on Windows.
#include "support/loadedlibrary.h"

#include <windows.h>

namespace treevault::tests {

std::string LibraryFileName(const std::string& baseName) {
    return baseName + ".dll";
}

LoadedLibrary::LoadedLibrary(const std::filesystem::path& path)
    : Handle(LoadLibraryW(path.c_str())) {}

LoadedLibrary::~LoadedLibrary() {
    if (Handle)
        FreeLibrary(static_cast<HMODULE>(Handle));
}

void* LoadedLibrary::FindAddress(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(Handle), name));
}

} // namespace treevault::tests
