// SPDX-License-Identifier: MIT
// Clocks of Linux. All of them are read without a system call.
#include "platform/clock.h"

#include <chrono>
#include <ctime>

namespace treevault {
namespace {

constexpr int64_t UnitsPerSecond = 10'000'000;      // of a file time
constexpr int64_t EpochDifference = 11'644'473'600; // seconds from 1601 to 1970

timespec Read(clockid_t clock) noexcept {
    timespec now{};
    clock_gettime(clock, &now);
    return now;
}

} // namespace

uint32_t TickCount() noexcept {
    const timespec now = Read(CLOCK_MONOTONIC_COARSE);
    return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                                 static_cast<uint64_t>(now.tv_nsec) / 1'000'000);
}

// The processor's own counter is twice as fast to read, but not every machine tells its frequency.
uint64_t PerformanceCounter() noexcept {
    const timespec now = Read(CLOCK_MONOTONIC);
    return static_cast<uint64_t>(now.tv_sec) * PerformanceFrequency() +
           static_cast<uint64_t>(now.tv_nsec);
}

uint64_t PerformanceFrequency() noexcept {
    return 1'000'000'000;
}

uint64_t PreciseFileTime() noexcept {
    const timespec now = Read(CLOCK_REALTIME);
    return static_cast<uint64_t>((now.tv_sec + EpochDifference) * UnitsPerSecond +
                                 now.tv_nsec / 100);
}

LocalTime ToLocalTime(uint64_t utcFileTime) noexcept {
    using namespace std::chrono;
    // What the platform's calendar can tell ends here.
    if (utcFileTime > INT64_MAX)
        return {};
    const int64_t utc = static_cast<int64_t>(utcFileTime);
    const time_t moment = utc / UnitsPerSecond - EpochDifference;
    tm split{};
    if (!localtime_r(&moment, &split))
        return {};
    const int64_t local = utc + int64_t{split.tm_gmtoff} * UnitsPerSecond;
    if (local < 0)
        return {};
    using Units = duration<int64_t, std::ratio<1, UnitsPerSecond>>;
    const sys_time<Units> time(Units(local) - seconds(EpochDifference));
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(floor<milliseconds>(time - day));
    return {static_cast<uint64_t>(local),
            static_cast<unsigned>(static_cast<int>(date.year())),
            static_cast<unsigned>(date.month()),
            static_cast<unsigned>(date.day()),
            static_cast<unsigned>(clock.hours().count()),
            static_cast<unsigned>(clock.minutes().count()),
            static_cast<unsigned>(clock.seconds().count()),
            static_cast<unsigned>(clock.subseconds().count())};
}

} // namespace treevault
