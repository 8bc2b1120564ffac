// SPDX-License-Identifier: MIT
// The grammar of the setting.
#include "general/treevault/presentation/hiddenattributes.h"

#include "common/errorhandling.h"
#include "common/settings.h"

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <new>
#include <vector>

namespace treevault {

namespace {

// The pieces between separators, without those that are empty.
std::vector<WideView> Split(WideView text, WCHAR separator) {
    std::vector<WideView> pieces;
    while (!text.empty()) {
        const WideView piece = text.substr(0, text.find(separator));
        if (!piece.empty())
            pieces.push_back(piece);
        text.remove_prefix(std::min(piece.size() + 1, text.size()));
    }
    return pieces;
}

WideView Trim(WideView text) noexcept {
    constexpr WideView blanks = TV_W(" \r\n\t");
    const size_t begin = text.find_first_not_of(blanks);
    if (begin == WideView::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

} // namespace

HiddenAttrsConfig::HiddenAttrsConfig(WideView setting) {
    for (const WideView rule : Split(setting, TV_W(';')))
        AddRule(rule);
}

void HiddenAttrsConfig::AddRule(WideView rule) {
    const std::vector<WideView> parts = Split(rule, TV_W(':'));
    if (parts.size() != 2)
        ThrowHr(E_INVALIDARG);
    AttributeNames& names = Rules[WideText(Trim(parts[0]))];
    for (const WideView piece : Split(parts[1], TV_W(',')))
        if (const WideView name = Trim(piece); !name.empty())
            names.emplace(name);
}

namespace {

// Never destroyed, so that static objects and threads of the client find it to the last moment.
struct ProcessConfig {
    std::mutex Lock;
    std::shared_ptr<const HiddenAttrsConfig> Config;
    bool Ended = false;
};

ProcessConfig& GetProcessConfig() {
    alignas(ProcessConfig) static std::byte storage[sizeof(ProcessConfig)];
    static ProcessConfig& config = *new (storage) ProcessConfig;
    return config;
}

// Made while the library loads, so that it ends after the static objects of clients.
struct ConfigEnd {
    ConfigEnd() { GetProcessConfig(); }
    ~ConfigEnd() {
        ProcessConfig& process = GetProcessConfig();
        // A lock that is taken now belongs to a thread that the end of the process has caught.
        if (const std::unique_lock guard(process.Lock, std::try_to_lock); guard) {
            process.Ended = true;
            process.Config.reset();
        }
    }
};
[[maybe_unused]] const ConfigEnd configEnd;

} // namespace

std::shared_ptr<const HiddenAttrsConfig> GetHiddenAttrsConfig() {
    ProcessConfig& process = GetProcessConfig();
    const std::lock_guard guard(process.Lock);
    if (process.Ended)
        ThrowHr(E_UNEXPECTED);
    if (!process.Config)
        process.Config = std::make_shared<const HiddenAttrsConfig>(
            GetStringSetting(TV_W("Logger"), TV_W("HiddenNodeTypeAttrs"), TV_W("")));
    return process.Config;
}

} // namespace treevault
