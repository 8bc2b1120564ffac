// SPDX-License-Identifier: MIT
// Reports of the log's own failures, which go to the debugger stream: the log may be what failed.
#ifndef TREEVAULT_COMMON_DEBUGREPORT_H
#define TREEVAULT_COMMON_DEBUGREPORT_H

#include "common/widestream.h"

#include <atomic>

namespace treevault {

namespace detail {
// Where reports go. Tests put a function of their own in place.
extern std::atomic<void (*)(const WideText&)> DebugOutlet;

void ReportGuarded(void (*write)(WideStream&, const void*), const void* context) noexcept;
} // namespace detail

// Reports the text that `write` streams, with a line feed behind it. One that cannot be made is
// lost.
template <class Write>
void DebugReport(const Write& write) noexcept {
    detail::ReportGuarded(
        [](WideStream& text, const void* context) { (*static_cast<const Write*>(context))(text); },
        &write);
}

// "(error: 0x%08x)" of the HRESULT of a code of Windows.
WideText ErrorInReport(uint32_t code);

} // namespace treevault

#endif
