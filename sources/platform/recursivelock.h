// SPDX-License-Identifier: MIT
// The lock of a node: recursive, eight bytes, one atomic exchange when nobody else wants it.
#ifndef TREEVAULT_PLATFORM_RECURSIVELOCK_H
#define TREEVAULT_PLATFORM_RECURSIVELOCK_H

#include "platform/addresswait.h"
#include "platform/lockorder.h"
#include "platform/process.h"

#include <atomic>
#include <cstdint>

namespace treevault {

class RecursiveLock {
public:
    RecursiveLock() = default;
    RecursiveLock(const RecursiveLock&) = delete;
    RecursiveLock& operator=(const RecursiveLock&) = delete;

    void Enter() noexcept {
        const uint32_t self = CurrentThreadId();
        uint32_t seen = 0;
        if (!Owner.compare_exchange_strong(seen, self, std::memory_order_acquire,
                                           std::memory_order_relaxed)) {
            if ((seen & ~Contended) == self)
                ++Depth;
            else
                EnterContended(self);
        }
        NodeLocksOrder::NoteEntered();
    }

    // Never waits.
    bool TryEnter() noexcept {
        uint32_t seen = 0;
        if (!Owner.compare_exchange_strong(seen, CurrentThreadId(), std::memory_order_acquire,
                                           std::memory_order_relaxed))
            return false;
        NodeLocksOrder::NoteEntered();
        return true;
    }

    // Whoever waits may destroy the lock as soon as it is free: what is woken is an address.
    void Leave() noexcept {
        NodeLocksOrder::NoteLeaving();
        if (Depth != 0)
            --Depth;
        else if (Owner.exchange(0, std::memory_order_release) & Contended)
            WakeOne(Owner);
    }

    // Waits until nobody else is inside. Whoever was has done what it did before this returns.
    void AwaitEmpty() noexcept {
        if (Owner.load(std::memory_order_acquire) != 0) [[unlikely]] {
            Enter();
            Leave();
        }
    }

private:
    // Set beside the owner's id while threads may be waiting. Thread ids leave the bit free.
    static constexpr uint32_t Contended = 0x80000000u;

    void EnterContended(uint32_t self) noexcept;

    std::atomic<uint32_t> Owner{0};
    uint32_t Depth = 0; // entries of the owner beyond the first; only the owner touches it
};

// Holds a lock for a scope.
class LockGuard {
public:
    explicit LockGuard(RecursiveLock& lock) noexcept : Held(&lock) { Held->Enter(); }
    ~LockGuard() { Leave(); }
    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;

    // Gives the lock up before the scope ends.
    void Leave() noexcept {
        if (RecursiveLock* lock = Held) {
            Held = nullptr;
            lock->Leave();
        }
    }

private:
    RecursiveLock* Held;
};

} // namespace treevault

#endif
