// SPDX-License-Identifier: MIT
// Settings from ini files: one that the environment names, and those that lie beside the executable
// and beside this library.
#ifndef TREEVAULT_COMMON_GLOBALSETTINGSFILE_H
#define TREEVAULT_COMMON_GLOBALSETTINGSFILE_H

#include "common/settings.h"
#include "platform/process.h"

namespace treevault {

// The files in the order in which they are searched. `library` is null when it is part of the
// executable.
std::vector<WideText> SettingsFilePaths(const ModulePlace& executable, const ModulePlace* library);

class GlobalSettingsFile final : public SettingsSource {
public:
    // Is in the list while it lives. The list must outlive it.
    explicit GlobalSettingsFile(SettingsSourceList& list);
    ~GlobalSettingsFile() override;
    GlobalSettingsFile(const GlobalSettingsFile&) = delete;
    GlobalSettingsFile& operator=(const GlobalSettingsFile&) = delete;

    HRESULT GetString(const WCHAR* section, const WCHAR* key, WideText& out) override;
    HRESULT GetNumber(const WCHAR* section, const WCHAR* key, uint32_t& out) override;

private:
    SettingsSourceList& List;
    const std::vector<WideText> Paths;
};

} // namespace treevault

#endif
