// SPDX-License-Identifier: MIT
// The waiting side of the node lock.
#include "platform/recursivelock.h"

namespace treevault {

// The winner keeps the contended mark, since it cannot know whether others still wait: at worst it
// wakes nobody when it leaves.
void RecursiveLock::EnterContended(uint32_t self) noexcept {
    uint32_t seen = Owner.load(std::memory_order_relaxed);
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
