// SPDX-License-Identifier: MIT
// Decoding of records and raw texts, the error text form, and the making of records.
#include "common/errordescription.h"

#include "common/errormessages.h"

#include "support/errorrecords.h"

#include <gtest/gtest.h>

#include <ostream>

namespace treevault {
namespace {

using namespace tests;

constexpr HRESULT Code = CodeWithoutMessage; // 2147807523, in octal 20001170443
const WideText NoMessage = TV_W("<no description>");

// --- The error text form, read -------------------------------------------------------------------

// A text in the form, and what is in it.
struct FormCase {
    const char* Name;
    const WCHAR* Form;
    const WCHAR* Text; // null for the message of the code
    const WCHAR* Details;

    friend void PrintTo(const FormCase& value, std::ostream* out) { *out << value.Name; }
};

class ErrorTextForm : public testing::TestWithParam<FormCase> {
protected:
    void Expect(const ErrorDescription& description) const {
        const FormCase& wanted = GetParam();
        EXPECT_EQ(Code, description.Code);
        EXPECT_EQ(wanted.Text ? WideText(wanted.Text) : NoMessage, description.Text);
        EXPECT_EQ(WideText(wanted.Details), description.Details);
    }
};

TEST_P(ErrorTextForm, IsParsedAsRawText) {
    Expect(ErrorDescription(Code, nullptr, GetParam().Form));
}

TEST_P(ErrorTextForm, IsParsedInARecordOfTheLibrary) {
    const Record record = MakeOwnRecord(GetParam().Form);
    Expect(ErrorDescription(Code, record.Get(), nullptr));
}

constexpr const WCHAR* None = TV_W("");

INSTANTIATE_TEST_SUITE_P(
    Forms, ErrorTextForm,
    testing::Values(
        FormCase{"Upper", TV_W("0x8004F123 Text"), TV_W("Text"), None},
        FormCase{"Lower", TV_W("0x8004f123 Text"), TV_W("Text"), None},
        FormCase{"UpperX", TV_W("0X8004F123 Text"), TV_W("Text"), None},
        FormCase{"Decimal", TV_W("2147807523 Text"), TV_W("Text"), None},
        FormCase{"Octal", TV_W("020001170443 Text"), TV_W("Text"), None},
        FormCase{"NoBlank", TV_W("0x8004F123"), nullptr, None},
        FormCase{"NoBlankButText", TV_W("0x8004F123Text"), nullptr, None},
        FormCase{"NoBlankButDetails", TV_W("0x8004F123[d]"), nullptr, None},
        FormCase{"TabForBlank", TV_W("0x8004F123\tText"), nullptr, None},
        FormCase{"BlankAndNothing", TV_W("0x8004F123 "), nullptr, None},
        FormCase{"TwoBlanks", TV_W("0x8004F123  Text"), TV_W(" Text"), None},
        FormCase{"Details", TV_W("0x8004F123 Text [d,e;f]"), TV_W("Text"), TV_W("d,e;f")},
        FormCase{"DetailsAtOnce", TV_W("0x8004F123 Text[d]"), TV_W("Text"), TV_W("d")},
        FormCase{"SpaceBeforeDetails", TV_W("0x8004F123 Text \t\r\n [d]"), TV_W("Text"), TV_W("d")},
        FormCase{"LastBracketCounts", TV_W("0x8004F123 Text [a] [b]"), TV_W("Text [a]"), TV_W("b")},
        FormCase{"NestedBracket", TV_W("0x8004F123 Text [a[b]"), TV_W("Text [a"), TV_W("b")},
        FormCase{"DetailsAlone", TV_W("0x8004F123 [d]"), nullptr, TV_W("d")},
        FormCase{"EmptyBrackets", TV_W("0x8004F123 []"), nullptr, None},
        FormCase{"TextAndEmptyBrackets", TV_W("0x8004F123 Text []"), TV_W("Text"), None},
        FormCase{"ClosingAlone", TV_W("0x8004F123 ]"), TV_W("]"), None},
        FormCase{"ClosingBehindText", TV_W("0x8004F123 a]"), TV_W("a]"), None},
        FormCase{"OpeningAlone", TV_W("0x8004F123 a [b"), TV_W("a [b"), None},
        FormCase{"TextBehindDetails", TV_W("0x8004F123 a [b] c"), TV_W("a [b] c"), None},
        FormCase{"OtherNumber", TV_W("0x80004005 Text [d]"), nullptr, None},
        FormCase{"OtherNumberAlone", TV_W("0x80004005"), nullptr, None},
        FormCase{"TooLarge", TV_W("0x18004F123 Text"), nullptr, None},
        FormCase{"NoNumber", TV_W("abc"), nullptr, None},
        FormCase{"NumberInside", TV_W("abc 0x8004F123 Text"), nullptr, None}),
    [](const auto& test) { return test.param.Name; });

TEST(ErrorDescription, OfACodeAloneHasItsMessage) {
    const ErrorDescription description(Code);
    EXPECT_EQ(Code, description.Code);
    EXPECT_EQ(NoMessage, description.Text);
    EXPECT_EQ(WideText(), description.Details);
}

TEST(ErrorDescription, OfACodeThatThePlatformKnowsHasAMessageWithoutItsEnd) {
    const WideText text = ErrorDescription(static_cast<HRESULT>(0x80070057)).Text;
    ASSERT_FALSE(text.empty());
    EXPECT_NE(NoMessage, text);
    EXPECT_EQ(WideText::npos, WideText(TV_W(" .\r\n")).find(text.back()));
}

TEST(ErrorDescription, OfAnEmptyRawTextHasTheMessage) {
    EXPECT_EQ(NoMessage, ErrorDescription(Code, nullptr, TV_W("")).Text);
}

// --- Records -------------------------------------------------------------------------------------

TEST(ErrorDescription, TakesAForeignRecordAsAWhole) {
    const Record record = MakeForeignRecord(TV_W("0x8004F123 Boom [d]"));
    const ErrorDescription description(Code, record.Get(), nullptr);
    EXPECT_EQ(WideText(TV_W("0x8004F123 Boom [d]")), description.Text);
    EXPECT_EQ(WideText(), description.Details);
}

TEST(ErrorDescription, TakesAForeignRecordWhateverItsNumber) {
    const Record record = MakeForeignRecord(TV_W("0x80004005 Boom"));
    EXPECT_EQ(WideText(TV_W("0x80004005 Boom")),
              ErrorDescription(Code, record.Get(), nullptr).Text);
}

TEST(ErrorDescription, PrefersAnOwnRecordToRawText) {
    const Record record = MakeOwnRecord(TV_W("0x8004F123 Record"));
    const ErrorDescription description(Code, record.Get(), TV_W("0x8004F123 Raw [d]"));
    EXPECT_EQ(WideText(TV_W("Record")), description.Text);
    EXPECT_EQ(WideText(), description.Details);
}

TEST(ErrorDescription, ThrowsAnOwnRecordOfAnotherCodeAwayAndWithItTheRawText) {
    const Record record = MakeOwnRecord(TV_W("0x80004005 Record [d]"));
    const ErrorDescription description(Code, record.Get(), TV_W("0x8004F123 Raw [e]"));
    EXPECT_EQ(NoMessage, description.Text);
    EXPECT_EQ(WideText(), description.Details);
}

TEST(ErrorDescription, ReadsRawTextBesideAForeignRecord) {
    const Record record = MakeForeignRecord(TV_W("Boom"));
    const ErrorDescription description(Code, record.Get(), TV_W("0x8004F123 Raw [e]"));
    EXPECT_EQ(WideText(TV_W("Raw")), description.Text);
    EXPECT_EQ(WideText(TV_W("e")), description.Details);
}

TEST(ErrorDescription, LosesAForeignRecordToRawTextOfAnotherCode) {
    const Record record = MakeForeignRecord(TV_W("Boom"));
    EXPECT_EQ(NoMessage, ErrorDescription(Code, record.Get(), TV_W("0x80004005 Raw")).Text);
}

TEST(ErrorDescription, KeepsAForeignRecordWhenTheRawTextHasNoNumber) {
    const Record record = MakeForeignRecord(TV_W("Boom"));
    EXPECT_EQ(WideText(TV_W("Boom")), ErrorDescription(Code, record.Get(), TV_W("abc")).Text);
    EXPECT_EQ(WideText(TV_W("Boom")), ErrorDescription(Code, record.Get(), TV_W("")).Text);
}

TEST(ErrorDescription, TakesARecordWithoutDescriptionAsAbsent) {
    const Record unset = MakeOwnRecord(nullptr);
    EXPECT_EQ(NoMessage, ErrorDescription(Code, unset.Get(), nullptr).Text);
    EXPECT_EQ(WideText(TV_W("Raw")),
              ErrorDescription(Code, unset.Get(), TV_W("0x8004F123 Raw")).Text);
    const Record empty = MakeOwnRecord(TV_W(""));
    EXPECT_EQ(WideText(TV_W("Raw")),
              ErrorDescription(Code, empty.Get(), TV_W("0x8004F123 Raw")).Text);
}

TEST(ErrorDescription, TakesARecordWhoseDescriptionFailsAsAbsent) {
    CountedRecord record;
    record.Marker = OwnMarker;
    record.DescriptionResult = E_FAIL;
    EXPECT_EQ(NoMessage, ErrorDescription(Code, &record, nullptr).Text);
    EXPECT_EQ(WideText(TV_W("Raw")), ErrorDescription(Code, &record, TV_W("0x8004F123 Raw")).Text);
    EXPECT_EQ(1u, record.References);
}

TEST(ErrorDescription, TakesARecordWhoseMarkerFailsAsForeign) {
    CountedRecord record;
    record.Description = TV_W("0x8004F123 Boom");
    record.Marker = OwnMarker;
    record.MarkerResult = E_FAIL;
    EXPECT_EQ(WideText(TV_W("0x8004F123 Boom")), ErrorDescription(Code, &record, nullptr).Text);
}

// --- Return addresses ----------------------------------------------------------------------------

void* const Frames[] = {reinterpret_cast<void*>(uintptr_t{0x12345678}),
                        reinterpret_cast<void*>(uintptr_t{0x7FF612ABCDEF})};

TEST(ErrorDescription, AddsAddressesAsAGroup) {
    EXPECT_EQ(WideText(TV_W("0x0000000012345678,0x00007FF612ABCDEF")),
              ErrorDescription(Code, nullptr, nullptr, Frames, 2).Details);
    EXPECT_EQ(WideText(TV_W("0x0000000012345678")),
              ErrorDescription(Code, nullptr, nullptr, Frames, 1).Details);
    EXPECT_EQ(WideText(), ErrorDescription(Code, nullptr, nullptr, Frames, 0).Details);
}

TEST(ErrorDescription, AddsItsGroupBehindTheFormerDetails) {
    const Record record = MakeOwnRecord(TV_W("0x8004F123 Text [a,b;c]"));
    const ErrorDescription description(Code, record.Get(), nullptr, Frames, 1);
    EXPECT_EQ(WideText(TV_W("Text")), description.Text);
    EXPECT_EQ(WideText(TV_W("a,b;c;0x0000000012345678")), description.Details);
}

TEST(ErrorDescription, DropsTheGroupsOfAnotherFailure) {
    const Record record = MakeOwnRecord(TV_W("0x80004005 Text [a,b;c]"));
    EXPECT_EQ(WideText(TV_W("0x0000000012345678")),
              ErrorDescription(Code, record.Get(), nullptr, Frames, 1).Details);
}

// --- The error text form, written ----------------------------------------------------------------

ErrorDescription Described(const WCHAR* text, const WCHAR* details) {
    ErrorDescription description(static_cast<HRESULT>(0x80070057));
    description.Text = text;
    description.Details = details;
    return description;
}

TEST(ErrorText, LeavesPartsOutByTheBits) {
    const ErrorDescription description = Described(TV_W("T"), TV_W("D"));
    EXPECT_EQ(WideText(TV_W("0x80070057 T [D]")), description.Format());
    EXPECT_EQ(WideText(TV_W("T [D]")), description.Format(1));
    EXPECT_EQ(WideText(TV_W("0x80070057  [D]")), description.Format(2));
    EXPECT_EQ(WideText(TV_W(" [D]")), description.Format(3));
    EXPECT_EQ(WideText(TV_W("0x80070057 T")), description.Format(4));
    EXPECT_EQ(WideText(TV_W("T")), description.Format(5));
    EXPECT_EQ(WideText(TV_W("0x80070057")), description.Format(6));
    EXPECT_EQ(WideText(), description.Format(7));
}

TEST(ErrorText, HasEightUpperCaseDigits) {
    ErrorDescription description = Described(TV_W("T"), TV_W(""));
    description.Code = static_cast<HRESULT>(0x8004ABCD);
    EXPECT_EQ(WideText(TV_W("0x8004ABCD T")), description.Format());
    description.Code = 1;
    EXPECT_EQ(WideText(TV_W("0x00000001 T")), description.Format());
}

TEST(ErrorText, LeavesEmptyPartsOut) {
    EXPECT_EQ(WideText(TV_W("0x80070057 T")), Described(TV_W("T"), TV_W("")).Format());
    EXPECT_EQ(WideText(TV_W("0x80070057")), Described(TV_W(""), TV_W("")).Format());
}

TEST(ErrorText, CutsWhiteSpaceAtItsEndAlone) {
    EXPECT_EQ(WideText(TV_W("0x80070057  T")), Described(TV_W(" T \t\r\n"), TV_W("")).Format());
    EXPECT_EQ(WideText(TV_W("0x80070057 T  [D]")), Described(TV_W("T "), TV_W("D")).Format());
    EXPECT_EQ(WideText(), Described(TV_W(" \r\n"), TV_W("")).Format(1));
}

// --- Records, made -------------------------------------------------------------------------------

TEST(MakeErrorRecord, HoldsTheTextAndTheMarkerAlone) {
    const Ref<IErrorInfo> record = MakeErrorRecord(Described(TV_W("T"), TV_W("D")));
    ASSERT_TRUE(record);
    GUID guid = {};
    EXPECT_EQ(S_OK, record->GetGUID(&guid));
    EXPECT_TRUE(IsSameGuid(OwnMarker, guid));
    EXPECT_TRUE(IsSameGuid(OwnMarker, ErrorRecordGuid));
    BSTR text = nullptr;
    EXPECT_EQ(S_OK, record->GetDescription(&text));
    EXPECT_EQ(WideText(TV_W("0x80070057 T [D]")), WideText(text, SysStringLen(text)));
    SysFreeString(text);
    text = nullptr;
    EXPECT_EQ(S_OK, record->GetSource(&text));
    EXPECT_EQ(0u, SysStringLen(text));
    SysFreeString(text);
    text = nullptr;
    EXPECT_EQ(S_OK, record->GetHelpFile(&text));
    EXPECT_EQ(0u, SysStringLen(text));
    SysFreeString(text);
    DWORD helpContext = 77;
    EXPECT_EQ(S_OK, record->GetHelpContext(&helpContext));
    EXPECT_EQ(0u, helpContext);
}

TEST(MakeErrorRecord, GivesOneReferenceAndLeavesTheThreadAlone) {
    ClearPending();
    Ref<IErrorInfo> record = MakeErrorRecord(Described(TV_W("T"), TV_W("D")));
    EXPECT_FALSE(TakePending());
    EXPECT_EQ(0u, record.Detach()->Release());
}

TEST(MakeErrorRecord, IsReadBack) {
    const Ref<IErrorInfo> record = MakeErrorRecord(Described(TV_W("T [x]"), TV_W("D;E")));
    const ErrorDescription description(static_cast<HRESULT>(0x80070057), record.Get(), nullptr);
    EXPECT_EQ(WideText(TV_W("T [x]")), description.Text);
    EXPECT_EQ(WideText(TV_W("D;E")), description.Details);
}

} // namespace
} // namespace treevault
