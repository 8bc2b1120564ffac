// SPDX-License-Identifier: MIT
// Joined paths that end at their root or in a dot, where emulators of Windows differ.
#include "platform/encoding.h"
#include "platform/folders.h"

#include <gtest/gtest.h>

namespace treevault {
namespace {

TEST(JoinPath, NeverLeavesTheRoot) {
    EXPECT_EQ(WideText(TV_W("\\")), JoinPath(TV_W("\\L"), TV_W("..")));
    EXPECT_EQ(WideText(TV_W("\\")), JoinPath(TV_W("\\"), TV_W("..")));
    EXPECT_EQ(WideText(TV_W("D:\\")), JoinPath(TV_W("D:\\L"), TV_W("..")));
    EXPECT_EQ(WideText(TV_W("D:\\")), JoinPath(TV_W("D:\\"), TV_W("..")));
}

TEST(JoinPath, DropsADotAtTheEnd) {
    EXPECT_EQ(WideText(TV_W("D:\\L")), JoinPath(TV_W("D:\\L"), TV_W(".")));
}

TEST(JoinPath, TakesADriveForAPathOfItsOwn) {
    EXPECT_EQ(WideText(TV_W("E:")), JoinPath(TV_W("D:\\L"), TV_W("E:")));
}

} // namespace
} // namespace treevault
