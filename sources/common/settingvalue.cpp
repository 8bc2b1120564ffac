// SPDX-License-Identifier: MIT
// The form of values of settings.
#include "common/settingvalue.h"

#include "common/numbers.h"

#include <algorithm>

namespace treevault {

WideText SettingSection(const WCHAR* section) {
    return section ? section : TV_W("General");
}

WideText TrimSetting(const WideText& value) {
    const auto isText = [](WCHAR c) { return !IsSpace(c); };
    const auto end = std::find_if(value.rbegin(), value.rend(), isText).base();
    return WideText(std::find_if(value.begin(), end, isText), end);
}

HRESULT ReadSettingNumber(SettingsSource& source, const WCHAR* section, const WCHAR* key,
                          uint32_t& out) {
    WideText text;
    const HRESULT hr = source.GetString(section, key, text);
    if (FAILED(hr))
        return hr;
    const WCHAR* stop = nullptr;
    const auto number = ParseInteger<uint32_t>(text.c_str(), &stop);
    if (stop == text.c_str() || stop != text.c_str() + text.size())
        return E_INVALIDARG;
    out = number;
    return hr;
}

} // namespace treevault
