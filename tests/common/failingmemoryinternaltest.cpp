// SPDX-License-Identifier: MIT
// What failure reporting and the log do when memory runs out: the code still goes out, nothing else
// does, and nothing leaks.
#include "common/errordescription.h"
#include "common/errorhandling.h"
#include "common/errormessages.h"
#include "common/filelogger.h"
#include "common/functiontrace.h"
#include "common/messagemodules.h"
#include "common/widestring.h"

#include "support/errorrecords.h"
#include "support/logcapture.h"
#include "support/logfiles.h"
#include "support/openfiles.h"
#include "support/settingsource.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

// Allocations of this thread that still succeed; negative for all.
thread_local int allocationsLeft = -1;
thread_local bool refused = false;

void* Allocate(size_t size) noexcept {
    if (allocationsLeft == 0) {
        refused = true;
        return nullptr;
    }
    if (allocationsLeft > 0)
        --allocationsLeft;
    return std::malloc(size == 0 ? 1 : size);
}

} // namespace

void* operator new(size_t size) {
    if (void* memory = Allocate(size))
        return memory;
    throw std::bad_alloc();
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

namespace treevault {
namespace {

using namespace tests;

constexpr HRESULT Code = CodeWithoutMessage;

// Runs `body` with memory that ends after 0, 1, 2... allocations, until all of it gets what it
// asks for. Returns how many runs were short of memory.
template <class Body>
int RunShortOfMemory(Body&& body) {
    for (int successes = 0; successes < 1000; ++successes) {
        allocationsLeft = successes;
        refused = false;
        const bool thrown = [&] {
            try {
                body();
                return false;
            } catch (const std::bad_alloc&) {
                return true;
            }
        }();
        allocationsLeft = -1;
        EXPECT_FALSE(thrown) << "after " << successes << " allocations";
        if (!refused)
            return successes;
    }
    ADD_FAILURE() << "it never ends";
    return 1000;
}

TEST(FailingMemory, ChangesNoCodeAtABoundary) {
    const HRX failure(Code);
    EXPECT_LT(0, RunShortOfMemory([&] { EXPECT_EQ(Code, ReportCaught(failure)); }));
    EXPECT_TRUE(TakePending().IsOwn()) << "the last run had enough";
}

TEST(FailingMemory, LeavesNoRecordOfAnotherFailure) {
    const HRX failure(Code);
    const Record old = MakeForeignRecord(TV_W("Boom"));
    SetErrorInfo(0, old.Get());
    allocationsLeft = 0;
    ReportCaught(failure);
    allocationsLeft = -1;
    EXPECT_NE(old.Get(), TakePending().Get());
}

TEST(FailingMemory, ChangesNoCodeOfAReport) {
    EXPECT_LT(0, RunShortOfMemory([] { EXPECT_EQ(Code, ReportError(Code)); }));
    EXPECT_LT(0, RunShortOfMemory(
                     [] { EXPECT_EQ(Code, ReportError(Code, TV_W(" (NodePath='\\a\\b')"))); }));
    ClearPending();
}

TEST(FailingMemory, LosesLinesAndNothingElse) {
    const SeverityInForce severity(SeverityDbg3);
    const auto write = [](WideStream& line) {
        line << TV_W("a line of more than a few characters");
    };
    EXPECT_LT(0, RunShortOfMemory([&] { Log(SeverityErr, write); }));
}

TEST(FailingMemory, LosesLinesOfTheLogFileAndNothingElse) {
    const TemporaryFolder folder;
    TestSource settings;
    settings.Values[TV_W("Path")] = TextOfPath(folder.Path);
    settings.Values[TV_W("KeepOpenInterval")] = TV_W("0");
    FileLogger logger(TV_W("x.log"), TV_W(""));
    EXPECT_LT(0, RunShortOfMemory([&] {
                  detail::LastSeverityTick.store(0); // all settings are read anew
                  logger.Write(TV_W("a\n"), -1);
              }));
    EXPECT_FALSE(IsOpen(folder.Path / "x.log"));
    const std::string log = ReadLog(folder.Path / "x.log");
    EXPECT_TRUE(log.starts_with("a\n"));
    EXPECT_EQ(log.npos, log.find("aa"));
    EXPECT_EQ(log.npos, log.find("\n\n"));
}

TEST(FailingMemory, EndsTheLoadingOfMessageModulesAndNothingElse) {
    const SeverityInForce severity(SeverityErr);
    EXPECT_LT(0, RunShortOfMemory([] {
                  ErrorModuleSet set;
                  ErrorModuleLoader loader(set);
                  loader.Load();
                  loader.WriteLines();
                  EXPECT_TRUE(refused || set.Primary[0].IsLoaded());
              }));
}

TEST(FailingMemory, LeavesALookupOfAMessageWithoutHarm) {
    const auto code = static_cast<HRESULT>(0x80040209);
    int failures = 0;
    WideText text;
    for (int successes = 0; text.empty(); ++successes) {
        allocationsLeft = successes;
        try {
            text = GetErrorMessage(code);
        } catch (const std::bad_alloc&) {
            ++failures;
        }
        allocationsLeft = -1;
    }
    EXPECT_LT(0, failures);
    EXPECT_EQ(text, GetErrorMessage(code));
}

TEST(FailingMemory, LosesTheLinesOfATraceAndKeepsTheIndentation) {
    const SeverityInForce severity(SeverityDbg3);
    EXPECT_LT(0, RunShortOfMemory([] {
                  const FunctionTrace trace(TV_W("CSample::RunWithALongName"));
                  EXPECT_EQ(1, TraceIndent());
              }));
    EXPECT_EQ(0, TraceIndent());
}

TEST(FailingMemory, IsNotAskedForByADisabledLineOrTrace) {
    const SeverityInForce severity(SeverityErr);
    EXPECT_EQ(0, RunShortOfMemory([] {
                  Log(SeverityDbg3, [](WideStream& line) { line << TV_W("x"); });
                  const FunctionTrace trace(TV_W("CSample::Run"));
              }));
}

TEST(FailingMemory, IsNotAskedForByAnEmptyWideStringOrACopy) {
    const WideString text(TV_W("some text that is no short one"));
    EXPECT_EQ(0, RunShortOfMemory([&] {
                  const WideString empty;
                  const WideString fromNothing{WideView()};
                  const WideString copy(text);
                  EXPECT_EQ(text.CStr(), copy.CStr());
                  EXPECT_EQ(0u, empty.Length() + fromNothing.Length());
              }));
}

} // namespace
} // namespace treevault
