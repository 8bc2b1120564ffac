// SPDX-License-Identifier: MIT
// The boundary of public operations: the code that goes out, the record on the thread, the line in
// the log; and reports without an exception.
#include "common/errorhandling.h"

#include "support/errorrecords.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <stdexcept>

namespace treevault {
namespace {

using namespace tests;

constexpr HRESULT Code = CodeWithoutMessage;
const std::string Headline = "0x8004F123 <no description>";

std::string TakeText() {
    return ToUtf8(TakePending().Description());
}

// What stands in the brackets at the end of an error text.
std::string DetailsOf(const std::string& text) {
    const size_t open = text.rfind(" [");
    if (open == std::string::npos || !text.ends_with("]"))
        return "";
    return text.substr(open + 2, text.size() - open - 3);
}

size_t GroupCount(const std::string& text) {
    const std::string details = DetailsOf(text);
    return details.empty() ? 0 : 1 + static_cast<size_t>(std::ranges::count(details, ';'));
}

HRESULT Fail() {
    return Boundary([] { ThrowHr(Code); });
}

void Named(WideStream& line) {
    line << TV_W("CSample::Run");
}

// --- Codes ---------------------------------------------------------------------------------------

TEST(Boundary, ReturnsWhatTheBodyReturns) {
    EXPECT_EQ(S_OK, Boundary([] {}));
    EXPECT_EQ(S_FALSE, Boundary([] { return S_FALSE; }));
    EXPECT_EQ(S_OK, NamedBoundary(SeverityErr, Named, [] {}));
    EXPECT_EQ(S_FALSE, NamedBoundary(SeverityErr, Named, [] { return S_FALSE; }));
}

TEST(Boundary, LeavesTheRecordAloneWhenTheBodyReturnsACode) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    EXPECT_EQ(E_FAIL, Boundary([] { return E_FAIL; }));
    EXPECT_EQ(S_OK, Boundary([] {}));
    EXPECT_EQ(&record, TakePending().Get());
}

TEST(Boundary, TurnsAFailureIntoItsCode) {
    EXPECT_EQ(Code, Fail());
    EXPECT_EQ(Code, NamedBoundary(SeverityErr, Named, [] { ThrowHr(Code); }));
    EXPECT_EQ(E_ABORT, Boundary([]() -> HRESULT { ThrowHr(E_ABORT); }));
    ClearPending();
}

TEST(Boundary, SetsNoRecordForASuccessThatWasThrown) {
    ClearPending();
    EXPECT_EQ(S_FALSE, Boundary([] { throw HRX(S_FALSE); }));
    EXPECT_FALSE(TakePending());
}

TEST(Boundary, LetsOtherExceptionsPass) {
    const SeverityInForce severity(SeverityDbg3);
    const LogCapture log;
    ClearPending();
    EXPECT_THROW(Boundary([] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_THROW(Boundary([] { throw std::runtime_error("other"); }), std::runtime_error);
    EXPECT_THROW(NamedBoundary(SeverityErr, Named, [] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_FALSE(TakePending());
    EXPECT_TRUE(log.Lines().empty());
}

// --- Records -------------------------------------------------------------------------------------

TEST(BoundaryRecord, IsOurOwnWithTheMessageAndOneGroupOfTwoAddresses) {
    ClearPending();
    Fail();
    const Record record = TakePending();
    EXPECT_TRUE(record.IsOwn());
    const std::string text = ToUtf8(record.Description());
    EXPECT_EQ(Headline + " [" + DetailsOf(text) + "]", text);
    const std::string details = DetailsOf(text);
    ASSERT_EQ(2u * 18 + 1, details.size()) << details;
    EXPECT_EQ("0x", details.substr(0, 2));
    EXPECT_EQ(",0x", details.substr(18, 3));
    EXPECT_EQ(std::string::npos, details.find_first_not_of("0123456789ABCDEFx,"));
}

TEST(BoundaryRecord, GrowsByAGroupAtEachBoundaryTheDeepestFirst) {
    ClearPending();
    std::string inner;
    std::string middle;
    const auto peek = [](std::string& text) {
        const Record record = TakePending();
        text = ToUtf8(record.Description());
        SetErrorInfo(0, record.Get());
    };
    EXPECT_EQ(Code, Boundary([&] {
                  const HRESULT hr = Boundary([&] {
                      const HRESULT deepest = Fail();
                      peek(inner);
                      HRES raised(deepest);
                  });
                  peek(middle);
                  HRES raised(hr);
              }));
    const std::string outer = TakeText();
    EXPECT_EQ(1u, GroupCount(inner));
    EXPECT_EQ(2u, GroupCount(middle));
    EXPECT_EQ(3u, GroupCount(outer));
    EXPECT_TRUE(DetailsOf(middle).starts_with(DetailsOf(inner) + ";")) << middle;
    EXPECT_TRUE(DetailsOf(outer).starts_with(DetailsOf(middle) + ";")) << outer;
    EXPECT_TRUE(outer.starts_with(Headline + " [")) << outer;
}

TEST(BoundaryRecord, LeavesOutAddressesThatWereNotFound) {
    ClearPending();
    EXPECT_EQ(Code, Boundary([] {
                  HRX failure(Code);
                  failure.Frames[0] = reinterpret_cast<void*>(uintptr_t{0x1234ABCD});
                  failure.Frames[1] = nullptr;
                  throw failure;
              }));
    EXPECT_EQ(Headline + " [0x000000001234ABCD]", TakeText());
    EXPECT_EQ(Code, Boundary([] {
                  HRX failure(Code);
                  failure.Frames[0] = failure.Frames[1] = nullptr;
                  throw failure;
              }));
    EXPECT_EQ(Headline, TakeText());
}

TEST(BoundaryRecord, KeepsTheTextOfAForeignRecord) {
    EXPECT_EQ(E_FAIL, Boundary([] {
                  SetErrorInfo(0, MakeForeignRecord(TV_W("Boom")).Get());
                  ThrowHr(E_FAIL);
              }));
    const Record record = TakePending();
    EXPECT_TRUE(record.IsOwn());
    const std::string text = ToUtf8(record.Description());
    EXPECT_TRUE(text.starts_with("0x80004005 Boom [0x")) << text;
    EXPECT_EQ(1u, GroupCount(text));
}

TEST(BoundaryRecord, DropsARecordOfTheLibraryThatSpeaksOfAnotherFailure) {
    SetErrorInfo(0, MakeOwnRecord(TV_W("0x80004005 Old [a;b]")).Get());
    EXPECT_EQ(Code, Fail());
    const std::string text = TakeText();
    EXPECT_TRUE(text.starts_with(Headline + " [0x")) << text;
    EXPECT_EQ(1u, GroupCount(text));
}

TEST(BoundaryRecord, ReplacesTheFormerOne) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    Fail();
    EXPECT_EQ(1u, record.References);
    EXPECT_TRUE(TakePending().IsOwn());
}

// --- Lines ---------------------------------------------------------------------------------------

TEST(BoundaryLine, HasTheNameTheErrorTextAndTheSeverity) {
    const SeverityInForce severity(SeverityDbg3);
    const LogCapture log;
    NamedBoundary(SeverityWarn, Named, [] { ThrowHr(Code); });
    const std::string text = TakeText();
    EXPECT_EQ(1u, GroupCount(text));
    ASSERT_EQ(1u, log.Lines().size());
    EXPECT_EQ("CSample::Run failed: " + text, log.Entry(0).Message);
    EXPECT_EQ(" WARN ", log.Entry(0).Severity);
}

TEST(BoundaryLine, TellsWhereTheOperationStands) {
    const SeverityInForce severity(SeverityDbg3);
    const LogCapture log;
    NamedBoundary(
        SeverityErr, Named, [] { ThrowHr(Code); }, SourcePlace{"dir/sample.cpp", 77});
    NamedBoundary(SeverityErr, Named, [] { ThrowHr(Code); });
    ClearPending();
    ASSERT_EQ(2u, log.Lines().size());
    EXPECT_TRUE(log.Entry(0).Place.starts_with(" sample.cpp:77 ")) << log.Entry(0).Place;
    EXPECT_TRUE(log.Entry(1).Place.starts_with(" boundaryinternaltest.cpp:"));
}

TEST(BoundaryLine, IsWrittenUpToTheMaximumSeverity) {
    SeverityInForce severity(SeverityWarn);
    const LogCapture log;
    NamedBoundary(SeverityInfo, Named, [] { ThrowHr(Code); });
    EXPECT_TRUE(log.Lines().empty());
    EXPECT_TRUE(TakePending().IsOwn()) << "the record does not depend on the log";
    NamedBoundary(SeverityWarn, Named, [] { ThrowHr(Code); });
    EXPECT_EQ(1u, log.Lines().size());
    severity.Change(SeverityNone);
    NamedBoundary(SeverityCrit, Named, [] { ThrowHr(Code); });
    EXPECT_EQ(1u, log.Lines().size());
    ClearPending();
}

TEST(BoundaryLine, DoesNotBuildANameThatNobodyReads) {
    const SeverityInForce severity(SeverityErr);
    bool built = false;
    const auto name = [&](WideStream&) { built = true; };
    NamedBoundary(SeverityDbg3, name, [] { ThrowHr(Code); });
    NamedBoundary(SeverityErr, name, [] {});
    ClearPending();
    EXPECT_FALSE(built);
}

TEST(BoundaryLine, EndsWithAMarkWhenTheNameCannotBeBuilt) {
    const SeverityInForce severity(SeverityDbg3);
    const LogCapture log;
    const auto name = [](WideStream& line) {
        line << TV_W("CSample::");
        throw std::bad_alloc();
    };
    EXPECT_EQ(Code, NamedBoundary(SeverityErr, name, [] { ThrowHr(Code); }));
    ASSERT_EQ(1u, log.Lines().size());
    EXPECT_EQ("CSample::... (***EXCEPTION***)", log.Entry(0).Message);
    EXPECT_TRUE(TakePending().IsOwn());
}

TEST(BoundaryLine, IsNotWrittenByABoundaryWithoutAName) {
    const SeverityInForce severity(SeverityDbg3);
    const LogCapture log;
    Fail();
    ClearPending();
    EXPECT_TRUE(log.Lines().empty());
}

// --- Error texts for lines -----------------------------------------------------------------------

TEST(AppendErrorText, OfABareCodeNeitherTakesNorSetsTheRecord) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    WideStream stream;
    stream << TV_W("not found: ");
    AppendErrorText(stream, Code);
    EXPECT_EQ("not found: " + Headline, ToUtf8(stream.Str()));
    EXPECT_EQ(&record, TakePending().Get());
}

TEST(AppendErrorText, OfAFailureHasItsRecordAndAddresses) {
    SetErrorInfo(0, MakeForeignRecord(TV_W("Boom")).Get());
    HRX failure(E_FAIL);
    failure.Frames[0] = reinterpret_cast<void*>(uintptr_t{0xAB});
    failure.Frames[1] = reinterpret_cast<void*>(uintptr_t{0xCD});
    WideStream stream;
    AppendErrorText(stream, failure);
    EXPECT_EQ("0x80004005 Boom [0x00000000000000AB,0x00000000000000CD]", ToUtf8(stream.Str()));
    EXPECT_TRUE(failure.Info) << "the failure keeps it";
    EXPECT_FALSE(TakePending());
}

// --- Reports -------------------------------------------------------------------------------------

TEST(ReportError, SetsTheMessageAndReturnsTheCode) {
    ClearPending();
    EXPECT_EQ(Code, ReportError(Code));
    const Record record = TakePending();
    EXPECT_TRUE(record.IsOwn());
    EXPECT_EQ(Headline, ToUtf8(record.Description()));
}

TEST(ReportError, PutsTheContextDirectlyBehindTheMessage) {
    EXPECT_EQ(Code, ReportError(Code, TV_W(" (Child='a')")));
    EXPECT_EQ(Headline + " (Child='a')", TakeText());
    EXPECT_EQ(Code, ReportError(Code, TV_W("!")));
    EXPECT_EQ(Headline + "!", TakeText());
}

TEST(ReportError, ReplacesWhatWasPendingWithoutReadingIt) {
    SetErrorInfo(0, MakeForeignRecord(TV_W("Boom")).Get());
    ReportError(Code);
    EXPECT_EQ(Headline, TakeText());
    SetErrorInfo(0, MakeForeignRecord(TV_W("Boom")).Get());
    ReportError(Code, TV_W(" (x)"));
    EXPECT_EQ(Headline + " (x)", TakeText());
}

TEST(ReportError, IsReadBackByTheNextBoundary) {
    EXPECT_EQ(Code, Boundary([] { ThrowHr(ReportError(Code, TV_W(" (x)"))); }));
    const std::string text = TakeText();
    EXPECT_TRUE(text.starts_with(Headline + " (x) [0x")) << text;
    EXPECT_EQ(1u, GroupCount(text));
}

} // namespace
} // namespace treevault
