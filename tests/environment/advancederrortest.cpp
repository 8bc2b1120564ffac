// SPDX-License-Identifier: MIT
// Whether expected misses set records, as the environment of the process says. It is read once.
#include "common/errorhandling.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace treevault {
namespace {

TEST(AdvancedErrorInfo, IsWhatTheEnvironmentSays) {
    const char* const expected = std::getenv("TREEVAULT_EXPECTED_ADVANCED");
    ASSERT_NE(nullptr, expected);
    EXPECT_EQ(std::string(expected) == "1", IsAdvancedErrorInfoEnabled());
    EXPECT_EQ(std::string(expected) == "1", IsAdvancedErrorInfoEnabled());
}

} // namespace
} // namespace treevault
