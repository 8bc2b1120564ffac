// SPDX-License-Identifier: MIT
// The texts that lie beside a library, wherever that is.
#include "support/messagefiles.h"
#include "support/loadedlibrary.h"
#include "support/temporaryfolder.h"

#include <treevault/treevault.h>

#include <gtest/gtest.h>

namespace treevault::tests {
namespace {

class MessageFiles : public testing::Test {
protected:
    // The text of a code as a copy of the library in the folder gives it.
    std::string ErrorText() const {
        const auto copy = Folder.Path / LibraryFileName("treevaultcopy");
        std::filesystem::copy_file(TREEVAULT_LIBRARY_FILE, copy);
        const LoadedLibrary library(copy);
        if (!library) {
            ADD_FAILURE() << "not loaded";
            return {};
        }
        WCHAR buffer[200];
        size_t size = 200;
        const auto make = library.Find<decltype(EhMakeErrorText)>("EhMakeErrorText");
        EXPECT_EQ(S_OK, make(TREEVAULT_E_CHILD_EXISTS, 0, nullptr, nullptr, buffer, &size));
        return ToUtf8(buffer);
    }

    const TemporaryFolder Folder;
};

TEST_F(MessageFiles, LieBesideTheLibrary) {
    WriteFile(Folder.Path / "BaseErrorMessages.dll",
              MakeMessageModule({{0x80040206, "Beside.\r\n"}}));
    EXPECT_EQ("0x80040206 Beside", ErrorText());
}

TEST_F(MessageFiles, BesideTheProgramAreNotRead) {
    EXPECT_EQ("0x80040206 <no description>", ErrorText());
}

TEST_F(MessageFiles, ThatAreDamagedAreLeftOut) {
    WriteFile(Folder.Path / "BaseErrorMessages.dll", "MZ");
    EXPECT_EQ("0x80040206 <no description>", ErrorText());
}

} // namespace
} // namespace treevault::tests
