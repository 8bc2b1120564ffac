// SPDX-License-Identifier: MIT
// Raising, recording and reporting of failures.
#include "common/errorhandling.h"

#include "common/errordescription.h"
#include "common/errormessages.h"
#include "common/settings.h"
#include "platform/callstack.h"

#include <iterator>
#include <new>

// The count of frames that a capture skips depends on these functions having one each.
#define TREEVAULT_OWN_FRAME __attribute__((noinline))

namespace treevault {

TREEVAULT_OWN_FRAME void HRES::Raise() {
    Set(Code, true);
    throw HRX(*this);
}

TREEVAULT_OWN_FRAME void HRES::Set(HRESULT hr, bool takeErrorInfo) noexcept {
    Code = hr;
    Info.Reset();
    if (hr >= 0)
        return;
    // One more for Raise or the constructor that called.
    CaptureReturnAddresses(static_cast<unsigned>(FramesToSkip) + 1, Frames,
                           static_cast<unsigned>(std::size(Frames)));
    if (takeErrorInfo)
        GetErrorInfo(0, Info.Put());
}

unsigned HRES::FrameCount() const noexcept {
    unsigned count = static_cast<unsigned>(std::size(Frames));
    while (count != 0 && !Frames[count - 1])
        --count;
    return count;
}

TREEVAULT_OWN_FRAME HRX::HRX(HRESULT hr) noexcept {
    Set(hr, true);
    // Behind the call, so that it is no jump, which would take this function's frame away.
    __asm__ volatile("");
}

TREEVAULT_OWN_FRAME void ThrowHr(HRESULT hr) {
    HRES result(hr);
    result = E_FAIL;
    __builtin_unreachable();
}

void ThrowOutOfMemory() {
    ThrowHr(E_OUTOFMEMORY);
}

void RaiseNullPointer() {
    HRES result(E_POINTER);
    __builtin_unreachable();
}

void AppendErrorText(WideStream& stream, const HRES& failure) {
    const ErrorDescription description(failure.Code, failure.Info.Get(), nullptr, failure.Frames,
                                       failure.FrameCount());
    stream << description.Format();
}

void AppendErrorText(WideStream& stream, HRESULT code) {
    stream << ErrorDescription(code).Format();
}

namespace {

// A record that memory does not suffice for is left out: the code still reaches the caller.
template <class Describe>
void SetRecord(Describe&& describe) noexcept {
    try {
        SetErrorInfo(0, MakeErrorRecord(describe()).Get());
    } catch (const std::bad_alloc&) {
        SetErrorInfo(0, nullptr);
    }
}

} // namespace

HRESULT ReportError(HRESULT hr) noexcept {
    SetRecord([&] { return ErrorDescription(hr); });
    return hr;
}

HRESULT ReportError(HRESULT hr, WideView context) noexcept {
    SetRecord([&] {
        ErrorDescription description(hr);
        description.Text += context;
        return description;
    });
    return hr;
}

bool IsAdvancedErrorInfoEnabled() noexcept {
    try {
        static const bool enabled =
            GetBooleanSetting(TV_W("Debug"), TV_W("EnableAdvancedErrorInfo"));
        return enabled;
    } catch (...) {
        return false; // the next miss asks again
    }
}

HRESULT ReportCaught(const HRX& failure) noexcept {
    if (failure.Code < 0) {
        SetRecord([&] {
            return ErrorDescription(failure.Code, failure.Info.Get(), nullptr, failure.Frames,
                                    failure.FrameCount());
        });
    }
    return failure.Code;
}

} // namespace treevault
