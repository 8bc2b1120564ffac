// SPDX-License-Identifier: MIT
// Clocks of Linux. All of them are read without a system call.
#include "platform/clock.h"

#include <ctime>
#include <dlfcn.h>

namespace treevault {
namespace {

constexpr int64_t UnitsPerSecond = 10'000'000; // of a file time
constexpr int64_t UnitsPerMillisecond = 10'000;
constexpr int64_t EpochDifference = 11'644'473'600; // seconds from 1601 to 1970

using ReadClock = int (*)(clockid_t, timespec*);

// The way through the C library costs a third of reading the coarse clock, which every operation
// does. So the function that the kernel maps into each process is called, where there is one.
constinit ReadClock readClock = &clock_gettime;

[[maybe_unused]] const bool foundKernelsFunction = [] {
    void* const kernel = dlopen("linux-vdso.so.1", RTLD_LAZY | RTLD_NOLOAD);
    if (!kernel)
        return false;
    void* const function = dlsym(kernel, "__vdso_clock_gettime");
    dlclose(kernel);
    // It knows no other time than one of the processor's own width.
    if (!function || sizeof(time_t) != sizeof(void*))
        return false;
    readClock = reinterpret_cast<ReadClock>(function);
    return true;
}();

timespec Read(clockid_t clock) noexcept {
    timespec now{};
    readClock(clock, &now);
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

namespace {

// The zone as far as the C library shows it. Another zone of the same names and the same offset
// passes for the same one until the second is over.
struct Zone {
    const char* Names[2];
    long Offset;

    static Zone Current() noexcept { return {{tzname[0], tzname[1]}, timezone}; }
    friend bool operator==(const Zone&, const Zone&) = default;
};

// The last answer of the C library, which all threads must wait for one at a time: the lines of a
// log mostly lie in the second of the line before.
struct KnownSecond {
    bool IsKnown;
    time_t Moment;
    Zone In;
    tm Split;
};
constinit thread_local KnownSecond knownSecond = {};

// Null beyond the end of the calendar.
const tm* SplitLocally(time_t moment) noexcept {
    KnownSecond& known = knownSecond;
    // The zone is taken before the answer: a change in between is noticed the next time.
    const Zone zone = Zone::Current();
    if (!known.IsKnown || known.Moment != moment || known.In != zone) {
        known.IsKnown = localtime_r(&moment, &known.Split) != nullptr;
        known.Moment = moment;
        known.In = zone;
    }
    return known.IsKnown ? &known.Split : nullptr;
}

} // namespace

LocalTime ToLocalTime(uint64_t utcFileTime) noexcept {
    // What the platform's calendar can tell ends here.
    if (utcFileTime > INT64_MAX)
        return {};
    const int64_t utc = static_cast<int64_t>(utcFileTime);
    const time_t moment = utc / UnitsPerSecond - EpochDifference;
    const tm* const split = SplitLocally(moment);
    if (!split)
        return {};
    const uint64_t local =
        utcFileTime + static_cast<uint64_t>(int64_t{split->tm_gmtoff} * UnitsPerSecond);
    if (local > INT64_MAX)
        return {};
    return {local,
            static_cast<unsigned>(split->tm_year + 1900),
            static_cast<unsigned>(split->tm_mon + 1),
            static_cast<unsigned>(split->tm_mday),
            static_cast<unsigned>(split->tm_hour),
            static_cast<unsigned>(split->tm_min),
            static_cast<unsigned>(split->tm_sec),
            static_cast<unsigned>(utc % UnitsPerSecond / UnitsPerMillisecond)};
}

} // namespace treevault
