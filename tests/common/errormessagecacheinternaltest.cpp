// SPDX-License-Identifier: MIT
// The texts that are kept for codes.
#include "common/errormessagecache.h"

#include "platform/encoding.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace treevault {
namespace {

TEST(MessageCache, HasWhatWasInserted) {
    ErrorMessageCache cache;
    WideText text = TV_W("untouched");
    EXPECT_FALSE(cache.Find(0x80040206, text));
    EXPECT_EQ(WideText(TV_W("untouched")), text);
    cache.Insert(0x80040206, TV_W("a"));
    cache.Insert(0, TV_W("b"));
    cache.Insert(0xFFFFFFFF, TV_W("c"));
    EXPECT_TRUE(cache.Find(0x80040206, text));
    EXPECT_EQ(WideText(TV_W("a")), text);
    EXPECT_TRUE(cache.Find(0, text));
    EXPECT_EQ(WideText(TV_W("b")), text);
    EXPECT_TRUE(cache.Find(0xFFFFFFFF, text));
    EXPECT_EQ(WideText(TV_W("c")), text);
    EXPECT_FALSE(cache.Find(0x80040205, text));
}

TEST(MessageCache, KeepsTheFirstText) {
    ErrorMessageCache cache;
    cache.Insert(1, TV_W("first"));
    cache.Insert(1, TV_W("second"));
    WideText text;
    EXPECT_TRUE(cache.Find(1, text));
    EXPECT_EQ(WideText(TV_W("first")), text);
}

TEST(MessageCache, ServesManyThreads) {
    ErrorMessageCache cache;
    std::vector<std::thread> threads;
    for (int n = 0; n < 4; ++n)
        threads.emplace_back([&cache] {
            for (uint32_t code = 0; code < 2000; ++code) {
                const WideText expected(code % 37 + 1, TV_W('x'));
                cache.Insert(code, expected);
                WideText text;
                EXPECT_TRUE(cache.Find(code, text));
                EXPECT_EQ(expected, text);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
} // namespace treevault
