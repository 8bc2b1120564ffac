// SPDX-License-Identifier: MIT
// Nodes as text when nothing is hidden.
#include "support/foreignnode.h"
#include "support/presentation.h"

namespace treevault::tests {
namespace {

class StringPresentation : public NodeTest {};

const Text NullText = W("ACNode[<null>]");

TEST_F(StringPresentation, OfNullIsTheSameInEveryMode) {
    for (const uint32_t mode : {0u, 1u, 2u, 0xFFFFFFFFu}) {
        WCHAR buffer[15];
        size_t size = 15;
        EXPECT_TRUE(Succeeds(AcnGetStringPresentation, nullptr, mode, buffer, &size));
        EXPECT_EQ(NullText, Text(buffer));
        EXPECT_EQ(15u, size);
    }
}

TEST_F(StringPresentation, IntoTooSmallABufferWritesNothingAndTellsTheSize) {
    WCHAR buffer[14];
    std::fill(std::begin(buffer), std::end(buffer), W('?'));
    size_t size = 14;
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetStringPresentation, nullptr, 0,
                             buffer, &size));
    EXPECT_EQ(15u, size);
    EXPECT_EQ(Text(14, W('?')), Text(buffer, 14));
}

TEST_F(StringPresentation, ANullBufferHasNoRoom) {
    for (const size_t capacity : {size_t(0), size_t(1000)}) {
        size_t size = capacity;
        EXPECT_TRUE(FailsPlainly(TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetStringPresentation, nullptr,
                                 0, nullptr, &size));
        EXPECT_EQ(15u, size);
    }
}

TEST_F(StringPresentation, BeginsWithTheAddressOfTheNode) {
    const Node node = Create(W("n"));
    EXPECT_EQ("ACNode[" + AddressText(node.Get()) + "]:\r\n\t<n n=\"\\n\"/>", Present(node, 0));
}

TEST_F(StringPresentation, IsTheXmlOfTheNodeWithoutTheOuterElement) {
    const Node node = Tree("n:T{count=5 name='x'}");
    EXPECT_EQ(" <n n=\"\\n\" t=\"T\">\r\n"
              "  <a n=\"count\" t=\"3\" v=\"5\"/>\r\n"
              "  <a n=\"name\" t=\"2\" v=\"x\"/>\r\n"
              " </n>",
              Shown(node, 0));
}

TEST_F(StringPresentation, NamesTheNodeByItsPathAndThoseBelowByTheirNames) {
    const Node top = Tree("a(b(c))");
    const Node b = ChildAt(top, 0);
    EXPECT_EQ(" <n n=\"\\a\\b\">\r\n"
              "  <n n=\"c\"/>\r\n"
              " </n>",
              Shown(b, 1));
}

TEST_F(StringPresentation, OnlyModeOneShowsTheChildren) {
    const Node node = Tree("n(a(b) c)");
    EXPECT_EQ(" <n n=\"\\n\">\r\n"
              "  <n n=\"a\">\r\n"
              "   <n n=\"b\"/>\r\n"
              "  </n>\r\n"
              "  <n n=\"c\"/>\r\n"
              " </n>",
              Shown(node, 1));
    for (const uint32_t mode : {0u, 2u, 3u, 0x101u, 0xFFFFFFFFu})
        EXPECT_EQ(" <n n=\"\\n\"/>", Shown(node, mode)) << mode;
}

TEST_F(StringPresentation, IsConvertedFromUtf8) {
    const Node node = Create(W("\u00E4\u4E2D\U0001F600"));
    size_t size = 200;
    WCHAR buffer[200];
    ASSERT_TRUE(Succeeds(AcnGetStringPresentation, node, 0, buffer, &size));
    EXPECT_NE(Text::npos, Text(buffer).find(W("n=\"\\\u00E4\u4E2D\U0001F600\"")));
}

TEST_F(StringPresentation, KeepsNoReferenceAndChangesNothing) {
    const Node node = Tree("n{~x=1}(a)");
    const std::string before = Show(node, Flags::Shown);
    Present(node, 1);
    EXPECT_EQ(1u, References(node));
    EXPECT_EQ(before, Show(node, Flags::Shown));
}

TEST_F(StringPresentation, FitsExactlyOrNotAtAll) {
    const Node node = Tree("n{x=1}");
    size_t needed = 0;
    AcnGetStringPresentation(node, 1, nullptr, &needed);
    Text buffer(needed, W('?'));
    size_t size = needed - 1;
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetStringPresentation, node, 1,
                             buffer.data(), &size));
    EXPECT_EQ(needed, size);
    EXPECT_EQ(Text(needed, W('?')), buffer);
    EXPECT_TRUE(Succeeds(AcnGetStringPresentation, node, 1, buffer.data(), &size));
    EXPECT_EQ(needed, size);
    EXPECT_EQ(WCHAR(0), buffer.back());
}

// What the writer refuses leaves the outputs alone.
TEST_F(StringPresentation, OfAForeignNodeFails) {
    ForeignNode foreign;
    WCHAR buffer[4] = {W('?'), 0};
    size_t size = 4;
    EXPECT_TRUE(
        FailsWithRecord(E_NOINTERFACE, AcnGetStringPresentation, &foreign, 0, buffer, &size));
    EXPECT_EQ(4u, size);
    EXPECT_EQ(Text(W("?")), Text(buffer));
    EXPECT_EQ(1u, foreign.References);
}

} // namespace
} // namespace treevault::tests
