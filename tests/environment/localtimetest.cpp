// SPDX-License-Identifier: MIT
// The time of a log line in a time zone that CTest sets, together with what it must be.
#include "common/logging.h"
#include "platform/encoding.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace treevault {
namespace {

TEST(TimeOfALine, IsLocal) {
    const char* const expected = std::getenv("TREEVAULT_EXPECTED_TIME");
    ASSERT_NE(nullptr, expected);
    const uint64_t time = 133594528891232345u; // 2024-05-06 07:08:09.1232345 UTC
    WideText line;
    DefaultLogLineFormatter formatter;
    formatter.Format(line, SeverityInfo, SourcePlace{"memorystorage.cpp", 120}, TV_W("Storing: x"),
                     0, &time);
    const std::string text = ToUtf8(line);
    EXPECT_EQ(expected + std::string(" | INFO |"), text.substr(0, 36));
    // The name has 17 characters, so that the number gets 26 - 17 + 4 = 13.
    EXPECT_EQ(" | memorystorage.cpp:120          | Storing: x\r\n", text.substr(47));
}

} // namespace
} // namespace treevault
