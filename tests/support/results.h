// SPDX-License-Identifier: MIT
// What a call of the flat interface returned, and what it did to the error record of the thread.
#ifndef TREEVAULT_TESTS_SUPPORT_RESULTS_H
#define TREEVAULT_TESTS_SUPPORT_RESULTS_H

#include <treevault/treevault.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <type_traits>

namespace treevault::tests {

using Text = std::basic_string<WCHAR>;

inline std::string CodeText(HRESULT code) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(code));
    return text;
}

// Shows wide text in messages; anything but ASCII as a question mark.
inline std::string Narrow(const Text& text) {
    std::string narrow;
    for (const WCHAR unit : text)
        narrow += unit < 0x80 ? static_cast<char>(unit) : '?';
    return narrow;
}

inline void ClearRecord() {
    SetErrorInfo(0, nullptr);
}

// Takes the pending record; false when there is none.
inline bool TakeRecord(Text& description) {
    IErrorInfo* record = nullptr;
    if (EhGetErrorContext(nullptr, &record) != S_OK)
        return false;
    BSTR text = nullptr;
    if (SUCCEEDED(record->GetDescription(&text)) && text)
        description.assign(text, SysStringLen(text));
    SysFreeString(text);
    EhReleaseErrorContext(record);
    return true;
}

// A record that is pending while it lives, to see that a call leaves the thread's record alone.
class PendingMarker {
public:
    PendingMarker() {
        ICreateErrorInfo* maker = nullptr;
        if (FAILED(CreateErrorInfo(&maker)))
            return;
        maker->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&Record));
        maker->Release();
        SetErrorInfo(0, Record);
    }
    ~PendingMarker() {
        ClearRecord();
        if (Record)
            Record->Release();
    }
    PendingMarker(const PendingMarker&) = delete;
    PendingMarker& operator=(const PendingMarker&) = delete;

    // Takes the pending record to look at it.
    bool IsStillPending() const {
        IErrorInfo* pending = nullptr;
        GetErrorInfo(0, &pending);
        const bool same = Record != nullptr && pending == Record;
        if (pending)
            pending->Release();
        return same;
    }

private:
    IErrorInfo* Record = nullptr;
};

// The call returns exactly `code` and leaves the pending record as it was.
template <class... Parameters>
testing::AssertionResult Returns(HRESULT code, HRESULT(TREEVAULT_CALL* function)(Parameters...),
                                 std::type_identity_t<Parameters>... arguments) {
    const PendingMarker marker;
    const HRESULT hr = function(arguments...);
    if (hr != code)
        return testing::AssertionFailure()
               << "returned " << CodeText(hr) << " in place of " << CodeText(code);
    if (!marker.IsStillPending())
        return testing::AssertionFailure() << CodeText(hr) << " touched the error record";
    return testing::AssertionSuccess();
}

// The call returns 0 and leaves the pending record as it was.
template <class... Parameters>
testing::AssertionResult Succeeds(HRESULT(TREEVAULT_CALL* function)(Parameters...),
                                  std::type_identity_t<Parameters>... arguments) {
    return Returns<Parameters...>(S_OK, function, arguments...);
}

// The call returns the failure `code` and leaves the pending record as it was.
template <class... Parameters>
testing::AssertionResult FailsPlainly(HRESULT code,
                                      HRESULT(TREEVAULT_CALL* function)(Parameters...),
                                      std::type_identity_t<Parameters>... arguments) {
    return Returns<Parameters...>(code, function, arguments...);
}

// The call returns the failure `code` and leaves a record that speaks of it and holds `part`.
template <class... Parameters>
testing::AssertionResult FailsWithRecordOf(const Text& part, HRESULT code,
                                           HRESULT(TREEVAULT_CALL* function)(Parameters...),
                                           std::type_identity_t<Parameters>... arguments) {
    ClearRecord();
    const HRESULT hr = function(arguments...);
    Text description;
    const bool recorded = TakeRecord(description);
    if (hr != code)
        return testing::AssertionFailure()
               << "returned " << CodeText(hr) << " in place of " << CodeText(code);
    if (!recorded)
        return testing::AssertionFailure() << CodeText(hr) << " set no error record";
    if (Narrow(description).rfind(CodeText(code) + " ", 0) != 0)
        return testing::AssertionFailure() << "record of another failure: " << Narrow(description);
    if (description.find(part) == Text::npos)
        return testing::AssertionFailure()
               << "no \"" << Narrow(part) << "\" in: " << Narrow(description);
    return testing::AssertionSuccess();
}

// The call returns the failure `code` and leaves a record that speaks of it.
template <class... Parameters>
testing::AssertionResult FailsWithRecord(HRESULT code,
                                         HRESULT(TREEVAULT_CALL* function)(Parameters...),
                                         std::type_identity_t<Parameters>... arguments) {
    return FailsWithRecordOf<Parameters...>(Text(), code, function, arguments...);
}

} // namespace treevault::tests

#endif
