// SPDX-License-Identifier: MIT
// The set of message modules that settings name, and the lines about what does not load.
#include "common/messagemodules.h"

#include "common/errormessages.h"
#include "support/environment.h"
#include "support/logcapture.h"
#include "support/messagefiles.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <memory>

namespace treevault {
namespace {

using namespace tests;
using Strings = std::vector<std::string>;

constexpr uint32_t Id = 0x80040206;

// What went wrong on the way, without the addresses.
std::string WithoutAddresses(std::string line) {
    if (const size_t at = line.find(" [0x"); at != std::string::npos)
        line.erase(at);
    return line;
}

class ErrorModules : public testing::Test {
protected:
    ErrorModules() { std::filesystem::current_path(Folder.Path); }
    ~ErrorModules() override { std::filesystem::current_path(Before); }

    // A module in the folder of the process, which is not that of the program, whose only text is
    // its name.
    void Make(const std::string& name) const {
        WriteFile(Folder.Path / name, MakeMessageModule({{Id, name}}));
    }

    // The same beside the program, which has the objects of the library in it.
    void MakeBesideLibrary(const std::string& name) {
        FilesBeside.push_back(std::make_unique<TemporaryFile>(
            PathOfText(ExecutablePlace().Directory) / name, MakeMessageModule({{Id, name}})));
    }

    void Load(const char* primary, const char* fallback) {
        const VariableInForce first("GS_ErrorHandling_MessageFile", primary);
        const VariableInForce second("GS_ErrorHandling_FallbackMessageFile", fallback);
        Loader.Load();
    }

    Strings WrittenLines() const {
        const SeverityInForce severity(SeverityErr);
        const LogCapture log;
        Loader.WriteLines();
        Strings messages;
        for (const std::string& message : log.Messages())
            messages.push_back(WithoutAddresses(message));
        for (size_t i = 0; i < messages.size(); ++i)
            EXPECT_EQ(" ERR  ", log.Entry(i).Severity);
        return messages;
    }

    static Strings Texts(const ErrorModuleSet::Slots& slots) {
        Strings texts;
        for (const MessageModule& module : slots) {
            WideText text;
            if (module.IsLoaded())
                texts.push_back(module.ReadText(Id, text) ? ToUtf8(text) : "<none>");
        }
        return texts;
    }

    const std::filesystem::path Before = std::filesystem::current_path();
    const TemporaryFolder Folder; // outlives the set, which may keep its files open
    std::vector<std::unique_ptr<TemporaryFile>> FilesBeside;
    ErrorModuleSet Set;
    ErrorModuleLoader Loader{Set};
};

std::string NotFound(const std::string& item) {
    return "Loading errormsg module '" + item + "' failed: 0x80070002 " +
           ToUtf8(GetErrorMessage(static_cast<HRESULT>(0x80070002)));
}

TEST_F(ErrorModules, BareNamesLieBesideTheLibrary) {
    Make("tv-a.dll");
    MakeBesideLibrary("tv-b.dll");
    Load("tv-b.dll", "");
    EXPECT_EQ(Strings{"tv-b.dll"}, Texts(Set.Primary));
    EXPECT_EQ(Strings{}, Texts(Set.Fallback));
    EXPECT_EQ(Strings{}, WrittenLines());
}

TEST_F(ErrorModules, BareNamesAreNotLookedForElsewhere) {
    Make("tv-a.dll");
    Load("tv-a.dll", "");
    EXPECT_EQ(Strings{}, Texts(Set.Primary));
    EXPECT_EQ(Strings{NotFound("tv-a.dll")}, WrittenLines());
}

TEST_F(ErrorModules, NamesWithAFolderAreTakenAsTheyStand) {
    std::filesystem::create_directory("sub");
    Make("sub/x.dll");
    Make("sub/y.dll");
    Load("sub\\x.dll,sub/y.dll", "");
    EXPECT_EQ((Strings{"sub/x.dll", "sub/y.dll"}), Texts(Set.Primary));
}

TEST_F(ErrorModules, FallbackNamesAreNotLookedForBesideTheLibrary) {
    Make("tv-a.dll");
    Load("", "tv-a.dll");
    EXPECT_EQ(Strings{}, Texts(Set.Primary));
    EXPECT_EQ(Strings{"tv-a.dll"}, Texts(Set.Fallback));
    EXPECT_EQ(Strings{}, WrittenLines());
}

TEST_F(ErrorModules, AreSeparatedByAnyOfThreeCharacters) {
    for (const char* name : {"a.dll", "b.dll", "c.dll", "d.dll"})
        Make(name);
    Load("", ",;a.dll,;|b.dll|c.dll;;d.dll,");
    EXPECT_EQ((Strings{"a.dll", "b.dll", "c.dll", "d.dll"}), Texts(Set.Fallback));
    EXPECT_EQ(Strings{}, WrittenLines());
}

TEST_F(ErrorModules, OfAnItemKeepTheBlanksOfTheirNames) {
    Make("b.dll");
    Load("", "a b.dll, c.dll");
    EXPECT_EQ((Strings{NotFound("a b.dll"), NotFound(" c.dll")}), WrittenLines());
}

TEST_F(ErrorModules, FillFiveSlots) {
    for (const char* name : {"a.dll", "b.dll", "c.dll", "d.dll", "e.dll", "f.dll"})
        MakeBesideLibrary(name);
    Load("a.dll;b.dll|c.dll,d.dll,e.dll,f.dll", "");
    EXPECT_EQ((Strings{"a.dll", "b.dll", "c.dll", "d.dll", "e.dll"}), Texts(Set.Primary));
    EXPECT_EQ(Strings{"Loading errormsg module 'f.dll' failed: No more slots"}, WrittenLines());
}

TEST_F(ErrorModules, HaveFiveSlotsForFallbacksToo) {
    for (const char* name : {"a.dll", "b.dll", "c.dll", "d.dll", "e.dll", "f.dll"})
        Make(name);
    Load("", "a.dll,b.dll,c.dll,d.dll,e.dll,f.dll,x.dll,a.dll");
    EXPECT_EQ((Strings{"a.dll", "b.dll", "c.dll", "d.dll", "e.dll"}), Texts(Set.Fallback));
    EXPECT_EQ((Strings{"Loading errormsg module 'f.dll' failed: No more slots", NotFound("x.dll"),
                       "Loading errormsg module 'a.dll' failed: No more slots"}),
              WrittenLines());
}

TEST_F(ErrorModules, TakeNoSlotIfTheyDoNotLoad) {
    Make("b.dll");
    Load("", "a.dll,b.dll");
    EXPECT_EQ(Strings{"b.dll"}, Texts(Set.Fallback));
    EXPECT_EQ(Strings{NotFound("a.dll")}, WrittenLines());
}

TEST_F(ErrorModules, AreTheDefaultOneIfNothingIsSet) {
    Load(nullptr, nullptr);
    EXPECT_EQ(Strings{"A child of that name already exists.\r\n"}, Texts(Set.Primary));
    EXPECT_EQ(Strings{}, Texts(Set.Fallback));
    EXPECT_EQ(Strings{}, WrittenLines());
}

TEST_F(ErrorModules, AreNoneIfNothingIsNamed) {
    Load("", "");
    EXPECT_EQ(Strings{}, Texts(Set.Primary));
    EXPECT_EQ(Strings{}, Texts(Set.Fallback));
    EXPECT_EQ(Strings{}, WrittenLines());
}

TEST_F(ErrorModules, WriteNoLinesBelowTheirSeverity) {
    Load("missing.dll", "");
    const SeverityInForce severity(SeverityCrit);
    const LogCapture log;
    Loader.WriteLines();
    EXPECT_EQ(Strings{}, log.Messages());
}

TEST_F(ErrorModules, TellWhereALoadingFailed) {
    Load("missing.dll", "");
    const SeverityInForce severity(SeverityErr);
    const LogCapture log;
    Loader.WriteLines();
    ASSERT_EQ(1u, log.Messages().size());
    EXPECT_NE(std::string::npos, log.Messages()[0].find(" [0x")) << log.Messages()[0];
}

TEST_F(ErrorModules, AreAskedInTheirOrder) {
    WriteFile("a.dll", MakeMessageModule({{1, "a1"}}));
    WriteFile("b.dll", MakeMessageModule({{1, "b1"}, {2, "b2"}}));
    Load("", "a.dll,b.dll");
    WideText text;
    EXPECT_TRUE(ReadModuleText(Set.Fallback, 1, text));
    EXPECT_EQ("a1", ToUtf8(text));
    EXPECT_TRUE(ReadModuleText(Set.Fallback, 2, text));
    EXPECT_EQ("b2", ToUtf8(text));
    EXPECT_FALSE(ReadModuleText(Set.Fallback, 3, text));
    EXPECT_FALSE(ReadModuleText(Set.Primary, 1, text));
    EXPECT_EQ("b2", ToUtf8(text));
}

} // namespace
} // namespace treevault
