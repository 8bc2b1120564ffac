// SPDX-License-Identifier: MIT
// Return addresses of the calling thread.
#ifndef TREEVAULT_PLATFORM_CALLSTACK_H
#define TREEVAULT_PLATFORM_CALLSTACK_H

namespace treevault {

// Fills `frames` with `count` return addresses, beginning `skip` frames above the caller of this
// function (0: the address that the caller returns to), and puts null where the stack ends.
void CaptureReturnAddresses(unsigned skip, void** frames, unsigned count) noexcept;

} // namespace treevault

#endif
