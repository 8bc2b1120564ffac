// SPDX-License-Identifier: MIT
// The thread's error record: the platform's functions, which behave alike everywhere, and what the
// library leaves there.
#include "support/errorrecords.h"
#include "support/results.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <thread>

namespace treevault::tests {
namespace {

void* const AnyReserved = const_cast<char*>("anything");

// A call of the library that fails with a record: code 0x80004003.
HRESULT FailWithRecord() {
    return AcnCreateNode(nullptr, nullptr, nullptr);
}

// --- EhGetErrorContext and EhReleaseErrorContext -------------------------------------------------

TEST(ErrorContext, IsGivenOnce) {
    EXPECT_EQ(E_POINTER, FailWithRecord());
    IErrorInfo* context = nullptr;
    EXPECT_EQ(S_OK, EhGetErrorContext(nullptr, &context));
    ASSERT_NE(nullptr, context);
    IErrorInfo* second = context;
    EXPECT_EQ(S_FALSE, EhGetErrorContext(nullptr, &second));
    EXPECT_EQ(nullptr, second);
    EhReleaseErrorContext(context);
}

TEST(ErrorContext, IsWhateverIsPendingAndMovesToTheCaller) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    EXPECT_EQ(2u, record.References);
    IErrorInfo* context = nullptr;
    EXPECT_EQ(S_OK, EhGetErrorContext(AnyReserved, &context)) << "reserved is ignored";
    EXPECT_EQ(&record, context);
    EXPECT_EQ(2u, record.References);
    EhReleaseErrorContext(context);
    EXPECT_EQ(1u, record.References);
}

TEST(ErrorContext, NeedsAnOutPointer) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    EXPECT_EQ(E_INVALIDARG, EhGetErrorContext(nullptr, nullptr));
    EXPECT_EQ(&record, TakePending().Get());
}

TEST(ErrorContext, MayBeNullWhenReleased) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    EhReleaseErrorContext(nullptr);
    EXPECT_EQ(&record, TakePending().Get());
}

TEST(ErrorContext, IsReplacedByTheNextFailureAndKeptBySuccess) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    IComponentsModule* module = nullptr;
    EXPECT_EQ(S_OK, GetComponentsModuleObject(&module));
    uint64_t size = 0;
    EXPECT_EQ(S_OK, AcnConvertData(VtEmpty, nullptr, 0, VtEmpty, nullptr, &size));
    EXPECT_EQ(2u, record.References) << "no success clears it";
    FailWithRecord();
    EXPECT_EQ(1u, record.References);
    EXPECT_TRUE(TakePending().IsOwn());
}

// --- What the library leaves ---------------------------------------------------------------------

// What stands in the brackets at the end.
std::string DetailsOf(const std::string& text) {
    const size_t open = text.rfind(" [");
    return open == std::string::npos || text.back() != ']'
               ? std::string()
               : text.substr(open + 2, text.size() - open - 3);
}

TEST(LibraryRecord, HasTheMarkerCodeTextAndOneGroupOfAddresses) {
    FailWithRecord();
    const Record record = TakePending();
    EXPECT_TRUE(record.IsOwn());
    const std::string text = Narrow(record.Description());
    EXPECT_EQ("0x80004003 ", text.substr(0, 11));
    const std::string details = DetailsOf(text);
    ASSERT_EQ(18u + 1 + 18, details.size()) << text;
    EXPECT_EQ("0x", details.substr(0, 2));
    EXPECT_EQ(",0x", details.substr(18, 3));
    EXPECT_EQ(std::string::npos, details.find_first_not_of("0123456789ABCDEFx,"));
    EXPECT_LT(11 + 3 + details.size(), text.size()) << "there is a message between";
}

TEST(LibraryRecord, HasNoSource) {
    FailWithRecord();
    const Record record = TakePending();
    BSTR text = nullptr;
    EXPECT_EQ(S_OK, record.Get()->GetSource(&text));
    EXPECT_EQ(0u, SysStringLen(text));
    SysFreeString(text);
}

TEST(LibraryRecord, IsReadByMakeErrorText) {
    FailWithRecord();
    const Record record = TakePending();
    WCHAR buffer[1000];
    size_t size = 1000;
    EXPECT_EQ(S_OK, EhMakeErrorText(E_POINTER, 0, record.Get(), nullptr, buffer, &size));
    EXPECT_EQ(record.Description(), Text(buffer));
    size = 1000;
    EXPECT_EQ(S_OK, EhMakeErrorText(CodeWithoutMessage, 0, record.Get(), nullptr, buffer, &size));
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x8004F123 <no description>")), Text(buffer));
}

TEST(LibraryRecord, StaysOnItsThread) {
    ClearPending();
    std::thread([] {
        FailWithRecord();
        EXPECT_TRUE(TakePending().IsOwn());
        FailWithRecord();
    }).join();
    EXPECT_FALSE(TakePending());
}

// A callback that fails in the library's stead, within AcnFinalizeSerialization.
HRESULT FinalizeWith(NodeTextWriteCallback write) {
    INodeSerializer* context = nullptr;
    EXPECT_EQ(S_OK, AcnStartSerialization(TREEVAULT_FORMAT_XML, 0, write, nullptr, &context));
    const HRESULT hr = AcnFinalizeSerialization(context);
    AcnCloseSerializationContext(context);
    return hr;
}

TEST(LibraryRecord, GrowsByAGroupAtASecondBoundary) {
    EXPECT_EQ(E_POINTER, FinalizeWith([](const char*, uint64_t, void*) -> HRESULT {
                  return FailWithRecord();
              }));
    const std::string text = Narrow(TakePending().Description());
    const std::string details = DetailsOf(text);
    EXPECT_EQ(1, std::count(details.begin(), details.end(), ';')) << text;
    EXPECT_EQ(37u + 1 + 37, details.size()) << text;
}

TEST(LibraryRecord, KeepsTheDescriptionOfAForeignOne) {
    EXPECT_EQ(E_ABORT, FinalizeWith([](const char*, uint64_t, void*) -> HRESULT {
                  SetErrorInfo(0, MakeForeignRecord(TREEVAULT_WIDE("Boom")).Get());
                  return E_ABORT;
              }));
    const Record record = TakePending();
    EXPECT_TRUE(record.IsOwn());
    const std::string text = Narrow(record.Description());
    EXPECT_EQ("0x80004004 Boom [" + DetailsOf(text) + "]", text);
    EXPECT_EQ(37u, DetailsOf(text).size());
}

TEST(LibraryRecord, DropsAnOwnOneOfAnotherCode) {
    EXPECT_EQ(CodeWithoutMessage, FinalizeWith([](const char*, uint64_t, void*) -> HRESULT {
                  FailWithRecord();
                  return CodeWithoutMessage;
              }));
    const std::string text = Narrow(TakePending().Description());
    EXPECT_EQ("0x8004F123 <no description> [" + DetailsOf(text) + "]", text);
    EXPECT_EQ(37u, DetailsOf(text).size());
}

// --- The slot of the thread ----------------------------------------------------------------------

TEST(PendingRecord, IsEmptyAfterClearing) {
    SetErrorInfo(0, MakeForeignRecord(TREEVAULT_WIDE("x")).Get());
    EXPECT_EQ(S_OK, SetErrorInfo(0, nullptr));
    CountedRecord other;
    IErrorInfo* record = &other;
    EXPECT_EQ(S_FALSE, GetErrorInfo(0, &record));
    EXPECT_EQ(nullptr, record);
}

TEST(PendingRecord, IsHeldAndReleased) {
    CountedRecord first;
    CountedRecord second;
    EXPECT_EQ(S_OK, SetErrorInfo(0, &first));
    EXPECT_EQ(2u, first.References);
    EXPECT_EQ(S_OK, SetErrorInfo(0, &second));
    EXPECT_EQ(1u, first.References);
    EXPECT_EQ(2u, second.References);
    EXPECT_EQ(S_OK, SetErrorInfo(0, &second));
    EXPECT_EQ(2u, second.References);
    EXPECT_EQ(S_OK, SetErrorInfo(0, nullptr));
    EXPECT_EQ(1u, second.References);
}

TEST(PendingRecord, MovesToWhoTakesIt) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    IErrorInfo* taken = nullptr;
    EXPECT_EQ(S_OK, GetErrorInfo(0, &taken));
    EXPECT_EQ(&record, taken);
    EXPECT_EQ(2u, record.References);
    EXPECT_EQ(S_FALSE, GetErrorInfo(0, &taken));
    EXPECT_EQ(1u, record.Release());
}

TEST(PendingRecord, NeedsAnOutPointer) {
    EXPECT_EQ(E_INVALIDARG, GetErrorInfo(0, nullptr));
}

TEST(PendingRecord, IsOnePerThread) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    std::thread([] {
        EXPECT_FALSE(TakePending());
        SetErrorInfo(0, MakeForeignRecord(TREEVAULT_WIDE("x")).Get());
    }).join();
    EXPECT_EQ(&record, TakePending().Get());
}

// --- Records of the platform ---------------------------------------------------------------------

class CreatedRecord : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(S_OK, CreateErrorInfo(&Maker));
        ASSERT_EQ(S_OK, Maker->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&Reader)));
    }
    void TearDown() override {
        EXPECT_EQ(1u, Reader->Release());
        EXPECT_EQ(0u, Maker->Release());
    }

    Text Source() {
        return Taken([this](BSTR* text) { return Reader->GetSource(text); });
    }
    Text Description() {
        return Taken([this](BSTR* text) { return Reader->GetDescription(text); });
    }
    Text HelpFile() {
        return Taken([this](BSTR* text) { return Reader->GetHelpFile(text); });
    }

    ICreateErrorInfo* Maker = nullptr;
    IErrorInfo* Reader = nullptr;

private:
    template <class Read>
    static Text Taken(Read&& read) {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, read(&text));
        const Text copy(text ? text : TREEVAULT_WIDE(""), SysStringLen(text));
        SysFreeString(text);
        return copy;
    }
};

TEST_F(CreatedRecord, IsEmptyAtFirst) {
    EXPECT_EQ(Text(), Source());
    EXPECT_EQ(Text(), Description());
    EXPECT_EQ(Text(), HelpFile());
    // What the identifier is before it is set is not the same everywhere.
    DWORD helpContext = 77;
    EXPECT_EQ(S_OK, Reader->GetHelpContext(&helpContext));
    EXPECT_EQ(0u, helpContext);
}

TEST_F(CreatedRecord, GivesBackWhatWasSet) {
    Text source = TREEVAULT_WIDE("source");
    Text description = TREEVAULT_WIDE("description");
    Text helpFile = TREEVAULT_WIDE("help");
    EXPECT_EQ(S_OK, Maker->SetSource(source.data()));
    EXPECT_EQ(S_OK, Maker->SetDescription(description.data()));
    EXPECT_EQ(S_OK, Maker->SetHelpFile(helpFile.data()));
    EXPECT_EQ(S_OK, Maker->SetHelpContext(99));
    EXPECT_EQ(S_OK, Maker->SetGUID(ForeignMarker));
    // Texts are copied.
    source[0] = description[0] = helpFile[0] = TREEVAULT_WIDE('#');
    EXPECT_EQ(Text(TREEVAULT_WIDE("source")), Source());
    EXPECT_EQ(Text(TREEVAULT_WIDE("description")), Description());
    EXPECT_EQ(Text(TREEVAULT_WIDE("help")), HelpFile());
    DWORD helpContext = 0;
    EXPECT_EQ(S_OK, Reader->GetHelpContext(&helpContext));
    EXPECT_EQ(99u, helpContext);
    GUID guid = {};
    EXPECT_EQ(S_OK, Reader->GetGUID(&guid));
    EXPECT_TRUE(IsSameGuid(ForeignMarker, guid));
}

TEST_F(CreatedRecord, ReplacesAndClearsTexts) {
    Text text = TREEVAULT_WIDE("first");
    Maker->SetDescription(text.data());
    text = TREEVAULT_WIDE("second");
    EXPECT_EQ(S_OK, Maker->SetDescription(text.data()));
    EXPECT_EQ(Text(TREEVAULT_WIDE("second")), Description());
    EXPECT_EQ(S_OK, Maker->SetDescription(nullptr));
    EXPECT_EQ(Text(), Description());
}

TEST_F(CreatedRecord, AnswersItsInterfacesAlone) {
    void* reader = nullptr;
    EXPECT_EQ(S_OK, Maker->QueryInterface(IID_IErrorInfo, &reader));
    EXPECT_EQ(Reader, reader);
    Reader->Release();
    void* fromMaker = nullptr;
    void* fromReader = nullptr;
    EXPECT_EQ(S_OK, Maker->QueryInterface(IID_IUnknown, &fromMaker));
    EXPECT_EQ(S_OK, Reader->QueryInterface(IID_IUnknown, &fromReader));
    EXPECT_EQ(fromMaker, fromReader);
    Reader->Release();
    Reader->Release();
    void* maker = nullptr;
    EXPECT_EQ(S_OK, Reader->QueryInterface(IID_ICreateErrorInfo, &maker));
    EXPECT_EQ(Maker, maker);
    Reader->Release();
    void* none = this;
    EXPECT_EQ(E_NOINTERFACE, Reader->QueryInterface(ForeignMarker, &none));
    EXPECT_EQ(nullptr, none);
}

TEST_F(CreatedRecord, IsSharedByTheSlot) {
    SetErrorInfo(0, Reader);
    EXPECT_EQ(4u, Reader->AddRef());
    Reader->Release();
    Text text = TREEVAULT_WIDE("late");
    Maker->SetDescription(text.data());
    EXPECT_EQ(Text(TREEVAULT_WIDE("late")), TakePending().Description());
}

TEST(CreateErrorInfoFunction, NeedsAnOutPointer) {
    EXPECT_EQ(E_INVALIDARG, CreateErrorInfo(nullptr));
}

// --- System strings ------------------------------------------------------------------------------

TEST(SystemString, IsACopyWithATerminator) {
    OLECHAR source[] = TREEVAULT_WIDE("abc");
    const BSTR text = SysAllocString(source);
    source[0] = TREEVAULT_WIDE('#');
    ASSERT_NE(nullptr, text);
    EXPECT_EQ(3u, SysStringLen(text));
    EXPECT_EQ(Text(TREEVAULT_WIDE("abc")), Text(text));
    SysFreeString(text);
}

TEST(SystemString, OfNothingIsNull) {
    EXPECT_EQ(nullptr, SysAllocString(nullptr));
    EXPECT_EQ(0u, SysStringLen(nullptr));
    SysFreeString(nullptr);
}

TEST(SystemString, OfTheEmptyTextIsNoNull) {
    const BSTR text = SysAllocString(TREEVAULT_WIDE(""));
    ASSERT_NE(nullptr, text);
    EXPECT_EQ(0u, SysStringLen(text));
    EXPECT_EQ(OLECHAR(0), text[0]);
    SysFreeString(text);
}

TEST(SystemString, MayHoldNulsByItsLength) {
    const BSTR text = SysAllocStringLen(TREEVAULT_WIDE("a\0bcd"), 3);
    ASSERT_NE(nullptr, text);
    EXPECT_EQ(3u, SysStringLen(text));
    EXPECT_EQ(Text(TREEVAULT_WIDE("a\0b"), 3), Text(text, 3));
    EXPECT_EQ(OLECHAR(0), text[3]);
    SysFreeString(text);
}

TEST(SystemString, MayBeMadeWithoutText) {
    const BSTR text = SysAllocStringLen(nullptr, 5);
    ASSERT_NE(nullptr, text);
    EXPECT_EQ(5u, SysStringLen(text));
    EXPECT_EQ(OLECHAR(0), text[5]);
    std::fill_n(text, 5, TREEVAULT_WIDE('x'));
    SysFreeString(text);
}

TEST(SystemString, HasItsSizeInBytesInFront) {
    const BSTR text = SysAllocString(TREEVAULT_WIDE("abc"));
    uint32_t bytes = 0;
    std::memcpy(&bytes, reinterpret_cast<const char*>(text) - 4, sizeof bytes);
    EXPECT_EQ(6u, bytes);
    SysFreeString(text);
}

// Each failure finds the record of the one before it and adds its addresses, up to a point.
TEST(OwnRecord, ThatNobodyTakesStopsGrowing) {
    ClearRecord();
    for (int i = 0; i < 1000; ++i)
        FailWithRecord();
    Text description;
    ASSERT_TRUE(TakeRecord(description));
    EXPECT_GT(description.size(), 100u * 18);
    EXPECT_LT(description.size(), 5000u);
}

} // namespace
} // namespace treevault::tests
