// SPDX-License-Identifier: MIT
// A library that was loaded by a relative path, and one behind a symbolic link.
#include "loading/advancederrors.h"

namespace treevault::tests {
namespace {

TEST_F(LibrarySettings, AreFoundAfterTheCurrentFolderChanged) {
    const auto copy = CopyAs("treevaultcopy");
    WriteFile(Folder.Path / "treevaultcopy.ini", On);
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(Folder.Path);
    const LoadedLibrary library("./" / copy.filename());
    std::filesystem::current_path(before);
    EXPECT_TRUE(ReadsAdvancedErrors(library));
}

TEST_F(LibrarySettings, LieBesideTheFileThatALinkNames) {
    const auto copy = CopyAs("treevaultcopy");
    WriteFile(Folder.Path / "treevaultcopy.ini", On);
    const auto other = Folder.Path / "other";
    std::filesystem::create_directory(other);
    std::filesystem::create_symlink(copy, other / "link.so");
    EXPECT_TRUE(ReadsAdvancedErrors(other / "link.so"));
}

} // namespace
} // namespace treevault::tests
