// SPDX-License-Identifier: MIT
// A log folder that a key of the registry puts elsewhere.
#include "loading/advancederrors.h"
#include "support/environment.h"
#include "support/logfiles.h"

#include <windows.h>

namespace treevault::tests {
namespace {

class LogOverride : public LibrarySettings {
protected:
    void SetUp() override {
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, Key.c_str(), 0, nullptr, 0,
                                                 KEY_ALL_ACCESS, nullptr, &Handle, nullptr));
    }
    void TearDown() override {
        RegCloseKey(Handle);
        RegDeleteKeyW(HKEY_CURRENT_USER, Key.c_str());
    }

    void Override(const WCHAR* source, const std::wstring& target) {
        RegSetValueExW(Handle, source, 0, REG_SZ, reinterpret_cast<const BYTE*>(target.c_str()),
                       static_cast<DWORD>((target.size() + 1) * sizeof(WCHAR)));
    }

    // Whether a line that a copy of the library writes goes to the folder.
    bool WritesTo(const std::filesystem::path& folder) {
        EXPECT_FALSE(ReadsAdvancedErrors(CopyAs("treevaultcopy")));
        return exists(Folder.Path / folder / "treevaultcopy.log");
    }

    const std::wstring Key = L"Software\\TreeVaultTest" + std::to_wstring(CurrentProcessId());
    const VariableInForce Setting{"GS_General_DataDirectoryPathOverrideRegKey",
                                  ("HKCU\\" + ToUtf8(Key)).c_str()};
    const VariableInForce Severity{"GS_Logger_MaxSeverity", "DBG3"};
    HKEY Handle = nullptr;
};

TEST_F(LogOverride, MovesTheDefaultFolder) {
    Override(L"lOGS", (Folder.Path / "target").wstring());
    EXPECT_TRUE(WritesTo("target"));
}

TEST_F(LogOverride, MovesWhatLiesBelow) {
    const VariableInForce path("GS_Logger_Path", "Logs\\a/b");
    Override(L"Logs", L"D:\\wrong");
    Override(L"Logs\\A", (Folder.Path / "target").wstring());
    EXPECT_TRUE(WritesTo("target/b"));
}

TEST_F(LogOverride, OfAnotherFolderChangesNothing) {
    Override(L"Log", (Folder.Path / "target").wstring());
    EXPECT_TRUE(WritesTo("Logs"));
}

} // namespace
} // namespace treevault::tests
