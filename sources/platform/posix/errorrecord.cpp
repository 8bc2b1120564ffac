// SPDX-License-Identifier: MIT
// The error record: an object with a description and its like, and the slot of each thread.
#include <treevault/platform.h>

#include <atomic>
#include <cstring>
#include <new>
#include <utility>

namespace {

class CErrorRecord final : public ICreateErrorInfo, public IErrorInfo {
public:
    CErrorRecord() noexcept = default;
    CErrorRecord(const CErrorRecord&) = delete;
    CErrorRecord& operator=(const CErrorRecord&) = delete;

    HRESULT QueryInterface(const GUID& iid, void** out) override {
        if (!out)
            return E_POINTER;
        if (Same(iid, IID_ICreateErrorInfo))
            *out = static_cast<ICreateErrorInfo*>(this);
        else if (Same(iid, IID_IErrorInfo) || Same(iid, IID_IUnknown))
            *out = static_cast<IErrorInfo*>(this);
        else
            *out = nullptr;
        if (!*out)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }

    ULONG AddRef() override { return References.fetch_add(1, std::memory_order_relaxed) + 1; }

    ULONG Release() override {
        const ULONG left = References.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0)
            delete this;
        return left;
    }

    HRESULT GetGUID(GUID* guid) override { return Give(Guid, guid); }
    HRESULT GetSource(BSTR* source) override { return Source.CopyTo(source); }
    HRESULT GetDescription(BSTR* description) override { return Description.CopyTo(description); }
    HRESULT GetHelpFile(BSTR* helpFile) override { return HelpFile.CopyTo(helpFile); }
    HRESULT GetHelpContext(DWORD* helpContext) override { return Give(HelpContext, helpContext); }

    HRESULT SetGUID(const GUID& guid) override {
        Guid = guid;
        return S_OK;
    }
    HRESULT SetSource(LPOLESTR source) override { return Source.Assign(source); }
    HRESULT SetDescription(LPOLESTR description) override {
        return Description.Assign(description);
    }
    HRESULT SetHelpFile(LPOLESTR helpFile) override { return HelpFile.Assign(helpFile); }
    HRESULT SetHelpContext(DWORD helpContext) override {
        HelpContext = helpContext;
        return S_OK;
    }

private:
    ~CErrorRecord() = default;

    static bool Same(const GUID& left, const GUID& right) noexcept {
        return std::memcmp(&left, &right, sizeof(GUID)) == 0;
    }

    template <class Value>
    static HRESULT Give(const Value& value, Value* out) noexcept {
        if (!out)
            return E_POINTER;
        *out = value;
        return S_OK;
    }

    // A text that may be absent.
    class Text {
    public:
        Text() noexcept = default;
        Text(const Text&) = delete;
        Text& operator=(const Text&) = delete;
        ~Text() { SysFreeString(Value); }

        HRESULT Assign(const OLECHAR* text) noexcept {
            const BSTR copy = SysAllocString(text);
            if (text && !copy)
                return E_OUTOFMEMORY;
            SysFreeString(std::exchange(Value, copy));
            return S_OK;
        }

        HRESULT CopyTo(BSTR* out) const noexcept {
            if (!out)
                return E_POINTER;
            *out = Value ? SysAllocStringLen(Value, SysStringLen(Value)) : nullptr;
            return Value && !*out ? E_OUTOFMEMORY : S_OK;
        }

    private:
        BSTR Value = nullptr;
    };

    std::atomic<ULONG> References{1};
    GUID Guid{};
    Text Source;
    Text Description;
    Text HelpFile;
    DWORD HelpContext = 0;
};

// The pending record of this thread. Other objects of the thread may still set one while the thread
// ends; what comes after the slot is gone is not kept.
constinit thread_local IErrorInfo* pending = nullptr;
constinit thread_local bool ended = false;

void Replace(IErrorInfo* record) noexcept {
    if (IErrorInfo* const old = std::exchange(pending, record))
        old->Release();
}

struct SlotEnd {
    void Watch() noexcept {}
    ~SlotEnd() {
        ended = true;
        Replace(nullptr);
    }
};
thread_local SlotEnd slotEnd;

} // namespace

extern "C" {

__attribute__((visibility("default"))) HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** record) {
    if (reserved != 0 || !record)
        return E_INVALIDARG;
    *record = std::exchange(pending, nullptr);
    return *record ? S_OK : S_FALSE;
}

__attribute__((visibility("default"))) HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* record) {
    if (reserved != 0)
        return E_INVALIDARG;
    if (ended)
        return S_OK;
    if (record) {
        slotEnd.Watch();
        record->AddRef();
    }
    Replace(record);
    return S_OK;
}

__attribute__((visibility("default"))) HRESULT CreateErrorInfo(ICreateErrorInfo** record) {
    if (!record)
        return E_INVALIDARG;
    *record = new (std::nothrow) CErrorRecord;
    return *record ? S_OK : E_OUTOFMEMORY;
}

} // extern "C"
