// SPDX-License-Identifier: MIT
// The lock of storages.
#include "platform/readerwriterlock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace treevault {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto AWhile = 50ms;
constexpr auto Ages = 20s;

// Whether something becomes true within the time.
template <class Condition>
bool Within(Clock::duration time, const Condition& condition) {
    const auto end = Clock::now() + time;
    while (!condition() && Clock::now() < end)
        std::this_thread::sleep_for(1ms);
    return condition();
}

// Enters one side on a thread of its own and stays until it is told to leave.
class Visitor {
public:
    enum Side { Shared, Exclusive };

    Visitor(ReaderWriterLock& lock, Side side) : Thread([this, &lock, side] { Run(lock, side); }) {}
    ~Visitor() {
        Leaves = true;
        Thread.join();
    }

    bool EntersWithin(Clock::duration time) const {
        return Within(time, [&] { return HasEntered.load(); });
    }
    void Leave() { Leaves = true; }

private:
    void Run(ReaderWriterLock& lock, Side side) {
        if (side == Shared)
            lock.EnterShared();
        else
            lock.EnterExclusive();
        HasEntered = true;
        while (!Leaves)
            std::this_thread::sleep_for(1ms);
        if (side == Shared)
            lock.LeaveShared();
        else
            lock.LeaveExclusive();
    }

    std::atomic<bool> HasEntered{false}, Leaves{false};
    std::thread Thread;
};

TEST(ReaderWriterLock, ReadersAreInsideTogether) {
    ReaderWriterLock lock;
    const Visitor first(lock, Visitor::Shared), second(lock, Visitor::Shared);
    EXPECT_TRUE(first.EntersWithin(Ages));
    EXPECT_TRUE(second.EntersWithin(Ages));
}

TEST(ReaderWriterLock, WriterWaitsForTheLastReader) {
    ReaderWriterLock lock;
    Visitor first(lock, Visitor::Shared), second(lock, Visitor::Shared);
    EXPECT_TRUE(first.EntersWithin(Ages));
    EXPECT_TRUE(second.EntersWithin(Ages));
    const Visitor writer(lock, Visitor::Exclusive);
    EXPECT_FALSE(writer.EntersWithin(AWhile));
    first.Leave();
    EXPECT_FALSE(writer.EntersWithin(AWhile));
    second.Leave();
    EXPECT_TRUE(writer.EntersWithin(Ages));
}

TEST(ReaderWriterLock, ReadersWaitForAWriter) {
    ReaderWriterLock lock;
    Visitor writer(lock, Visitor::Exclusive);
    EXPECT_TRUE(writer.EntersWithin(Ages));
    const Visitor first(lock, Visitor::Shared), second(lock, Visitor::Shared);
    EXPECT_FALSE(first.EntersWithin(AWhile));
    EXPECT_FALSE(second.EntersWithin(AWhile));
    writer.Leave();
    EXPECT_TRUE(first.EntersWithin(Ages));
    EXPECT_TRUE(second.EntersWithin(Ages));
}

TEST(ReaderWriterLock, WriterWaitsForAWriter) {
    ReaderWriterLock lock;
    Visitor writer(lock, Visitor::Exclusive);
    EXPECT_TRUE(writer.EntersWithin(Ages));
    const Visitor next(lock, Visitor::Exclusive);
    EXPECT_FALSE(next.EntersWithin(AWhile));
    writer.Leave();
    EXPECT_TRUE(next.EntersWithin(Ages));
}

TEST(ReaderWriterLock, WriterThatHasComeKeepsFurtherReadersOut) {
    ReaderWriterLock lock;
    Visitor reader(lock, Visitor::Shared);
    EXPECT_TRUE(reader.EntersWithin(Ages));
    Visitor writer(lock, Visitor::Exclusive);
    EXPECT_FALSE(writer.EntersWithin(AWhile));
    const Visitor late(lock, Visitor::Shared);
    EXPECT_FALSE(late.EntersWithin(AWhile));
    reader.Leave();
    EXPECT_TRUE(writer.EntersWithin(Ages));
    EXPECT_FALSE(late.EntersWithin(AWhile));
    writer.Leave();
    EXPECT_TRUE(late.EntersWithin(Ages));
}

// Each reader stays until the next one is inside, so that the lock is never free of readers unless
// it keeps the next one out; then it waits no longer than this.
constexpr auto Patience = 20ms;

TEST(ReaderWriterLock, WritersGetThroughReadersThatRelieveOneAnother) {
    ReaderWriterLock lock;
    std::atomic<unsigned> entries{0};
    std::atomic<bool> stop{false};
    const auto read = [&] {
        while (!stop) {
            lock.EnterShared();
            const unsigned mine = ++entries;
            const auto end = Clock::now() + Patience;
            while (entries == mine && !stop && Clock::now() < end)
                std::this_thread::yield();
            lock.LeaveShared();
        }
    };
    std::vector<std::jthread> readers;
    for (int i = 0; i < 4; ++i)
        readers.emplace_back(read);
    for (int writes = 0; writes < 10; ++writes) {
        Visitor writer(lock, Visitor::Exclusive);
        EXPECT_TRUE(writer.EntersWithin(Ages));
        writer.Leave();
        const unsigned before = entries;
        EXPECT_TRUE(Within(Ages, [&] { return entries > before + 4; })); // readers again
        stop = stop || testing::Test::HasFailure();
    }
    stop = true;
}

TEST(ReaderWriterLock, KeepsWritersApartFromAll) {
    constexpr unsigned rounds = 5'000;
    ReaderWriterLock lock;
    unsigned first = 0, second = 0; // not atomic on purpose
    const auto write = [&] {
        for (unsigned round = 0; round < rounds; ++round) {
            lock.EnterExclusive();
            ++first;
            if (round % 256 == 0)
                std::this_thread::yield();
            ++second;
            lock.LeaveExclusive();
        }
    };
    const auto read = [&] {
        for (unsigned round = 0; round < rounds; ++round) {
            lock.EnterShared();
            EXPECT_EQ(first, second);
            lock.LeaveShared();
        }
    };
    {
        std::vector<std::jthread> runners;
        for (int i = 0; i < 2; ++i) {
            runners.emplace_back(write);
            runners.emplace_back(read);
        }
    }
    EXPECT_EQ(2 * rounds, first);
}

} // namespace
} // namespace treevault
