// SPDX-License-Identifier: MIT
// Threads without tokens.
#include "platform/threadtoken.h"

namespace treevault {

uint32_t OpenTokenOfThread(void*&) noexcept {
    return NoThreadToken;
}

uint32_t SetTokenOfThread(void*) noexcept {
    return 0;
}

void CloseToken(void*) noexcept {}

} // namespace treevault
