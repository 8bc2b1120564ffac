// SPDX-License-Identifier: MIT
// What Linux promises of error records beyond Windows: null arguments, and the end of a thread.
#include "platform/widetext.h"

#include "support/errorrecords.h"

#include <gtest/gtest.h>

#include <thread>

namespace treevault {
namespace {

using namespace tests;

TEST(PosixErrorRecord, RefusesNullOuts) {
    const Record record = MakeForeignRecord(TV_W("text"));
    EXPECT_EQ(E_POINTER, record.Get()->QueryInterface(IID_IUnknown, nullptr));
    EXPECT_EQ(E_POINTER, record.Get()->GetGUID(nullptr));
    EXPECT_EQ(E_POINTER, record.Get()->GetSource(nullptr));
    EXPECT_EQ(E_POINTER, record.Get()->GetDescription(nullptr));
    EXPECT_EQ(E_POINTER, record.Get()->GetHelpFile(nullptr));
    EXPECT_EQ(E_POINTER, record.Get()->GetHelpContext(nullptr));
}

TEST(PosixErrorSlot, ReleasesItsRecordWhenTheThreadEnds) {
    CountedRecord record;
    std::thread([&] { SetErrorInfo(0, &record); }).join();
    EXPECT_EQ(1u, record.References);
}

// Sets a record while the thread ends, after the slot has ended.
struct LateSetter {
    CountedRecord* Late = nullptr;
    ~LateSetter() {
        SetErrorInfo(0, Late);
        IErrorInfo* taken = nullptr;
        EXPECT_EQ(S_FALSE, GetErrorInfo(0, &taken));
    }
};

TEST(PosixErrorSlot, KeepsNothingAfterItsEnd) {
    CountedRecord early, late;
    std::thread([&] {
        thread_local LateSetter setter;
        setter.Late = &late;
        SetErrorInfo(0, &early); // made later than `setter`, so it ends earlier
    }).join();
    EXPECT_EQ(1u, early.References);
    EXPECT_EQ(1u, late.References);
}

} // namespace
} // namespace treevault
