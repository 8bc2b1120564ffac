// SPDX-License-Identifier: MIT
// The token with which a thread acts as somebody else. On Linux no thread carries one.
#ifndef TREEVAULT_PLATFORM_THREADTOKEN_H
#define TREEVAULT_PLATFORM_THREADTOKEN_H

#include <cstdint>

namespace treevault {

inline constexpr uint32_t NoThreadToken = 1008; // the thread acts as its process does

// Results are 0 or a code of Windows. OpenTokenOfThread gives a token to be closed;
// SetTokenOfThread with null lets the thread act as its process does.
uint32_t OpenTokenOfThread(void*& token) noexcept;
uint32_t SetTokenOfThread(void* token) noexcept;
void CloseToken(void* token) noexcept;

} // namespace treevault

#endif
