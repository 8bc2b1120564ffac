// SPDX-License-Identifier: MIT
// Who runs: process, thread, and where the executable and this library lie.
#ifndef TREEVAULT_PLATFORM_PROCESS_H
#define TREEVAULT_PLATFORM_PROCESS_H

#include "platform/widetext.h"

#include <cstdint>

namespace treevault {

uint32_t CurrentProcessId() noexcept;

#ifdef _WIN32

uint32_t CurrentThreadId() noexcept;

#else

namespace detail {
// 0 until the thread asked for the first time. The model makes reading it two instructions.
extern constinit thread_local uint32_t KnownThreadId __attribute__((tls_model("initial-exec")));
uint32_t LearnThreadId() noexcept;
} // namespace detail

// Never 0, below 0x80000000, and no two live threads share one. Costs no system call after a
// thread's first call.
inline uint32_t CurrentThreadId() noexcept {
    const uint32_t known = detail::KnownThreadId;
    return known != 0 ? known : detail::LearnThreadId();
}

#endif

struct ModulePlace {
    WideText Directory; // with its final separator; on Linux that is "\" too
    WideText BaseName;  // the file name less what the platform puts behind it (".exe", ".so.5")
};

// Both empty if the platform cannot tell.
ModulePlace ExecutablePlace();

// False, with `place` untouched, when the library's code is part of the executable.
bool LibraryPlace(ModulePlace& place);

// Full paths of files, with "\" on Linux too. The library is the executable when its code is part
// of that. Empty if the platform cannot tell.
WideText ExecutablePath();
WideText LibraryPath();

// Where the library's code was loaded.
const void* LibraryBase() noexcept;

// On Linux the arguments with blanks between them.
WideText ProcessCommandLine();

} // namespace treevault

#endif
