// SPDX-License-Identifier: MIT
// Settings from ini files: which files, in which order, and how their values are read.
#include "common/globalsettingsfile.h"

#include "support/environment.h"
#include "support/temporaryfolder.h"

#include <treevault/errors.h>

#include <gtest/gtest.h>

#include <optional>

namespace treevault {
namespace {

using namespace tests;

constexpr HRESULT NotFound = TREEVAULT_E_NOT_FOUND;

// --- Paths ---------------------------------------------------------------------------------------

const ModulePlace executable{TV_W("C:\\Host\\"), TV_W("host.service")};

TEST(SettingsFilePaths, WithoutALibraryLieBesideTheExecutable) {
    const std::vector<WideText> expected{TV_W("C:\\Host\\host.service.ini"),
                                         TV_W("C:\\Host\\GlobalSettings.ini")};
    EXPECT_EQ(expected, SettingsFilePaths(executable, nullptr));
}

TEST(SettingsFilePaths, WithTheLibraryElsewhereLieBesideBoth) {
    const ModulePlace library{TV_W("C:\\Vault\\"), TV_W("TreeVault64")};
    const std::vector<WideText> expected{
        TV_W("C:\\Host\\host.service.ini"), TV_W("C:\\Host\\TreeVault64.ini"),
        TV_W("C:\\Host\\GlobalSettings.ini"), TV_W("C:\\Vault\\TreeVault64.ini"),
        TV_W("C:\\Vault\\GlobalSettings.ini")};
    EXPECT_EQ(expected, SettingsFilePaths(executable, &library));
}

TEST(SettingsFilePaths, WithTheLibraryInTheSameFolderAreNotRepeated) {
    const ModulePlace library{TV_W("C:\\Host\\"), TV_W("TreeVault64")};
    const std::vector<WideText> expected{TV_W("C:\\Host\\host.service.ini"),
                                         TV_W("C:\\Host\\TreeVault64.ini"),
                                         TV_W("C:\\Host\\GlobalSettings.ini")};
    EXPECT_EQ(expected, SettingsFilePaths(executable, &library));
}

TEST(SettingsFilePaths, FoldersAreComparedWithCase) {
    const ModulePlace library{TV_W("C:\\host\\"), TV_W("TreeVault64")};
    EXPECT_EQ(5u, SettingsFilePaths(executable, &library).size());
}

// --- Values --------------------------------------------------------------------------------------

// Files beside the test program, in a section that nobody else reads.
class SettingsFile : public testing::Test {
protected:
    using Files = std::optional<TemporaryFile>;

    static std::string Entry(const std::string& value) {
        return "[SettingsTest]\nKey=" + value + "\n";
    }

    static std::filesystem::path Beside(const char* name) {
        return PathOfText(ExecutablePlace().Directory) / name;
    }

    void WriteNamed(const std::string& value) {
        Named.emplace(Folder.Path / "n.ini", Entry(value));
    }
    void WriteOwn(const std::string& value) {
        Own.emplace(Beside("common_internal_tests.ini"), Entry(value));
    }
    void WriteCommon(const std::string& value) {
        Common.emplace(Beside("GlobalSettings.ini"), Entry(value));
    }

    // "<none>" when the key is not there.
    std::string Read() {
        WideText text = TV_W("<none>");
        const HRESULT hr = Source.GetString(TV_W("SettingsTest"), TV_W("Key"), text);
        EXPECT_EQ(ToUtf8(text) == "<none>" ? NotFound : S_OK, hr);
        return ToUtf8(text);
    }

    const TemporaryFolder Folder;
    Files Named, Own, Common;
    VariableInForce Variable{"GLOBAL_SETTINGS_INI", nullptr};
    SettingsSourceList List;
    GlobalSettingsFile Source{List};
};

TEST_F(SettingsFile, WithoutFilesFindsNothing) {
    EXPECT_EQ("<none>", Read());
}

TEST_F(SettingsFile, OfTheProgramGoesBeforeTheCommonOne) {
    WriteCommon("common");
    EXPECT_EQ("common", Read());
    WriteOwn("own");
    EXPECT_EQ("own", Read());
    Own.reset();
    EXPECT_EQ("common", Read());
}

TEST_F(SettingsFile, OfTheVariableGoesBeforeAll) {
    WriteCommon("common");
    WriteOwn("own");
    WriteNamed("named");
    Variable.Change(ToUtf8(TextOfPath(Named->Path)).c_str());
    EXPECT_EQ("named", Read());
    Variable.Change(nullptr);
    EXPECT_EQ("own", Read());
}

TEST_F(SettingsFile, OfTheVariableDoesNotHideTheOthers) {
    WriteOwn("own");
    Named.emplace(Folder.Path / "n.ini", "[SettingsTest]\nOther=x\n");
    Variable.Change(ToUtf8(TextOfPath(Named->Path)).c_str());
    EXPECT_EQ("own", Read());
    Named.reset();
    EXPECT_EQ("own", Read()) << "the file is missing";
    Variable.Change("");
    EXPECT_EQ("own", Read());
    Variable.Change(ToUtf8(TextOfPath(Folder.Path)).c_str());
    EXPECT_EQ("own", Read()) << "a folder is not a file";
}

TEST_F(SettingsFile, WithAnEmptyValueDoesNotEndTheSearch) {
    WriteCommon("common");
    for (const char* value : {"", "   ", "\"\""}) {
        WriteOwn(value);
        EXPECT_EQ("common", Read());
    }
}

TEST_F(SettingsFile, HasItsValuesTrimmed) {
    WriteOwn("  abc  ");
    EXPECT_EQ("abc", Read());
    WriteOwn("\" \t a b \t \"");
    EXPECT_EQ("a b", Read());
    WriteOwn("\"   \"");
    EXPECT_EQ("", Read()) << "found, and nothing is left of it";
}

TEST_F(SettingsFile, IsReadAnewAtEachCall) {
    WriteOwn("one");
    EXPECT_EQ("one", Read());
    WriteOwn("two");
    EXPECT_EQ("two", Read());
}

TEST_F(SettingsFile, HasAGeneralSection) {
    Own.emplace(Beside("common_internal_tests.ini"), "[General]\nSettingsTestKey=abc\n");
    WideText text;
    EXPECT_EQ(S_OK, Source.GetString(nullptr, TV_W("SettingsTestKey"), text));
    EXPECT_EQ(WideText(TV_W("abc")), text);
    EXPECT_EQ(S_OK, Source.GetString(TV_W("General"), TV_W("SettingsTestKey"), text));
}

TEST_F(SettingsFile, HasNumbers) {
    uint32_t number = 7;
    EXPECT_EQ(NotFound, Source.GetNumber(TV_W("SettingsTest"), TV_W("Key"), number));
    WriteOwn("0x10");
    EXPECT_EQ(S_OK, Source.GetNumber(TV_W("SettingsTest"), TV_W("Key"), number));
    EXPECT_EQ(16u, number);
    WriteOwn("010");
    EXPECT_EQ(S_OK, Source.GetNumber(TV_W("SettingsTest"), TV_W("Key"), number));
    EXPECT_EQ(8u, number);
    WriteOwn("10x");
    EXPECT_EQ(E_INVALIDARG, Source.GetNumber(TV_W("SettingsTest"), TV_W("Key"), number));
    EXPECT_EQ(8u, number);
}

// --- Both sources of the process -----------------------------------------------------------------

TEST_F(SettingsFile, StandsBehindTheEnvironment) {
    WriteOwn("file");
    EXPECT_EQ(WideText(TV_W("file")),
              GetStringSetting(TV_W("SettingsTest"), TV_W("Key"), TV_W("default")));
    VariableInForce setting("GS_SettingsTest_Key", "variable");
    EXPECT_EQ(WideText(TV_W("variable")),
              GetStringSetting(TV_W("SettingsTest"), TV_W("Key"), TV_W("default")));
    setting.Change(" ");
    EXPECT_EQ(WideText(), GetStringSetting(TV_W("SettingsTest"), TV_W("Key"), TV_W("default")));
}

TEST_F(SettingsFile, IsAskedWhenTheVariableIsNoNumber) {
    WriteOwn("12");
    VariableInForce setting("GS_SettingsTest_Key", "10x");
    uint32_t number = 0;
    EXPECT_EQ(S_OK, GetSettingNumber(TV_W("SettingsTest"), TV_W("Key"), number));
    EXPECT_EQ(12u, number);
    setting.Change("");
    number = 0;
    EXPECT_EQ(S_OK, GetSettingNumber(TV_W("SettingsTest"), TV_W("Key"), number));
    EXPECT_EQ(12u, number);
    Own.reset();
    EXPECT_EQ(NotFound, GetSettingNumber(TV_W("SettingsTest"), TV_W("Key"), number));
}

} // namespace
} // namespace treevault
