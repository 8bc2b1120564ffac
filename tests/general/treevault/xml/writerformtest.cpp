// SPDX-License-Identifier: MIT
// Which elements and attributes are written for a node, its attributes and its children.
#include "support/xml.h"

namespace treevault::tests {

namespace {

class WriterForm : public NodeTest {};

// The attribute A of a lone node N as it is written.
std::string Written(const Value& value, uint32_t flags = 0) {
    const Node node = Create(W("N"));
    EXPECT_EQ(S_OK, Set(node, W("A"), value));
    const std::string text = Write({node}, flags);
    const std::string before = "<nr><n n=\"N\">";
    const std::string behind = "</n></nr>";
    EXPECT_TRUE(text.starts_with(before) && text.ends_with(behind)) << text;
    return text.substr(before.size(), text.size() - before.size() - behind.size());
}

Value StringArray(const std::vector<std::string>& elements) {
    Value value{VtStringAArray, {}};
    for (const std::string& element : elements)
        value.Bytes += element + '\0';
    return value;
}

template <class Number>
Value NumberArray(ValueType tag, const std::vector<Number>& numbers) {
    return {tag, std::string(reinterpret_cast<const char*>(numbers.data()),
                             numbers.size() * sizeof(Number))};
}

constexpr GUID SampleGuid = {
    0x01234567, 0x89AB, 0xCDEF, {0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE}};
const char* const SampleGuidText = "{01234567-89AB-CDEF-1032-547698BADCFE}";

// A folder with a number, an array, a text and a child.
Node Sample() {
    const Node root = Create(W("Root"), W("Folder"));
    EXPECT_EQ(S_OK, SetInt(root, W("Count"), 5));
    EXPECT_EQ(S_OK, Set(root, W("Ids"), NumberArray<uint32_t>(VtUInt32Array, {1, 2})));
    EXPECT_EQ(S_OK, Set(root, W("Title"), NarrowValue("abc")));
    const Node leaf = AddNew(root, W("Leaf"));
    AddNew(leaf, W("Below"));
    return root;
}

} // namespace

TEST_F(WriterForm, AnEmptyDocumentIsTheRootAlone) {
    EXPECT_EQ("<nr/>", Write({}));
    EXPECT_EQ("<nr/>\r\n", Write({}, NodeSerializerFlagIndent));
}

TEST_F(WriterForm, ASampleStandsOnOneLine) {
    EXPECT_EQ("<nr><n n=\"Root\" t=\"Folder\"><a n=\"Count\" t=\"3\" v=\"5\"/>"
              "<a n=\"Ids\" t=\"260\"><v v=\"1\"/><v v=\"2\"/></a><a n=\"Title\" v=\"abc\"/>"
              "<n n=\"Leaf\"/></n></nr>",
              Write({Sample()}, 0, 1));
}

TEST_F(WriterForm, IndentationGivesEachElementALineAndATabForEachLevel) {
    EXPECT_EQ("<nr>\r\n"
              "\t<n n=\"Root\" t=\"Folder\">\r\n"
              "\t\t<a n=\"Count\" t=\"3\" v=\"5\"/>\r\n"
              "\t\t<a n=\"Ids\" t=\"260\">\r\n"
              "\t\t\t<v v=\"1\"/>\r\n"
              "\t\t\t<v v=\"2\"/>\r\n"
              "\t\t</a>\r\n"
              "\t\t<a n=\"Title\" v=\"abc\"/>\r\n"
              "\t\t<n n=\"Leaf\"/>\r\n"
              "\t</n>\r\n"
              "</nr>\r\n",
              Write({Sample()}, NodeSerializerFlagIndent, 1));
}

TEST_F(WriterForm, NoValueTypesLeavesOutTheTypesOfValuesAndKeepsThatOfTheNode) {
    EXPECT_EQ("<nr><n n=\"Root\" t=\"Folder\"><a n=\"Count\" v=\"5\"/>"
              "<a n=\"Ids\"><v v=\"1\"/><v v=\"2\"/></a><a n=\"Title\" v=\"abc\"/></n></nr>",
              Write({Sample()}, NodeSerializerFlagNoValueTypes, 0));
}

TEST_F(WriterForm, TheByteOrderMarkComesFirst) {
    EXPECT_EQ("\xEF\xBB\xBF<nr/>", Write({}, NodeSerializerFlagBom));
}

TEST_F(WriterForm, FlagsCombine) {
    const Node node = Create(W("\\p\\q"));
    ASSERT_EQ(S_OK, SetInt(node, W("A"), 1));
    EXPECT_EQ("\xEF\xBB\xBF<nr>\r\n\t<n n=\"\\p\\q\">\r\n\t\t<a n=\"A\" v=\"1\"/>\r\n\t</n>\r\n"
              "</nr>\r\n",
              Write({node}, NodeSerializerFlagBom | NodeSerializerFlagIndent |
                                NodeSerializerFlagNoValueTypes | NodeSerializerFlagFullPath));
}

TEST_F(WriterForm, UnknownFlagsAreIgnored) {
    const uint32_t known = NodeSerializerFlagBom | NodeSerializerFlagIndent |
                           NodeSerializerFlagNoValueTypes | NodeSerializerFlagFullPath;
    EXPECT_EQ(Write({Sample()}), Write({Sample()}, ~known));
}

TEST_F(WriterForm, TopLevelNodesKeepTheOrderOfTheCallsAndOfTheArrays) {
    const Node c = Create(W("c")), a = Create(W("a")), b = Create(W("b"));
    Writer writer;
    ASSERT_EQ(S_OK, writer.Add({c, a}));
    ASSERT_EQ(S_OK, writer.Add({}));
    ASSERT_EQ(S_OK, writer.Add({b}));
    ASSERT_EQ(S_OK, writer.Add({c}));
    ASSERT_EQ(S_OK, writer.Finish());
    EXPECT_EQ("<nr><n n=\"c\"/><n n=\"a\"/><n n=\"b\"/><n n=\"c\"/></nr>", writer.Text);
}

TEST_F(WriterForm, AttributesComeSortedByCodeUnitsAndBeforeChildren) {
    const Node node = Create(W("N"));
    AddNew(node, W("0"));
    for (const WCHAR* name : {W("b"), W("a"), W("B"), W("\uE000"), W("\U00010000")})
        ASSERT_EQ(S_OK, Set(node, name, {VtEmpty, {}}));
    // The astral name begins with a surrogate, 0xD800, which sorts before 0xE000.
    EXPECT_EQ("<nr><n n=\"N\"><a n=\"B\"/><a n=\"a\"/><a n=\"b\"/><a n=\"\xF0\x90\x80\x80\"/>"
              "<a n=\"\xEE\x80\x80\"/><n n=\"0\"/></n></nr>",
              Write({node}));
}

TEST_F(WriterForm, ChildrenKeepTheirOrder) {
    const Node node = Create(W("N"));
    for (const WCHAR* name : {W("z"), W("a"), W("m")})
        AddNew(AddNew(node, name), W("x"));
    EXPECT_EQ("<nr><n n=\"N\"><n n=\"z\"><n n=\"x\"/></n><n n=\"a\"><n n=\"x\"/></n>"
              "<n n=\"m\"><n n=\"x\"/></n></n></nr>",
              Write({node}));
}

TEST_F(WriterForm, AnEmptyNodeNameAndAnEmptyNodeTypeAreLeftOut) {
    EXPECT_EQ("<nr><n/></nr>", Write({Create(W(""), W(""))}));
    EXPECT_EQ("<nr><n t=\"T\"/></nr>", Write({Create(W(""), W("T"))}));
}

TEST_F(WriterForm, AnEmptyAttributeNameIsWritten) {
    const Node node = Create(W("N"));
    ASSERT_EQ(S_OK, Set(node, W(""), {VtEmpty, {}}));
    EXPECT_EQ("<nr><n n=\"N\"><a n=\"\"/></n></nr>", Write({node}));
}

TEST_F(WriterForm, FullPathNamesTheGivenNodesAndNotTheirDescendants) {
    const Node top = Create(W("top"));
    const Node middle = AddNew(top, W("middle"));
    AddNew(middle, W("low"));
    const Node placed = Create(W("\\a\\b"));
    EXPECT_EQ("<nr><n n=\"\\top\\middle\"><n n=\"low\"/></n><n n=\"\\a\\b\"/>"
              "<n n=\"\\top\"><n n=\"middle\"><n n=\"low\"/></n></n><n n=\"\\\"/></nr>",
              Write({middle, placed, top, Create(W(""))}, NodeSerializerFlagFullPath));
    EXPECT_EQ("<nr><n n=\"middle\"><n n=\"low\"/></n><n n=\"b\"/></nr>", Write({middle, placed}));
}

TEST_F(WriterForm, EachScalarHasItsTagAndItsText) {
    EXPECT_EQ("<a n=\"A\"/>", Written({VtEmpty, {}}));
    EXPECT_EQ("<a n=\"A\" v=\"abc\"/>", Written(NarrowValue("abc")));
    EXPECT_EQ("<a n=\"A\" t=\"2\" v=\"\xC3\xA4\"/>", Written(TextValue(W("\u00E4"))));
    EXPECT_EQ("<a n=\"A\" t=\"3\" v=\"-2147483648\"/>", Written(Int32Value(INT32_MIN)));
    EXPECT_EQ("<a n=\"A\" t=\"4\" v=\"4294967295\"/>",
              Written(NumberValue<uint32_t>(VtUInt32, 0xFFFFFFFF)));
    EXPECT_EQ("<a n=\"A\" t=\"5\" v=\"-9223372036854775808\"/>",
              Written(NumberValue<int64_t>(VtInt64, INT64_MIN)));
    EXPECT_EQ("<a n=\"A\" t=\"6\" v=\"18446744073709551615\"/>",
              Written(NumberValue<uint64_t>(VtUInt64, UINT64_MAX)));
    EXPECT_EQ("<a n=\"A\" t=\"7\" v=\"True\"/>", Written({VtBool, "\x02"}));
    EXPECT_EQ("<a n=\"A\" t=\"7\" v=\"False\"/>", Written({VtBool, std::string(1, '\0')}));
    EXPECT_EQ("<a n=\"A\" t=\"12\" v=\"HEX:0aff\"/>", Written({VtBinary, "\x0A\xFF"}));
    EXPECT_EQ(std::string("<a n=\"A\" t=\"13\" v=\"") + SampleGuidText + "\"/>",
              Written(NumberValue(VtGuid, SampleGuid)));
}

TEST_F(WriterForm, EachArrayHasItsTagAndAnElementForEachOfItsElements) {
    EXPECT_EQ("<a n=\"A\" t=\"257\"><v v=\"x\"/><v v=\"\"/><v v=\"y\"/></a>",
              Written(StringArray({"x", "", "y"})));
    EXPECT_EQ("<a n=\"A\" t=\"258\"><v v=\"\xE2\x82\xAC\"/><v v=\"b\"/></a>",
              Written(NumberArray<uint16_t>(VtStringWArray, {0x20AC, 0, 'b', 0})));
    EXPECT_EQ("<a n=\"A\" t=\"259\"><v v=\"-1\"/><v v=\"0\"/></a>",
              Written(NumberArray<int32_t>(VtInt32Array, {-1, 0})));
    EXPECT_EQ("<a n=\"A\" t=\"260\"><v v=\"7\"/></a>",
              Written(NumberArray<uint32_t>(VtUInt32Array, {7})));
    EXPECT_EQ("<a n=\"A\" t=\"261\"><v v=\"-5\"/></a>",
              Written(NumberArray<int64_t>(VtInt64Array, {-5})));
    EXPECT_EQ("<a n=\"A\" t=\"262\"><v v=\"18446744073709551615\"/></a>",
              Written(NumberArray<uint64_t>(VtUInt64Array, {UINT64_MAX})));
    EXPECT_EQ("<a n=\"A\" t=\"263\"><v v=\"True\"/><v v=\"False\"/></a>",
              Written({VtBoolArray, std::string("\x01\0", 2)}));
    EXPECT_EQ(std::string("<a n=\"A\" t=\"269\"><v v=\"") + SampleGuidText + "\"/></a>",
              Written(NumberArray<GUID>(VtGuidArray, {SampleGuid})));
}

TEST_F(WriterForm, AnArrayWithoutElementsHasNoChild) {
    for (const ValueType tag :
         std::initializer_list<ValueType>{257, 258, 259, 260, 261, 262, 263, 269}) {
        EXPECT_EQ("<a n=\"A\" t=\"" + std::to_string(tag) + "\"/>", Written({tag, {}}));
        EXPECT_EQ("<a n=\"A\"/>", Written({tag, {}}, NodeSerializerFlagNoValueTypes));
    }
}

TEST_F(WriterForm, WithoutTypesAnArrayStillHasItsElements) {
    EXPECT_EQ("<a n=\"A\"><v v=\"x\"/></a>",
              Written(StringArray({"x"}), NodeSerializerFlagNoValueTypes));
    EXPECT_EQ("<a n=\"A\"/>", Written({VtEmpty, {}}, NodeSerializerFlagNoValueTypes));
}

TEST_F(WriterForm, EmptyTextsGiveEmptyValues) {
    EXPECT_EQ("<a n=\"A\" v=\"\"/>", Written(NarrowValue("")));
    EXPECT_EQ("<a n=\"A\" t=\"2\" v=\"\"/>", Written(TextValue(W(""))));
    EXPECT_EQ("<a n=\"A\" t=\"12\" v=\"HEX:\"/>", Written({VtBinary, {}}));
}

TEST_F(WriterForm, OnlyTheTerminatorOfATextIsLeftOut) {
    EXPECT_EQ("<a n=\"A\" v=\"&#x00;\"/>", Written(NarrowValue(std::string_view("\0", 1))));
    EXPECT_EQ("<a n=\"A\" v=\"a&#x00;b\"/>", Written(NarrowValue(std::string_view("a\0b", 3))));
    EXPECT_EQ("<a n=\"A\" t=\"2\" v=\"a&#x00;b\"/>", Written(TextValue(Text(W("a\0b"), 3))));
}

TEST_F(WriterForm, ALoneSurrogateIsWrittenAsTheReplacementCharacter) {
    const Text name{WCHAR(0xD800), W('x')};
    EXPECT_EQ("<nr><n n=\"\xEF\xBF\xBDx\"/></nr>", Write({Create(name.c_str())}));
}

} // namespace treevault::tests
