// SPDX-License-Identifier: MIT
// Texts of message tables.
#ifndef TREEVAULT_PLATFORM_WINDOWS_FORMATMESSAGE_H
#define TREEVAULT_PLATFORM_WINDOWS_FORMATMESSAGE_H

#include "platform/widetext.h"

#include <cstdint>
#include <memory>

namespace treevault {

struct FreeLocal {
    void operator()(WCHAR* text) const noexcept { LocalFree(text); }
};

// The text of a message in one language. `source` is FORMAT_MESSAGE_FROM_SYSTEM, or
// FORMAT_MESSAGE_FROM_HMODULE with a module.
inline bool ReadMessageInLanguage(DWORD source, const void* module, uint32_t id, DWORD language,
                                  WideText& text) {
    constexpr DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS;
    WCHAR* buffer = nullptr;
    const DWORD length = FormatMessageW(flags | source, module, id, language,
                                        reinterpret_cast<WCHAR*>(&buffer), 0, nullptr);
    const std::unique_ptr<WCHAR, FreeLocal> owner(buffer);
    if (length == 0)
        return false;
    text.assign(buffer, length);
    return true;
}

// In the user's language, and else in the one that the system chooses.
inline bool ReadMessage(DWORD source, const void* module, uint32_t id, WideText& text) {
    return ReadMessageInLanguage(source, module, id, GetUserDefaultLangID(), text) ||
           ReadMessageInLanguage(source, module, id, 0, text);
}

} // namespace treevault

#endif
