// SPDX-License-Identifier: MIT
// Texts of codes before and after everything else: a static object asks for them while it is made
// and while it is destroyed.
#include "common/errormessages.h"

#include "platform/encoding.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace treevault {
namespace {

constexpr std::string_view OwnText = "A child of that name already exists";

std::string Message(uint32_t code) {
    return ToUtf8(GetErrorMessage(static_cast<HRESULT>(code)));
}

struct Asking {
    // When the modules are gone, so is what comes from them alone.
    ~Asking() {
        const std::string own = Message(0x80040206);
        if ((own != OwnText && own != "<no description>") || Message(0x80070057) != System)
            std::_Exit(3);
    }

    const std::string Own = Message(0x80040206);
    const std::string System = Message(0x80070057);
};
const Asking asking;

TEST(MessagesOfAStaticObject, AreThereFromTheBeginning) {
    EXPECT_EQ(OwnText, asking.Own);
    EXPECT_NE("<no description>", asking.System);
    EXPECT_EQ(asking.Own, Message(0x80040206));
    EXPECT_EQ(asking.System, Message(0x80070057));
}

} // namespace
} // namespace treevault
