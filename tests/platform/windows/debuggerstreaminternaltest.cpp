// SPDX-License-Identifier: MIT
// The debugger stream and the registry of Windows.
#include "platform/debuggerstream.h"
#include "platform/process.h"
#include "platform/registry.h"

#include <gtest/gtest.h>

#include <string>

namespace treevault {
namespace {

// A text for the debugger is raised as an exception, which a handler of the process sees first.
std::string seen;

template <class Char>
void Keep(const EXCEPTION_RECORD& record) {
    const auto text = reinterpret_cast<const Char*>(record.ExceptionInformation[1]);
    seen.assign(text, text + record.ExceptionInformation[0] - 1);
}

LONG CALLBACK SeeText(EXCEPTION_POINTERS* pointers) {
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    if (record.ExceptionCode == 0x4001000A) // wide; a second one follows if nobody takes it
        Keep<WCHAR>(record);
    else if (record.ExceptionCode == 0x40010006)
        Keep<char>(record);
    else
        return EXCEPTION_CONTINUE_SEARCH;
    return EXCEPTION_CONTINUE_EXECUTION;
}

TEST(DebuggerStream, GetsTheTextWhole) {
    seen.clear();
    void* const handler = AddVectoredExceptionHandler(1, &SeeText);
    WriteToDebugger(L"a report\n");
    RemoveVectoredExceptionHandler(handler);
    EXPECT_EQ("a report\n", seen);
}

// --- The registry --------------------------------------------------------------------------------

class Registry : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, Path.c_str(), 0, nullptr, 0,
                                                 KEY_ALL_ACCESS, nullptr, &Key, nullptr));
    }
    void TearDown() override {
        RegCloseKey(Key);
        RegDeleteKeyW(HKEY_CURRENT_USER, Path.c_str());
    }

    void Set(const WCHAR* name, DWORD type, const void* data, size_t size) {
        RegSetValueExW(Key, name, 0, type, static_cast<const BYTE*>(data),
                       static_cast<DWORD>(size));
    }
    void SetText(const std::wstring& name, const std::wstring& text, DWORD type = REG_SZ) {
        Set(name.c_str(), type, text.c_str(), (text.size() + 1) * sizeof(WCHAR));
    }

    const std::wstring Path = L"Software\\TreeVaultTest" + std::to_wstring(CurrentProcessId());
    HKEY Key = nullptr;
};

using Texts = std::map<WideText, WideText>;

TEST_F(Registry, GivesTextValuesAsTheyStand) {
    SetText(L"Logs", L"D:\\L");
    SetText(L"a\\b", L"%TEMP%\\x", REG_EXPAND_SZ);
    SetText(L"", L"of the key itself");
    SetText(L"empty", L"");
    EXPECT_EQ((Texts{{L"", L"of the key itself"},
                     {L"Logs", L"D:\\L"},
                     {L"a\\b", L"%TEMP%\\x"},
                     {L"empty", L""}}),
              ReadRegistryTexts(RegistryRoot::CurrentUser, Path));
}

TEST_F(Registry, SkipsOtherValues) {
    const DWORD number = 0x00410041;
    Set(L"number", REG_DWORD, &number, sizeof number);
    Set(L"bytes", REG_BINARY, L"abc", 8);
    Set(L"many", REG_MULTI_SZ, L"a\0b\0", 10);
    SetText(L"text", L"x");
    EXPECT_EQ((Texts{{L"text", L"x"}}), ReadRegistryTexts(RegistryRoot::CurrentUser, Path));
}

TEST_F(Registry, ReadsLongNamesAndValues) {
    const std::wstring name(400, L'n');
    const std::wstring text(5000, L't');
    SetText(name, text);
    SetText(L"z", L"1");
    EXPECT_EQ((Texts{{name, text}, {L"z", L"1"}}),
              ReadRegistryTexts(RegistryRoot::CurrentUser, Path));
}

TEST_F(Registry, TakesTextWithoutATerminator) {
    Set(L"a", REG_SZ, L"xyz", 6);
    EXPECT_EQ((Texts{{L"a", L"xyz"}}), ReadRegistryTexts(RegistryRoot::CurrentUser, Path));
}

TEST_F(Registry, IsEmptyWithoutTheKey) {
    EXPECT_EQ(Texts(), ReadRegistryTexts(RegistryRoot::CurrentUser, Path + L"None"));
    EXPECT_EQ(Texts(), ReadRegistryTexts(RegistryRoot::LocalMachine, Path));
}

} // namespace
} // namespace treevault
