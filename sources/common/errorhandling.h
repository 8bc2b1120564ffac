// SPDX-License-Identifier: MIT
// Failures: the one exception that travels inside the library, the helpers that raise it, and the
// boundary at which every public operation turns it into a result and an error record.
#ifndef TREEVAULT_COMMON_ERRORHANDLING_H
#define TREEVAULT_COMMON_ERRORHANDLING_H

#include "common/logging.h"
#include "common/ref.h"
#include "common/widestream.h"

#include <treevault/errors.h>

#include <new>
#include <stdexcept>
#include <type_traits>

namespace treevault {

// A result that may not be a failure: taking one in raises it. It keeps the record that was pending
// on the thread and two return addresses. Belongs to one thread.
class HRES {
public:
    // Without a frame of their own, so that it is Raise that a capture finds between itself and
    // them.
    [[gnu::always_inline]] HRES(HRESULT hr) : Code(hr) {
        if (hr < 0) [[unlikely]]
            Raise();
    }
    [[gnu::always_inline]] HRES& operator=(HRESULT hr) {
        Code = hr;
        Info.Reset();
        if (hr < 0) [[unlikely]]
            Raise();
        return *this;
    }

    // Takes the result without raising it. A failure captures Frames and, if told so, moves the
    // thread's pending record to Info.
    void Set(HRESULT hr, bool takeErrorInfo) noexcept;

    // How many of Frames are set.
    unsigned FrameCount() const noexcept;

    HRESULT Code = S_OK;
    Ref<IErrorInfo> Info;
    void* Frames[2] = {};
    int32_t FramesToSkip = 1; // what lies between the capture and the code that failed

protected:
    HRES() noexcept : FramesToSkip(0) {}

private:
    [[noreturn]] void Raise();
};

// What is thrown and caught. Building one raises nothing.
class HRX : public HRES {
public:
    explicit HRX(HRESULT hr) noexcept;
    explicit HRX(const HRES& failure) noexcept : HRES(failure) {}
    HRX(const HRX&) noexcept = default;
};

// Never returns; a success code is raised as E_FAIL.
[[noreturn]] void ThrowHr(HRESULT hr);
[[noreturn]] void ThrowOutOfMemory();

// Raises E_POINTER for null.
[[noreturn]] void RaiseNullPointer();
inline void CheckOutPointer(const void* pointer) {
    if (!pointer) [[unlikely]]
        RaiseNullPointer();
}

// The low 16 bits of a positive code in the platform's facility; any other value as it is.
constexpr HRESULT HresultFromWin32(uint32_t code) noexcept {
    return static_cast<int32_t>(code) > 0 ? static_cast<HRESULT>((code & 0xFFFF) | 0x80070000u)
                                          : static_cast<HRESULT>(code);
}

// The error text of a caught failure, with its addresses, or of a bare code. Neither takes nor sets
// the thread's record.
void AppendErrorText(WideStream& stream, const HRES& failure);
void AppendErrorText(WideStream& stream, HRESULT code);

// Sets a record from the code alone, or with `context` directly behind the message; returns `hr`.
// A record that cannot be made is left out.
HRESULT ReportError(HRESULT hr) noexcept;
HRESULT ReportError(HRESULT hr, WideView context) noexcept;

// Keeps the thread's pending record over work whose failures nobody is to hear of.
class KeptErrorRecord {
public:
    KeptErrorRecord() noexcept { GetErrorInfo(0, Info.Put()); }
    ~KeptErrorRecord() { SetErrorInfo(0, Info.Get()); }
    KeptErrorRecord(const KeptErrorRecord&) = delete;
    KeptErrorRecord& operator=(const KeptErrorRecord&) = delete;

private:
    Ref<IErrorInfo> Info;
};

// Whether expected misses of nodes set error records too. Read once for the process.
bool IsAdvancedErrorInfoEnabled() noexcept;

// The catch of a boundary: sets the record of a failure and returns its code. It raises nothing.
HRESULT ReportCaught(const HRX& failure) noexcept;

// Runs the body of a public operation: an HRESULT, or nothing for success. A size that no memory
// can hold, which only an object of the caller's can have told, counts as memory that is not there.
template <class Body>
HRESULT RunBody(const Body& body) {
    try {
        if constexpr (std::is_void_v<decltype(body())>) {
            body();
            return S_OK;
        } else {
            return body();
        }
    } catch (const std::length_error&) {
        throw std::bad_alloc();
    }
}

// The boundary of an operation without a name for the log.
template <class Body>
HRESULT Boundary(const Body& body) {
    try {
        return RunBody(body);
    } catch (const HRX& failure) {
        return ReportCaught(failure);
    }
}

// The boundary of an operation with a name for the log: `writeName` streams it, and a failure
// writes the name, " failed: " and the error text at `severity`.
template <class WriteName, class Body>
HRESULT NamedBoundary(uint32_t severity, const WriteName& writeName, const Body& body,
                      SourcePlace place = SourcePlace::Here()) {
    try {
        return RunBody(body);
    } catch (const HRX& failure) {
        const auto write = [&](WideStream& line) {
            writeName(line);
            line << TV_W(" failed: ");
            AppendErrorText(line, failure);
        };
        Log(severity, write, place);
        return ReportCaught(failure);
    }
}

} // namespace treevault

#endif
