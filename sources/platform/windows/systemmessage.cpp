// SPDX-License-Identifier: MIT
// Message texts of the system.
#include "platform/systemmessage.h"

#include <memory>

namespace treevault {
namespace {

struct FreeLocal {
    void operator()(WCHAR* text) const noexcept { LocalFree(text); }
};

bool ReadInLanguage(uint32_t id, DWORD language, WideText& text) {
    constexpr DWORD flags =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    WCHAR* buffer = nullptr;
    const DWORD length =
        FormatMessageW(flags, nullptr, id, language, reinterpret_cast<WCHAR*>(&buffer), 0, nullptr);
    const std::unique_ptr<WCHAR, FreeLocal> owner(buffer);
    if (length == 0)
        return false;
    text.assign(buffer, length);
    return true;
}

} // namespace

bool ReadSystemMessage(uint32_t id, WideText& text) {
    return ReadInLanguage(id, GetUserDefaultLangID(), text) || ReadInLanguage(id, 0, text);
}

} // namespace treevault
