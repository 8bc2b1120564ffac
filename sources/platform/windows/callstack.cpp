// SPDX-License-Identifier: MIT
// Return addresses as the system walks them.
#include "platform/callstack.h"

#include <windows.h>

#include <algorithm>

namespace treevault {

__attribute__((noinline)) void CaptureReturnAddresses(unsigned skip, void** frames,
                                                      unsigned count) noexcept {
    // The walk begins inside this function; its caller comes next.
    const unsigned found = RtlCaptureStackBackTrace(skip + 2, count, frames, nullptr);
    std::fill(frames + std::min(found, count), frames + count, nullptr);
}

} // namespace treevault
