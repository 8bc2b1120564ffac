// SPDX-License-Identifier: MIT
// The texts that Linux has of its own.
#include "platform/encoding.h"
#include "platform/systemmessage.h"

#include <gtest/gtest.h>

namespace treevault {
namespace {

TEST(PosixSystemMessage, HasTheUsualTexts) {
    const std::pair<uint32_t, const char*> texts[] = {
        {0, "The operation completed successfully.\r\n"},
        {5, "Access is denied.\r\n"},
        {0x80070005, "Access is denied.\r\n"},
        {0x8007000D, "The data is invalid.\r\n"},
        {0x8007000E, "Not enough memory resources are available to complete this operation.\r\n"},
        {0x80070057, "The parameter is incorrect.\r\n"},
        {0x8007007A, "The data area passed to a system call is too small.\r\n"},
        {0x80070216, "Arithmetic result exceeded 32 bits.\r\n"},
        {0x80004001, "Not implemented\r\n"},
        {0x80004002, "No such interface supported\r\n"},
        {0x80004003, "Invalid pointer\r\n"},
        {0x80004004, "Operation aborted\r\n"},
        {0x80004005, "Unspecified error\r\n"},
        {0x8000FFFF, "Catastrophic failure\r\n"},
        {0x80040154, "Class not registered\r\n"},
    };
    for (const auto& [id, expected] : texts) {
        WideText text;
        EXPECT_TRUE(ReadSystemMessage(id, text)) << std::hex << id;
        EXPECT_EQ(expected, ToUtf8(text));
    }
}

TEST(PosixSystemMessage, IsNotThereForOtherCodes) {
    for (const uint32_t id : {7u, 9999u, 0x8007u, 0x80010057u, 0x00070057u}) {
        WideText text;
        EXPECT_FALSE(ReadSystemMessage(id, text)) << std::hex << id;
    }
}

} // namespace
} // namespace treevault
