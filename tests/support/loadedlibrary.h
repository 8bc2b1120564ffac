// SPDX-License-Identifier: MIT
// A library that a test loads while it runs.
#ifndef TREEVAULT_TESTS_SUPPORT_LOADEDLIBRARY_H
#define TREEVAULT_TESTS_SUPPORT_LOADEDLIBRARY_H

#include <filesystem>
#include <string>

namespace treevault::tests {

// The file name that a library of this base name has on the platform.
std::string LibraryFileName(const std::string& baseName);

// Unloads at its end.
class LoadedLibrary {
public:
    explicit LoadedLibrary(const std::filesystem::path& path);
    ~LoadedLibrary();
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    explicit operator bool() const { return Handle != nullptr; }

    // Null for a name that it does not export.
    template <class Function>
    Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(FindAddress(name));
    }

private:
    void* FindAddress(const char* name) const;

    void* Handle;
};

} // namespace treevault::tests

#endif
