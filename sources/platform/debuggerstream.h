// SPDX-License-Identifier: MIT
// The stream that a debugger shows; on Linux that is standard error.
#ifndef TREEVAULT_PLATFORM_DEBUGGERSTREAM_H
#define TREEVAULT_PLATFORM_DEBUGGERSTREAM_H

#include "platform/widetext.h"

namespace treevault {

// What cannot be written is lost. std::bad_alloc.
void WriteToDebugger(const WideText& text);

} // namespace treevault

#endif
