// SPDX-License-Identifier: MIT
// Texts that are not well-formed, and what the record says of each.
#include "support/xml.h"

namespace treevault::tests {

namespace {

class WellFormedness : public NodeTest {};

constexpr HRESULT Malformed = TREEVAULT_E_NOT_WELL_FORMED;

HRESULT TREEVAULT_CALL StartText(const std::string* text, INodeDeserializer** context) {
    return Start(*text, 0, context);
}

// The start fails, and the record ends with the parser's message in brackets, before any details.
void ExpectMalformed(const std::string& text, const char* message) {
    const std::string bracketed = std::string(" (") + message + ")";
    INodeDeserializer* context = reinterpret_cast<INodeDeserializer*>(Untouched());
    EXPECT_TRUE(FailsWithRecordOf(Text(bracketed.begin(), bracketed.end()), Malformed, StartText,
                                  &text, &context))
        << text;
    EXPECT_EQ(reinterpret_cast<INodeDeserializer*>(Untouched()), context);
}

} // namespace

TEST_F(WellFormedness, TheRecordHoldsTheMessageOfTheParser) {
    ExpectMalformed("x", "expected <");
    ExpectMalformed("<nr/>x", "expected <");
    ExpectMalformed("<", "expected element name");
    ExpectMalformed("<nr>< </nr>", "expected element name");
    ExpectMalformed("<nr", "expected >");
    ExpectMalformed("<nr/", "expected >");
    ExpectMalformed("<nr/ >", "expected >");
    ExpectMalformed("<nr></nr", "expected >");
    ExpectMalformed("<nr></nr x>", "expected >");
    ExpectMalformed("<nr><n></n!></nr><", "expected element name");
    ExpectMalformed("<nr a>", "expected =");
    ExpectMalformed("<nr a=>", "expected ' or \"");
    ExpectMalformed("<nr a=x>", "expected ' or \"");
    ExpectMalformed("<nr a='x\">", "expected ' or \"");
    ExpectMalformed("<nr a='&#x41'/>", "expected ;");
    ExpectMalformed("<nr>&#65</nr>", "expected ;");
    ExpectMalformed("<nr a='&#x110000;'/>", "invalid numeric character entity");
    ExpectMalformed("<nr>", "unexpected end of data");
    ExpectMalformed("<nr>text", "unexpected end of data");
    ExpectMalformed("<nr><n></n>", "unexpected end of data");
    ExpectMalformed("<!--", "unexpected end of data");
    ExpectMalformed("<?xml ", "unexpected end of data");
    ExpectMalformed("<?pi", "unexpected end of data");
    ExpectMalformed("<!DOCTYPE x", "unexpected end of data");
    ExpectMalformed("<!DOCTYPE x [", "unexpected end of data");
    ExpectMalformed("<nr><![CDATA[]]", "unexpected end of data");
    ExpectMalformed("<!x", "unexpected end of data");
}

TEST_F(WellFormedness, ANulEndsTheText) {
    EXPECT_EQ(S_OK, ReadCode(std::string_view("<nr/>\0<", 7)));
    EXPECT_EQ(S_OK, ReadCode(std::string_view("<nr/> \0x", 8)));
    EXPECT_EQ(Malformed, ReadCode(std::string_view("<nr>\0</nr>", 10)));
    EXPECT_EQ(Malformed, ReadCode(std::string_view("<nr a='\0'/>", 11)));
    EXPECT_EQ(Malformed, ReadCode(std::string_view("<nr \0/>", 7)));
    EXPECT_EQ(TREEVAULT_E_NOT_A_NODE_DOCUMENT, ReadCode(std::string_view("\0<nr/>", 6)));
}

TEST_F(WellFormedness, EveryPrefixOfADocumentIsMalformed) {
    const std::string text =
        "<nr x='y'><n n='a' t=\"b\"><!-- c --><a n='c' t='3' v='1&amp;&#x32;'/>"
        "text<n><![CDATA[x]]><a n='d'><v v=''/> </a></n></n ></nr>";
    ASSERT_EQ(S_OK, ReadCode(text));
    EXPECT_EQ(TREEVAULT_E_NOT_A_NODE_DOCUMENT, ReadCode(""));
    for (size_t length = 1; length < text.size(); ++length)
        EXPECT_EQ(CodeText(Malformed), CodeText(ReadCode(text.substr(0, length)))) << length;
}

TEST_F(WellFormedness, EveryPrefixOfWhatStandsBeforeTheRootIsMalformedOrEmpty) {
    const std::string text = "\xEF\xBB\xBF<?xml version='1.0'?><!DOCTYPE nr [<!-- -->]> "
                             "<!-- c --><?pi?><nr/>";
    ASSERT_EQ(S_OK, ReadCode(text));
    const std::vector<std::string> complete = {
        "",
        "\xEF\xBB\xBF",
        "\xEF\xBB\xBF<?xml version='1.0'?>",
        "\xEF\xBB\xBF<?xml version='1.0'?><!DOCTYPE nr [<!-- -->]>",
        "\xEF\xBB\xBF<?xml version='1.0'?><!DOCTYPE nr [<!-- -->]> ",
        "\xEF\xBB\xBF<?xml version='1.0'?><!DOCTYPE nr [<!-- -->]> <!-- c -->",
        "\xEF\xBB\xBF<?xml version='1.0'?><!DOCTYPE nr [<!-- -->]> <!-- c --><?pi?>"};
    for (size_t length = 0; length < text.size(); ++length) {
        const std::string prefix = text.substr(0, length);
        const bool empty = std::find(complete.begin(), complete.end(), prefix) != complete.end();
        EXPECT_EQ(CodeText(empty ? TREEVAULT_E_NOT_A_NODE_DOCUMENT : Malformed),
                  CodeText(ReadCode(prefix)))
            << length;
    }
}

TEST_F(WellFormedness, EverySuffixEndsInACode) {
    const std::string text = "<nr><n n='a' t=\"b\"><a n='c' t='3' v='1&amp;'/></n></nr>";
    for (size_t length = 1; length < text.size(); ++length) {
        const HRESULT hr = ReadCode(text.substr(length));
        EXPECT_TRUE(hr == Malformed || hr == TREEVAULT_E_NOT_A_NODE_DOCUMENT) << length;
    }
}

} // namespace treevault::tests
