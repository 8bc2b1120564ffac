// SPDX-License-Identifier: MIT
// The lines of a function trace.
#include "common/functiontrace.h"

#include <algorithm>
#include <exception>

namespace treevault {

WideText FormatMilliseconds(uint64_t microseconds) {
    WideStream whole;
    whole << microseconds / 1000;
    WideText text = std::move(whole.Str());
    for (size_t at = text.size(); at > 3;)
        text.insert(at -= 3, 1, TV_W(' '));
    WideStream fraction;
    fraction << microseconds % 1000;
    text += TV_W('.');
    text.append(3 - fraction.Str().size(), TV_W('0'));
    return text + fraction.Str();
}

namespace {

// Counts of the performance counter in ten microseconds.
uint64_t CounterUnit() noexcept {
    static const uint64_t unit = std::max<uint64_t>(PerformanceFrequency() / 100000, 1);
    return unit;
}

} // namespace

void FunctionTrace::Begin() noexcept {
    UncaughtCount = std::uncaught_exceptions();
    if (WasSeverityEnabled(NormalSeverity))
        WriteEntry();
    IsTimed = true;
    Start = PerformanceCounter();
}

// A trace that began while it was disabled, and has been enabled since, knows its begin to the tick
// only, and takes any exception in flight for one that passes through.
void FunctionTrace::End() noexcept {
    const uint64_t elapsed = IsTimed ? PerformanceCounter() - Start
                                     : uint64_t{TickCount() - static_cast<uint32_t>(Start)} *
                                           PerformanceFrequency() / 1000;
    const bool unwinding = std::uncaught_exceptions() != UncaughtCount;
    if (IsSeverityEnabled(unwinding ? ExceptionSeverity : NormalSeverity))
        WriteExit(unwinding, elapsed);
    else
        Outdent();
}

void FunctionTrace::WriteEntry() noexcept {
    try {
        LogLine(NormalSeverity, WideText(TV_W("Entering: ")) + Name, Place, Sink);
    } catch (...) {
        // A line that cannot be written is lost.
    }
    ++TraceIndent();
    ++IndentAdded;
}

void FunctionTrace::WriteExit(bool unwinding, uint64_t elapsed) noexcept {
    Outdent();
    try {
        WideStream line;
        line << (unwinding ? TV_W("EXCEPTION at: ") : TV_W("Exiting: ")) << Name << TV_W(" [")
             << FormatMilliseconds(elapsed * 10 / CounterUnit()) << TV_W(" ms]");
        LogLine(unwinding ? ExceptionSeverity : NormalSeverity, line.Str(), Place, Sink);
    } catch (...) {
        // A line that cannot be written is lost.
    }
}

void FunctionTrace::Outdent() noexcept {
    TraceIndent() -= IndentAdded;
    IndentAdded = 0;
}

} // namespace treevault
