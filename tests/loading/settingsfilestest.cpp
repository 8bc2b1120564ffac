// SPDX-License-Identifier: MIT
// The settings files of a library that lies elsewhere than the program: a copy of it is loaded, and
// a setting that it reads once tells which file it found.
#include "loading/advancederrors.h"

namespace treevault::tests {
namespace {

TEST_F(LibrarySettings, AreNotThereWithoutFiles) {
    EXPECT_FALSE(ReadsAdvancedErrors(CopyAs("treevaultcopy")));
}

TEST_F(LibrarySettings, LieBesideTheLibraryUnderItsName) {
    WriteFile(Folder.Path / "treevaultcopy.ini", On);
    EXPECT_TRUE(ReadsAdvancedErrors(CopyAs("treevaultcopy")));
}

TEST_F(LibrarySettings, OfAnotherNameAreNotRead) {
    WriteFile(Folder.Path / "treevault.ini", On);
    WriteFile(Folder.Path / "treevaultcopy.so.ini", On);
    WriteFile(Folder.Path / "treevaultcopy.so.5.2.ini", On);
    EXPECT_FALSE(ReadsAdvancedErrors(CopyAs("treevaultcopy")));
}

TEST_F(LibrarySettings, LieBesideTheLibraryUnderTheCommonName) {
    WriteFile(Folder.Path / "GlobalSettings.ini", On);
    EXPECT_TRUE(ReadsAdvancedErrors(CopyAs("treevaultcopy")));
}

TEST_F(LibrarySettings, UnderItsNameGoBeforeTheCommonOnes) {
    WriteFile(Folder.Path / "treevaultcopy.ini", Off);
    WriteFile(Folder.Path / "GlobalSettings.ini", On);
    EXPECT_FALSE(ReadsAdvancedErrors(CopyAs("treevaultcopy")));
}

TEST_F(LibrarySettings, LieBesideTheProgramUnderTheNameOfTheLibrary) {
    const TemporaryFile file(BesideProgram("treevaultcopy.ini"), On);
    EXPECT_TRUE(ReadsAdvancedErrors(CopyAs("treevaultcopy")));
}

TEST_F(LibrarySettings, BesideTheProgramGoBeforeThoseBesideTheLibrary) {
    const TemporaryFile file(BesideProgram("treevaultcopy.ini"), Off);
    WriteFile(Folder.Path / "treevaultcopy.ini", On);
    EXPECT_FALSE(ReadsAdvancedErrors(CopyAs("treevaultcopy")));
}

TEST_F(LibrarySettings, OfTheProgramGoBeforeThoseOfTheLibrary) {
    const TemporaryFile program(BesideProgram("loading_tests.ini"), Off);
    const TemporaryFile library(BesideProgram("treevaultcopy.ini"), On);
    EXPECT_FALSE(ReadsAdvancedErrors(CopyAs("treevaultcopy")));
}

TEST_F(LibrarySettings, AreFoundInAFolderOfAnyName) {
    const auto folder = Folder.Path / u8"d.so.\u00E9 \u20AC";
    std::filesystem::create_directory(folder);
    WriteFile(folder / "treevaultcopy.ini", On);
    EXPECT_TRUE(ReadsAdvancedErrors(CopyTo(folder, "treevaultcopy")));
}

} // namespace
} // namespace treevault::tests
