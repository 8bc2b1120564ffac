// SPDX-License-Identifier: MIT
// A growing set of node locks, for walks that hold what they have passed.
#ifndef TREEVAULT_NODES_HELDLOCKS_H
#define TREEVAULT_NODES_HELDLOCKS_H

#include "platform/recursivelock.h"

#include <vector>

namespace treevault {

// Leaves its locks in the reverse order of entering them.
class HeldLocks {
public:
    HeldLocks() = default;
    HeldLocks(const HeldLocks&) = delete;
    HeldLocks& operator=(const HeldLocks&) = delete;
    ~HeldLocks() {
        while (!Locks.empty())
            LeaveLast();
    }

    // Enters nothing when memory runs out.
    void Enter(RecursiveLock& lock) {
        Locks.push_back(&lock);
        lock.Enter();
    }

    void LeaveLast() noexcept {
        Locks.back()->Leave();
        Locks.pop_back();
    }

private:
    std::vector<RecursiveLock*> Locks;
};

} // namespace treevault

#endif
