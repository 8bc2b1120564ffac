// SPDX-License-Identifier: MIT
// Entry and exit lines of a function, with its duration.
#ifndef TREEVAULT_COMMON_FUNCTIONTRACE_H
#define TREEVAULT_COMMON_FUNCTIONTRACE_H

#include "common/logging.h"

namespace treevault {

// Lives on the stack of the function that it traces. While its severities are disabled it costs one
// reading of the coarse clock and two comparisons.
class FunctionTrace {
public:
    // The line of a normal exit has `severity`, that of an exit by exception `exceptionSeverity`.
    // `name` must outlive the object. `sink` null means all sinks.
    explicit FunctionTrace(const WCHAR* name, uint32_t severity = SeverityDbg3,
                           SourcePlace place = SourcePlace::Here())
        : FunctionTrace(name, severity, severity, nullptr, place) {}

    FunctionTrace(const WCHAR* name, uint32_t severity, uint32_t exceptionSeverity, LogSink* sink,
                  SourcePlace place = SourcePlace::Here())
        : NormalSeverity(severity), ExceptionSeverity(exceptionSeverity), Name(name), Place(place),
          Sink(sink), Start(RefreshSeverity()) {
        if (MayWrite()) [[unlikely]]
            Begin();
    }

    ~FunctionTrace() {
        if (IsTimed || MayWrite()) [[unlikely]]
            End();
    }

    FunctionTrace(const FunctionTrace&) = delete;
    FunctionTrace& operator=(const FunctionTrace&) = delete;

private:
    bool MayWrite() const noexcept {
        return WasSeverityEnabled(NormalSeverity) || WasSeverityEnabled(ExceptionSeverity);
    }
    void Begin() noexcept;
    void End() noexcept;
    void WriteEntry() noexcept;
    void WriteExit(bool unwinding, uint64_t elapsed) noexcept;
    void Outdent() noexcept;

    uint32_t NormalSeverity;
    uint32_t ExceptionSeverity;
    const WCHAR* Name;
    SourcePlace Place;
    LogSink* Sink;
    uint64_t Start; // of the fine counter if the trace is timed, else of the coarse clock
    bool IsTimed = false;
    int32_t IndentAdded = 0;
    int UncaughtCount = 0;
};

// A count of microseconds as milliseconds with three decimals, blanks between groups of three
// digits: "1 234.567".
WideText FormatMilliseconds(uint64_t microseconds);

} // namespace treevault

#endif
