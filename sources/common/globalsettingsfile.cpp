// SPDX-License-Identifier: MIT
// Settings from ini files.
#include "common/globalsettingsfile.h"

#include "common/settingvalue.h"
#include "platform/environment.h"
#include "platform/inifile.h"

#include <treevault/errors.h>

#include <algorithm>

namespace treevault {

std::vector<WideText> SettingsFilePaths(const ModulePlace& executable, const ModulePlace* library) {
    const WideText extension = TV_W(".ini");
    const WideText common = TV_W("GlobalSettings.ini");
    std::vector<WideText> paths{executable.Directory + executable.BaseName + extension};
    if (library)
        paths.push_back(executable.Directory + library->BaseName + extension);
    paths.push_back(executable.Directory + common);
    if (library && library->Directory != executable.Directory) {
        paths.push_back(library->Directory + library->BaseName + extension);
        paths.push_back(library->Directory + common);
    }
    return paths;
}

namespace {

std::vector<WideText> FindPaths() {
    ModulePlace library;
    const bool known = LibraryPlace(library);
    return SettingsFilePaths(ExecutablePlace(), known ? &library : nullptr);
}

} // namespace

GlobalSettingsFile::GlobalSettingsFile(SettingsSourceList& list) : List(list), Paths(FindPaths()) {
    List.Add(this);
}

GlobalSettingsFile::~GlobalSettingsFile() {
    List.Remove(this);
}

HRESULT GlobalSettingsFile::GetString(const WCHAR* section, const WCHAR* key, WideText& out) {
    const WideText sectionName = SettingSection(section);
    const WideText keyName = key;
    WideText value;
    const auto holdsKey = [&](const WideText& path) {
        return ReadIniValue(path, sectionName, keyName, value);
    };
    WideText named;
    const bool found = (ReadEnvironment(TV_W("GLOBAL_SETTINGS_INI"), named) && holdsKey(named)) ||
                       std::ranges::any_of(Paths, holdsKey);
    if (!found)
        return TREEVAULT_E_NOT_FOUND;
    out = TrimSetting(value);
    return S_OK;
}

HRESULT GlobalSettingsFile::GetNumber(const WCHAR* section, const WCHAR* key, uint32_t& out) {
    return ReadSettingNumber(*this, section, key, out);
}

} // namespace treevault
