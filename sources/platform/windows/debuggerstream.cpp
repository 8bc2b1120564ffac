// SPDX-License-Identifier: MIT
// What a debugger shows.
#include "platform/debuggerstream.h"

namespace treevault {

void WriteToDebugger(const WideText& text) {
    OutputDebugStringW(text.c_str());
}

} // namespace treevault
