// SPDX-License-Identifier: MIT
// Which elements make which nodes, and which documents are refused.
#include "support/xml.h"

namespace treevault::tests {

namespace {

class ReaderStructure : public NodeTest {};

constexpr HRESULT Refused = TREEVAULT_E_NOT_A_NODE_DOCUMENT;

} // namespace

TEST_F(ReaderStructure, TheRootAloneHasNoNodes) {
    EXPECT_TRUE(Read("<nr/>").empty());
    EXPECT_TRUE(Read("<nr></nr>").empty());
    EXPECT_TRUE(Read(" \r\n\t<nr>\r\n</nr>\r\n ").empty());
}

TEST_F(ReaderStructure, AByteOrderMarkIsSkipped) {
    EXPECT_TRUE(Read("\xEF\xBB\xBF<nr/>").empty());
    EXPECT_EQ(W("N"), Name(ReadOne("\xEF\xBB\xBF<nr><n n='N'/></nr>")));
    EXPECT_EQ(W("N"), Name(ReadOne("\xEF\xBB\xBF<nr><n n='N'/></nr>", NodeDeserializerFlagStrict)));
}

TEST_F(ReaderStructure, ASecondByteOrderMarkIsSkippedByTheParserAndAThirdByNobody) {
    EXPECT_TRUE(Read("\xEF\xBB\xBF\xEF\xBB\xBF<nr/>").empty());
    EXPECT_EQ(TREEVAULT_E_NOT_WELL_FORMED, ReadCode("\xEF\xBB\xBF\xEF\xBB\xBF\xEF\xBB\xBF<nr/>"));
}

TEST_F(ReaderStructure, FlagsOfTheWriterHaveNoEffect) {
    const uint32_t flags = NodeSerializerFlagFullPath | NodeSerializerFlagIndent | 0xFFFFF000;
    const Node node = ReadOne("<nr><n n='N'><a n='A' t='3' v='5'/></n></nr>", flags);
    EXPECT_EQ(W("N"), Name(node));
    EXPECT_EQ(Int32Value(5), Get(node, W("A")));
}

TEST_F(ReaderStructure, ANodeHasItsNameTypeAttributesAndChildren) {
    const Node node = ReadOne("<nr><n n='Root' t='Folder'><a n='A' v='x'/><n n='C1'><n n='D'/></n>"
                              "<a n='B' v='y'/><n n='C2'/></n></nr>");
    EXPECT_EQ(W("Root"), Name(node));
    EXPECT_EQ(W("Folder"), Type(node));
    EXPECT_EQ((Names{W("A"), W("B")}), AttributeNames(node));
    EXPECT_EQ((Names{W("C1"), W("C2")}), ChildNames(node));
    EXPECT_EQ((Names{W("D")}), ChildNames(ChildAt(node, 0)));
    EXPECT_EQ(W("\\Root\\C1\\D"), Path(ChildAt(ChildAt(node, 0), 0)));
    ExpectChildrenInStep(node);
    ExpectChildrenInStep(ChildAt(node, 0));
    EXPECT_EQ(nullptr, Parent(node).Get());
    EXPECT_EQ(1u, References(node));
}

TEST_F(ReaderStructure, AnAbsentTypeIsEmpty) {
    EXPECT_EQ(W(""), Type(ReadOne("<nr><n n='N'/></nr>")));
    EXPECT_EQ(W(""), Type(ReadOne("<nr><n n='N' t=''/></nr>")));
}

TEST_F(ReaderStructure, AnAbsentNameIsGenerated) {
    const Nodes nodes = Read("<nr><n/><n t='T'><n/></n></nr>");
    ASSERT_EQ(2u, nodes.size());
    EXPECT_EQ(36u, Name(nodes[0]).size());
    EXPECT_EQ(36u, Name(nodes[1]).size());
    EXPECT_NE(Name(nodes[0]), Name(nodes[1]));
    EXPECT_EQ(36u, Name(ChildAt(nodes[1], 0)).size());
}

TEST_F(ReaderStructure, AnEmptyNameIsAName) {
    EXPECT_EQ(W(""), Name(ReadOne("<nr><n n=''/></nr>")));
}

TEST_F(ReaderStructure, NamesAndTypesAreUtf8) {
    const Node node = ReadOne("<nr><n n='\xC3\xA4\xF0\x9F\x8C\xB3' t='\xE2\x82\xAC'>"
                              "<a n='\xC3\xB6' v=''/></n></nr>");
    EXPECT_EQ(W("\u00E4\U0001F333"), Name(node));
    EXPECT_EQ(W("\u20AC"), Type(node));
    EXPECT_EQ((Names{W("\u00F6")}), AttributeNames(node));
    EXPECT_EQ((Text{0xFFFD, W('x')}), Name(ReadOne("<nr><n n='\xFFx'/></nr>")));
}

TEST_F(ReaderStructure, NamesEndAtTheirFirstNul) {
    const Node node = ReadOne("<nr><n n='ab&#0;cd' t='T&#0;U'><a n='x&#x00;y' v='1'/></n></nr>");
    EXPECT_EQ(W("ab"), Name(node));
    EXPECT_EQ(W("T"), Type(node));
    EXPECT_EQ((Names{W("x")}), AttributeNames(node));
    EXPECT_EQ(W(""), Name(ReadOne("<nr><n n='&#0;x'/></nr>")));
}

TEST_F(ReaderStructure, TheFirstAttributeOfEachNameCounts) {
    const Node node = ReadOne("<nr><n n='1' n='2' t='T' t='U'>"
                              "<a n='A' n='B' v='x' v='y' t='1' t='3'/></n></nr>");
    EXPECT_EQ(W("1"), Name(node));
    EXPECT_EQ(W("T"), Type(node));
    EXPECT_EQ(NarrowValue("x"), Get(node, W("A")));
    EXPECT_FALSE(HasAttribute(node, W("B")));
}

TEST_F(ReaderStructure, UnknownAttributesAreIgnored) {
    const Node node = ReadOne("<nr n='z' t='9' x=''><n a='1' n='N' nn='2'>"
                              "<a x='1' n='A' tt='x' vv='2'><v y='' v='e' z=''/></a></n></nr>");
    EXPECT_EQ(W("N"), Name(node));
    EXPECT_EQ(NarrowValue("e", VtStringAArray), Get(node, W("A")));
}

TEST_F(ReaderStructure, ALaterAttributeOfANameReplacesTheEarlier) {
    const Node node = ReadOne("<nr><n n='N'><a n='A' v='1'/><n n='C'/><a n='A' v='2'/></n></nr>");
    EXPECT_EQ(NarrowValue("2"), Get(node, W("A")));
}

TEST_F(ReaderStructure, AnAttributeReadIsAnAttributeSet) {
    const Node node = ReadOne("<nr><n n='N'><a n='A' v='1'/></n></nr>");
    EXPECT_EQ(1u, ModifiedState(node, W("A")));
    EXPECT_EQ(Table::None, TableOf(ReadOne("<nr><n n='N'/></nr>")));
}

TEST_F(ReaderStructure, ATopLevelNameMayBeAPath) {
    const Node node = ReadOne("<nr><n n='\\a\\b'><n n='c'/></n></nr>");
    EXPECT_EQ(W("\\a\\b"), Path(node));
    EXPECT_EQ(W("\\a\\b\\c"), Path(ChildAt(node, 0)));
}

TEST_F(ReaderStructure, OfAChildsPathTheShortNameCounts) {
    const Node node = ReadOne("<nr><n n='N'><n n='\\x\\c'/></n></nr>");
    EXPECT_EQ(W("\\N\\c"), Path(ChildAt(node, 0)));
}

TEST_F(ReaderStructure, TheFirstElementMustBeNr) {
    for (const char* text : {"<n/>", "<NR/>", "<nrx/>", "<n r=''/>", "<x><nr/></x>", "<a/><nr/>"}) {
        INodeDeserializer* context = reinterpret_cast<INodeDeserializer*>(Untouched());
        ClearRecord();
        EXPECT_EQ(Refused, Start(text, 0, &context)) << text;
        EXPECT_EQ(reinterpret_cast<INodeDeserializer*>(Untouched()), context);
        Text description;
        EXPECT_TRUE(TakeRecord(description)) << text;
    }
}

TEST_F(ReaderStructure, ATextWithoutElementsIsRefused) {
    for (const char* text : {"", " ", "\r\n\t ", "<!-- nr -->", "<?xml version='1.0'?>",
                             "<!DOCTYPE nr>", "\xEF\xBB\xBF"}) {
        INodeDeserializer* context = nullptr;
        EXPECT_EQ(Refused, Start(text, 0, &context)) << text;
    }
}

TEST_F(ReaderStructure, WhatStandsBehindTheRootIsParsedAndIgnored) {
    EXPECT_EQ(1u, Read("<nr><n n='1'/></nr><nr><n n='2'/></nr><x/>").size());
    EXPECT_EQ(TREEVAULT_E_NOT_WELL_FORMED, ReadCode("<nr/><x>"));
    EXPECT_EQ(TREEVAULT_E_NOT_WELL_FORMED, ReadCode("<nr/>x"));
}

TEST_F(ReaderStructure, AChildOfTheRootMustBeANode) {
    EXPECT_EQ(Refused, ReadCode("<nr><a n='A' v=''/></nr>"));
    EXPECT_EQ(Refused, ReadCode("<nr><nn/></nr>"));
    EXPECT_EQ(Refused, ReadCode("<nr><n/><x/></nr>"));
}

TEST_F(ReaderStructure, AChildOfANodeMustBeANodeOrAnAttribute) {
    EXPECT_EQ(Refused, ReadCode("<nr><n><x/></n></nr>"));
    EXPECT_EQ(Refused, ReadCode("<nr><n><v v=''/></n></nr>"));
    EXPECT_EQ(Refused, ReadCode("<nr><n><n><aa/></n></n></nr>"));
    EXPECT_EQ(Refused, ReadCode("<nr><n><N/></n></nr>"));
}

TEST_F(ReaderStructure, AnAttributeMustHaveAName) {
    EXPECT_EQ(Refused, ReadCode("<nr><n><a/></n></nr>"));
    EXPECT_EQ(Refused, ReadCode("<nr><n><a v='x' t='70000'/></n></nr>"));
}

TEST_F(ReaderStructure, AnAttributeNameMayBeEmpty) {
    const Node node = ReadOne("<nr><n n='N'><a n='' t='3' v='7'/></n></nr>");
    EXPECT_EQ(Int32Value(7), Get(node, W("")));
}

TEST_F(ReaderStructure, WhatIsNoElementIsSkipped) {
    const Node node = ReadOne("<?xml version='1.0'?><!DOCTYPE nr [<!ELEMENT n (a)>]><!-- c -->"
                              "<nr>text<!-- <n/> --><n n='N'>&amp;text<![CDATA[<a/>]]><?pi x?>"
                              "<a n='A' v='1'>text</a>more</n>&#x0A;</nr><!-- end -->");
    EXPECT_EQ(W("N"), Name(node));
    EXPECT_EQ((Names{W("A")}), AttributeNames(node));
    EXPECT_EQ(0u, ChildCount(node));
}

TEST_F(ReaderStructure, WhiteSpaceIsIgnoredWhereXmlAllowsIt) {
    const Node node = ReadOne("\n<nr >\t<n\r\n n = 'N'\tt\n=\n\"T\" >\n<a n='A' v='1' />\n"
                              "<a n='B'\n>\n<v v='e' ></v >\n</a\t>\n</n >\n</nr\n>\n");
    EXPECT_EQ(W("N"), Name(node));
    EXPECT_EQ(W("T"), Type(node));
    EXPECT_EQ(NarrowValue("1"), Get(node, W("A")));
    EXPECT_EQ(NarrowValue("e", VtStringAArray), Get(node, W("B")));
}

TEST_F(ReaderStructure, ClosingTagsAreNotCompared) {
    const Node node = ReadOne("<nr><n n='N'><n n='C'></x></nr></>");
    EXPECT_EQ((Names{W("C")}), ChildNames(node));
}

TEST_F(ReaderStructure, EitherQuoteServes) {
    EXPECT_EQ(NarrowValue("it's"), ReadValue("v=\"it's\"/>"));
    EXPECT_EQ(NarrowValue("\"x\""), ReadValue("v='\"x\"'/>"));
}

TEST_F(ReaderStructure, ABadNameFailsTheReading) {
    EXPECT_EQ(TREEVAULT_E_INVALID_NAME, ReadCode("<nr><n n='\\'/></nr>"));
    EXPECT_EQ(TREEVAULT_E_INVALID_NAME, ReadCode("<nr><n n='a\\b'/></nr>"));
    EXPECT_EQ(TREEVAULT_E_INVALID_NAME, ReadCode("<nr><n><n n='\\a\\'/></n></nr>"));
}

TEST_F(ReaderStructure, ARepeatedChildNameFailsTheReading) {
    EXPECT_EQ(TREEVAULT_E_CHILD_EXISTS, ReadCode("<nr><n><n n='C'/><n n='C'/></n></nr>"));
    EXPECT_EQ(TREEVAULT_E_CHILD_EXISTS, ReadCode("<nr><n><n n='C'/><n n='\\x\\C'/></n></nr>"));
    EXPECT_EQ(S_OK, ReadCode("<nr><n n='C'/><n n='C'><n n='C'/></n></nr>"));
}

TEST_F(ReaderStructure, WhatIsWrongInsideAChildComesBeforeItsRepeatedName) {
    EXPECT_EQ(Refused, ReadCode("<nr><n><n n='C'/><n n='C'><n><x/></n></n></n></nr>"));
    EXPECT_EQ(
        TREEVAULT_E_INVALID_NAME,
        ReadCode("<nr><n><n n='C'/><n n='C'><n n='D'/><n n='D'><n n='\\'/></n></n></n></nr>"));
    EXPECT_EQ(TREEVAULT_E_CHILD_EXISTS,
              ReadCode("<nr><n><n n='C'/><n n='C'><n/><a n='A'/></n><x/></n></nr>"));
}

TEST_F(ReaderStructure, TheRecordOfARepeatedNameSpeaksOfIt) {
    Reader reader("<nr><n n='N'><n n='C'/><n n='C'><a n='A' t='3' v='x'/></n></n></nr>");
    IACNode* nodes[] = {Untouched()};
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_CHILD_EXISTS, AcnDeserializeNodes, reader.Get(), nodes,
                                1, nullptr));
    EXPECT_EQ(Untouched(), nodes[0]);
}

} // namespace treevault::tests
