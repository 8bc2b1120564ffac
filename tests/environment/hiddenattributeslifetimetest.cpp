// SPDX-License-Identifier: MIT
// Attributes stay hidden to the last moment: a static object of the client shows a node while it is
// destroyed. Runs with GS_Logger_HiddenNodeTypeAttrs=*:Secret
#include "support/presentation.h"

#include <cstdlib>

namespace treevault::tests {
namespace {

// Made before the setting is read, and so destroyed after what was made then.
struct Showing {
    ~Showing() {
        WCHAR buffer[1000];
        size_t size = std::size(buffer);
        const HRESULT hr = AcnGetStringPresentation(Subject, 1, buffer, &size);
        const bool shown = SUCCEEDED(hr) && Text(buffer).find(W("xyzzy")) != Text::npos;
        AcnCloseNodeHandle(Subject);
        if (shown)
            std::_Exit(3);
    }

    IACNode* Subject = nullptr;
};
Showing showing;

TEST(HiddenAttributesOfAStaticObject, StayHidden) {
    ASSERT_EQ(S_OK, AcnCreateNode(W("n"), W("T"), &showing.Subject));
    ASSERT_EQ(S_OK, AcnSetAttribute(showing.Subject, W("Secret"), VtStringW, W("xyzzy"), 12));
    EXPECT_NE(std::string::npos, Present(showing.Subject, 1).find("v=\"********\""));
}

} // namespace
} // namespace treevault::tests
