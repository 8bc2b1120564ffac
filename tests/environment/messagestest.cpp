// SPDX-License-Identifier: MIT
// Texts of codes with modules that the settings of the process name. They are loaded once, so that
// CTest runs each test in a process of its own.
#include "common/errormessages.h"

#include "common/errorhandling.h"
#include "common/messagemodules.h"
#include "common/settings.h"
#include "platform/systemmessage.h"
#include "support/environment.h"
#include "support/errorrecords.h"
#include "support/logcapture.h"
#include "support/messagefiles.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <thread>

namespace treevault {
namespace {

using namespace tests;
using Strings = std::vector<std::string>;

std::string Message(uint32_t code) {
    return ToUtf8(GetErrorMessage(static_cast<HRESULT>(code)));
}

// A folder with modules, in which the process is; the settings name the modules. Each test runs in
// a process of its own.
class Messages : public testing::Test {
protected:
    Messages() { std::filesystem::current_path(Folder.Path); }
    ~Messages() override { std::filesystem::current_path(Before); }

    void Make(const std::string& name, const std::vector<MessageSpec>& messages) const {
        WriteFile(Folder.Path / name, MakeMessageModule(messages));
    }

    static void Set(const char* primary, const char* fallback) {
        SetVariable("GS_ErrorHandling_MessageFile", primary);
        SetVariable("GS_ErrorHandling_FallbackMessageFile", fallback);
    }

    const std::filesystem::path Before = std::filesystem::current_path();
    const TemporaryFolder Folder;
};

TEST_F(Messages, OfOwnCodesComeFromThePrimaryModulesInOrder) {
    Make("a.dll", {{0x80040201, "a1.\r\n"}});
    Make("b.dll", {{0x80040201, "b1"}, {0x80040202, "b2 ...\r\n \n"}});
    Make("c.dll", {{0x80040201, "c1"}, {0x80040202, "c2"}, {0x80040203, "c3"}});
    Set(".\\a.dll,.\\b.dll", ".\\c.dll");
    EXPECT_EQ("a1", Message(0x80040201));
    EXPECT_EQ("b2", Message(0x80040202));
    EXPECT_EQ("c3", Message(0x80040203));
    EXPECT_EQ("<no description>", Message(0x80040204));
}

// The range has its first code behind 0x800401FF and its last one before 0x80050000.
TEST_F(Messages, OfOtherCodesNeverComeFromThePrimaryModules) {
    Make("a.dll", {{0x800401FF, "a"},
                   {0x80040200, "first"},
                   {0x8004FFFF, "last"},
                   {0x80050000, "b"},
                   {0xC0040206, "c"},
                   {0x00040206, "d"},
                   {0x80070057, "e"},
                   {87, "f"}});
    Set(".\\a.dll", "");
    EXPECT_EQ("first", Message(0x80040200));
    EXPECT_EQ("last", Message(0x8004FFFF));
    EXPECT_EQ("<no description>", Message(0x80050000));
    EXPECT_EQ("<no description>", Message(0xC0040206));
    EXPECT_EQ("<no description>", Message(0x00040206));
    WideText system;
    if (!ReadSystemMessage(0x800401FF, system)) {
        EXPECT_EQ("<no description>", Message(0x800401FF));
    }
    EXPECT_NE("e", Message(0x80070057));
    EXPECT_NE("f", Message(87));
}

TEST_F(Messages, OfTheSystemGoBeforeThoseOfFallbackModules) {
    Make("a.dll", {{0x80070057, "a"}, {87, "b"}, {0x80004005, "c"}});
    Set("", "a.dll");
    const std::string invalid = Message(0x80070057);
    EXPECT_NE("a", invalid);
    EXPECT_NE("b", invalid);
    EXPECT_EQ(invalid, Message(87));
    EXPECT_NE("c", Message(0x80004005));
}

// 0xE7F1 is no code of any system.
TEST_F(Messages, OfWrappedCodesAreLookedForUnderTheirOwnNumberFirst) {
    Make("a.dll", {{0xE7F1, "short one"}, {0x8007E7F2, "long two"}, {0xE7F2, "short two"}});
    Make("b.dll", {{0x8007E7F1, "long one"}});
    Set("", "a.dll,b.dll");
    EXPECT_EQ("long one", Message(0x8007E7F1));
    EXPECT_EQ("long two", Message(0x8007E7F2));
    EXPECT_EQ("short two", Message(0xE7F2));
}

TEST_F(Messages, OfWrappedCodesAreLookedForUnderTheShortOneThen) {
    Make("a.dll", {{0xE7F1, "one"}, {0xE7F3, "three"}});
    Set("", "a.dll");
    EXPECT_EQ("one", Message(0x8007E7F1));
    EXPECT_EQ("one", Message(0xA007E7F1)) << "three bits at the top do not count";
    EXPECT_EQ("three", Message(0x0007E7F3));
    EXPECT_EQ("<no description>", Message(0x8008E7F1));
    EXPECT_EQ("<no description>", Message(0x9007E7F1));
    EXPECT_EQ("<no description>", Message(0x8017E7F1));
}

TEST_F(Messages, KeepTheirInserts) {
    Make("a.dll", {{0x80040201, "%1 of %2.\r\n"}});
    Set(".\\a.dll", "");
    EXPECT_EQ("%1 of %2", Message(0x80040201));
}

TEST_F(Messages, OfStopsAndLineBreaksAloneAreNone) {
    Make("a.dll", {{0x80040201, " . \r\n..\r\n"}});
    Set(".\\a.dll", "");
    EXPECT_EQ("<no description>", Message(0x80040201));
}

TEST_F(Messages, AreReadOnce) {
    Make("a.dll", {{0x80040201, "one"}});
    Make("b.dll", {{0x80040201, "other one"}, {0x80040202, "two"}});
    Set(".\\a.dll", "");
    EXPECT_EQ("one", Message(0x80040201));
    EXPECT_EQ("<no description>", Message(0x80040202));
    Set(".\\b.dll", ".\\b.dll");
    EXPECT_EQ("one", Message(0x80040201));
    EXPECT_EQ("<no description>", Message(0x80040202));
    EXPECT_EQ("<no description>", Message(0x80040203));
}

TEST_F(Messages, ThatAreMissingLeaveLinesAndTheOtherModules) {
    Make("b.dll", {{0x80040201, "one"}});
    Set(".\\a.dll,.\\b.dll", "");
    const SeverityInForce severity(SeverityErr);
    const LogCapture log;
    EXPECT_EQ("one", Message(0x80040201));
    EXPECT_EQ("one", Message(0x80040201));
    EXPECT_EQ("<no description>", Message(0x80040202));
    ASSERT_EQ(1u, log.Messages().size()) << "the modules are loaded once";
    const std::string line = log.Messages()[0];
    const std::string expected =
        "Loading errormsg module '.\\a.dll' failed: 0x80070002 " + Message(0x80070002) + " [0x";
    EXPECT_EQ(expected, line.substr(0, expected.size()));
}

TEST_F(Messages, AreNotLoadedForACodeThatTheSystemKnows) {
    Set(".\\missing.dll", "");
    const SeverityInForce severity(SeverityErr);
    const LogCapture log;
    Message(0x80070057);
    Message(0x80004005);
    EXPECT_EQ(Strings{}, log.Messages());
    Message(0x80040201);
    EXPECT_EQ(1u, log.Messages().size());
}

TEST_F(Messages, LeaveTheRecordOfTheThreadWhenTheyAreLoaded) {
    Set(".\\missing.dll", ".\\missing.dll");
    const SeverityInForce severity(SeverityErr);
    const LogCapture log;
    const Record marker = MakeForeignRecord(TV_W("Boom"));
    SetErrorInfo(0, marker.Get());
    Message(0x80040201);
    EXPECT_EQ(marker.Get(), TakePending().Get());
    ASSERT_EQ(2u, log.Messages().size());
    EXPECT_EQ(std::string::npos, log.Messages()[0].find("Boom"));
}

// Asks for texts in the middle of the loading.
class AskingSource final : public SettingsSource {
public:
    AskingSource() { GetSettingsSources()->Add(this); }
    ~AskingSource() override { GetSettingsSources()->Remove(this); }

    HRESULT GetString(const WCHAR*, const WCHAR* key, WideText&) override {
        if (WideView(key) == TV_W("FallbackMessageFile") && Asked++ == 0)
            Seen = {Message(0x80040201), Message(0x80040202), Message(0x8007E7F1),
                    Message(0x80070057)};
        return E_FAIL;
    }
    HRESULT GetNumber(const WCHAR*, const WCHAR*, uint32_t&) override { return E_FAIL; }

    Strings Seen;
    int Asked = 0;
};

TEST_F(Messages, AreNotThereYetForTheThreadThatLoadsThem) {
    Make("a.dll", {{0x80040201, "one"}, {0x80040202, "two"}});
    Make("b.dll", {{0xE7F1, "three"}});
    Set(".\\a.dll", ".\\b.dll");
    AskingSource source;
    EXPECT_EQ("one", Message(0x80040201));
    ASSERT_EQ(4u, source.Seen.size());
    EXPECT_EQ("<no description>", source.Seen[0]);
    EXPECT_EQ("<no description>", source.Seen[1]);
    EXPECT_EQ("<no description>", source.Seen[2]);
    EXPECT_EQ(Message(0x80070057), source.Seen[3]);
    // What was not found then is found now.
    EXPECT_EQ("two", Message(0x80040202));
    EXPECT_EQ("three", Message(0x8007E7F1));
    EXPECT_EQ(1, source.Asked);
}

// A sink that needs another thread to go on, which asks for a text.
class WaitingSink final : public LogSink {
public:
    WaitingSink() { GetLoggerConfig().AddSink(this); }
    ~WaitingSink() { GetLoggerConfig().RemoveSink(this); }

    void Write(const WCHAR*, ptrdiff_t) override {
        Here = Message(0x80040201);
        std::thread([this] { There = Message(0x80040201); }).join();
    }

    std::string Here, There;
};

TEST_F(Messages, AreThereForWhoReceivesTheLinesOfTheirLoading) {
    Make("b.dll", {{0x80040201, "one"}});
    Set(".\\missing.dll,.\\b.dll", "");
    const SeverityInForce severity(SeverityErr);
    WaitingSink sink;
    EXPECT_EQ("one", Message(0x80040201));
    EXPECT_EQ("one", sink.Here);
    EXPECT_EQ("one", sink.There);
}

TEST_F(Messages, AreLoadedOnceForManyThreads) {
    Make("b.dll", {{0x80040201, "one"}});
    Set(".\\missing.dll,.\\b.dll", "");
    const SeverityInForce severity(SeverityErr);
    const LogCapture log;
    std::vector<std::thread> threads;
    for (int n = 0; n < 8; ++n)
        threads.emplace_back([] { EXPECT_EQ("one", Message(0x80040201)); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(1u, log.Messages().size());
}

// Ends the loading with a failure of the settings.
class FailingSource final : public SettingsSource {
public:
    FailingSource() { GetSettingsSources()->Add(this); }
    ~FailingSource() override { GetSettingsSources()->Remove(this); }

    HRESULT GetString(const WCHAR*, const WCHAR* key, WideText&) override {
        if (WideView(key) == TV_W("FallbackMessageFile"))
            ThrowOutOfMemory();
        return E_FAIL;
    }
    HRESULT GetNumber(const WCHAR*, const WCHAR*, uint32_t&) override { return E_FAIL; }
};

TEST_F(Messages, StayAsFarAsTheyWereLoadedWhenTheLoadingFails) {
    Make("a.dll", {{0x80040201, "one"}});
    Set(".\\a.dll,.\\missing.dll", ".\\a.dll");
    const FailingSource source;
    const SeverityInForce severity(SeverityErr);
    const LogCapture log;
    EXPECT_EQ("one", Message(0x80040201));
    ASSERT_EQ(2u, log.Messages().size());
    EXPECT_EQ(0u, log.Messages()[0].find("Loading errormsg module '.\\missing.dll' failed: "));
    // -2147024882 is 0x8007000E.
    EXPECT_EQ("Loading error message module(s) failed: -2147024882", log.Messages()[1]);
}

TEST_F(Messages, AreNoneIfTheSettingsAreBlank) {
    Set(" \t", "");
    const SeverityInForce severity(SeverityErr);
    const LogCapture log;
    EXPECT_EQ("<no description>", Message(0x80040201));
    EXPECT_EQ(Strings{}, log.Messages());
}

} // namespace
} // namespace treevault
