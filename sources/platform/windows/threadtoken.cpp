// SPDX-License-Identifier: MIT
// Tokens of threads.
#include "platform/threadtoken.h"

#include <treevault/platform.h>

namespace treevault {

static_assert(NoThreadToken == ERROR_NO_TOKEN);

uint32_t OpenTokenOfThread(void*& token) noexcept {
    return OpenThreadToken(GetCurrentThread(), TOKEN_IMPERSONATE, TRUE, &token) ? ERROR_SUCCESS
                                                                                : GetLastError();
}

uint32_t SetTokenOfThread(void* token) noexcept {
    return SetThreadToken(nullptr, token) ? ERROR_SUCCESS : GetLastError();
}

void CloseToken(void* token) noexcept {
    CloseHandle(token);
}

} // namespace treevault
