// SPDX-License-Identifier: MIT
// Settings: small values addressed by section and key, found in the environment and in ini files.
// They are read afresh at each call, from any thread; a missing one is normal, and every reader has
// a default of its own.
#ifndef TREEVAULT_COMMON_SETTINGS_H
#define TREEVAULT_COMMON_SETTINGS_H

#include "platform/widetext.h"

#include <cstdint>
#include <mutex>
#include <vector>

namespace treevault {

// One place where settings are looked up. A null section means "General". Results: 0;
// 0x80070490 for a key that is not there; 0x80070057 for a number that is none; E_ABORT to end the
// lookup in all further sources. `out` is untouched on failure.
class SettingsSource {
public:
    virtual ~SettingsSource() = default;
    virtual HRESULT GetString(const WCHAR* section, const WCHAR* key, WideText& out) = 0;
    virtual HRESULT GetNumber(const WCHAR* section, const WCHAR* key, uint32_t& out) = 0;
};

// The places in the order in which they were added. Any thread may use any operation; a source is
// asked under the list's lock, which the same thread may enter again.
class SettingsSourceList {
public:
    SettingsSourceList() = default;
    SettingsSourceList(const SettingsSourceList&) = delete;
    SettingsSourceList& operator=(const SettingsSourceList&) = delete;

    // Sources are borrowed; one must be removed before it dies. Raises E_OUTOFMEMORY. Removing one
    // that is not there does nothing.
    void Add(SettingsSource* source);
    void Remove(SettingsSource* source) noexcept;

    // Whether no thread is inside an operation at this moment.
    bool IsFree() noexcept { return std::unique_lock(Lock, std::try_to_lock).owns_lock(); }

    // Ask the sources from the last to the first, and end with the first result that is a success
    // or E_ABORT. 0x80070490 when there is none. Raise E_OUTOFMEMORY.
    HRESULT GetString(const WCHAR* section, const WCHAR* key, WideText& out);
    HRESULT GetNumber(const WCHAR* section, const WCHAR* key, uint32_t& out);

private:
    template <class Ask>
    HRESULT Walk(const Ask& ask);

    std::recursive_mutex Lock; // guards Sources
    std::vector<SettingsSource*> Sources;
};

// The list of the process with its own two sources, the ini files first and the environment last.
// Made on first use; null once the library is being unloaded.
SettingsSourceList* GetSettingsSources();

// Look up in the list of the process.
HRESULT GetSetting(const WCHAR* section, const WCHAR* key, WideText& out);
HRESULT GetSettingNumber(const WCHAR* section, const WCHAR* key, uint32_t& out);

// Any failure gives the default; for a boolean, a number other than 0 is true and a failure false.
WideText GetStringSetting(const WCHAR* section, const WCHAR* key, const WCHAR* defaultValue);
bool GetBooleanSetting(const WCHAR* section, const WCHAR* key);

} // namespace treevault

#endif
