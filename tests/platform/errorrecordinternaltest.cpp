// SPDX-License-Identifier: MIT
// BSTR, error records and the slot of each thread, the same on both platforms.
#include "platform/widetext.h"

#include "support/errorrecords.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

namespace treevault {
namespace {

using namespace tests;

// --- BSTR ----------------------------------------------------------------------------------------

uint32_t ByteLength(BSTR text) {
    uint32_t length;
    std::memcpy(&length, reinterpret_cast<const char*>(text) - sizeof length, sizeof length);
    return length;
}

TEST(Bstr, KeepsItsLengthInBytesInFront) {
    const BSTR text = SysAllocString(TV_W("abc"));
    ASSERT_NE(nullptr, text);
    EXPECT_EQ(6u, ByteLength(text));
    EXPECT_EQ(3u, SysStringLen(text));
    EXPECT_EQ(WideText(TV_W("abc")), WideText(text));
    EXPECT_EQ(0, text[3]);
    SysFreeString(text);
}

TEST(Bstr, OfALengthMayHoldNulsAndEndsWithOne) {
    const WCHAR source[] = {TV_W('a'), 0, TV_W('b'), TV_W('c')};
    const BSTR text = SysAllocStringLen(source, 3);
    ASSERT_NE(nullptr, text);
    EXPECT_EQ(3u, SysStringLen(text));
    EXPECT_EQ(WideText(source, 3), WideText(text, 3));
    EXPECT_EQ(0, text[3]);
    SysFreeString(text);
}

TEST(Bstr, OfNoTextHasRoomForIt) {
    const BSTR text = SysAllocStringLen(nullptr, 5);
    ASSERT_NE(nullptr, text);
    EXPECT_EQ(5u, SysStringLen(text));
    EXPECT_EQ(0, text[5]);
    SysFreeString(text);
}

TEST(Bstr, MayBeEmpty) {
    for (const BSTR text : {SysAllocString(TV_W("")), SysAllocStringLen(TV_W("x"), 0)}) {
        ASSERT_NE(nullptr, text);
        EXPECT_EQ(0u, SysStringLen(text));
        EXPECT_EQ(0, text[0]);
        SysFreeString(text);
    }
}

TEST(Bstr, OfNullIsNull) {
    EXPECT_EQ(nullptr, SysAllocString(nullptr));
    EXPECT_EQ(0u, SysStringLen(nullptr));
    SysFreeString(nullptr);
}

TEST(Bstr, TooLongForItsLengthIsNull) {
    EXPECT_EQ(nullptr, SysAllocStringLen(nullptr, 0xFFFFFFFF));
    EXPECT_EQ(nullptr, SysAllocStringLen(nullptr, 0x80000000));
    EXPECT_EQ(nullptr, SysAllocStringLen(nullptr, 0x7FFFFFFF));
}

// --- Records -------------------------------------------------------------------------------------

TEST(ErrorRecord, StartsEmpty) {
    const Record record = MakeRecord(nullptr, GUID{});
    ASSERT_TRUE(record);
    GUID guid = OwnMarker;
    EXPECT_EQ(S_OK, record.Get()->GetGUID(&guid));
    EXPECT_TRUE(IsSameGuid(GUID{}, guid));
    BSTR text = nullptr;
    EXPECT_EQ(S_OK, record.Get()->GetSource(&text));
    EXPECT_EQ(nullptr, text);
    EXPECT_EQ(S_OK, record.Get()->GetDescription(&text));
    EXPECT_EQ(nullptr, text);
    EXPECT_EQ(S_OK, record.Get()->GetHelpFile(&text));
    EXPECT_EQ(nullptr, text);
    DWORD context = 7;
    EXPECT_EQ(S_OK, record.Get()->GetHelpContext(&context));
    EXPECT_EQ(0u, context);
}

WideText Take(BSTR text) {
    const WideText copy = text ? WideText(text) : TV_W("<null>");
    SysFreeString(text);
    return copy;
}

class FilledRecord : public testing::Test {
protected:
    FilledRecord() {
        CreateErrorInfo(&Maker);
        WideText source = TV_W("source"), description = TV_W("description"), file = TV_W("file");
        EXPECT_EQ(S_OK, Maker->SetGUID(OwnMarker));
        EXPECT_EQ(S_OK, Maker->SetSource(source.data()));
        EXPECT_EQ(S_OK, Maker->SetDescription(description.data()));
        EXPECT_EQ(S_OK, Maker->SetHelpFile(file.data()));
        EXPECT_EQ(S_OK, Maker->SetHelpContext(42));
        Maker->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&Info));
    }
    ~FilledRecord() override {
        Info->Release();
        Maker->Release();
    }

    ICreateErrorInfo* Maker = nullptr;
    IErrorInfo* Info = nullptr;
};

TEST_F(FilledRecord, GivesWhatWasSet) {
    GUID guid{};
    EXPECT_EQ(S_OK, Info->GetGUID(&guid));
    EXPECT_TRUE(IsSameGuid(OwnMarker, guid));
    BSTR text = nullptr;
    EXPECT_EQ(S_OK, Info->GetSource(&text));
    EXPECT_EQ(WideText(TV_W("source")), Take(text));
    EXPECT_EQ(S_OK, Info->GetDescription(&text));
    EXPECT_EQ(WideText(TV_W("description")), Take(text));
    EXPECT_EQ(S_OK, Info->GetHelpFile(&text));
    EXPECT_EQ(WideText(TV_W("file")), Take(text));
    DWORD context = 0;
    EXPECT_EQ(S_OK, Info->GetHelpContext(&context));
    EXPECT_EQ(42u, context);
}

TEST_F(FilledRecord, TakesANewTextOrNone) {
    WideText other = TV_W("other");
    EXPECT_EQ(S_OK, Maker->SetDescription(other.data()));
    BSTR text = nullptr;
    EXPECT_EQ(S_OK, Info->GetDescription(&text));
    EXPECT_EQ(WideText(TV_W("other")), Take(text));
    EXPECT_EQ(S_OK, Maker->SetDescription(nullptr));
    EXPECT_EQ(S_OK, Info->GetDescription(&text));
    EXPECT_EQ(nullptr, text);
}

TEST_F(FilledRecord, HasOneIdentityBehindItsInterfaces) {
    void* fromMaker = nullptr;
    void* fromInfo = nullptr;
    void* maker = nullptr;
    EXPECT_EQ(S_OK, Maker->QueryInterface(IID_IUnknown, &fromMaker));
    EXPECT_EQ(S_OK, Info->QueryInterface(IID_IUnknown, &fromInfo));
    EXPECT_EQ(S_OK, Info->QueryInterface(IID_ICreateErrorInfo, &maker));
    EXPECT_EQ(fromMaker, fromInfo);
    EXPECT_EQ(Maker, maker);
    for (int reference = 0; reference < 3; ++reference)
        Info->Release();
}

TEST_F(FilledRecord, HasNoOtherInterface) {
    void* out = this;
    EXPECT_EQ(E_NOINTERFACE, Info->QueryInterface(OwnMarker, &out));
    EXPECT_EQ(nullptr, out);
}

TEST_F(FilledRecord, CountsReferencesOfAllItsInterfacesTogether) {
    EXPECT_EQ(3u, Info->AddRef());
    EXPECT_EQ(4u, Maker->AddRef());
    EXPECT_EQ(3u, Info->Release());
    EXPECT_EQ(2u, Maker->Release());
}

// --- The slot ------------------------------------------------------------------------------------

TEST(ErrorSlot, GivesARecordOnce) {
    ClearPending();
    CountedRecord record;
    EXPECT_EQ(S_OK, SetErrorInfo(0, &record));
    EXPECT_EQ(2u, record.References);
    IErrorInfo* taken = nullptr;
    EXPECT_EQ(S_OK, GetErrorInfo(0, &taken));
    EXPECT_EQ(&record, taken);
    EXPECT_EQ(2u, record.References) << "the reference moves to the caller";
    EXPECT_EQ(S_FALSE, GetErrorInfo(0, &taken));
    EXPECT_EQ(nullptr, taken);
}

TEST(ErrorSlot, ReleasesWhatIsReplacedOrCleared) {
    CountedRecord first, second;
    SetErrorInfo(0, &first);
    SetErrorInfo(0, &second);
    EXPECT_EQ(1u, first.References);
    EXPECT_EQ(2u, second.References);
    SetErrorInfo(0, &second);
    EXPECT_EQ(2u, second.References);
    EXPECT_EQ(S_OK, SetErrorInfo(0, nullptr));
    EXPECT_EQ(1u, second.References);
}

TEST(ErrorSlot, RefusesAReservedValueAndANullOut) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    IErrorInfo* taken = nullptr;
    EXPECT_EQ(E_INVALIDARG, GetErrorInfo(1, &taken));
    EXPECT_EQ(E_INVALIDARG, GetErrorInfo(0, nullptr));
    EXPECT_EQ(E_INVALIDARG, SetErrorInfo(1, nullptr));
    EXPECT_EQ(&record, TakePending().Get()) << "still pending";
    EXPECT_EQ(E_INVALIDARG, CreateErrorInfo(nullptr));
}

TEST(ErrorSlot, BelongsToItsThread) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    std::thread([] {
        IErrorInfo* taken = nullptr;
        EXPECT_EQ(S_FALSE, GetErrorInfo(0, &taken));
        EXPECT_EQ(nullptr, taken);
    }).join();
    EXPECT_EQ(&record, TakePending().Get());
}

} // namespace
} // namespace treevault
