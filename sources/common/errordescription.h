// SPDX-License-Identifier: MIT
// A failure in its readable form: the decoded error record, and the one line of text in which code,
// message and return addresses cross a boundary.
#ifndef TREEVAULT_COMMON_ERRORDESCRIPTION_H
#define TREEVAULT_COMMON_ERRORDESCRIPTION_H

#include "common/ref.h"
#include "platform/widetext.h"

#include <cstdint>

namespace treevault {

// Marks the records of this library: their description is in the error text form.
inline constexpr GUID ErrorRecordGuid = {
    0x64107A4E, 0x9383, 0x4398, {0x97, 0xFF, 0xEE, 0x55, 0xF0, 0xDA, 0x7F, 0xDF}};

class ErrorDescription {
public:
    // The message of the code alone.
    explicit ErrorDescription(HRESULT code) : ErrorDescription(code, nullptr, nullptr) {}

    // Decodes a record and, where it is not one of ours, a raw text in the error text form; either
    // may be null. What speaks of another code is thrown away. `frames` are added to the details as
    // a group of their own.
    ErrorDescription(HRESULT code, IErrorInfo* record, const WCHAR* rawText,
                     void* const* frames = nullptr, unsigned frameCount = 0);

    // "0x%08X " and the code, the text, " [details]"; the bits of `leaveOut` are those of
    // EhMakeErrorText. White space at the end is cut.
    WideText Format(uint32_t leaveOut = 0) const;

    HRESULT Code;
    WideText Text;
    WideText Details; // groups of return addresses, the deepest boundary first

private:
    // How far decoding came.
    enum class Parsed { Nothing, SameCode, OtherCode };

    bool ReadRecord(IErrorInfo* record);
    Parsed Parse(WideView text);
    void AddFrames(void* const* frames, unsigned frameCount);
};

// A record of the description, or null when the platform makes none.
Ref<IErrorInfo> MakeErrorRecord(const ErrorDescription& description);

} // namespace treevault

#endif
