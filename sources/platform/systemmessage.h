// SPDX-License-Identifier: MIT
// The platform's own texts for its codes.
#ifndef TREEVAULT_PLATFORM_SYSTEMMESSAGE_H
#define TREEVAULT_PLATFORM_SYSTEMMESSAGE_H

#include "platform/widetext.h"

#include <cstdint>

namespace treevault {

// The text of message `id` as the platform has it, line ends included, in the user's language or
// else a neutral one. False, with `text` untouched, when there is none.
bool ReadSystemMessage(uint32_t id, WideText& text);

} // namespace treevault

#endif
