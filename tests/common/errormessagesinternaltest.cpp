// SPDX-License-Identifier: MIT
// Texts of codes, with the modules of a program that has the default settings.
#include "common/errormessages.h"

#include "common/errorhandling.h"
#include "platform/encoding.h"
#include "platform/systemmessage.h"
#include "support/errorrecords.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace treevault {
namespace {

using namespace tests;

std::string Message(uint32_t code) {
    return ToUtf8(GetErrorMessage(static_cast<HRESULT>(code)));
}

// The system's text for the first of the ids that it knows, without its end.
std::string SystemText(uint32_t id) {
    WideText text;
    EXPECT_TRUE(ReadSystemMessage(id, text)) << id;
    text.erase(text.find_last_not_of(TV_W(" .\r\n")) + 1);
    return ToUtf8(text);
}

TEST(ErrorMessage, OfASystemCodeIsTheSystems) {
    EXPECT_EQ(SystemText(87), Message(0x80070057));
    EXPECT_EQ(SystemText(0x80004005), Message(0x80004005));
    EXPECT_EQ(SystemText(5), Message(5));
}

TEST(ErrorMessage, LosesStopsAndLineBreaksAtItsEnd) {
    for (const uint32_t code : {0u, 2u, 0x80070005u, 0x80070057u, 0x80070490u}) {
        const std::string message = Message(code);
        EXPECT_EQ(std::string::npos, std::string(" .\r\n").find(message.back())) << message;
    }
}

TEST(ErrorMessage, OfAnUnknownCodeSaysSo) {
    for (const uint32_t code : {0x80040200u, 0x8004F123u, 0x8004FFFFu, 0x20001234u, 0x8007FFF7u})
        EXPECT_EQ("<no description>", Message(code)) << std::hex << code;
}

TEST(ErrorMessage, IsTheSameTheSecondTime) {
    for (const uint32_t code : {0x80070057u, 0x80040206u, 0x8004F124u})
        EXPECT_EQ(Message(code), Message(code));
}

TEST(ErrorMessage, TakesNoRecordOfTheThread) {
    const Record marker = MakeForeignRecord(TV_W("Boom"));
    for (const uint32_t code : {0x8004F125u, 0x80070057u}) {
        SetErrorInfo(0, marker.Get());
        Message(code);
        EXPECT_EQ(marker.Get(), TakePending().Get());
    }
}

TEST(ErrorMessage, MayBeAskedForByManyThreads) {
    std::vector<std::thread> threads;
    for (int n = 0; n < 4; ++n)
        threads.emplace_back([] {
            for (uint32_t code = 0x8004E000; code < 0x8004E400; ++code)
                EXPECT_EQ("<no description>", Message(code));
        });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
} // namespace treevault
