// SPDX-License-Identifier: MIT
// A setting of hidden attributes that is malformed at first. The program has one test, since the
// setting is read once for the process.
#include "support/environment.h"
#include "support/presentation.h"

namespace treevault::tests {
namespace {

class HiddenAttributesChanging : public NodeTest {};

TEST_F(HiddenAttributesChanging, AreReadAnewUntilTheyAreWellFormed) {
    VariableInForce setting("GS_Logger_HiddenNodeTypeAttrs", "*:a;bad");
    const Node node = Tree("n{a=1 b=2 c=3}");
    const std::vector<const char*> malformed = {"*:a;bad", "a:b:c", "a:", ":a", "; ;"};
    for (const char* value : malformed) {
        setting.Change(value);
        WCHAR buffer[1] = {W('?')};
        size_t size = 1;
        for (int i = 0; i < 2; ++i)
            EXPECT_TRUE(
                FailsWithRecord(E_INVALIDARG, AcnGetStringPresentation, node, 1, buffer, &size))
                << value;
        EXPECT_EQ(1u, size);
        EXPECT_EQ(W('?'), buffer[0]);
        EXPECT_EQ(1u, References(node));
    }
    // Null needs no setting.
    EXPECT_EQ("ACNode[<null>]", Present(nullptr, 1));

    // Nothing of the failed readings stays, and what is read now stays for good.
    const char* const expected = " <n n=\"\\n\">\r\n"
                                 "  <a n=\"a\" t=\"3\" v=\"1\"/>\r\n"
                                 "  <a n=\"b\" t=\"2\" v=\"********\"/>\r\n"
                                 "  <a n=\"c\" t=\"3\" v=\"3\"/>\r\n"
                                 " </n>";
    setting.Change("*:b");
    EXPECT_EQ(expected, Shown(node));
    setting.Change("*:c");
    EXPECT_EQ(expected, Shown(node));
}

} // namespace
} // namespace treevault::tests
