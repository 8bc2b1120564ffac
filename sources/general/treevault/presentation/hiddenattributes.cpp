// SPDX-License-Identifier: MIT
// The grammar of the setting.
#include "general/treevault/presentation/hiddenattributes.h"

#include "common/errorhandling.h"
#include "common/settings.h"

#include <algorithm>
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

const HiddenAttrsConfig& GetHiddenAttrsConfig() {
    static const HiddenAttrsConfig config(
        GetStringSetting(TV_W("Logger"), TV_W("HiddenNodeTypeAttrs"), TV_W("")));
    return config;
}

} // namespace treevault
