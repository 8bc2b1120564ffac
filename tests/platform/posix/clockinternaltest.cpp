// SPDX-License-Identifier: MIT
// Local time on Linux, where a program can choose its zone.
#include "platform/clock.h"

#include "support/environment.h"

#include <gtest/gtest.h>

#include <ctime>

namespace treevault {
namespace {

class Zone {
public:
    explicit Zone(const char* rule) : Variable("TZ", rule) { tzset(); }
    ~Zone() {
        Variable.Change(nullptr);
        tzset();
    }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;

private:
    tests::VariableInForce Variable;
};

constexpr uint64_t FromUnix(int64_t seconds) {
    return static_cast<uint64_t>((seconds + 11'644'473'600) * 10'000'000);
}

// Whatever reads it, the clock is the one of the system.
TEST(PosixTickCount, IsTheCoarseMonotonicClock) {
    const auto read = [] {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
        return static_cast<uint32_t>(now.tv_sec * 1000 + now.tv_nsec / 1'000'000);
    };
    const uint32_t before = read();
    const uint32_t tick = TickCount();
    const uint32_t after = read();
    EXPECT_LE(tick - before, after - before);
}

constexpr uint64_t Summer = FromUnix(1'719'835'200); // 2024-07-01 12:00:00 UTC
constexpr uint64_t Winter = FromUnix(1'704'110'400); // 2024-01-01 12:00:00 UTC

TEST(PosixLocalTime, HasTheOffsetOfTheMoment) {
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(14u, ToLocalTime(Summer).Hour);
    EXPECT_EQ(13u, ToLocalTime(Winter).Hour);
    EXPECT_EQ(Summer + 72'000'000'000, ToLocalTime(Summer).FileTime);
}

TEST(PosixLocalTime, MayBeOnAnotherDay) {
    const Zone zone("XYZ13:30");
    const LocalTime local = ToLocalTime(Winter);
    EXPECT_EQ(2023u, local.Year);
    EXPECT_EQ(12u, local.Month);
    EXPECT_EQ(31u, local.Day);
    EXPECT_EQ(22u, local.Hour);
    EXPECT_EQ(30u, local.Minute);
}

TEST(PosixLocalTime, FollowsAChangeOfTheZoneWithinASecond) {
    struct Change {
        const char* Rule;
        unsigned Hour, Minute;
    };
    for (const Change& change :
         {Change{"UTC0", 12, 0}, Change{"ABC-5", 17, 0}, Change{"ABC-5:30", 17, 30},
          Change{"ABD-5:30", 17, 30}, Change{"ABD-5:30ABE,M3.5.0,M10.5.0", 18, 30},
          Change{"ABD-5:30ABF-6,M3.5.0,M10.5.0", 18, 0}, Change{"UTC0", 12, 0}}) {
        const Zone zone(change.Rule);
        for (int round = 0; round < 2; ++round) {
            const LocalTime local = ToLocalTime(Summer + 1'234'567);
            EXPECT_EQ(change.Hour, local.Hour) << change.Rule;
            EXPECT_EQ(change.Minute, local.Minute) << change.Rule;
            EXPECT_EQ(123u, local.Milliseconds) << change.Rule;
        }
    }
}

TEST(PosixLocalTime, TellsTheSecondsOfOneMinuteApart) {
    const Zone zone("UTC0");
    EXPECT_EQ(0u, ToLocalTime(Summer).Second);
    EXPECT_EQ(0u, ToLocalTime(Summer + 9'999'999).Second);
    EXPECT_EQ(999u, ToLocalTime(Summer + 9'999'999).Milliseconds);
    EXPECT_EQ(1u, ToLocalTime(Summer + 10'000'000).Second);
    EXPECT_EQ(59u, ToLocalTime(Summer - 1).Second);
}

TEST(PosixLocalTime, ReachesFromTheEpochToItsEnd) {
    const Zone zone("UTC0");
    const LocalTime first = ToLocalTime(0);
    EXPECT_EQ(1601u, first.Year);
    EXPECT_EQ(1u, first.Month);
    EXPECT_EQ(1u, first.Day);
    EXPECT_EQ(0u, first.Hour);
    const LocalTime leapDay = ToLocalTime(FromUnix(951'782'400)); // 2000-02-29
    EXPECT_EQ(2u, leapDay.Month);
    EXPECT_EQ(29u, leapDay.Day);
    const LocalTime last = ToLocalTime(INT64_MAX);
    EXPECT_EQ(30828u, last.Year);
    EXPECT_EQ(0u, ToLocalTime(uint64_t{1} << 63).Year);
}

TEST(PosixLocalTime, BeyondItsEndIsZero) {
    const Zone zone("XYZ-1");
    EXPECT_EQ(0u, ToLocalTime(UINT64_MAX).Year);
    EXPECT_EQ(0u, ToLocalTime(INT64_MAX).Year);
}

TEST(PosixLocalTime, BeforeTheEpochIsZero) {
    const Zone zone("XYZ1");
    EXPECT_EQ(0u, ToLocalTime(0).Year);
}

} // namespace
} // namespace treevault
