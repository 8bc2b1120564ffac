// SPDX-License-Identifier: MIT
// How the value of an attribute is found and brought back to its recorded type.
#include "support/xml.h"

namespace treevault::tests {

namespace {

class ReaderValues : public NodeTest {};

Value Array(ValueType tag, std::initializer_list<std::string_view> elements) {
    Value value{tag, {}};
    for (const std::string_view element : elements)
        value.Bytes.append(element).push_back('\0');
    return value;
}

// What a value that cannot be restored reads as, and the code that the strict reader gives.
void ExpectUnrestorable(std::string_view rest, const Value& left, HRESULT code) {
    EXPECT_EQ(left, ReadValue(rest)) << rest;
    EXPECT_EQ(CodeText(code), CodeText(ReadValueCode(rest, NodeDeserializerFlagStrict))) << rest;
}

} // namespace

TEST_F(ReaderValues, ATextWithoutTypeStaysText) {
    EXPECT_EQ(NarrowValue("abc"), ReadValue("v='abc'/>"));
    EXPECT_EQ(NarrowValue(""), ReadValue("v=''/>"));
    EXPECT_EQ(Array(VtStringAArray, {"a", "", "b"}),
              ReadValue("><v v='a'/><v v=''/><v v='b'/></a>"));
    EXPECT_EQ((Value{VtEmpty, {}}), ReadValue("/>"));
    EXPECT_EQ((Value{VtEmpty, {}}), ReadValue("></a>"));
}

TEST_F(ReaderValues, EachScalarReadsBackFromItsText) {
    EXPECT_EQ(NarrowValue("x"), ReadValue("t='1' v='x'/>"));
    EXPECT_EQ(TextValue(W("\u00E4")), ReadValue("t='2' v='\xC3\xA4'/>"));
    EXPECT_EQ(Int32Value(-5), ReadValue("t='3' v='-5'/>"));
    EXPECT_EQ(NumberValue<uint32_t>(VtUInt32, 5), ReadValue("t='4' v='5'/>"));
    EXPECT_EQ(NumberValue<int64_t>(VtInt64, INT64_MIN),
              ReadValue("t='5' v='-9223372036854775808'/>"));
    EXPECT_EQ(NumberValue<uint64_t>(VtUInt64, UINT64_MAX),
              ReadValue("t='6' v='18446744073709551615'/>"));
    EXPECT_EQ((Value{VtBool, "\x01"}), ReadValue("t='7' v='True'/>"));
    EXPECT_EQ((Value{VtBool, std::string(1, '\0')}), ReadValue("t='7' v='False'/>"));
    EXPECT_EQ((Value{VtBinary, "\x0A\xFF"}), ReadValue("t='12' v='HEX:0aff'/>"));
    EXPECT_EQ((Value{VtBinary, {}}), ReadValue("t='12' v='HEX:'/>"));
    const GUID guid = {
        0x01234567, 0x89AB, 0xCDEF, {0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE}};
    EXPECT_EQ(NumberValue(VtGuid, guid),
              ReadValue("t='13' v='{01234567-89AB-CDEF-1032-547698BADCFE}'/>"));
}

TEST_F(ReaderValues, ArraysReadBackFromTheirElements) {
    EXPECT_EQ(Array(VtStringAArray, {"x"}), ReadValue("t='257'><v v='x'/></a>"));
    const int32_t numbers[] = {1, 2};
    EXPECT_EQ((Value{VtInt32Array, std::string(reinterpret_cast<const char*>(numbers), 8)}),
              ReadValue("t='259'><v v='1'/><v v='2'/></a>"));
    EXPECT_EQ((Value{VtBoolArray, std::string("\x01\0", 2)}),
              ReadValue("t='263'><v v='True'/><v v='False'/></a>"));
    const WCHAR wide[] = {W('a'), 0, 0};
    EXPECT_EQ((Value{VtStringWArray, std::string(reinterpret_cast<const char*>(wide), 6)}),
              ReadValue("t='258'><v v='a'/><v v=''/></a>"));
}

TEST_F(ReaderValues, ATypeWithoutAValueGivesItsZero) {
    EXPECT_EQ(Int32Value(0), ReadValue("t='3'/>"));
    EXPECT_EQ(NarrowValue(""), ReadValue("t='1'/>"));
    EXPECT_EQ(TextValue(W("")), ReadValue("t='2'/>"));
    EXPECT_EQ((Value{VtBool, std::string(1, '\0')}), ReadValue("t='7'/>"));
    EXPECT_EQ((Value{VtBinary, {}}), ReadValue("t='12'/>"));
    EXPECT_EQ(NumberValue(VtGuid, GUID{}), ReadValue("t='13'/>"));
    EXPECT_EQ((Value{VtInt32Array, {}}), ReadValue("t='259'/>"));
    EXPECT_EQ((Value{VtStringAArray, {}}), ReadValue("t='257'></a>"));
    EXPECT_EQ((Value{VtEmpty, {}}), ReadValue("t='0'/>"));
}

TEST_F(ReaderValues, AnEmptyTextIsAValue) {
    EXPECT_EQ(Int32Value(0), ReadValue("t='3' v=''/>"));
    EXPECT_EQ((Value{VtEmpty, {}}), ReadValue("t='0' v=''/>"));
    EXPECT_EQ((Value{VtEmpty, {}}), ReadValue("t='' v=''/>"));
}

TEST_F(ReaderValues, TheTypeMayBeInAnyBase) {
    EXPECT_EQ(Int32Value(5), ReadValue("t='0x3' v='5'/>"));
    EXPECT_EQ(Int32Value(5), ReadValue("t='0X03' v='5'/>"));
    EXPECT_EQ(Int32Value(5), ReadValue("t='03' v='5'/>"));
    EXPECT_EQ((Value{VtBinary, "a"}), ReadValue("t='014' v='HEX:61'/>"));
    EXPECT_EQ(Int32Value(5), ReadValue("t=' +3' v='5'/>"));
}

TEST_F(ReaderValues, ATypeThatIsNoNumberFails) {
    for (const char* type : {"70000", "65536", "3x", "x", "3 ", " ", "08", "0x", "-1", "3&#0;",
                             "&#0;", "99999999999999999999"}) {
        const std::string rest = std::string("t='") + type + "' v='5'/>";
        EXPECT_EQ(CodeText(E_INVALIDARG), CodeText(ReadValueCode(rest))) << type;
    }
}

TEST_F(ReaderValues, TheLargestTypeIsANumber) {
    ExpectUnrestorable("t='65535' v='5'/>", NarrowValue("5"), TREEVAULT_E_UNSUPPORTED_TYPE);
}

TEST_F(ReaderValues, WithNoValueTypesTheTypeIsNotLookedAt) {
    const uint32_t flags = NodeSerializerFlagNoValueTypes;
    EXPECT_EQ(NarrowValue("5"), ReadValue("t='3' v='5'/>", flags));
    EXPECT_EQ(NarrowValue("5"), ReadValue("t='nonsense' v='5'/>", flags));
    EXPECT_EQ(Array(VtStringAArray, {"1"}), ReadValue("t='259'><v v='1'/></a>", flags));
    EXPECT_EQ((Value{VtEmpty, {}}), ReadValue("t='3'/>", flags));
}

TEST_F(ReaderValues, TheAttributeVWinsOverChildren) {
    EXPECT_EQ(NarrowValue("x"), ReadValue("v='x'><v v='y'/></a>"));
    EXPECT_EQ(NarrowValue("x"), ReadValue("v='x'><v/></a>"));
}

TEST_F(ReaderValues, OtherChildrenOfAnAttributeArePassedOver) {
    EXPECT_EQ(Array(VtStringAArray, {"1", "2"}),
              ReadValue("><x/><v v='1'/><vv v='no'/><n><x/></n><v v='2'/><a/></a>"));
    EXPECT_EQ((Value{VtEmpty, {}}), ReadValue("><x v='1'/><V v='1'/></a>"));
}

TEST_F(ReaderValues, AnElementWithoutAValueFails) {
    EXPECT_EQ(TREEVAULT_E_NOT_A_NODE_DOCUMENT, ReadValueCode("><v/></a>"));
    EXPECT_EQ(TREEVAULT_E_NOT_A_NODE_DOCUMENT, ReadValueCode("><v v='1'/><v n='2'/></a>"));
    EXPECT_EQ(TREEVAULT_E_NOT_A_NODE_DOCUMENT, ReadValueCode("t='x'><v/></a>"));
}

TEST_F(ReaderValues, EntitiesAndReferencesAreTranslated) {
    EXPECT_EQ(NarrowValue("<>&'\""), ReadValue("v='&lt;&gt;&amp;&apos;&quot;'/>"));
    EXPECT_EQ(NarrowValue("AB\n"), ReadValue("v='&#65;&#x42;&#x0A;'/>"));
    EXPECT_EQ(NarrowValue("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80"),
              ReadValue("v='&#x7F;&#x80;&#x7FF;&#x800;&#xFFFF;&#x10000;'/>"));
    EXPECT_EQ(NarrowValue("\xF4\x8F\xBF\xBF"), ReadValue("v='&#x10ffff;'/>"));
    EXPECT_EQ(NarrowValue("&unknown; & &lt"), ReadValue("v='&unknown; & &lt'/>"));
}

TEST_F(ReaderValues, AReferenceIsReadInThirtyTwoBits) {
    EXPECT_EQ(NarrowValue("A"), ReadValue("v='&#x100000041;'/>"));
    EXPECT_EQ(NarrowValue("A"), ReadValue("v='&#4294967361;'/>"));
}

TEST_F(ReaderValues, ANulInAValueSurvives) {
    EXPECT_EQ(NarrowValue(std::string_view("a\0b", 3)), ReadValue("v='a&#x00;b'/>"));
    EXPECT_EQ(NarrowValue(std::string_view("\0", 1)), ReadValue("v='&#0;'/>"));
    EXPECT_EQ(TextValue(Text(W("a\0b"), 3)), ReadValue("t='2' v='a&#x00;b'/>"));
}

TEST_F(ReaderValues, ANulInAnElementMakesTwoElements) {
    EXPECT_EQ(Array(VtStringAArray, {"a", "b", "c"}), ReadValue("><v v='a&#0;b'/><v v='c'/></a>"));
}

TEST_F(ReaderValues, WhiteSpaceInAValueStays) {
    EXPECT_EQ(NarrowValue(" a\t\r\nb "), ReadValue("v=' a\t\r\nb '/>"));
}

TEST_F(ReaderValues, BytesThatAreNoUtf8StayInNarrowText) {
    EXPECT_EQ(NarrowValue("\xFF\x80"), ReadValue("v='\xFF\x80'/>"));
}

TEST_F(ReaderValues, AValueThatCannotBeRestoredStaysText) {
    const HRESULT cannot = TREEVAULT_E_CANNOT_CONVERT;
    ExpectUnrestorable("t='3' v='abc'/>", NarrowValue("abc"), cannot);
    ExpectUnrestorable("t='7' v='yes'/>", NarrowValue("yes"), cannot);
    ExpectUnrestorable("t='13' v='{}'/>", NarrowValue("{}"), cannot);
    ExpectUnrestorable("t='12' v='00'/>", NarrowValue("00"), cannot);
    ExpectUnrestorable("t='0' v='x'/>", NarrowValue("x"), cannot);
    ExpectUnrestorable("t='259' v='1'/>", NarrowValue("1"), cannot);
    ExpectUnrestorable("t='259'><v v='1'/><v v='x'/></a>", Array(VtStringAArray, {"1", "x"}),
                       cannot);
    ExpectUnrestorable("t='3'><v v='1'/></a>", Array(VtStringAArray, {"1"}), cannot);
    ExpectUnrestorable("t='1'><v v='1'/></a>", Array(VtStringAArray, {"1"}), cannot);
}

TEST_F(ReaderValues, AnUnsupportedTypeLeavesText) {
    const HRESULT unsupported = TREEVAULT_E_UNSUPPORTED_TYPE;
    ExpectUnrestorable("t='8' v='1'/>", NarrowValue("1"), unsupported);
    ExpectUnrestorable("t='256' v='1'/>", NarrowValue("1"), unsupported);
    ExpectUnrestorable("t='8'/>", Value{VtEmpty, {}}, unsupported);
    ExpectUnrestorable("t='268'><v v='1'/></a>", Array(VtStringAArray, {"1"}), unsupported);
}

TEST_F(ReaderValues, TheStrictReaderReadsWhatIsInOrder) {
    const uint32_t strict = NodeDeserializerFlagStrict;
    EXPECT_EQ(Int32Value(16), ReadValue("t='3' v='0x10'/>", strict));
    EXPECT_EQ(NarrowValue("x"), ReadValue("v='x'/>", strict));
    EXPECT_EQ(Int32Value(0), ReadValue("t='3'/>", strict));
}

TEST_F(ReaderValues, BuffersServeOneValueAfterTheOther) {
    const Node node = ReadOne("<nr><n n='N'><a n='A' t='2' v='long enough to grow'/>"
                              "<a n='B' t='3' v='1'/><a n='C'><v v='many'/><v v='elements'/></a>"
                              "<a n='D'><v v='one'/></a><a n='E' t='258'><v v='x'/></a></n></nr>");
    EXPECT_EQ(TextValue(W("long enough to grow")), Get(node, W("A")));
    EXPECT_EQ(Int32Value(1), Get(node, W("B")));
    EXPECT_EQ(Array(VtStringAArray, {"many", "elements"}), Get(node, W("C")));
    EXPECT_EQ(Array(VtStringAArray, {"one"}), Get(node, W("D")));
    EXPECT_EQ((Value{VtStringWArray, std::string("x\0\0\0", 4)}), Get(node, W("E")));
}

} // namespace treevault::tests
