// SPDX-License-Identifier: MIT
// Waiting by the system's own operations.
#include "platform/addresswait.h"

#include <windows.h>

namespace treevault {

void WaitWhile(std::atomic<uint32_t>& word, uint32_t value) noexcept {
    WaitOnAddress(&word, &value, sizeof value, INFINITE);
}

void WakeOne(std::atomic<uint32_t>& word) noexcept {
    WakeByAddressSingle(&word);
}

void WakeAll(std::atomic<uint32_t>& word) noexcept {
    WakeByAddressAll(&word);
}

} // namespace treevault
