// SPDX-License-Identifier: MIT
// The parser beside the recursive one that it stands in for: the same tree, or the same message at
// the same place.
#include "general/treevault/xml/xmlparser.h"

#include <treevault/serialization.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

namespace treevault::tests {

namespace {

using Element = rapidxml::xml_node<char>;

// Elements with their places in the text, one per line, the deepest last.
std::string Describe(const Element& element, const char* start) {
    std::string text = std::string(element.name(), element.name_size()) + "@" +
                       std::to_string(element.name() - start);
    for (const auto* at = element.first_attribute(); at; at = at->next_attribute())
        text += " " + std::string(at->name(), at->name_size()) + "@" +
                std::to_string(at->name() - start) + "=" +
                std::string(at->value(), at->value_size());
    text += "{";
    for (const Element* child = element.first_node(); child; child = child->next_sibling())
        text += Describe(*child, start);
    return text + "}";
}

template <class Document, class Parse>
std::string Outcome(std::string text, Parse&& parse) {
    const auto document = std::make_unique<Document>();
    try {
        parse(*document, text.data());
    } catch (const rapidxml::parse_error& error) {
        return std::string(error.what()) + " at " +
               std::to_string(error.where<char>() - text.data());
    }
    std::string outcome;
    for (const Element* top = document->first_node(); top; top = top->next_sibling())
        outcome += Describe(*top, text.data());
    return outcome + text;
}

std::string OursOf(const std::string& text) {
    return Outcome<XmlDocument>(text, [](XmlDocument& document, char* at) { document.Parse(at); });
}

std::string TheirsOf(const std::string& text) {
    using Document = rapidxml::xml_document<char>;
    return Outcome<Document>(text, [](Document& document, char* at) {
        document.parse<rapidxml::parse_no_data_nodes | rapidxml::parse_no_element_values>(at);
    });
}

const char* const Samples[] = {
    "<nr/>",
    "<nr></nr>",
    "<nr><n n='1'/><n n=\"2\"><a n='x' t='3' v='5'/><n><n/></n>text</n> </nr>",
    "<?xml version='1.0'?><!DOCTYPE nr [<!x []>]><nr>a&lt;b&#65;<n>c</n>d<!-- e --><?f g?></nr>",
    "<nr a = '&amp;&apos;&quot;&gt;&lt;&#x41;&#10;' b=\"'\">\n\t<n\n/>\r\n</nr >\n<x><y/></x>",
    "<a><b><c><d/></c></b><![CDATA[<e>]]><f>&unknown;</f></a>",
};

} // namespace

TEST(Parser, GivesWhatTheRecursiveOneGives) {
    for (const std::string text : Samples)
        EXPECT_EQ(TheirsOf(text), OursOf(text));
}

TEST(Parser, GivesTheSameForEveryPrefix) {
    for (const std::string text : Samples)
        for (size_t length = 0; length < text.size(); ++length)
            EXPECT_EQ(TheirsOf(text.substr(0, length)), OursOf(text.substr(0, length)));
}

TEST(Parser, GivesTheSameForEveryByteChanged) {
    for (const std::string text : Samples)
        for (size_t at = 0; at < text.size(); ++at)
            for (const char byte : {'<', '>', '/', '&', ';', '\'', '"', '!', '=', ' ', 'x', '\0'}) {
                std::string changed = text;
                changed[at] = byte;
                EXPECT_EQ(TheirsOf(changed), OursOf(changed)) << changed;
            }
}

TEST(Parser, GivesTheSameForRandomTags) {
    const char* const pieces[] = {"<a>",  "</a>",  "<b x='1'>", "</>",  "<c/>", "text",
                                  " ",    "<!-->", "-->",       "<!--", "&lt;", "<d y=\"&#x3C;\"/>",
                                  "<?p?>"};
    std::minstd_rand random(1);
    for (int round = 0; round < 20000; ++round) {
        std::string text = "<nr>";
        for (auto count = random() % 12; count > 0; --count)
            text += pieces[random() % std::size(pieces)];
        if (round % 2)
            text += "</nr>";
        EXPECT_EQ(TheirsOf(text), OursOf(text)) << text;
    }
}

TEST(Parser, ADocumentCanBeParsedAgainAfterAFailure) {
    const auto document = std::make_unique<XmlDocument>();
    std::string bad = "<a><b>", good = "<a><b><c/></b></a>";
    EXPECT_THROW(document->Parse(bad.data()), rapidxml::parse_error);
    document->Parse(good.data());
    EXPECT_EQ("a@1{b@4{c@7{}}}", Describe(*document->first_node(), good.data()));
}

TEST(Parser, TheLimitCountsTheOutermostElement) {
    const auto parse = [](size_t depth, const std::string& inside) {
        std::string text;
        for (size_t level = 0; level < depth; ++level)
            text += "<n>";
        text += inside;
        for (size_t level = 0; level < depth; ++level)
            text += "</n>";
        std::make_unique<XmlDocument>()->Parse(text.data());
    };
    EXPECT_NO_THROW(parse(TREEVAULT_MAX_XML_DEPTH, ""));
    EXPECT_NO_THROW(parse(TREEVAULT_MAX_XML_DEPTH - 1, "<n/>"));
    EXPECT_THROW(parse(TREEVAULT_MAX_XML_DEPTH, "<n/>"), rapidxml::parse_error);
    EXPECT_THROW(parse(TREEVAULT_MAX_XML_DEPTH + 1, ""), rapidxml::parse_error);
}

} // namespace treevault::tests
