// SPDX-License-Identifier: MIT
// Settings of a test that go before those of the process.
#ifndef TREEVAULT_TESTS_SUPPORT_SETTINGSOURCE_H
#define TREEVAULT_TESTS_SUPPORT_SETTINGSOURCE_H

#include "common/loggerconfig.h"
#include "common/settings.h"
#include "platform/encoding.h"

#include <map>
#include <string>

namespace treevault::tests {

// A source of the process while it lives, which notes who asked. The log forgets what it read at
// both ends.
class TestSource final : public SettingsSource {
public:
    TestSource() {
        GetSettingsSources()->Add(this);
        GetLoggerConfig().Refresh();
        Asked = 0;
    }
    ~TestSource() override {
        GetSettingsSources()->Remove(this);
        GetLoggerConfig().Refresh();
    }
    TestSource(const TestSource&) = delete;
    TestSource& operator=(const TestSource&) = delete;

    HRESULT GetString(const WCHAR* section, const WCHAR* key, WideText& out) override {
        ++Asked;
        LastSection = section ? section : TV_W("");
        const auto found = Values.find(key);
        if (found == Values.end())
            return static_cast<HRESULT>(0x80070490);
        out = found->second;
        return S_OK;
    }

    HRESULT GetNumber(const WCHAR* section, const WCHAR* key, uint32_t& out) override {
        WideText text;
        const HRESULT hr = GetString(section, key, text);
        if (SUCCEEDED(hr))
            out = static_cast<uint32_t>(std::stoul(ToUtf8(text)));
        return hr;
    }

    // Changes a setting and lets the log read it anew.
    void Set(const WCHAR* key, WideText value) {
        Values[key] = std::move(value);
        GetLoggerConfig().Refresh();
    }

    std::map<WideText, WideText> Values;
    int Asked = 0;
    WideText LastSection;
};

} // namespace treevault::tests

#endif
