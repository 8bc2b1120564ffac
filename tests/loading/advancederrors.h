// SPDX-License-Identifier: MIT
// Copies of the library, and the setting by which they tell what they read.
#ifndef TREEVAULT_TESTS_LOADING_ADVANCEDERRORS_H
#define TREEVAULT_TESTS_LOADING_ADVANCEDERRORS_H

#include "support/loadedlibrary.h"
#include "support/temporaryfolder.h"

#include <treevault/treevault.h>

#include <gtest/gtest.h>

namespace treevault::tests {

class LibrarySettings : public testing::Test {
protected:
    static constexpr const char* On = "[Debug]\nEnableAdvancedErrorInfo=1\n";
    static constexpr const char* Off = "[Debug]\nEnableAdvancedErrorInfo=0\n";

    static std::filesystem::path BesideProgram(const char* name) {
        return PathOfText(ExecutablePlace().Directory) / name;
    }

    static std::filesystem::path CopyTo(const std::filesystem::path& folder,
                                        const std::string& baseName) {
        const auto copy = folder / LibraryFileName(baseName);
        std::filesystem::copy_file(TREEVAULT_LIBRARY_FILE, copy);
        return copy;
    }

    std::filesystem::path CopyAs(const std::string& baseName) const {
        return CopyTo(Folder.Path, baseName);
    }

    // Whether an expected miss sets an error record, which it does with the setting on.
    static bool ReadsAdvancedErrors(const LoadedLibrary& library) {
        if (!library) {
            ADD_FAILURE() << "not loaded";
            return false;
        }
        const auto create = library.Find<decltype(AcnCreateNode)>("AcnCreateNode");
        const auto miss = library.Find<decltype(AcnGetChildByName)>("AcnGetChildByName");
        const auto close = library.Find<decltype(AcnCloseNodeHandle)>("AcnCloseNodeHandle");
        const auto takeRecord = library.Find<decltype(EhGetErrorContext)>("EhGetErrorContext");
        const auto releaseRecord =
            library.Find<decltype(EhReleaseErrorContext)>("EhReleaseErrorContext");
        IACNode* node = nullptr;
        IACNode* child = nullptr;
        EXPECT_EQ(S_OK, create(TREEVAULT_WIDE("a"), TREEVAULT_WIDE(""), &node));
        EXPECT_EQ(TREEVAULT_E_NOT_FOUND, miss(node, TREEVAULT_WIDE("b"), &child));
        close(node);
        IErrorInfo* record = nullptr;
        const bool recorded = takeRecord(nullptr, &record) == S_OK;
        releaseRecord(record);
        return recorded;
    }

    static bool ReadsAdvancedErrors(const std::filesystem::path& path) {
        return ReadsAdvancedErrors(LoadedLibrary(path));
    }

    const TemporaryFolder Folder;
};

} // namespace treevault::tests

#endif
