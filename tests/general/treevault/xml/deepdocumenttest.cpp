// SPDX-License-Identifier: MIT
// Documents and trees as deep as they may be, and deeper.
#include "support/xml.h"

namespace treevault::tests {

namespace {

class DeepDocument : public NodeTest {};

std::string Repeat(std::string_view text, size_t count) {
    std::string repeated;
    repeated.reserve(text.size() * count);
    for (size_t i = 0; i < count; ++i)
        repeated += text;
    return repeated;
}

// As the writer has it: the root and `count` nodes, each inside the one before.
std::string Nested(size_t count) {
    return "<nr>" + Repeat("<n n=\"x\">", count - 1) + "<n n=\"x\"/>" + Repeat("</n>", count - 1) +
           "</nr>";
}

const WCHAR* const TooDeep = W(" (nesting too deep)");

HRESULT TREEVAULT_CALL StartText(const std::string* text, INodeDeserializer** context) {
    return Start(*text, 0, context);
}

void ExpectTooDeep(const std::string& text) {
    INodeDeserializer* context = nullptr;
    EXPECT_TRUE(
        FailsWithRecordOf(TooDeep, TREEVAULT_E_NOT_WELL_FORMED, StartText, &text, &context));
}

} // namespace

TEST_F(DeepDocument, IsReadAndWrittenDownToTheLimit) {
    const std::string text = Nested(TREEVAULT_MAX_XML_DEPTH - 1);
    const Node root = ReadOne(text);
    EXPECT_TRUE(Write({root}) == text);
}

TEST_F(DeepDocument, IsRefusedBelowTheLimit) {
    ExpectTooDeep(Nested(TREEVAULT_MAX_XML_DEPTH));
    const size_t inner = TREEVAULT_MAX_XML_DEPTH - 1;
    ExpectTooDeep("<nr>" + Repeat("<n>", inner) + "<a></a>" + Repeat("</n>", inner) + "</nr>");
}

TEST_F(DeepDocument, OnlyElementsCount) {
    const size_t inner = TREEVAULT_MAX_XML_DEPTH - 1;
    const std::string text = "<nr>" + Repeat("<n n='x'>", inner) + "text<!-- c --><![CDATA[]]>" +
                             Repeat("</n>", inner) + "</nr>";
    EXPECT_EQ(S_OK, ReadCode(text));
}

TEST_F(DeepDocument, SiblingsDoNotCount) {
    const std::string text =
        "<nr><n n='x'>" + Repeat("<a n='A'><v v=''/></a>", 200000) + "</n></nr>";
    EXPECT_EQ(S_OK, ReadCode(text));
}

TEST_F(DeepDocument, AMillionLevelsAreRefused) {
    ExpectTooDeep(Nested(1000000));
    ExpectTooDeep(Repeat("<n>", 1000000));
    ExpectTooDeep("<nr/>" + Nested(1000000));
}

TEST_F(DeepDocument, ElementsThatAreNeverReadMayNestToo) {
    const size_t inner = TREEVAULT_MAX_XML_DEPTH - 3;
    const std::string ignored = Repeat("<y>", inner) + Repeat("</y>", inner);
    EXPECT_EQ(S_OK, ReadCode("<nr><n n='x'><a n='A'>" + ignored + "</a></n></nr>"));
}

TEST_F(DeepDocument, AMillionLevelsOfATreeAreWritten) {
    constexpr size_t Levels = 1000000;
    const Node root = Create(W("x"));
    Node deepest = root;
    for (size_t level = 1; level < Levels; ++level)
        deepest = AddNew(deepest, W("x"));
    EXPECT_TRUE(Write({root}) == Nested(Levels));
    EXPECT_TRUE(Write({root}, 0, Levels - 2) == Nested(Levels - 1));
}

} // namespace treevault::tests
