// SPDX-License-Identifier: MIT
// Waiting as the standard library does it, with the system's own means.
#include "platform/addresswait.h"

namespace treevault {

void WaitWhile(std::atomic<uint32_t>& word, uint32_t value) noexcept {
    word.wait(value, std::memory_order_relaxed);
}

void WakeOne(std::atomic<uint32_t>& word) noexcept {
    word.notify_one();
}

void WakeAll(std::atomic<uint32_t>& word) noexcept {
    word.notify_all();
}

} // namespace treevault
