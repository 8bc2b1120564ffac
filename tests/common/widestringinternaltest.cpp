// SPDX-License-Identifier: MIT
// The wide string: shared text, copies that part at an assignment, and the empty text.
#include "common/widestring.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace treevault {
namespace {

const WCHAR* const LongText = TV_W("more than thirteen units");

bool LiesInside(const WideString& text) {
    const auto place = reinterpret_cast<uintptr_t>(text.CStr());
    const auto begin = reinterpret_cast<uintptr_t>(&text);
    return place >= begin && place < begin + sizeof text;
}

TEST(WideString, KeepsShortTextInside) {
    const WideString thirteen(TV_W("abcdefghijklm"));
    const WideString fourteen(TV_W("abcdefghijklmn"));
    EXPECT_TRUE(LiesInside(thirteen));
    EXPECT_FALSE(LiesInside(fourteen));
    const WideString copies[] = {thirteen, fourteen};
    EXPECT_TRUE(LiesInside(copies[0]));
    EXPECT_EQ(fourteen.CStr(), copies[1].CStr());
    EXPECT_EQ(WideText(TV_W("abcdefghijklm")), WideText(copies[0].CStr()));
    EXPECT_EQ(WideText(TV_W("abcdefghijklmn")), WideText(copies[1].CStr()));
}

TEST(WideString, BeginsEmptyAndTerminated) {
    const WideString text;
    EXPECT_EQ(0u, text.Length());
    EXPECT_EQ(WCHAR(0), *text.CStr());
    EXPECT_TRUE(text.View().empty());
    EXPECT_EQ(text, WideString(WideView()));
}

TEST(WideString, HoldsACopyWithATerminator) {
    WideText source = TV_W("abc");
    const WideString text(source);
    source = TV_W("xyz");
    EXPECT_EQ(3u, text.Length());
    EXPECT_EQ(WideText(TV_W("abc")), WideText(text.CStr()));
    EXPECT_EQ(WCHAR(0), text.CStr()[3]);
}

TEST(WideString, HoldsTextByItsLength) {
    const WideString text(WideView(TV_W("a\0b"), 3));
    EXPECT_EQ(WideText(TV_W("a\0b"), 3), WideText(text.View()));
    EXPECT_FALSE(text == WideString(TV_W("a")));
}

TEST(WideString, SharesTheTextOfACopy) {
    const WideString text(LongText);
    const WideString copy(text);
    EXPECT_EQ(text.CStr(), copy.CStr());
    WideString assigned;
    assigned = copy;
    EXPECT_EQ(text.CStr(), assigned.CStr());
}

TEST(WideString, KeepsTheTextAsLongAsACopyLives) {
    WideString copy;
    {
        const WideString text(LongText);
        copy = text;
    }
    EXPECT_EQ(WideText(LongText), WideText(copy.View()));
}

TEST(WideString, LeavesSharersAloneWhenOneIsAssigned) {
    const WideString text(LongText);
    WideString copy(text);
    copy = WideString(TV_W("xyz"));
    EXPECT_EQ(WideText(LongText), WideText(text.View()));
    EXPECT_EQ(WideText(TV_W("xyz")), WideText(copy.View()));
    copy = WideString();
    EXPECT_EQ(0u, copy.Length());
    EXPECT_EQ(24u, text.Length());
}

TEST(WideString, SurvivesAnAssignmentToItself) {
    WideString text(LongText);
    const WideString& same = text;
    text = same;
    EXPECT_EQ(WideText(LongText), WideText(text.View()));
}

TEST(WideString, MovesItsText) {
    WideString text(LongText);
    const WCHAR* const place = text.CStr();
    const WideString moved(std::move(text));
    EXPECT_EQ(place, moved.CStr());
}

TEST(WideString, ComparesByCodeUnits) {
    EXPECT_TRUE(WideString(TV_W("abc")) == WideString(TV_W("abc")));
    EXPECT_FALSE(WideString(TV_W("abc")) == WideString(TV_W("ABC")));
    EXPECT_FALSE(WideString(TV_W("abc")) == WideString(TV_W("ab")));
    EXPECT_FALSE(WideString(TV_W("abc")) == WideString());
}

TEST(WideString, IsCopiedByManyThreads) {
    const WideString text(LongText);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&text] {
            for (int round = 0; round < 20000; ++round) {
                WideString copy(text);
                const WideString second(copy);
                copy = WideString();
                ASSERT_EQ(24u, second.Length());
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(WideText(LongText), WideText(text.View()));
}

} // namespace
} // namespace treevault
