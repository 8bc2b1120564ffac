// SPDX-License-Identifier: MIT
// The lock of a node.
#include "platform/recursivelock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

namespace treevault {
namespace {

// Whether another thread gets the lock within the time.
class Contender {
public:
    explicit Contender(RecursiveLock& lock)
        : Thread([this, &lock] {
              lock.Enter();
              Entered = true;
              lock.Leave();
          }) {}
    ~Contender() { Thread.join(); }

    bool EntersWithin(std::chrono::milliseconds time) const {
        const auto end = std::chrono::steady_clock::now() + time;
        while (!Entered && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return Entered;
    }

private:
    std::atomic<bool> Entered{false};
    std::thread Thread;
};

constexpr std::chrono::milliseconds AWhile{50};
constexpr std::chrono::milliseconds Ages{20'000};

TEST(RecursiveLock, IsEightBytes) {
    EXPECT_EQ(8u, sizeof(RecursiveLock));
}

TEST(RecursiveLock, IsFreeAfterAsManyLeavesAsEnters) {
    RecursiveLock lock;
    for (int depth = 0; depth < 3; ++depth)
        lock.Enter();
    const Contender contender(lock);
    for (int depth = 0; depth < 3; ++depth) {
        EXPECT_FALSE(contender.EntersWithin(AWhile)) << depth;
        lock.Leave();
    }
    EXPECT_TRUE(contender.EntersWithin(Ages));
}

TEST(RecursiveLock, MayBeEnteredAgainWhileOthersWait) {
    RecursiveLock lock;
    lock.Enter();
    const Contender contender(lock);
    EXPECT_FALSE(contender.EntersWithin(AWhile));
    lock.Enter();
    lock.Leave();
    EXPECT_FALSE(contender.EntersWithin(AWhile));
    lock.Leave();
    EXPECT_TRUE(contender.EntersWithin(Ages));
}

TEST(RecursiveLock, WakesEveryWaiter) {
    RecursiveLock lock;
    lock.Enter();
    const Contender first(lock), second(lock), third(lock);
    EXPECT_FALSE(first.EntersWithin(AWhile));
    lock.Leave();
    EXPECT_TRUE(first.EntersWithin(Ages));
    EXPECT_TRUE(second.EntersWithin(Ages));
    EXPECT_TRUE(third.EntersWithin(Ages));
}

TEST(RecursiveLock, KeepsThreadsApart) {
    constexpr unsigned threads = 4, rounds = 20'000;
    RecursiveLock lock;
    unsigned count = 0; // not atomic on purpose
    const auto run = [&] {
        for (unsigned round = 0; round < rounds; ++round) {
            const LockGuard outer(lock);
            const unsigned seen = count;
            const LockGuard inner(lock);
            if (round % 512 == 0)
                std::this_thread::yield();
            count = seen + 1;
        }
    };
    {
        std::vector<std::jthread> runners;
        for (unsigned thread = 0; thread < threads; ++thread)
            runners.emplace_back(run);
    }
    EXPECT_EQ(threads * rounds, count);
}

// Two threads that take turns, so that each hand-over has the other one waiting or about to. They
// give their time away outside the lock; a thread that never lets it go for long starves the other.
TEST(RecursiveLock, PassesBackAndForth) {
    constexpr unsigned turns = 2'000;
    RecursiveLock lock;
    unsigned turn = 0;
    const auto play = [&](unsigned parity) {
        for (bool over = false; !over; std::this_thread::yield()) {
            const LockGuard guard(lock);
            over = turn >= turns;
            if (!over && turn % 2 == parity)
                ++turn;
        }
    };
    std::thread other(play, 1u);
    play(0);
    other.join();
    EXPECT_EQ(turns, turn);
}

TEST(LockGuard, MayLeaveBeforeItsScopeEnds) {
    RecursiveLock lock;
    LockGuard guard(lock);
    guard.Leave();
    const Contender contender(lock);
    EXPECT_TRUE(contender.EntersWithin(Ages));
    guard.Leave();
}

} // namespace
} // namespace treevault
