// SPDX-License-Identifier: MIT
// Writers beside readers that overlap all the time.
#include "threads.h"

#include "support/storage.h"

namespace treevault::tests {
namespace {

class StarvationStress : public NodeTest {};

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds Bound{10};

// The calls of one thread, of which others see how long the one under way takes.
class TimedCalls {
public:
    template <class Call>
    void Run(const Call& call) {
        const Clock::duration begin = Clock::now().time_since_epoch();
        Begin = begin.count();
        call();
        Begin = 0;
        Longest = std::max(Longest, Clock::now().time_since_epoch() - begin);
        ++Count;
    }

    // One is under way and may still end in time.
    bool IsHopeful() const {
        const Clock::duration begin{Begin.load()};
        return begin.count() != 0 && Clock::now().time_since_epoch() - begin <= Bound;
    }

    void ExpectAllInTime() const {
        EXPECT_LT(0, Count);
        EXPECT_LT(Longest, Clock::duration(Bound));
    }

private:
    std::atomic<Clock::rep> Begin{0};
    Clock::duration Longest{};
    int Count = 0;
};

// A path so long that a reader spends nearly all of its time inside of the lock, on the way down.
std::string LongPath() {
    std::string path;
    for (int level = 0; level < 2000; ++level)
        path += "/d";
    return path;
}

TEST_F(StarvationStress, WritersGetThroughReadersThatOverlap) {
    const std::string path = LongPath();
    Storage subject(path);
    const Node filter = Filter(path);
    TimedCalls stores, groups;
    const Work read = [&](Choices&) {
        IACNode* none[1] = {};
        // The readers must not make room just because the time of the test is up.
        do
            EXPECT_EQ(S_OK, StgRetrieveData(subject, filter, nullptr, none, 0, nullptr));
        while (stores.IsHopeful() || groups.IsHopeful());
    };
    const Nodes small = Trees("small{x=1}");
    const Work store = [&](Choices&) {
        stores.Run([&] { EXPECT_EQ(S_OK, StoreNodes(subject, nullptr, StoreMergeAll, small)); });
    };
    const Work group = [&](Choices&) {
        Group two(subject);
        two.Store(StoreMergeAll, "other(x)").Delete("/other");
        groups.Run([&] { EXPECT_EQ(S_OK, two.Finish()); });
    };
    WorkTogether({read, read, read, read, store, group});
    stores.ExpectAllInTime();
    groups.ExpectAllInTime();
}

// And the other way round, though a writer may overtake readers that wait.
TEST_F(StarvationStress, ReadersGetThroughWritersThatFollowOneAnother) {
    Storage subject("n{x=1}");
    const Nodes small = Trees("n{x=1}");
    TimedCalls reads;
    const Work store = [&](Choices&) {
        do
            EXPECT_EQ(S_OK, StoreNodes(subject, nullptr, StoreMergeAll, small));
        while (reads.IsHopeful());
    };
    const Work read = [&](Choices&) {
        reads.Run([&] { EXPECT_EQ(1u, Retrieve(subject, Filter("/n")).size()); });
    };
    WorkTogether({store, store, store, read});
    reads.ExpectAllInTime();
}

} // namespace
} // namespace treevault::tests
