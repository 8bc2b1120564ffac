// SPDX-License-Identifier: MIT
// Settings from variables of the environment.
#include "common/environmentsettings.h"

#include "common/settingvalue.h"
#include "platform/environment.h"

#include <treevault/errors.h>

namespace treevault {

EnvironmentSettings::EnvironmentSettings(SettingsSourceList& list) : List(list) {
    List.Add(this);
}

EnvironmentSettings::~EnvironmentSettings() {
    List.Remove(this);
}

HRESULT EnvironmentSettings::GetString(const WCHAR* section, const WCHAR* key, WideText& out) {
    WideText value;
    if (!ReadEnvironment(TV_W("GS_") + SettingSection(section) + TV_W("_") + key, value))
        return TREEVAULT_E_NOT_FOUND;
    out = TrimSetting(value);
    return S_OK;
}

HRESULT EnvironmentSettings::GetNumber(const WCHAR* section, const WCHAR* key, uint32_t& out) {
    return ReadSettingNumber(*this, section, key, out);
}

} // namespace treevault
