// SPDX-License-Identifier: MIT
// Waiting for a word of memory to change. Beside std::atomic's own waiting because that of the
// Windows runtime can miss a wake-up that comes just before the thread falls asleep.
#ifndef TREEVAULT_PLATFORM_ADDRESSWAIT_H
#define TREEVAULT_PLATFORM_ADDRESSWAIT_H

#include <atomic>
#include <cstdint>

namespace treevault {

// Sleeps while the word has this value. May return early; the caller looks again.
void WaitWhile(std::atomic<uint32_t>& word, uint32_t value) noexcept;

// Wake threads that wait for the word, which the caller has changed before.
void WakeOne(std::atomic<uint32_t>& word) noexcept;
void WakeAll(std::atomic<uint32_t>& word) noexcept;

} // namespace treevault

#endif
