// SPDX-License-Identifier: MIT
// Settings from variables of the environment: "GS_", the section, "_" and the key.
#ifndef TREEVAULT_COMMON_ENVIRONMENTSETTINGS_H
#define TREEVAULT_COMMON_ENVIRONMENTSETTINGS_H

#include "common/settings.h"

namespace treevault {

// A variable that is set to nothing, or to white space, is there and empty.
class EnvironmentSettings final : public SettingsSource {
public:
    // Is in the list while it lives. The list must outlive it.
    explicit EnvironmentSettings(SettingsSourceList& list);
    ~EnvironmentSettings() override;
    EnvironmentSettings(const EnvironmentSettings&) = delete;
    EnvironmentSettings& operator=(const EnvironmentSettings&) = delete;

    HRESULT GetString(const WCHAR* section, const WCHAR* key, WideText& out) override;
    HRESULT GetNumber(const WCHAR* section, const WCHAR* key, uint32_t& out) override;

private:
    SettingsSourceList& List;
};

} // namespace treevault

#endif
