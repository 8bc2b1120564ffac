// SPDX-License-Identifier: MIT
// The list of sources, the one of the process, and the readers.
#include "common/settings.h"

#include "common/environmentsettings.h"
#include "common/errorhandling.h"
#include "common/globalsettingsfile.h"

#include <algorithm>
#include <atomic>
#include <new>

namespace treevault {
namespace {

template <class Body>
auto RaisingOutOfMemory(const Body& body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        ThrowOutOfMemory();
    }
}

} // namespace

void SettingsSourceList::Add(SettingsSource* source) {
    const std::lock_guard guard(Lock);
    RaisingOutOfMemory([&] { Sources.push_back(source); });
}

void SettingsSourceList::Remove(SettingsSource* source) noexcept {
    const std::lock_guard guard(Lock);
    std::erase(Sources, source);
}

template <class Ask>
HRESULT SettingsSourceList::Walk(const Ask& ask) {
    const std::lock_guard guard(Lock);
    for (size_t left = Sources.size(); left != 0;) {
        const HRESULT hr = RaisingOutOfMemory([&] { return ask(*Sources[--left]); });
        if (SUCCEEDED(hr) || hr == E_ABORT)
            return hr;
        // A source may have removed some.
        left = std::min(left, Sources.size());
    }
    return TREEVAULT_E_NOT_FOUND;
}

HRESULT SettingsSourceList::GetString(const WCHAR* section, const WCHAR* key, WideText& out) {
    return Walk([&](SettingsSource& source) { return source.GetString(section, key, out); });
}

HRESULT SettingsSourceList::GetNumber(const WCHAR* section, const WCHAR* key, uint32_t& out) {
    return Walk([&](SettingsSource& source) { return source.GetNumber(section, key, out); });
}

namespace {

struct ProcessSettings {
    SettingsSourceList List;
    GlobalSettingsFile File{List};
    EnvironmentSettings Environment{List};
};

// What is read without a lock. It needs no construction and is never destroyed, so that it holds
// from the first to the last moment of the library.
constinit std::atomic<ProcessSettings*> processSettings{nullptr};
constinit std::atomic<bool> unloading{false};

struct SettingsEnd {
    ~SettingsEnd() {
        unloading = true;
        // A lock that is taken now belongs to a thread that the end of the process has caught.
        ProcessSettings* const settings = processSettings.exchange(nullptr);
        if (settings && settings->List.IsFree())
            delete settings;
    }
};

// Made while the library loads, so that it ends after whatever a client's static objects read while
// they are destroyed; and before those of the library that read settings in their constructors.
void EndWithLibrary() {
    static const SettingsEnd end;
}
[[maybe_unused]] const bool endsWithLibrary = (EndWithLibrary(), true);

} // namespace

SettingsSourceList* GetSettingsSources() {
    ProcessSettings* settings = processSettings.load(std::memory_order_acquire);
    if (!settings && !unloading) {
        static std::mutex making;
        const std::lock_guard guard(making);
        settings = processSettings.load(std::memory_order_relaxed);
        if (!settings) {
            EndWithLibrary();
            settings = RaisingOutOfMemory([] { return new ProcessSettings; });
            processSettings.store(settings, std::memory_order_release);
        }
    }
    return settings ? &settings->List : nullptr;
}

HRESULT GetSetting(const WCHAR* section, const WCHAR* key, WideText& out) {
    SettingsSourceList* const sources = GetSettingsSources();
    return sources ? sources->GetString(section, key, out) : TREEVAULT_E_NOT_FOUND;
}

HRESULT GetSettingNumber(const WCHAR* section, const WCHAR* key, uint32_t& out) {
    SettingsSourceList* const sources = GetSettingsSources();
    return sources ? sources->GetNumber(section, key, out) : TREEVAULT_E_NOT_FOUND;
}

WideText GetStringSetting(const WCHAR* section, const WCHAR* key, const WCHAR* defaultValue) {
    WideText value;
    return SUCCEEDED(GetSetting(section, key, value)) ? value : WideText(defaultValue);
}

bool GetBooleanSetting(const WCHAR* section, const WCHAR* key) {
    uint32_t number = 0;
    return SUCCEEDED(GetSettingNumber(section, key, number)) && number != 0;
}

} // namespace treevault
