// SPDX-License-Identifier: MIT
// Error records as tests speak of them: made with chosen contents, counted, taken from the thread
// and read. Everything goes through the platform's own functions.
#ifndef TREEVAULT_TESTS_SUPPORT_ERRORRECORDS_H
#define TREEVAULT_TESTS_SUPPORT_ERRORRECORDS_H

#include <treevault/treevault.h>

#include <cstring>
#include <string>
#include <utility>

namespace treevault::tests {

// What marks the records of the library.
inline constexpr GUID OwnMarker = {
    0x64107A4E, 0x9383, 0x4398, {0x97, 0xFF, 0xEE, 0x55, 0xF0, 0xDA, 0x7F, 0xDF}};
inline constexpr GUID ForeignMarker = {
    0x11111111, 0x2222, 0x3333, {0x44, 0x44, 0x55, 0x55, 0x55, 0x55, 0x55, 0x55}};

// A code of which no platform has a message.
inline constexpr HRESULT CodeWithoutMessage = static_cast<HRESULT>(0x8004F123);

inline bool IsSameGuid(const GUID& left, const GUID& right) {
    return std::memcmp(&left, &right, sizeof(GUID)) == 0;
}

// A reference to a record, given back at the end.
class Record {
public:
    Record() = default;
    explicit Record(IErrorInfo* record) : Held(record) {}
    Record(Record&& other) noexcept : Held(std::exchange(other.Held, nullptr)) {}
    Record& operator=(Record&& other) noexcept {
        std::swap(Held, other.Held);
        return *this;
    }
    ~Record() {
        if (Held)
            Held->Release();
    }

    IErrorInfo* Get() const { return Held; }
    IErrorInfo* Detach() { return std::exchange(Held, nullptr); }
    explicit operator bool() const { return Held != nullptr; }

    // Empty as well when there is no record or no description.
    std::basic_string<WCHAR> Description() const {
        BSTR text = nullptr;
        if (Held)
            Held->GetDescription(&text);
        std::basic_string<WCHAR> copy;
        if (text)
            copy.assign(text, SysStringLen(text));
        SysFreeString(text);
        return copy;
    }

    bool IsOwn() const {
        GUID guid = {};
        return Held && SUCCEEDED(Held->GetGUID(&guid)) && IsSameGuid(guid, OwnMarker);
    }

private:
    IErrorInfo* Held = nullptr;
};

// A record of the platform with a marker and, unless null, a description.
inline Record MakeRecord(const WCHAR* description, const GUID& marker) {
    ICreateErrorInfo* maker = nullptr;
    if (FAILED(CreateErrorInfo(&maker)))
        return Record();
    if (description) {
        std::basic_string<WCHAR> copy(description);
        maker->SetDescription(copy.data());
    }
    maker->SetGUID(marker);
    IErrorInfo* record = nullptr;
    maker->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&record));
    maker->Release();
    return Record(record);
}

inline Record MakeForeignRecord(const WCHAR* description) {
    return MakeRecord(description, ForeignMarker);
}

inline Record MakeOwnRecord(const WCHAR* description) {
    return MakeRecord(description, OwnMarker);
}

inline void ClearPending() {
    SetErrorInfo(0, nullptr);
}

inline Record TakePending() {
    IErrorInfo* record = nullptr;
    GetErrorInfo(0, &record);
    return Record(record);
}

// The platform's interface has no virtual destructor; nobody destroys a record through it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// A record whose references are counted and whose answers are chosen. It lives on the stack.
class CountedRecord final : public IErrorInfo {
public:
    const WCHAR* Description = TREEVAULT_WIDE("counted");
    GUID Marker = ForeignMarker;
    HRESULT DescriptionResult = S_OK;
    HRESULT MarkerResult = S_OK;
    ULONG References = 1;

    HRESULT TREEVAULT_CALL QueryInterface(const GUID& iid, void** out) override {
        if (!IsSameGuid(iid, IID_IErrorInfo) && !IsSameGuid(iid, IID_IUnknown)) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        *out = static_cast<IErrorInfo*>(this);
        AddRef();
        return S_OK;
    }
    ULONG TREEVAULT_CALL AddRef() override { return ++References; }
    ULONG TREEVAULT_CALL Release() override { return --References; }

    HRESULT TREEVAULT_CALL GetGUID(GUID* guid) override {
        *guid = Marker;
        return MarkerResult;
    }
    HRESULT TREEVAULT_CALL GetSource(BSTR* source) override { return Nothing(source); }
    HRESULT TREEVAULT_CALL GetDescription(BSTR* description) override {
        *description = SUCCEEDED(DescriptionResult) ? SysAllocString(Description) : nullptr;
        return DescriptionResult;
    }
    HRESULT TREEVAULT_CALL GetHelpFile(BSTR* helpFile) override { return Nothing(helpFile); }
    HRESULT TREEVAULT_CALL GetHelpContext(DWORD* helpContext) override {
        *helpContext = 0;
        return S_OK;
    }

private:
    static HRESULT Nothing(BSTR* text) {
        *text = nullptr;
        return S_OK;
    }
};

#pragma GCC diagnostic pop

} // namespace treevault::tests

#endif
