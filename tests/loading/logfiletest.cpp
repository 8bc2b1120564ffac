// SPDX-License-Identifier: MIT
// The log file of a library that is loaded: where the settings of the process put it, what stands
// at its head, and that it is closed when the library goes.
#include "loading/advancederrors.h"
#include "support/environment.h"
#include "support/logfiles.h"
#include "support/openfiles.h"

#include <algorithm>

namespace treevault::tests {
namespace {

class LibraryLog : public testing::Test {
protected:
    // Lets a copy of the library write a line.
    void WriteALine(const LoadedLibrary& library) {
        ASSERT_TRUE(library);
        const auto create = library.Find<decltype(AcnCreateNode)>("AcnCreateNode");
        const auto close = library.Find<decltype(AcnCloseNodeHandle)>("AcnCloseNodeHandle");
        IACNode* node = nullptr;
        EXPECT_EQ(S_OK, create(TREEVAULT_WIDE("nameofanode"), TREEVAULT_WIDE(""), &node));
        close(node);
    }

    std::filesystem::path CopyLibrary() const {
        const auto copy = Folder.Path / "lib" / LibraryFileName("treevaultcopy");
        std::filesystem::create_directory(copy.parent_path());
        std::filesystem::copy_file(TREEVAULT_LIBRARY_FILE, copy,
                                   std::filesystem::copy_options::overwrite_existing);
        return copy;
    }

    void WriteALine() { WriteALine(LoadedLibrary(CopyLibrary())); }

    bool IsThere(const std::filesystem::path& folder) const {
        return ReadLog(Folder.Path / folder / "treevaultcopy.log").find("nameofanode") !=
               std::string::npos;
    }

    std::string Text(const std::filesystem::path& path) const {
        std::string text = (Folder.Path / path).string();
        std::replace(text.begin(), text.end(), '/', '\\');
        return text;
    }

    const TemporaryFolder Folder;
    const VariableInForce Severity{"GS_Logger_MaxSeverity", "DBG3"};
};

TEST_F(LibraryLog, LiesBesideTheLibrary) {
    WriteALine();
    EXPECT_TRUE(IsThere("lib/Logs"));
}

TEST_F(LibraryLog, BeginsWithTheBannerOfTheLibrary) {
    WriteALine();
    const std::string stars(100, '*');
    const std::string log = ReadLog(Folder.Path / "lib" / "Logs" / "treevaultcopy.log");
    const std::string module =
        stars +
        "\r\n*** Module: " + Text(std::filesystem::path("lib") / LibraryFileName("treevaultcopy")) +
        " (Base: 0x";
    EXPECT_EQ(module, log.substr(0, module.size()));
    EXPECT_NE(log.npos, log.find(")\r\n*** Version: 5.2.217.0\r\n*** Module description: "
                                 "TreeVault64\r\n*** Process: " +
                                 ToUtf8(ExecutablePlace().Directory) + "loading_tests"));
    EXPECT_EQ(module.size() + log.substr(module.size()).find(stars),
              log.find("\r\n" + stars + "\r\n", module.size()) + 2);
}

TEST_F(LibraryLog, IsClosedWhenTheLibraryGoes) {
    const auto log = Folder.Path / "lib" / "Logs" / "treevaultcopy.log";
    {
        const LoadedLibrary library(CopyLibrary());
        EXPECT_FALSE(exists(Folder.Path / "lib" / "Logs")) << "nothing is touched while it loads";
        WriteALine(library);
        EXPECT_TRUE(IsOpen(log));
    }
    EXPECT_FALSE(IsOpen(log));
}

TEST_F(LibraryLog, GetsAnotherBannerWhenTheLibraryIsLoadedAgain) {
    WriteALine();
    WriteALine();
    const std::string log = ReadLog(Folder.Path / "lib" / "Logs" / "treevaultcopy.log");
    EXPECT_NE(log.rfind("*** Module: "), log.find("*** Module: "));
}

TEST_F(LibraryLog, LiesWhereTheSettingPathSays) {
    VariableInForce path("GS_Logger_Path", Text("a").c_str());
    WriteALine();
    EXPECT_TRUE(IsThere("a"));
    path.Change("b/c");
    WriteALine();
    EXPECT_TRUE(IsThere("lib/b/c"));
    const VariableInForce folder("TREEVAULT_TEST_FOLDER", Text("d").c_str());
    path.Change("%TREEVAULT_TEST_FOLDER%\\e");
    WriteALine();
    EXPECT_TRUE(IsThere("d/e"));
    path.Change("");
    WriteALine();
    EXPECT_TRUE(IsThere("lib"));
}

TEST_F(LibraryLog, LiesWhereTheDataDirectoryBegins) {
    VariableInForce data("GS_General_DataDirectoryPath", Text("data").c_str());
    WriteALine();
    EXPECT_TRUE(IsThere("dataLogs"));
    data.Change((Text("data") + "\\").c_str());
    WriteALine();
    EXPECT_TRUE(IsThere("data/Logs"));
    data.Change("relative\\");
    WriteALine();
    EXPECT_TRUE(IsThere("lib/relative/Logs"));
    const VariableInForce folder("TREEVAULT_TEST_FOLDER", Text("d").c_str());
    data.Change("%TREEVAULT_TEST_FOLDER%\\");
    WriteALine();
    EXPECT_TRUE(IsThere("d/Logs"));
}

TEST_F(LibraryLog, LiesWhereTheDataDirectoryBeginsAtItsFirstLine) {
    VariableInForce data("GS_General_DataDirectoryPath", "before\\");
    const LoadedLibrary library(CopyLibrary());
    data.Change("first\\");
    WriteALine(library);
    EXPECT_TRUE(IsThere("lib/first/Logs"));
}

TEST_F(LibraryLog, IsNotDivertedByAKeyThatIsNotThere) {
    const VariableInForce key("GS_General_DataDirectoryPathOverrideRegKey",
                              "HKCU\\Software\\TreeVaultNone");
    WriteALine();
    EXPECT_TRUE(IsThere("lib/Logs"));
}

TEST_F(LibraryLog, ThatCannotBeWrittenHarmsNoCall) {
    WriteFile(Folder.Path / "file", "");
    const VariableInForce path("GS_Logger_Path", Text("file/below").c_str());
    WriteALine();
    EXPECT_EQ(0u, std::filesystem::file_size(Folder.Path / "file"));
}

} // namespace
} // namespace treevault::tests
