// SPDX-License-Identifier: MIT
// The maximum severity as the environment of the process sets it. CTest runs the program with
// several settings and tells each time what to expect.
#include "common/logging.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace treevault {
namespace {

TEST(SeverityOfTheEnvironment, EnablesTheLinesUpToIt) {
    const char* const expected = std::getenv("TREEVAULT_EXPECTED_SEVERITY");
    ASSERT_NE(nullptr, expected);
    const auto maximum = static_cast<uint32_t>(std::atoi(expected));
    for (uint32_t severity = 0; severity <= 9; ++severity)
        EXPECT_EQ(severity >= 1 && severity <= maximum, IsSeverityEnabled(severity)) << severity;
}

} // namespace
} // namespace treevault
