// SPDX-License-Identifier: MIT
// Attributes that the setting hides, shown to clients. Runs with
// GS_Logger_HiddenNodeTypeAttrs=Account:Secret,Pin;*:Token
#include "support/presentation.h"

namespace treevault::tests {
namespace {

class HiddenAttributes : public NodeTest {};

TEST_F(HiddenAttributes, AreMaskedAsText) {
    const Node node = Tree("n:Account{Name='joe' Pin=1234 Secret='xyzzy'}");
    EXPECT_EQ(" <n n=\"\\n\" t=\"Account\">\r\n"
              "  <a n=\"Name\" t=\"2\" v=\"joe\"/>\r\n"
              "  <a n=\"Pin\" t=\"2\" v=\"********\"/>\r\n"
              "  <a n=\"Secret\" t=\"2\" v=\"********\"/>\r\n"
              " </n>",
              Shown(node, 0));
}

TEST_F(HiddenAttributes, KeepTheirValuesInTheNode) {
    const Node node = Tree("n:Account{~Secret='xyzzy'}");
    Present(node, 1);
    EXPECT_EQ("n:Account{~Secret='xyzzy'}", Show(node, Flags::Shown));
    EXPECT_EQ(1u, References(node));
}

TEST_F(HiddenAttributes, AreThoseOfTheTypeAndThoseOfAllTypes) {
    EXPECT_EQ(" <n n=\"\\n\" t=\"Other\">\r\n"
              "  <a n=\"Secret\" t=\"3\" v=\"1\"/>\r\n"
              "  <a n=\"Token\" t=\"2\" v=\"********\"/>\r\n"
              " </n>",
              Shown(Tree("n:Other{Secret=1 Token=2}"), 0));
    EXPECT_EQ(" <n n=\"\\n\" t=\"Account\">\r\n"
              "  <a n=\"Token\" t=\"2\" v=\"********\"/>\r\n"
              " </n>",
              Shown(Tree("n:Account{Token=2}"), 0));
}

TEST_F(HiddenAttributes, AreComparedCaseSensitively) {
    const std::string shown = Shown(Tree("n:account{Secret=11 token=22}"), 0);
    EXPECT_NE(std::string::npos, shown.find("v=\"11\""));
    EXPECT_NE(std::string::npos, shown.find("v=\"22\""));
}

TEST_F(HiddenAttributes, AreMaskedInTheWholeSubtree) {
    const Node node = Tree("n(a:Account{Pin=1}(b{Token=2}) c)");
    EXPECT_EQ(" <n n=\"\\n\">\r\n"
              "  <n n=\"a\" t=\"Account\">\r\n"
              "   <a n=\"Pin\" t=\"2\" v=\"********\"/>\r\n"
              "   <n n=\"b\">\r\n"
              "    <a n=\"Token\" t=\"2\" v=\"********\"/>\r\n"
              "   </n>\r\n"
              "  </n>\r\n"
              "  <n n=\"c\"/>\r\n"
              " </n>",
              Shown(node, 1));
}

TEST_F(HiddenAttributes, LeaveTheAddressOfTheCloneThatIsShown) {
    const Node node = Tree("n{Token=2}");
    std::string address;
    Present(node, 1, &address);
    EXPECT_EQ(18u, address.size());
    EXPECT_NE(AddressText(node.Get()), address);
}

TEST_F(HiddenAttributes, OfNodesThatAreNotShownCostNoClone) {
    const Node node = Tree("n(c{Token=2})");
    std::string address;
    Present(node, 0, &address);
    EXPECT_EQ(AddressText(node.Get()), address);
    Present(node, 1, &address);
    EXPECT_NE(AddressText(node.Get()), address);
}

TEST_F(HiddenAttributes, ShowTheCloneUnderThePathOfTheNode) {
    const Node top = Tree("top(below{Token=2})");
    EXPECT_EQ(" <n n=\"\\top\\below\">\r\n"
              "  <a n=\"Token\" t=\"2\" v=\"********\"/>\r\n"
              " </n>",
              Shown(ChildAt(top, 0), 0));
}

TEST_F(HiddenAttributes, OfNullAreNone) {
    EXPECT_EQ("ACNode[<null>]", Present(nullptr, 1));
}

} // namespace
} // namespace treevault::tests
