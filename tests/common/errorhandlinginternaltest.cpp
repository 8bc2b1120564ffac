// SPDX-License-Identifier: MIT
// Raising failures: what HRES and HRX hold, and the helpers that throw.
#include "common/errorhandling.h"

#include "support/errorrecords.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace treevault {
namespace {

using namespace tests;

// What the body raised.
template <class Body>
HRX Caught(Body&& body) {
    try {
        body();
    } catch (const HRX& failure) {
        return failure;
    }
    ADD_FAILURE() << "nothing was raised";
    return HRX(S_OK);
}

// --- Codes ---------------------------------------------------------------------------------------

static_assert(HresultFromWin32(0) == 0);
static_assert(HresultFromWin32(1) == static_cast<HRESULT>(0x80070001));
static_assert(HresultFromWin32(122) == static_cast<HRESULT>(0x8007007A));
static_assert(HresultFromWin32(0x12345) == static_cast<HRESULT>(0x80072345));
static_assert(HresultFromWin32(0x7FFFFFFF) == static_cast<HRESULT>(0x8007FFFF));
static_assert(HresultFromWin32(0x80000000) == static_cast<HRESULT>(0x80000000));
static_assert(HresultFromWin32(0x80030005) == static_cast<HRESULT>(0x80030005));
static_assert(HresultFromWin32(0xFFFFFFFF) == static_cast<HRESULT>(0xFFFFFFFF));

static_assert(std::is_base_of_v<HRES, HRX>);
static_assert(sizeof(HRX) == sizeof(HRES), "it adds nothing");

TEST(ThrowHr, RaisesAFailure) {
    EXPECT_EQ(E_ABORT, Caught([] { ThrowHr(E_ABORT); }).Code);
}

TEST(ThrowHr, RaisesASuccessAsFail) {
    EXPECT_EQ(E_FAIL, Caught([] { ThrowHr(S_OK); }).Code);
    EXPECT_EQ(E_FAIL, Caught([] { ThrowHr(S_FALSE); }).Code);
    EXPECT_EQ(E_FAIL, Caught([] { ThrowHr(HresultFromWin32(0)); }).Code);
}

TEST(ThrowOutOfMemory, RaisesItsCode) {
    EXPECT_EQ(static_cast<HRESULT>(0x8007000E), Caught([] { ThrowOutOfMemory(); }).Code);
}

TEST(CheckOutPointer, RaisesForNullAlone) {
    int place = 0;
    EXPECT_NO_THROW(CheckOutPointer(&place));
    EXPECT_EQ(static_cast<HRESULT>(0x80004003), Caught([] { CheckOutPointer(nullptr); }).Code);
}

// --- HRES and HRX --------------------------------------------------------------------------------

TEST(Hres, KeepsASuccess) {
    ClearPending();
    const HRES result(S_FALSE);
    EXPECT_EQ(S_FALSE, result.Code);
    EXPECT_FALSE(result.Info);
    EXPECT_EQ(nullptr, result.Frames[0]);
    EXPECT_EQ(nullptr, result.Frames[1]);
    EXPECT_EQ(1, result.FramesToSkip);
}

TEST(Hres, RaisesAFailureAtConstruction) {
    EXPECT_EQ(E_NOTIMPL, Caught([] { HRES result(E_NOTIMPL); }).Code);
}

TEST(Hres, AssignmentKeepsASuccessAndReturnsItself) {
    HRES result(S_OK);
    HRES& assigned = (result = S_FALSE);
    EXPECT_EQ(&result, &assigned);
    EXPECT_EQ(S_FALSE, result.Code);
}

TEST(Hres, AssignmentRaisesAFailure) {
    HRES result(S_OK);
    EXPECT_EQ(E_UNEXPECTED, Caught([&] { result = E_UNEXPECTED; }).Code);
}

TEST(Hrx, ConstructionRaisesNothing) {
    ClearPending();
    const HRX failure(E_ABORT);
    EXPECT_EQ(E_ABORT, failure.Code);
    EXPECT_EQ(0, failure.FramesToSkip);
}

// --- The pending record --------------------------------------------------------------------------

TEST(FailureRecord, IsTakenFromTheThread) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    {
        const HRX failure = Caught([] { ThrowHr(E_ABORT); });
        EXPECT_EQ(&record, failure.Info.Get());
        EXPECT_FALSE(TakePending()) << "it moves";
        EXPECT_EQ(2u, record.References);
    }
    EXPECT_EQ(1u, record.References);
}

TEST(FailureRecord, IsTakenByAnHrx) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    EXPECT_EQ(&record, HRX(E_ABORT).Info.Get());
    EXPECT_EQ(1u, record.References);
}

TEST(FailureRecord, IsNullWhenNoneIsPending) {
    ClearPending();
    EXPECT_FALSE(Caught([] { ThrowHr(E_ABORT); }).Info);
}

TEST(FailureRecord, StaysPendingOnSuccess) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    HRES result(S_OK);
    result = S_FALSE;
    EXPECT_FALSE(result.Info);
    EXPECT_EQ(&record, TakePending().Get());
}

TEST(FailureRecord, StaysPendingWhenSetIsToldSo) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    HRES result(S_OK);
    result.Set(E_FAIL, false);
    EXPECT_EQ(E_FAIL, result.Code);
    EXPECT_FALSE(result.Info);
    EXPECT_EQ(&record, TakePending().Get());
}

TEST(FailureRecord, IsReleasedByTheNextSet) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    HRES result(S_OK);
    result.Set(E_FAIL, true);
    EXPECT_EQ(2u, record.References);
    result.Set(S_OK, true);
    EXPECT_FALSE(result.Info);
    EXPECT_EQ(1u, record.References);
}

TEST(FailureRecord, IsSharedByCopies) {
    CountedRecord record;
    SetErrorInfo(0, &record);
    {
        const HRX failure(E_FAIL);
        EXPECT_EQ(2u, record.References);
        const HRX copy(failure);
        EXPECT_EQ(&record, copy.Info.Get());
        EXPECT_EQ(3u, record.References);
    }
    EXPECT_EQ(1u, record.References);
}

// --- Return addresses ----------------------------------------------------------------------------

void* raisersReturnAddress = nullptr;

// Each tells where it returns to; the address behind its own call lies in its caller.
[[gnu::noinline]] void RaiseByThrowHr() {
    raisersReturnAddress = __builtin_return_address(0);
    ThrowHr(E_ABORT);
}

[[gnu::noinline]] void RaiseByConstruction() {
    raisersReturnAddress = __builtin_return_address(0);
    HRES result(E_ABORT);
}

[[gnu::noinline]] void RaiseByAssignment() {
    raisersReturnAddress = __builtin_return_address(0);
    HRES result(S_OK);
    result = E_ABORT;
}

volatile int failuresBuilt = 0;

[[gnu::noinline]] HRX BuildFailure() {
    raisersReturnAddress = __builtin_return_address(0);
    HRX failure(E_ABORT);
    failuresBuilt = failuresBuilt + 1; // the construction must not be a jump at the end
    return failure;
}

TEST(FailureFrames, OfThrowHrBeginInTheFunctionThatRaised) {
    const HRX failure = Caught([] { RaiseByThrowHr(); });
    EXPECT_NE(nullptr, failure.Frames[0]);
    EXPECT_EQ(raisersReturnAddress, failure.Frames[1]);
}

TEST(FailureFrames, OfAConstructionBeginInTheCallerOfTheFunctionThatRaised) {
    const HRX failure = Caught([] { RaiseByConstruction(); });
    EXPECT_EQ(raisersReturnAddress, failure.Frames[0]);
    EXPECT_NE(nullptr, failure.Frames[1]);
}

TEST(FailureFrames, OfAnAssignmentBeginInTheCallerOfTheFunctionThatRaised) {
    const HRX failure = Caught([] { RaiseByAssignment(); });
    EXPECT_EQ(raisersReturnAddress, failure.Frames[0]);
    EXPECT_NE(nullptr, failure.Frames[1]);
}

TEST(FailureFrames, OfAnHrxBeginInTheFunctionThatBuiltIt) {
    const HRX failure = BuildFailure();
    EXPECT_NE(nullptr, failure.Frames[0]);
    EXPECT_EQ(raisersReturnAddress, failure.Frames[1]);
}

TEST(FailureFrames, AreCountedFromTheEnd) {
    int place = 0;
    HRES result(S_OK);
    EXPECT_EQ(0u, result.FrameCount());
    result.Frames[0] = &place;
    EXPECT_EQ(1u, result.FrameCount());
    result.Frames[1] = &place;
    EXPECT_EQ(2u, result.FrameCount());
}

TEST(FailureFrames, AreCopied) {
    const HRX failure = BuildFailure();
    const HRX copy(failure);
    EXPECT_EQ(failure.Frames[0], copy.Frames[0]);
    EXPECT_EQ(failure.Frames[1], copy.Frames[1]);
    EXPECT_EQ(2u, copy.FrameCount());
}

} // namespace
} // namespace treevault
