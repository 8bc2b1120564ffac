// SPDX-License-Identifier: MIT
// The texts of the library's own codes, which lie in a file beside it.
#include "support/results.h"

#include <gtest/gtest.h>

namespace treevault::tests {
namespace {

std::string ErrorText(HRESULT code) {
    WCHAR buffer[200];
    size_t size = 200;
    EXPECT_EQ(S_OK, EhMakeErrorText(code, 0, nullptr, nullptr, buffer, &size));
    return Narrow(buffer);
}

TEST(OwnMessages, AreThereForEachCode) {
    const std::pair<HRESULT, const char*> texts[] = {
        {TREEVAULT_E_INVALID_NAME, "0x80040201 The name or path is not valid"},
        {TREEVAULT_E_PARENT_PATH_FIXED,
         "0x80040202 The parent path of a node that has a parent cannot be changed"},
        {TREEVAULT_E_UNSUPPORTED_TYPE, "0x80040203 The type of the value is not supported"},
        {TREEVAULT_E_CANNOT_CONVERT,
         "0x80040204 The value cannot be converted to the requested type"},
        {TREEVAULT_E_HAS_PARENT, "0x80040205 The child already has a parent"},
        {TREEVAULT_E_CHILD_EXISTS, "0x80040206 A child of that name already exists"},
        {TREEVAULT_E_CONTEXT_FINISHED, "0x80040207 The serialization context is already finished"},
        {TREEVAULT_E_NOT_WELL_FORMED, "0x80040208 The XML text is not well-formed"},
        {TREEVAULT_E_NOT_A_NODE_DOCUMENT,
         "0x80040209 The structure of the XML text is not that of a node document"},
        {TREEVAULT_E_STG_NAME_IN_USE, "0x80040301 The name is in use by another storage"},
        {TREEVAULT_E_STG_PARENT_MISSING, "0x80040303 The parent of the node is not in the storage"},
        {TREEVAULT_E_STG_BAD_PATH, "0x80040304 The path of the filter is not valid"},
        {TREEVAULT_E_STG_BAD_FILTER, "0x80040305 The type of the filter is not known"},
    };
    for (const auto& [code, text] : texts) {
        EXPECT_EQ(text, ErrorText(code));
        EXPECT_EQ(text, ErrorText(code)) << "the second time";
    }
}

TEST(OwnMessages, AreNotThereForCodesThatNobodyRaises) {
    EXPECT_EQ("0x80040200 <no description>", ErrorText(static_cast<HRESULT>(0x80040200)));
    EXPECT_EQ("0x8004020A <no description>", ErrorText(static_cast<HRESULT>(0x8004020A)));
    EXPECT_EQ("0x80040302 <no description>", ErrorText(static_cast<HRESULT>(0x80040302)));
}

TEST(OwnMessages, AreTheTextOfARecord) {
    IACNode *parent = nullptr, *child = nullptr;
    ASSERT_EQ(S_OK, AcnCreateNode(TREEVAULT_WIDE("a"), TREEVAULT_WIDE(""), &parent));
    ASSERT_EQ(TREEVAULT_E_INVALID_NAME,
              AcnCreateNode(TREEVAULT_WIDE("a\\\\b"), TREEVAULT_WIDE(""), &child));
    Text record;
    ASSERT_TRUE(TakeRecord(record));
    EXPECT_EQ(0u, Narrow(record).find("0x80040201 The name or path is not valid"))
        << Narrow(record);
    AcnCloseNodeHandle(parent);
}

} // namespace
} // namespace treevault::tests
