// SPDX-License-Identifier: MIT
// Loading on Linux.
#include "support/loadedlibrary.h"

#include <dlfcn.h>

namespace treevault::tests {

std::string LibraryFileName(const std::string& baseName) {
    return baseName + ".so.5.2.217";
}

LoadedLibrary::LoadedLibrary(const std::filesystem::path& path)
    : Handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {}

LoadedLibrary::~LoadedLibrary() {
    if (Handle)
        dlclose(Handle);
}

void* LoadedLibrary::FindAddress(const char* name) const {
    return dlsym(Handle, name);
}

} // namespace treevault::tests
