// SPDX-License-Identifier: MIT
// Lookup of message texts.
#include "common/errormessages.h"

#include "common/errormessagecache.h"
#include "common/messagemodules.h"
#include "platform/systemmessage.h"

#include <atomic>

namespace treevault {
namespace {

// Set while the cache can be used, which it cannot at the first and the last moments of the
// library.
constinit std::atomic<bool> cacheEnabled{false};

struct ProcessCache : ErrorMessageCache {
    ProcessCache() { cacheEnabled = true; }
    ~ProcessCache() { cacheEnabled = false; }
};
ProcessCache cache;

bool ReadPrimaryMessage(uint32_t id, WideText& text) {
    const ErrorModuleSet* const modules = GetErrorModuleSet();
    return modules && ReadModuleText(modules->Primary, id, text);
}

bool ReadFallbackMessage(uint32_t id, WideText& text) {
    const ErrorModuleSet* const modules = GetErrorModuleSet();
    return modules && ReadModuleText(modules->Fallback, id, text);
}

bool ReadCommonMessage(uint32_t id, WideText& text) {
    return ReadSystemMessage(id, text) || ReadFallbackMessage(id, text);
}

// False, with `text` untouched, for a code that nobody knows.
bool FindMessage(uint32_t code, WideText& text) {
    const bool own = code > 0x800401FFu && code < 0x80050000u;
    if (own && ReadPrimaryMessage(code, text))
        return true;
    // A code that wraps one of the platform's own may be known by that one only.
    const bool wrapped = (code & 0x1FFF0000u) == 0x70000u;
    return ReadCommonMessage(code, text) || (wrapped && ReadCommonMessage(code & 0xFFFF, text));
}

WideText FormMessage(uint32_t code) {
    WideText text;
    FindMessage(code, text);
    text.erase(text.find_last_not_of(TV_W(" .\r\n")) + 1);
    return text.empty() ? WideText(TV_W("<no description>")) : text;
}

} // namespace

WideText GetErrorMessage(HRESULT code) {
    const auto id = static_cast<uint32_t>(code);
    WideText text;
    if (cacheEnabled && cache.Find(id, text))
        return text;
    text = FormMessage(id);
    // What is formed while the modules are being loaded knows nothing of them yet.
    if (cacheEnabled && !IsLoadingErrorModules())
        cache.Insert(id, text);
    return text;
}

} // namespace treevault
