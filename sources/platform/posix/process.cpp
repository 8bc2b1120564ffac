// SPDX-License-Identifier: MIT
// Process, thread and modules of Linux.
#include "platform/process.h"

#include "platform/encoding.h"

#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>
#include <memory>
#include <pthread.h>
#include <sys/auxv.h>
#include <unistd.h>

namespace treevault {

uint32_t CurrentProcessId() noexcept {
    return static_cast<uint32_t>(getpid());
}

namespace detail {

constinit thread_local uint32_t KnownThreadId = 0;

uint32_t LearnThreadId() noexcept {
    return KnownThreadId = static_cast<uint32_t>(gettid());
}

} // namespace detail

namespace {

// The thread that comes out of a fork has an id of its own.
[[maybe_unused]] const int forgetsAtFork =
    pthread_atfork(nullptr, nullptr, [] { detail::KnownThreadId = 0; });

struct FreeText {
    void operator()(char* text) const noexcept { std::free(text); }
};

std::string ResolvePath(const char* path) {
    const std::unique_ptr<char, FreeText> resolved(realpath(path, nullptr));
    return resolved ? resolved.get() : path;
}

bool FindModule(const void* address, Dl_info& module) noexcept {
    return dladdr(address, &module) != 0 && module.dli_fname;
}

// The program headers that the system passes are those of the executable.
bool IsPartOfExecutable(const Dl_info& module) noexcept {
    const auto headers = reinterpret_cast<const void*>(getauxval(AT_PHDR));
    Dl_info executable;
    return FindModule(headers, executable) && executable.dli_fbase == module.dli_fbase;
}

// The file of the library; empty when that is the executable, or unknown. A relative path holds
// only as long as the current directory does, so it is resolved once, while the library loads.
const std::string& LibraryFile() {
    static const std::string file = [] {
        static const char inside = 0;
        Dl_info module;
        return FindModule(&inside, module) && !IsPartOfExecutable(module)
                   ? ResolvePath(module.dli_fname)
                   : std::string();
    }();
    return file;
}

[[maybe_unused]] const std::string& resolvedAtLoad = LibraryFile();

// Splits a path at its last separator and cuts the file name where `findEnd` says.
template <class FindEnd>
ModulePlace Split(const std::string& path, FindEnd&& findEnd) {
    WideText wide = ToWide(path);
    std::replace(wide.begin(), wide.end(), TV_W('/'), PathSeparator);
    const size_t nameAt = wide.rfind(PathSeparator) + 1; // 0 for none
    const WideText name = wide.substr(nameAt);
    return {wide.substr(0, nameAt), name.substr(0, findEnd(name))};
}

} // namespace

ModulePlace ExecutablePlace() {
    const std::unique_ptr<char, FreeText> path(realpath("/proc/self/exe", nullptr));
    if (!path)
        return {};
    return Split(path.get(), [](const WideText& name) { return name.rfind(TV_W('.')); });
}

bool LibraryPlace(ModulePlace& place) {
    if (LibraryFile().empty())
        return false;
    place = Split(LibraryFile(), [](const WideText& name) { return name.find(TV_W(".so")); });
    return true;
}

} // namespace treevault
