// SPDX-License-Identifier: MIT
// Clocks: coarse ticks, a fast counter for timings, and the time of day.
#ifndef TREEVAULT_PLATFORM_CLOCK_H
#define TREEVAULT_PLATFORM_CLOCK_H

#include <cstdint>

namespace treevault {

// Milliseconds of a monotonic clock, wrapping at 32 bits. Coarse and cheap.
uint32_t TickCount() noexcept;

// The cheapest fine-grained monotonic counter, and its counts in a second.
uint64_t PerformanceCounter() noexcept;
uint64_t PerformanceFrequency() noexcept;

// UTC in units of 100 ns since 1601, as precise as the platform can tell.
uint64_t PreciseFileTime() noexcept;

struct LocalTime {
    uint64_t FileTime; // the local time in units of 100 ns since 1601
    unsigned Year, Month, Day, Hour, Minute, Second, Milliseconds;
};

LocalTime ToLocalTime(uint64_t utcFileTime) noexcept;

} // namespace treevault

#endif
