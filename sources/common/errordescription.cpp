// SPDX-License-Identifier: MIT
// Decoding and forming of error texts and records.
#include "common/errordescription.h"

#include "common/errormessages.h"
#include "common/guids.h"
#include "common/numbers.h"
#include "common/widestream.h"

#include <treevault/errors.h>

namespace treevault {

namespace {

void TrimEnd(WideText& text) {
    while (!text.empty() && IsSpace(text.back()))
        text.pop_back();
}

// A BSTR that is given back.
class OwnedText {
public:
    explicit OwnedText(BSTR text = nullptr) noexcept : Text(text) {}
    ~OwnedText() { SysFreeString(Text); }
    OwnedText(const OwnedText&) = delete;
    OwnedText& operator=(const OwnedText&) = delete;

    BSTR* Put() noexcept { return &Text; }
    BSTR Get() const noexcept { return Text; }
    WideView View() const noexcept { return {Text ? Text : TV_W(""), SysStringLen(Text)}; }

private:
    BSTR Text;
};

} // namespace

ErrorDescription::ErrorDescription(HRESULT code, IErrorInfo* record, const WCHAR* rawText,
                                   void* const* frames, unsigned frameCount)
    : Code(code) {
    const bool ownRecord = record && ReadRecord(record);
    if (!ownRecord && rawText && *rawText && Parse(rawText) == Parsed::OtherCode) {
        Text.clear();
        Details.clear();
    }
    if (Text.empty())
        Text = GetErrorMessage(code);
    AddFrames(frames, frameCount);
}

// True for a record of ours that could be read. The description of a foreign one becomes the text
// as a whole.
bool ErrorDescription::ReadRecord(IErrorInfo* record) {
    OwnedText description;
    if (FAILED(record->GetDescription(description.Put())) || description.View().empty())
        return false;
    GUID marker = {};
    if (FAILED(record->GetGUID(&marker)) || !SameGuid(marker, ErrorRecordGuid)) {
        Text = description.View();
        return false;
    }
    const Parsed parsed = Parse(description.View());
    if (parsed == Parsed::OtherCode) {
        Text.clear();
        Details.clear();
    }
    return parsed != Parsed::Nothing;
}

ErrorDescription::Parsed ErrorDescription::Parse(WideView view) {
    const WideText text(view);
    const WCHAR* stop = nullptr;
    const uint32_t number = ParseInteger<uint32_t>(text.c_str(), &stop);
    if (stop == text.c_str())
        return Parsed::Nothing;
    Text.clear();
    Details.clear();
    if (*stop == TV_W(' ')) {
        Text.assign(stop + 1, text.c_str() + text.size());
        const size_t open = Text.rfind(TV_W('['));
        if (Text.size() > 1 && Text.back() == TV_W(']') && open != WideText::npos) {
            Details = Text.substr(open + 1, Text.size() - open - 2);
            Text.erase(open);
            TrimEnd(Text);
        }
    }
    return number == static_cast<uint32_t>(Code) ? Parsed::SameCode : Parsed::OtherCode;
}

void ErrorDescription::AddFrames(void* const* frames, unsigned frameCount) {
    // A record that nobody takes is found again by each equal failure behind it.
    constexpr size_t mostDetails = 4096;
    if (frameCount == 0 || Details.size() > mostDetails)
        return;
    WideStream group;
    for (unsigned i = 0; i < frameCount; ++i) {
        if (i != 0)
            group << TV_W(',');
        group.Address(frames[i]);
    }
    if (!Details.empty())
        Details += TV_W(';');
    Details += group.Str();
}

WideText ErrorDescription::Format(uint32_t leaveOut) const {
    WideStream text;
    if (!(leaveOut & ErrorTextWithoutCode)) {
        text << TV_W("0x");
        text.Hex(static_cast<uint32_t>(Code), 8) << TV_W(' ');
    }
    if (!(leaveOut & ErrorTextWithoutText))
        text << Text;
    if (!(leaveOut & ErrorTextWithoutDetails) && !Details.empty())
        text << TV_W(" [") << Details << TV_W(']');
    TrimEnd(text.Str());
    return std::move(text.Str());
}

Ref<IErrorInfo> MakeErrorRecord(const ErrorDescription& description) {
    Ref<IErrorInfo> record;
    Ref<ICreateErrorInfo> maker;
    if (FAILED(CreateErrorInfo(maker.Put())))
        return record;
    const OwnedText text(SysAllocString(description.Format().c_str()));
    if (text.Get() && SUCCEEDED(maker->SetDescription(text.Get())) &&
        SUCCEEDED(maker->SetGUID(ErrorRecordGuid)))
        maker->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(record.Put()));
    return record;
}

} // namespace treevault
