// SPDX-License-Identifier: MIT
// Reports to the debugger stream.
#include "common/debugreport.h"

#include "common/errorhandling.h"
#include "common/hextext.h"
#include "platform/debuggerstream.h"

namespace treevault {

namespace detail {

constinit std::atomic<void (*)(const WideText&)> DebugOutlet{&WriteToDebugger};

void ReportGuarded(void (*write)(WideStream&, const void*), const void* context) noexcept {
    try {
        WideStream text;
        write(text, context);
        text << TV_W("\n");
        DebugOutlet.load()(text.Str());
    } catch (...) {
        // There is no further place to tell.
    }
}

} // namespace detail

WideText ErrorInReport(uint32_t code) {
    const auto hr = static_cast<uint32_t>(HresultFromWin32(code));
    WideText text = TV_W("(error: 0x");
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto& pair = LowerHexPairs<WCHAR>[hr >> shift & 0xFF];
        text.append(pair.data(), pair.size());
    }
    return text + TV_W(")");
}

} // namespace treevault
