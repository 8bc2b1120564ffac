// SPDX-License-Identifier: MIT
// The waiting side of the node lock.
#include "platform/recursivelock.h"

namespace treevault {

namespace {

// A node is mostly held for much less time than falling asleep and being woken take. So many looks
// are a microsecond or two.
constexpr int Attempts = 30;

// Tells the processor that the thread does nothing but look.
void Pause() noexcept {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

} // namespace

// Looks for a while before it falls asleep. Who has been asleep keeps the contended mark, since it
// cannot know whether others still are: at worst it wakes nobody when it leaves.
void RecursiveLock::EnterContended(uint32_t self) noexcept {
    uint32_t seen = Owner.load(std::memory_order_relaxed);
    for (int attempt = 0; attempt < Attempts; ++attempt) {
        if (seen == 0 && Owner.compare_exchange_weak(seen, self, std::memory_order_acquire,
                                                     std::memory_order_relaxed))
            return;
        Pause();
        seen = Owner.load(std::memory_order_relaxed);
    }
    for (;;) {
        if (seen == 0) {
            if (Owner.compare_exchange_weak(seen, self | Contended, std::memory_order_acquire,
                                            std::memory_order_relaxed))
                return;
        } else if ((seen & Contended) != 0 ||
                   Owner.compare_exchange_weak(seen, seen | Contended, std::memory_order_relaxed,
                                               std::memory_order_relaxed)) {
            WaitWhile(Owner, seen | Contended);
            seen = Owner.load(std::memory_order_relaxed);
        }
    }
}

} // namespace treevault
