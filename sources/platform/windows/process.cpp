// SPDX-License-Identifier: MIT
// Process, thread and modules of Windows.
#include "platform/process.h"

namespace treevault {

uint32_t CurrentProcessId() noexcept {
    return GetCurrentProcessId();
}

uint32_t CurrentThreadId() noexcept {
    return GetCurrentThreadId();
}

namespace {

// Null stands for the executable. The system cuts a name that does not fit, and fills the buffer.
WideText ModuleFileName(HMODULE module) {
    WideText name(260, 0);
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size()));
        if (length < name.size()) {
            name.resize(length);
            return name;
        }
        name.resize(2 * name.size());
    }
}

ModulePlace Split(const WideText& path) {
    const size_t nameAt = path.find_last_of(L"\\/") + 1; // 0 for none
    const WideText name = path.substr(nameAt);
    return {path.substr(0, nameAt), name.substr(0, name.rfind(L'.'))};
}

} // namespace

ModulePlace ExecutablePlace() {
    return Split(ModuleFileName(nullptr));
}

namespace {

HMODULE LibraryModule() noexcept {
    static const char inside = 0;
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                           GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const WCHAR*>(&inside), &module);
    return module;
}

} // namespace

bool LibraryPlace(ModulePlace& place) {
    const HMODULE module = LibraryModule();
    if (!module || module == GetModuleHandleW(nullptr))
        return false;
    place = Split(ModuleFileName(module));
    return true;
}

WideText ExecutablePath() {
    return ModuleFileName(nullptr);
}

WideText LibraryPath() {
    return ModuleFileName(LibraryModule());
}

const void* LibraryBase() noexcept {
    return LibraryModule();
}

WideText ProcessCommandLine() {
    return GetCommandLineW();
}

} // namespace treevault
