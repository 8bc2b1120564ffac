// SPDX-License-Identifier: MIT
// Looking up and keeping of texts.
#include "common/errormessagecache.h"

namespace treevault {

bool ErrorMessageCache::Find(uint32_t code, WideText& text) const {
    const SharedGuard guard(Lock);
    const auto found = Texts.find(code);
    if (found == Texts.end())
        return false;
    text = found->second;
    return true;
}

void ErrorMessageCache::Insert(uint32_t code, const WideText& text) {
    const ExclusiveGuard guard(Lock);
    Texts.emplace(code, text);
}

} // namespace treevault
