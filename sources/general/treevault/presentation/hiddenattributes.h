// SPDX-License-Identifier: MIT
// Which attributes must not be shown: the setting "HiddenNodeTypeAttrs" of section "Logger", as in
//   Account:Secret,Pin;*:Token
#ifndef TREEVAULT_PRESENTATION_HIDDENATTRIBUTES_H
#define TREEVAULT_PRESENTATION_HIDDENATTRIBUTES_H

#include "platform/widetext.h"

#include <functional>
#include <map>
#include <memory>
#include <set>

namespace treevault {

// Compared by code unit.
using AttributeNames = std::set<WideText, std::less<>>;

// Read-only once it is made, so any thread may use it.
class HiddenAttrsConfig {
public:
    // The value that stands for one that is hidden.
    static constexpr const WCHAR* Mask = TV_W("********");

    // Raises E_INVALIDARG for text that does not follow the grammar: rules separated by ";", each a
    // type, ":" and names separated by ",". Empty rules and names are skipped.
    explicit HiddenAttrsConfig(WideView setting);

    bool HidesNothing() const noexcept { return Rules.empty(); }

    // Calls `visit` with the name of each attribute that nodes of this type must not show, until
    // one call returns true; tells whether one did.
    template <class Visit>
    bool AnyName(WideView type, const Visit& visit) const {
        for (const WideView key : {type, AllTypes})
            if (const auto rule = Rules.find(key); rule != Rules.end())
                for (const WideText& name : rule->second)
                    if (visit(name.c_str()))
                        return true;
        return false;
    }

private:
    static constexpr WideView AllTypes = TV_W("*");

    void AddRule(WideView rule);

    std::map<WideText, AttributeNames, std::less<>> Rules; // by type
};

// What the setting says, read once for the process. A malformed setting raises E_INVALIDARG each
// time, and is read anew the next time. Raises E_UNEXPECTED once the library is being unloaded:
// nothing is shown of which nobody knows any more whether it is hidden.
std::shared_ptr<const HiddenAttrsConfig> GetHiddenAttrsConfig();

} // namespace treevault

#endif
