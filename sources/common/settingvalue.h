// SPDX-License-Identifier: MIT
// What the sources of settings have in common: the default section and the form of values.
#ifndef TREEVAULT_COMMON_SETTINGVALUE_H
#define TREEVAULT_COMMON_SETTINGVALUE_H

#include "common/settings.h"

namespace treevault {

// "General" for null.
WideText SettingSection(const WCHAR* section);

// Cuts white space at both ends.
WideText TrimSetting(const WideText& value);

// Reads the text of a setting from `source` as a number. 0x80070057 if it is not one as a whole.
HRESULT ReadSettingNumber(SettingsSource& source, const WCHAR* section, const WCHAR* key,
                          uint32_t& out);

} // namespace treevault

#endif
