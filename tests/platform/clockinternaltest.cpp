// SPDX-License-Identifier: MIT
// Clocks and identifiers.
#include "platform/clock.h"
#include "platform/guidsource.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <set>
#include <string>
#include <thread>

namespace treevault {
namespace {

using namespace std::chrono_literals;

constexpr int64_t UnitsPerMinute = 600'000'000;

TEST(TickCount, CountsMilliseconds) {
    const uint32_t start = TickCount();
    std::this_thread::sleep_for(100ms);
    const uint32_t passed = TickCount() - start;
    // Such clocks step by some ten milliseconds.
    EXPECT_GE(passed, 60u);
    EXPECT_LT(passed, 20'000u);
}

TEST(PerformanceCounter, CountsAtItsFrequency) {
    const uint64_t start = PerformanceCounter();
    std::this_thread::sleep_for(50ms);
    const uint64_t passed = PerformanceCounter() - start;
    EXPECT_GE(passed, PerformanceFrequency() / 1000 * 45);
    EXPECT_LT(passed, PerformanceFrequency() * 20);
}

TEST(PerformanceCounter, IsFineGrainedAndNeverGoesBack) {
    EXPECT_GE(PerformanceFrequency(), 1'000'000u);
    uint64_t last = PerformanceCounter();
    for (int round = 0; round < 10'000; ++round) {
        const uint64_t now = PerformanceCounter();
        ASSERT_GE(now, last);
        last = now;
    }
}

TEST(PreciseFileTime, IsTheTimeOfDay) {
    const auto since1970 = std::chrono::system_clock::now().time_since_epoch();
    const double expected =
        std::chrono::duration<double>(since1970).count() + 11'644'473'600.0; // seconds since 1601
    EXPECT_NEAR(expected, static_cast<double>(PreciseFileTime()) / 1e7, 5);
}

TEST(PreciseFileTime, IsFinerThanAMillisecond) {
    std::set<uint64_t> parts;
    for (int round = 0; round < 20; ++round) {
        parts.insert(PreciseFileTime() % 10'000);
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_GT(parts.size(), 2u);
}

// 2001-02-03 04:05:06.7891234
constexpr uint64_t SomeTime = 126'256'467'067'891'234;

TEST(LocalTime, IsAWholeNumberOfMinutesOff) {
    const LocalTime local = ToLocalTime(SomeTime);
    const auto offset = static_cast<int64_t>(local.FileTime - SomeTime);
    EXPECT_EQ(0, offset % UnitsPerMinute);
    EXPECT_LE(std::abs(offset), 14 * 60 * UnitsPerMinute);
}

TEST(LocalTime, IsSplitIntoItsFields) {
    // Shifted by the zone's offset, so that the local time is known.
    const LocalTime before = ToLocalTime(SomeTime);
    const LocalTime local = ToLocalTime(SomeTime - (before.FileTime - SomeTime));
    EXPECT_EQ(SomeTime, local.FileTime);
    EXPECT_EQ(2001u, local.Year);
    EXPECT_EQ(2u, local.Month);
    EXPECT_EQ(3u, local.Day);
    EXPECT_EQ(4u, local.Hour);
    EXPECT_EQ(5u, local.Minute);
    EXPECT_EQ(6u, local.Second);
    EXPECT_EQ(789u, local.Milliseconds);
}

TEST(LocalTime, BeyondTheCalendarIsZero) {
    const LocalTime local = ToLocalTime(UINT64_MAX);
    EXPECT_EQ(0u, local.FileTime);
    EXPECT_EQ(0u, local.Year);
    EXPECT_EQ(0u, local.Day);
}

TEST(GuidSource, GivesRandomIdentifiersOfTheirForm) {
    std::set<std::string> all;
    for (int round = 0; round < 1000; ++round) {
        GUID guid{};
        ASSERT_EQ(0, GenerateGuid(guid));
        EXPECT_EQ(4u, guid.Data3 >> 12) << "version";
        EXPECT_EQ(0x80u, guid.Data4[0] & 0xC0u) << "variant";
        all.insert(std::string(reinterpret_cast<const char*>(&guid), sizeof guid));
    }
    EXPECT_EQ(1000u, all.size());
}

} // namespace
} // namespace treevault
