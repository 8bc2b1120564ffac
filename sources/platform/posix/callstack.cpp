// SPDX-License-Identifier: MIT
// Return addresses by the unwinder, which stops as soon as it has enough of them.
#include "platform/callstack.h"

#include <unwind.h>

namespace treevault {
namespace {

struct Capture {
    unsigned Skip;
    void** Next;
    void** End;
};

_Unwind_Reason_Code TakeFrame(_Unwind_Context* context, void* argument) noexcept {
    Capture& capture = *static_cast<Capture*>(argument);
    if (capture.Skip != 0) {
        --capture.Skip;
        return _URC_NO_REASON;
    }
    if (capture.Next != capture.End)
        *capture.Next++ = reinterpret_cast<void*>(_Unwind_GetIP(context));
    return capture.Next == capture.End ? _URC_END_OF_STACK : _URC_NO_REASON;
}

} // namespace

__attribute__((noinline)) void CaptureReturnAddresses(unsigned skip, void** frames,
                                                      unsigned count) noexcept {
    // The walk begins inside this function; its caller comes next.
    Capture capture{skip + 2, frames, frames + count};
    if (count != 0)
        _Unwind_Backtrace(TakeFrame, &capture);
    while (capture.Next != capture.End)
        *capture.Next++ = nullptr;
}

} // namespace treevault
