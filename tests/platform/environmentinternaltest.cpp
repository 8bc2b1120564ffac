// SPDX-License-Identifier: MIT
// Environment variables, and texts of the platform's codes.
#include "platform/encoding.h"
#include "platform/environment.h"
#include "platform/systemmessage.h"

#include "support/environment.h"

#include <gtest/gtest.h>

namespace treevault {
namespace {

using tests::VariableInForce;

const char* const Name = "TREEVAULT_TEST_A";

TEST(Environment, AVariableIsRead) {
    VariableInForce variable(Name, "abc");
    WideText value;
    EXPECT_TRUE(ReadEnvironment(TV_W("TREEVAULT_TEST_A"), value));
    EXPECT_EQ(WideText(TV_W("abc")), value);
    variable.Change("\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_TRUE(ReadEnvironment(TV_W("TREEVAULT_TEST_A"), value));
    EXPECT_EQ("\xC3\xA9\xF0\x9F\x98\x80", ToUtf8(value));
}

TEST(Environment, AVariableThatIsSetToNothingIsThere) {
    const VariableInForce variable(Name, "");
    WideText value = TV_W("old");
    EXPECT_TRUE(ReadEnvironment(TV_W("TREEVAULT_TEST_A"), value));
    EXPECT_TRUE(value.empty());
}

TEST(Environment, AVariableThatIsNotSetIsNotThere) {
    WideText value = TV_W("old");
    EXPECT_FALSE(ReadEnvironment(TV_W("TREEVAULT_TEST_NONE"), value));
    EXPECT_EQ(WideText(TV_W("old")), value);
}

TEST(Environment, LongValuesAreReadWhole) {
    for (const size_t length : {258u, 259u, 260u, 261u, 262u, 5000u}) {
        const std::string text(length, 'x');
        const VariableInForce variable(Name, text.c_str());
        WideText value;
        EXPECT_TRUE(ReadEnvironment(TV_W("TREEVAULT_TEST_A"), value));
        EXPECT_EQ(text, ToUtf8(value));
    }
}

TEST(ExpandEnvironment, ReplacesKnownVariablesAndLeavesTheRest) {
    const VariableInForce variable(Name, "val");
    const VariableInForce nested("TREEVAULT_TEST_B", "%TREEVAULT_TEST_A%");
    const std::pair<const WCHAR*, const WCHAR*> cases[] = {
        {TV_W(""), TV_W("")},
        {TV_W("plain"), TV_W("plain")},
        {TV_W("%TREEVAULT_TEST_A%"), TV_W("val")},
        {TV_W("x%TREEVAULT_TEST_A%y%TREEVAULT_TEST_A%z"), TV_W("xvalyvalz")},
        {TV_W("%TREEVAULT_TEST_A%%TREEVAULT_TEST_A%"), TV_W("valval")},
        {TV_W("%TREEVAULT_TEST_NONE%"), TV_W("%TREEVAULT_TEST_NONE%")},
        {TV_W("%TREEVAULT_TEST_NONE%%TREEVAULT_TEST_A%"), TV_W("%TREEVAULT_TEST_NONE%val")},
        {TV_W("%TREEVAULT_TEST_B%"), TV_W("%TREEVAULT_TEST_A%")},
        {TV_W("%TREEVAULT_TEST_A"), TV_W("%TREEVAULT_TEST_A")},
        {TV_W("%"), TV_W("%")},
        {TV_W("%%"), TV_W("%%")},
        {TV_W("100%"), TV_W("100%")},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(WideText(expected), ExpandEnvironment(text)) << ToUtf8(text);
}

TEST(ExpandEnvironment, HasNoLimitOfLength) {
    for (const size_t length : {257u, 258u, 259u, 260u, 261u, 5000u}) {
        const std::string text(length, 'x');
        const VariableInForce variable(Name, text.c_str());
        EXPECT_EQ("[" + text + "]", ToUtf8(ExpandEnvironment(TV_W("[%TREEVAULT_TEST_A%]"))));
    }
}

TEST(SystemMessage, OfACommonCodeEndsItsLine) {
    for (const uint32_t id : {2u, 5u, 13u, 14u, 87u, 122u, 534u, 1168u, 0x80004001u, 0x80004005u,
                              0x8007000Du, 0x8007000Eu, 0x80070057u, 0x8007007Au, 0x80070490u}) {
        WideText text;
        EXPECT_TRUE(ReadSystemMessage(id, text)) << std::hex << id;
        EXPECT_TRUE(text.size() > 2 && text.ends_with(TV_W("\r\n"))) << std::hex << id;
    }
}

TEST(SystemMessage, OfAWrappedCodeIsThatOfTheCode) {
    WideText plain, wrapped;
    EXPECT_TRUE(ReadSystemMessage(1168, plain));
    EXPECT_TRUE(ReadSystemMessage(0x80070490, wrapped));
    EXPECT_EQ(plain, wrapped);
    EXPECT_EQ(WideText(TV_W("Element not found.\r\n")), plain);
}

TEST(SystemMessage, OfAnUnknownCodeIsNotThere) {
    for (const uint32_t id : {0x80040201u, 0x8004F123u, 0x8007FFF0u, 0xFFFFFFFFu}) {
        WideText text = TV_W("old");
        EXPECT_FALSE(ReadSystemMessage(id, text)) << std::hex << id;
        EXPECT_EQ(WideText(TV_W("old")), text);
    }
}

} // namespace
} // namespace treevault
