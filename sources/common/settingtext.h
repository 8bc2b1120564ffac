// SPDX-License-Identifier: MIT
// What the sources of settings do alike with a text that they found.
#ifndef TREEVAULT_COMMON_SETTINGTEXT_H
#define TREEVAULT_COMMON_SETTINGTEXT_H

#include "common/numbers.h"
#include "platform/widetext.h"

namespace treevault {

inline constexpr const WCHAR* DefaultSettingsSection = TV_W("General");

// The text without the white space at both its ends.
inline WideView TrimSpace(WideView text) noexcept {
    while (!text.empty() && IsSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

// The whole text must be one number; otherwise E_INVALIDARG, and `out` is left alone.
inline HRESULT ParseSettingNumber(const WideText& text, uint32_t& out) noexcept {
    const WCHAR* stop = nullptr;
    const uint32_t number = ParseInteger<uint32_t>(text.c_str(), &stop);
    if (stop == text.c_str() || stop != text.c_str() + text.size())
        return E_INVALIDARG;
    out = number;
    return S_OK;
}

} // namespace treevault

#endif
