// SPDX-License-Identifier: MIT
// The text values of a registry key. Linux has no registry.
#ifndef TREEVAULT_PLATFORM_REGISTRY_H
#define TREEVAULT_PLATFORM_REGISTRY_H

#include "platform/widetext.h"

#include <map>

namespace treevault {

enum class RegistryRoot { LocalMachine, CurrentUser };

// Names and data as they stand in the key; nothing in them is expanded. Empty when the key cannot
// be opened.
std::map<WideText, WideText> ReadRegistryTexts(RegistryRoot root, const WideText& key);

} // namespace treevault

#endif
