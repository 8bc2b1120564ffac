// SPDX-License-Identifier: MIT
// Threads that begin together and work for a while.
#ifndef TREEVAULT_TESTS_STRESS_THREADS_H
#define TREEVAULT_TESTS_STRESS_THREADS_H

#include "support/nodes.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <random>
#include <thread>
#include <vector>

namespace treevault::tests {

// Random choices of one thread, the same in each run.
class Choices {
public:
    explicit Choices(unsigned thread) : Random(12345 + thread) {}
    size_t Below(size_t limit) { return Random() % limit; }
    template <class Array>
    auto& Of(Array& array) {
        return array[Below(std::size(array))];
    }

private:
    std::mt19937 Random;
};

inline std::chrono::milliseconds WorkingTime() {
    const char* text = std::getenv("TREEVAULT_TEST_MILLISECONDS");
    return std::chrono::milliseconds(text ? std::atol(text) : 1500);
}

// One round of work of a thread.
using Work = std::function<void(Choices&)>;

// Runs each work on a thread of its own, over and over until the time is up or a test failed.
inline void WorkTogether(const std::vector<Work>& works) {
    std::atomic<size_t> waiting{works.size()};
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < works.size(); ++i)
        threads.emplace_back([&, i] {
            Choices choices(i);
            --waiting;
            while (waiting != 0)
                std::this_thread::yield();
            while (!stop)
                works[i](choices);
        });
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    while (std::chrono::steady_clock::now() < end && !testing::Test::HasFailure())
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
}

// Runs the works once each, begun together.
inline void RaceOnce(const std::vector<std::function<void()>>& works) {
    std::atomic<size_t> waiting{works.size()};
    std::vector<std::thread> threads;
    for (const auto& work : works)
        threads.emplace_back([&] {
            --waiting;
            while (waiting != 0)
                std::this_thread::yield();
            work();
        });
    for (std::thread& thread : threads)
        thread.join();
}

// The code is one of those that a race allows.
inline testing::AssertionResult IsOneOf(HRESULT code, std::initializer_list<HRESULT> allowed) {
    for (const HRESULT each : allowed)
        if (code == each)
            return testing::AssertionSuccess();
    return testing::AssertionFailure() << "returned " << CodeText(code);
}

} // namespace treevault::tests

#endif
