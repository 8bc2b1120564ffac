// SPDX-License-Identifier: MIT
// Resolving of paths against the base directory and its overrides, and the folder of the log.
#include "common/datadirectory.h"
#include "common/logdirectory.h"
#include "platform/process.h"

#include "support/environment.h"
#include "support/settingsource.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace treevault {
namespace {

using namespace tests;
using Overrides = std::map<WideText, WideText>;

PathNames Names(std::initializer_list<const WCHAR*> names) {
    return PathNames(names.begin(), names.end());
}

// --- Paths ---------------------------------------------------------------------------------------

TEST(SplitPath, GivesTheNamesBetweenSeparators) {
    EXPECT_EQ(Names({TV_W("a"), TV_W("bc"), TV_W("d e")}), SplitPath(TV_W("a\\bc/d e")));
    EXPECT_EQ(Names({TV_W("a"), TV_W("b")}), SplitPath(TV_W("\\/a\\\\/b//")));
    EXPECT_EQ(Names({}), SplitPath(TV_W("")));
    EXPECT_EQ(Names({}), SplitPath(TV_W("/\\")));
}

TEST(AbsolutePath, BeginsWithASeparatorOrADrive) {
    for (const WCHAR* path : {TV_W("\\"), TV_W("/"), TV_W("\\a"), TV_W("/a"), TV_W("C:"),
                              TV_W("C:\\x"), TV_W("c:x"), TV_W("1:"), TV_W("\\\\s\\x")})
        EXPECT_TRUE(IsAbsolutePath(path)) << ToUtf8(path);
    for (const WCHAR* path : {TV_W(""), TV_W("a"), TV_W("a\\b"), TV_W("ab:"), TV_W("."),
                              TV_W("..\\a"), TV_W(":"), TV_W("a\\:")})
        EXPECT_FALSE(IsAbsolutePath(path)) << ToUtf8(path);
}

TEST(PathNamesLess, ComparesNameByNameWithoutCase) {
    const PathNamesLess less;
    const auto same = [&](const PathNames& left, const PathNames& right) {
        return !less(left, right) && !less(right, left);
    };
    EXPECT_TRUE(same(Names({TV_W("Logs"), TV_W("AZ")}), Names({TV_W("lOGS"), TV_W("az")})));
    EXPECT_FALSE(same(Names({TV_W("\xC4")}), Names({TV_W("\xE4")}))) << "only A to Z are folded";
    EXPECT_FALSE(same(Names({TV_W("@")}), Names({TV_W("`")})));
    EXPECT_FALSE(same(Names({TV_W("[")}), Names({TV_W("{")})));
    EXPECT_TRUE(less(Names({}), Names({TV_W("a")})));
    EXPECT_TRUE(less(Names({TV_W("a")}), Names({TV_W("A"), TV_W("b")}))) << "a prefix goes first";
    EXPECT_TRUE(less(Names({TV_W("a"), TV_W("z")}), Names({TV_W("ab")})));
    EXPECT_TRUE(less(Names({TV_W("a")}), Names({TV_W("B")})));
    EXPECT_FALSE(less(Names({TV_W("B")}), Names({TV_W("a")})));
}

// --- Resolving -----------------------------------------------------------------------------------

WideText Resolve(const WCHAR* path, const Overrides& overrides = {},
                 const WCHAR* base = TV_W("D:\\base\\")) {
    return DataDirectoryResolver(base, overrides).Resolve(path);
}

TEST(DataDirectory, StandsBeforeRelativePaths) {
    EXPECT_EQ(WideText(TV_W("D:\\base\\Logs\\")), Resolve(TV_W("Logs\\")));
    EXPECT_EQ(WideText(TV_W("D:\\base\\")), Resolve(TV_W("")));
    EXPECT_EQ(WideText(TV_W("D:\\dataLogs")), Resolve(TV_W("Logs"), {}, TV_W("D:\\data")));
    EXPECT_EQ(WideText(TV_W("D:\\base\\..\\a/b")), Resolve(TV_W("..\\a/b")));
}

TEST(DataDirectory, LeavesAbsolutePathsAlone) {
    const Overrides overrides{{TV_W("C:"), TV_W("X")}, {TV_W("a"), TV_W("Y")}};
    for (const WCHAR* path : {TV_W("C:\\x"), TV_W("C:"), TV_W("\\a"), TV_W("/a/b")})
        EXPECT_EQ(WideText(path), Resolve(path, overrides));
}

TEST(DataDirectory, ExpandsVariablesFirst) {
    const VariableInForce variable("TREEVAULT_TEST_A", "C:\\t");
    EXPECT_EQ(WideText(TV_W("C:\\t\\y")), Resolve(TV_W("%TREEVAULT_TEST_A%\\y")));
    EXPECT_EQ(WideText(TV_W("D:\\base\\x%TREEVAULT_NONE%")), Resolve(TV_W("x%TREEVAULT_NONE%")));
}

TEST(DataDirectory, ReplacesWhatIsOverriddenInAnyCase) {
    const Overrides overrides{{TV_W("Logs"), TV_W("D:\\L")}};
    EXPECT_EQ(WideText(TV_W("D:\\L")), Resolve(TV_W("Logs"), overrides));
    EXPECT_EQ(WideText(TV_W("D:\\L")), Resolve(TV_W("Logs\\"), overrides));
    EXPECT_EQ(WideText(TV_W("D:\\L\\a")), Resolve(TV_W("Logs\\a"), overrides));
    EXPECT_EQ(WideText(TV_W("D:\\L\\A\\b")), Resolve(TV_W("lOGS//A/b"), overrides));
    EXPECT_EQ(WideText(TV_W("D:\\base\\Logs2\\a")), Resolve(TV_W("Logs2\\a"), overrides));
    EXPECT_EQ(WideText(TV_W("D:\\base\\a\\Logs")), Resolve(TV_W("a\\Logs"), overrides));
}

TEST(DataDirectory, TakesTheLongestOverride) {
    const Overrides overrides{{TV_W("a"), TV_W("D:\\1")},
                              {TV_W("a\\b"), TV_W("D:\\2")},
                              {TV_W("a\\b\\c\\d"), TV_W("D:\\4")}};
    EXPECT_EQ(WideText(TV_W("D:\\1\\x")), Resolve(TV_W("a\\x"), overrides));
    EXPECT_EQ(WideText(TV_W("D:\\2")), Resolve(TV_W("A\\B"), overrides));
    EXPECT_EQ(WideText(TV_W("D:\\2\\c\\x")), Resolve(TV_W("a\\b\\c\\x"), overrides));
    EXPECT_EQ(WideText(TV_W("D:\\4\\e")), Resolve(TV_W("a\\b\\c\\d\\e"), overrides));
}

TEST(DataDirectory, StandsBeforeARelativeTarget) {
    const Overrides overrides{{TV_W("Logs"), TV_W("other")}};
    EXPECT_EQ(WideText(TV_W("D:\\base\\other")), Resolve(TV_W("Logs"), overrides));
    EXPECT_EQ(WideText(TV_W("D:\\base\\other\\a")), Resolve(TV_W("Logs\\a"), overrides));
}

TEST(DataDirectory, JoinsWhatFollowsAnOverrideName) {
    const Overrides overrides{{TV_W("Logs"), TV_W("D:\\L\\")}};
    EXPECT_EQ(WideText(TV_W("D:\\L\\a\\b")), Resolve(TV_W("Logs\\a\\.\\b"), overrides));
    EXPECT_EQ(WideText(TV_W("D:\\b")), Resolve(TV_W("Logs\\..\\b"), overrides));
}

TEST(DataDirectory, ExpandsBothSidesOfAnOverride) {
    const VariableInForce variable("TREEVAULT_TEST_A", "Logs\\x");
    const Overrides overrides{{TV_W("%TREEVAULT_TEST_A%"), TV_W("D:\\%TREEVAULT_TEST_A%")}};
    EXPECT_EQ(WideText(TV_W("D:\\Logs\\x\\a")), Resolve(TV_W("Logs\\x\\a"), overrides));
}

TEST(DataDirectory, KeepsTheLastTargetOfTheSameNames) {
    // In the order of the texts, "/" goes before "\".
    const Overrides overrides{{TV_W("a/b"), TV_W("D:\\1")}, {TV_W("a\\b"), TV_W("D:\\2")}};
    EXPECT_EQ(WideText(TV_W("D:\\2")), Resolve(TV_W("a\\b"), overrides));
}

TEST(DataDirectory, IsNotReplacedByAnOverrideOfNothing) {
    const Overrides overrides{{TV_W(""), TV_W("D:\\1")}, {TV_W("\\"), TV_W("D:\\2")}};
    EXPECT_EQ(WideText(TV_W("D:\\base\\a")), Resolve(TV_W("a"), overrides));
    EXPECT_EQ(WideText(TV_W("D:\\base\\")), Resolve(TV_W(""), overrides));
}

// --- What the settings give ----------------------------------------------------------------------

TEST(BaseDirectory, IsTheLibrarysUnlessTheSettingIsAbsolute) {
    const WideText library = TV_W("C:\\lib\\");
    EXPECT_EQ(library, MakeBaseDirectory(TV_W(""), library));
    EXPECT_EQ(library + TV_W("data"), MakeBaseDirectory(TV_W("data"), library));
    EXPECT_EQ(library + TV_W("data\\"), MakeBaseDirectory(TV_W("data\\"), library));
    EXPECT_EQ(WideText(TV_W("D:\\data")), MakeBaseDirectory(TV_W("D:\\data"), library));
    EXPECT_EQ(WideText(TV_W("/data")), MakeBaseDirectory(TV_W("/data"), library));
    const VariableInForce variable("TREEVAULT_TEST_A", "E:\\x");
    EXPECT_EQ(WideText(TV_W("E:\\x\\y")),
              MakeBaseDirectory(TV_W("%TREEVAULT_TEST_A%\\y"), library));
}

TEST(RegistryPath, NamesTheRootExactlyOrIsAKeyOfTheMachine) {
    const struct {
        const WCHAR* Text;
        RegistryRoot Root;
        const WCHAR* Key;
    } cases[] = {
        {TV_W("HKLM\\Software\\X"), RegistryRoot::LocalMachine, TV_W("Software\\X")},
        {TV_W("HKEY_LOCAL_MACHINE/Software"), RegistryRoot::LocalMachine, TV_W("Software")},
        {TV_W("HKCU\\Software\\X"), RegistryRoot::CurrentUser, TV_W("Software\\X")},
        {TV_W("HKEY_CURRENT_USER\\X"), RegistryRoot::CurrentUser, TV_W("X")},
        {TV_W("hklm\\Software\\X"), RegistryRoot::LocalMachine, TV_W("hklm\\Software\\X")},
        {TV_W("hkcu\\X"), RegistryRoot::LocalMachine, TV_W("hkcu\\X")},
        {TV_W("HKCR\\X"), RegistryRoot::LocalMachine, TV_W("HKCR\\X")},
        {TV_W("Software\\X"), RegistryRoot::LocalMachine, TV_W("Software\\X")},
        {TV_W("HKCUX\\Y"), RegistryRoot::LocalMachine, TV_W("HKCUX\\Y")},
        {TV_W("HKCU"), RegistryRoot::CurrentUser, TV_W("")},
    };
    for (const auto& each : cases) {
        const RegistryPath path = ParseRegistryPath(each.Text);
        EXPECT_EQ(each.Root, path.Root) << ToUtf8(each.Text);
        EXPECT_EQ(WideText(each.Key), path.Key);
    }
}

TEST(LogDirectory, EndsWithASeparatorAndHasNoOther) {
    const DataDirectoryResolver data(TV_W("D:\\data"), {});
    const DataDirectoryResolver folder(TV_W("D:\\data\\"), {});
    EXPECT_EQ(WideText(TV_W("D:\\dataLogs\\")), MakeLogDirectory(data, TV_W("Logs")));
    EXPECT_EQ(WideText(TV_W("D:\\data\\Logs\\")), MakeLogDirectory(folder, TV_W("Logs")));
    EXPECT_EQ(WideText(TV_W("D:\\data\\Logs\\")), MakeLogDirectory(folder, TV_W("Logs\\")));
    EXPECT_EQ(WideText(TV_W("C:\\x\\")), MakeLogDirectory(folder, TV_W("C:\\x")));
    EXPECT_EQ(WideText(TV_W("C:\\x\\y\\")), MakeLogDirectory(folder, TV_W("C:/x/y/")));
    EXPECT_EQ(WideText(TV_W("D:\\data\\")), MakeLogDirectory(folder, TV_W("")));
    const VariableInForce variable("TREEVAULT_TEST_A", "C:\\t");
    EXPECT_EQ(WideText(TV_W("C:\\t\\y\\")),
              MakeLogDirectory(folder, TV_W("%TREEVAULT_TEST_A%\\y")));
    const DataDirectoryResolver nothing(TV_W(""), {});
    EXPECT_EQ(WideText(), MakeLogDirectory(nothing, TV_W("")));
}

// --- The folder of the process -------------------------------------------------------------------

class LogFolder : public testing::Test {
protected:
    static WideText PathText(const std::filesystem::path& path) {
        WideText text = TextOfPath(path);
        std::replace(text.begin(), text.end(), TV_W('/'), TV_W('\\'));
        return text;
    }

    const TemporaryFolder Folder;
    TestSource Settings;
};

TEST_F(LogFolder, LiesBesideTheLibraryByDefault) {
    EXPECT_EQ(ExecutablePlace().Directory + TV_W("Logs\\"), GetLoggerConfig().ReadLogDirectory());
    EXPECT_TRUE(is_directory(PathOfText(GetLoggerConfig().ReadLogDirectory())));
}

TEST_F(LogFolder, KeepsTheDataDirectoryThatWasReadFirst) {
    GetLoggerConfig().ReadLogDirectory();
    const VariableInForce data("GS_General_DataDirectoryPath",
                               ToUtf8(PathText(Folder.Path)).c_str());
    Settings.Set(TV_W("Path"), TV_W("Logs2"));
    EXPECT_EQ(ExecutablePlace().Directory + TV_W("Logs2\\"), GetLoggerConfig().ReadLogDirectory());
    std::filesystem::remove(PathOfText(ExecutablePlace().Directory) / "Logs2");
}

TEST_F(LogFolder, FollowsTheSettingAndIsMade) {
    const auto path = Folder.Path / u8"a" / u8"\u00E9 \u20AC" / u8"c";
    Settings.Set(TV_W("Path"), TextOfPath(path)); // on Linux with "/"
    EXPECT_EQ(PathText(path) + TV_W("\\"), GetLoggerConfig().ReadLogDirectory());
    EXPECT_TRUE(is_directory(path));
}

TEST_F(LogFolder, IsComputedOncePerPeriod) {
    Settings.Set(TV_W("Path"), PathText(Folder.Path / "a"));
    EXPECT_EQ(PathText(Folder.Path / "a\\"), GetLoggerConfig().ReadLogDirectory());
    Settings.Values[TV_W("Path")] = PathText(Folder.Path / "b");
    const int asked = Settings.Asked;
    EXPECT_EQ(PathText(Folder.Path / "a\\"), GetLoggerConfig().ReadLogDirectory());
    EXPECT_EQ(asked, Settings.Asked);
    detail::LastSeverityTick.store(TickCount() - 5002);
    EXPECT_EQ(PathText(Folder.Path / "b\\"), GetLoggerConfig().ReadLogDirectory());
    EXPECT_EQ(asked + 2, Settings.Asked) << "the severity and the path";
    EXPECT_TRUE(is_directory(Folder.Path / "b"));
}

TEST_F(LogFolder, IsMadeAgainOnlyWhenItDiffers) {
    const auto path = Folder.Path / "a";
    Settings.Set(TV_W("Path"), PathText(path));
    GetLoggerConfig().ReadLogDirectory();
    std::filesystem::remove(path);
    GetLoggerConfig().Refresh();
    GetLoggerConfig().ReadLogDirectory();
    EXPECT_FALSE(exists(path));
    Settings.Set(TV_W("Path"), PathText(Folder.Path / "b"));
    GetLoggerConfig().ReadLogDirectory();
    Settings.Set(TV_W("Path"), PathText(path));
    GetLoggerConfig().ReadLogDirectory();
    EXPECT_TRUE(exists(path));
}

TEST_F(LogFolder, ThatCannotBeMadeIsGivenAllTheSame) {
    WriteFile(Folder.Path / "file", "");
    Settings.Set(TV_W("Path"), PathText(Folder.Path / "file" / "below"));
    EXPECT_EQ(PathText(Folder.Path / "file" / "below\\"), GetLoggerConfig().ReadLogDirectory());
    EXPECT_TRUE(is_regular_file(Folder.Path / "file"));
}

// Asking for a setting fails for want of memory.
class ExhaustedSource final : public SettingsSource {
public:
    ExhaustedSource() { GetSettingsSources()->Add(this); }
    ~ExhaustedSource() override { GetSettingsSources()->Remove(this); }
    ExhaustedSource(const ExhaustedSource&) = delete;
    ExhaustedSource& operator=(const ExhaustedSource&) = delete;

    HRESULT GetString(const WCHAR*, const WCHAR* key, WideText&) override {
        if (WideView(key) == TV_W("Path"))
            throw std::bad_alloc();
        return static_cast<HRESULT>(0x80070490);
    }
    HRESULT GetNumber(const WCHAR*, const WCHAR*, uint32_t&) override {
        return static_cast<HRESULT>(0x80070490);
    }
};

TEST_F(LogFolder, IsComputedAgainAfterAFailure) {
    Settings.Set(TV_W("Path"), PathText(Folder.Path / "a"));
    GetLoggerConfig().ReadLogDirectory();
    Settings.Set(TV_W("Path"), PathText(Folder.Path / "b"));
    {
        const ExhaustedSource source;
        EXPECT_ANY_THROW(GetLoggerConfig().ReadLogDirectory());
    }
    EXPECT_EQ(PathText(Folder.Path / "b\\"), GetLoggerConfig().ReadLogDirectory());
}

} // namespace
} // namespace treevault
