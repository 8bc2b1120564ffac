// SPDX-License-Identifier: MIT
// The write position: what it writes and what it only counts.
#include "general/treevault/values/outputcursor.h"

#include <gtest/gtest.h>

#include <string>

namespace treevault::tests {
namespace {

TEST(OutputCursor, WithoutABufferItCounts) {
    OutputCursor out{nullptr, 100};
    out.Write("abc", 3);
    out.Write("", 0);
    out.WriteObject(uint64_t{5});
    EXPECT_EQ(11u, out.Used);
    EXPECT_EQ(nullptr, out.Take(4));
    EXPECT_EQ(15u, out.Used);
}

TEST(OutputCursor, WritesUpToTheCapacity) {
    char buffer[] = "??????";
    OutputCursor out{buffer, 5};
    out.Write("ab", 2);
    out.Write("cde", 3);
    EXPECT_EQ(5u, out.Used);
    EXPECT_STREQ("abcde?", buffer);
    out.Write("f", 1);
    EXPECT_EQ(6u, out.Used);
    EXPECT_STREQ("abcde?", buffer);
}

TEST(OutputCursor, AWriteFitsWholeOrNotAtAll) {
    char buffer[] = "????";
    OutputCursor out{buffer, 4};
    out.Write("ab", 2);
    out.Write("cde", 3);
    EXPECT_EQ(5u, out.Used);
    EXPECT_STREQ("ab??", buffer);
    out.Write("", 0);
    EXPECT_EQ(5u, out.Used);
}

TEST(OutputCursor, NothingFollowsWhatDidNotFit) {
    char buffer[] = "????";
    OutputCursor out{buffer, 4};
    out.Write("abcde", 5);
    out.Write("f", 1);
    EXPECT_EQ(6u, out.Used);
    EXPECT_STREQ("????", buffer);
}

TEST(OutputCursor, CountsBeyond32Bits) {
    OutputCursor out;
    out.Take(0xFFFFFFFF);
    out.Take(0xFFFFFFFF);
    EXPECT_EQ(0x1FFFFFFFEu, out.Used);
}

} // namespace
} // namespace treevault::tests
