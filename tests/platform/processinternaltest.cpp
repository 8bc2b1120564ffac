// SPDX-License-Identifier: MIT
// Threads, modules and return addresses.
#include "platform/callstack.h"
#include "platform/process.h"

#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>
#include <thread>
#include <vector>

namespace treevault {
namespace {

// --- Threads -------------------------------------------------------------------------------------

TEST(ThreadId, StaysTheSameAndLeavesTheTopBitFree) {
    const uint32_t id = CurrentThreadId();
    EXPECT_NE(0u, id);
    EXPECT_EQ(0u, id & 0x80000000u);
    EXPECT_EQ(id, CurrentThreadId());
}

TEST(ThreadId, DiffersAmongLiveThreads) {
    constexpr size_t count = 8;
    std::array<uint32_t, count> ids{};
    std::atomic<size_t> ready{0};
    {
        std::vector<std::jthread> threads;
        for (uint32_t& id : ids)
            threads.emplace_back([&] {
                id = CurrentThreadId();
                ++ready;
                while (ready != count)
                    std::this_thread::yield();
            });
    }
    std::set<uint32_t> all(ids.begin(), ids.end());
    all.insert(CurrentThreadId());
    EXPECT_EQ(count + 1, all.size());
    EXPECT_FALSE(all.contains(0));
}

TEST(ProcessId, IsNotZero) {
    EXPECT_NE(0u, CurrentProcessId());
    EXPECT_EQ(CurrentProcessId(), CurrentProcessId());
}

// --- Modules -------------------------------------------------------------------------------------

TEST(ModulePlace, OfTheExecutableIsItsFolderAndItsNameWithoutExtension) {
    const ModulePlace place = ExecutablePlace();
    EXPECT_EQ(WideText(TV_W("platform_internal_tests")), place.BaseName);
    EXPECT_TRUE(place.Directory.ends_with(TV_W("\\bin\\"))) << ToUtf8(place.Directory);
    EXPECT_EQ(WideText::npos, place.Directory.find(TV_W('/')));
    const auto folder = tests::PathOfText(place.Directory);
    EXPECT_TRUE(std::filesystem::exists(folder / "platform_internal_tests") ||
                std::filesystem::exists(folder / "platform_internal_tests.exe"));
}

TEST(ModulePlace, OfALibraryInsideTheExecutableIsNotTold) {
    ModulePlace place{TV_W("a"), TV_W("b")};
    EXPECT_FALSE(LibraryPlace(place));
    EXPECT_EQ(WideText(TV_W("a")), place.Directory);
    EXPECT_EQ(WideText(TV_W("b")), place.BaseName);
}

// --- Return addresses ----------------------------------------------------------------------------

#define TREEVAULT_OWN_FRAME __attribute__((noinline))

// What lies behind a call keeps it from becoming a jump, which would have no frame.
#define TREEVAULT_NO_JUMP __asm__ volatile("")

struct Captured {
    void* Expected[3]; // return addresses of the three functions below
    void* Frames[4];
};

TREEVAULT_OWN_FRAME void Innermost(Captured& captured, unsigned skip, unsigned count) {
    captured.Expected[0] = __builtin_return_address(0);
    CaptureReturnAddresses(skip, captured.Frames, count);
    TREEVAULT_NO_JUMP;
}

TREEVAULT_OWN_FRAME void Middle(Captured& captured, unsigned skip, unsigned count) {
    captured.Expected[1] = __builtin_return_address(0);
    Innermost(captured, skip, count);
    TREEVAULT_NO_JUMP;
}

TREEVAULT_OWN_FRAME Captured Capture(unsigned skip, unsigned count) {
    Captured captured;
    captured.Expected[2] = __builtin_return_address(0);
    std::fill(std::begin(captured.Frames), std::end(captured.Frames), &captured);
    Middle(captured, skip, count);
    TREEVAULT_NO_JUMP;
    return captured;
}

TEST(ReturnAddresses, BeginWithThatOfTheCaller) {
    const Captured captured = Capture(0, 3);
    EXPECT_EQ(captured.Expected[0], captured.Frames[0]);
    EXPECT_EQ(captured.Expected[1], captured.Frames[1]);
    EXPECT_EQ(captured.Expected[2], captured.Frames[2]);
}

TEST(ReturnAddresses, BeginSoManyFramesHigher) {
    const Captured one = Capture(1, 2);
    EXPECT_EQ(one.Expected[1], one.Frames[0]);
    EXPECT_EQ(one.Expected[2], one.Frames[1]);
    const Captured two = Capture(2, 1);
    EXPECT_EQ(two.Expected[2], two.Frames[0]);
}

TEST(ReturnAddresses, AreAsManyAsAskedFor) {
    const Captured one = Capture(0, 1);
    EXPECT_EQ(one.Expected[0], one.Frames[0]);
    EXPECT_NE(one.Expected[1], one.Frames[1]);
    EXPECT_EQ(one.Frames[3], one.Frames[1]) << "what was not asked for is left alone";
    const Captured none = Capture(0, 0);
    EXPECT_EQ(none.Frames[3], none.Frames[0]);
}

TEST(ReturnAddresses, AreNullAboveTheStack) {
    const Captured above = Capture(10'000, 4);
    for (void* frame : above.Frames)
        EXPECT_EQ(nullptr, frame);
    std::array<void*, 400> many;
    many.fill(&many);
    CaptureReturnAddresses(0, many.data(), many.size());
    EXPECT_NE(nullptr, many.front());
    EXPECT_EQ(nullptr, many.back());
}

} // namespace
} // namespace treevault
