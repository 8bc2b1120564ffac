// SPDX-License-Identifier: MIT
// Process, thread and modules of Linux.
#include "platform/process.h"

#include "platform/encoding.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <iterator>
#include <memory>
#include <pthread.h>
#include <sys/auxv.h>
#include <unistd.h>

namespace treevault {

namespace {
constinit std::atomic<uint32_t> knownProcessId{0}; // asking is a system call
} // namespace

uint32_t CurrentProcessId() noexcept {
    uint32_t known = knownProcessId.load(std::memory_order_relaxed);
    if (known == 0) {
        known = static_cast<uint32_t>(getpid());
        knownProcessId.store(known, std::memory_order_relaxed);
    }
    return known;
}

namespace detail {

constinit thread_local uint32_t KnownThreadId = 0;

uint32_t LearnThreadId() noexcept {
    return KnownThreadId = static_cast<uint32_t>(gettid());
}

} // namespace detail

namespace {

// What comes out of a fork has ids of its own.
[[maybe_unused]] const int forgetsAtFork = pthread_atfork(nullptr, nullptr, [] {
    detail::KnownThreadId = 0;
    knownProcessId = 0;
});

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

bool FindLibrary(Dl_info& module) noexcept {
    static const char inside = 0;
    return FindModule(&inside, module);
}

// The file of the library; empty when that is the executable, or unknown. A relative path holds
// only as long as the current directory does, so it is resolved once, while the library loads.
const std::string& LibraryFile() {
    static const std::string file = [] {
        Dl_info module;
        return FindLibrary(module) && !IsPartOfExecutable(module) ? ResolvePath(module.dli_fname)
                                                                  : std::string();
    }();
    return file;
}

[[maybe_unused]] const std::string& resolvedAtLoad = LibraryFile();

WideText TextOfPath(std::string_view path) {
    WideText text = ToWide(path);
    std::replace(text.begin(), text.end(), TV_W('/'), PathSeparator);
    return text;
}

// Splits a path at its last separator and cuts the file name where `findEnd` says.
template <class FindEnd>
ModulePlace Split(const WideText& wide, FindEnd&& findEnd) {
    const size_t nameAt = wide.rfind(PathSeparator) + 1; // 0 for none
    const WideText name = wide.substr(nameAt);
    return {wide.substr(0, nameAt), name.substr(0, findEnd(name))};
}

} // namespace

WideText ExecutablePath() {
    const std::unique_ptr<char, FreeText> path(realpath("/proc/self/exe", nullptr));
    return path ? TextOfPath(path.get()) : WideText();
}

ModulePlace ExecutablePlace() {
    return Split(ExecutablePath(), [](const WideText& name) { return name.rfind(TV_W('.')); });
}

bool LibraryPlace(ModulePlace& place) {
    if (LibraryFile().empty())
        return false;
    place = Split(TextOfPath(LibraryFile()),
                  [](const WideText& name) { return name.find(TV_W(".so")); });
    return true;
}

WideText LibraryPath() {
    return LibraryFile().empty() ? ExecutablePath() : TextOfPath(LibraryFile());
}

const void* LibraryBase() noexcept {
    Dl_info module;
    return FindLibrary(module) ? module.dli_fbase : nullptr;
}

WideText ProcessCommandLine() {
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    std::string arguments(std::istreambuf_iterator<char>(file), {});
    if (arguments.ends_with('\0'))
        arguments.pop_back();
    std::replace(arguments.begin(), arguments.end(), '\0', ' ');
    return ToWide(arguments);
}

} // namespace treevault
