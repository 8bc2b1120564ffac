// SPDX-License-Identifier: MIT
// How the characters of names and values are written.
#include "support/xml.h"

#include <algorithm>
#include <utility>

namespace treevault::tests {

namespace {

// A value as it stands in the text, its quotes included.
std::string Quoted(std::string_view value) {
    const Node node = Create(W("N"));
    EXPECT_EQ(S_OK, Set(node, W("A"), NarrowValue(value)));
    const std::string text = Write({node});
    const std::string before = "<nr><n n=\"N\"><a n=\"A\" v=";
    const std::string behind = "/></n></nr>";
    EXPECT_TRUE(text.starts_with(before) && text.ends_with(behind)) << text;
    return text.substr(before.size(), text.size() - before.size() - behind.size());
}

} // namespace

TEST(Printer, ControlsBecomeReferencesOfTwoUpperCaseDigits) {
    const char* const digits[] = {"00", "01", "02", "03", "04", "05", "06", "07", "08", "09", "0A",
                                  "0B", "0C", "0D", "0E", "0F", "10", "11", "12", "13", "14", "15",
                                  "16", "17", "18", "19", "1A", "1B", "1C", "1D", "1E", "1F"};
    for (int byte = 0; byte < 0x20; ++byte) {
        const std::string reference = std::string("&#x") + digits[byte] + ";";
        EXPECT_EQ("\"a" + reference + "b\"", Quoted(std::string("a") + char(byte) + "b"));
        EXPECT_EQ("\"" + reference + reference + "\"", Quoted(std::string(2, char(byte))));
    }
}

TEST(Printer, EveryOtherByteButMarkupAndQuotesIsCopied) {
    for (int byte = 0x20; byte <= 0xFF; ++byte) {
        if (std::string_view("<>&\"'").find(char(byte)) != std::string_view::npos)
            continue;
        const std::string value = std::string("a") + char(byte) + char(byte);
        EXPECT_EQ("\"" + value + "\"", Quoted(value)) << byte;
    }
}

TEST(Printer, MarkupBecomesEntities) {
    EXPECT_EQ("\"&lt;\"", Quoted("<"));
    EXPECT_EQ("\"&gt;\"", Quoted(">"));
    EXPECT_EQ("\"&amp;\"", Quoted("&"));
    EXPECT_EQ("\"x&lt;y&gt;&amp;amp;z\"", Quoted("x<y>&amp;z"));
}

TEST(Printer, ASingleQuoteStaysInDoubleQuotes) {
    EXPECT_EQ("\"it's '\"", Quoted("it's '"));
    EXPECT_EQ("\"'&lt;'\"", Quoted("'<'"));
}

TEST(Printer, ADoubleQuoteStaysInSingleQuotes) {
    EXPECT_EQ("'\"'", Quoted("\""));
    EXPECT_EQ("'say \"x\"'", Quoted("say \"x\""));
}

TEST(Printer, WithBothQuotesTheSingleOneIsAnEntity) {
    EXPECT_EQ("'&apos;\"&apos;'", Quoted("'\"'"));
    EXPECT_EQ("'\"&apos;'", Quoted("\"'"));
    EXPECT_EQ("'&apos;&lt;\"&gt;&#x0A;&amp;'", Quoted("'<\">\n&"));
}

// Values are looked at many bytes at a time, whatever their length and wherever markup stands.
TEST(Printer, EveryLengthWithMarkupAnywhere) {
    const std::pair<char, const char*> markup[] = {
        {'<', "&lt;"}, {'>', "&gt;"}, {'&', "&amp;"}, {'\x1F', "&#x1F;"}, {'\0', "&#x00;"}};
    for (size_t length = 0; length <= 50; ++length) {
        std::string value;
        for (size_t at = 0; at < length; ++at)
            value += " !#$%'(/09:;=?@AZaz~\x7F\x80\xA6\xBC\xFF"[(at + length) % 25];
        EXPECT_EQ('"' + value + '"', Quoted(value));
        for (size_t at = 0; at < length; ++at) {
            const auto& [byte, entity] = markup[(at + length) % std::size(markup)];
            std::string changed = value, written = value;
            changed[at] = byte;
            written.replace(at, 1, entity);
            EXPECT_EQ('"' + written + '"', Quoted(changed));
            std::string plain = value;
            std::replace(plain.begin(), plain.end(), '\'', '.');
            plain[at] = '"';
            EXPECT_EQ('\'' + plain + '\'', Quoted(plain));
        }
    }
}

TEST(Printer, TheRulesHoldForNamesTypesAndArraysToo) {
    const Node node = Create(W("<\n>"), W("a\"b'c"));
    ASSERT_EQ(S_OK, Set(node, W("&\t\""), {VtStringAArray, std::string("'\0\"'\0", 5)}));
    EXPECT_EQ("<nr><n n=\"&lt;&#x0A;&gt;\" t='a\"b&apos;c'><a n='&amp;&#x09;\"' t=\"257\">"
              "<v v=\"'\"/><v v='\"&apos;'/></a></n></nr>",
              Write({node}));
}

TEST(Printer, ALongValueIsWrittenWhole) {
    std::string value, written;
    for (int i = 0; i < 100000; ++i) {
        value += "0123456789abcdef<";
        written += "0123456789abcdef&lt;";
    }
    EXPECT_EQ("\"" + written + "\"", Quoted(value));
}

} // namespace treevault::tests
