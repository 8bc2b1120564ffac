// SPDX-License-Identifier: MIT
// Clocks of Windows.
#include "platform/clock.h"

#include <windows.h>

namespace treevault {
namespace {

using ReadFileTime = void(WINAPI*)(FILETIME*);

// The precise clock is missing on older systems.
ReadFileTime FindPreciseClock() noexcept {
    const HMODULE kernel = GetModuleHandleW(L"Kernel32.dll");
    const auto found =
        kernel ? reinterpret_cast<void*>(GetProcAddress(kernel, "GetSystemTimePreciseAsFileTime"))
               : nullptr;
    return found ? reinterpret_cast<ReadFileTime>(found) : &GetSystemTimeAsFileTime;
}

uint64_t ToNumber(const FILETIME& time) noexcept {
    return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

} // namespace

uint32_t TickCount() noexcept {
    return GetTickCount();
}

uint64_t PerformanceCounter() noexcept {
    LARGE_INTEGER count;
    QueryPerformanceCounter(&count);
    return static_cast<uint64_t>(count.QuadPart);
}

uint64_t PerformanceFrequency() noexcept {
    static const uint64_t frequency = [] {
        LARGE_INTEGER counts;
        QueryPerformanceFrequency(&counts);
        return static_cast<uint64_t>(counts.QuadPart);
    }();
    return frequency;
}

uint64_t PreciseFileTime() noexcept {
    static const ReadFileTime read = FindPreciseClock();
    FILETIME now;
    read(&now);
    return ToNumber(now);
}

LocalTime ToLocalTime(uint64_t utcFileTime) noexcept {
    const FILETIME utc{static_cast<DWORD>(utcFileTime), static_cast<DWORD>(utcFileTime >> 32)};
    FILETIME local;
    SYSTEMTIME split;
    if (!FileTimeToLocalFileTime(&utc, &local) || !FileTimeToSystemTime(&local, &split))
        return {};
    return {ToNumber(local), split.wYear,   split.wMonth,  split.wDay,
            split.wHour,     split.wMinute, split.wSecond, split.wMilliseconds};
}

} // namespace treevault
