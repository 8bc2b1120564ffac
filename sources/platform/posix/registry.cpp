// SPDX-License-Identifier: MIT
// A registry without keys.
#include "platform/registry.h"

namespace treevault {

std::map<WideText, WideText> ReadRegistryTexts(RegistryRoot, const WideText&) {
    return {};
}

} // namespace treevault
