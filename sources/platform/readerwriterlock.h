// SPDX-License-Identifier: MIT
// A reader-writer lock that no steady stream of readers keeps a writer out of.
#ifndef TREEVAULT_PLATFORM_READERWRITERLOCK_H
#define TREEVAULT_PLATFORM_READERWRITERLOCK_H

#include "platform/addresswait.h"
#include "platform/lockorder.h"

#include <atomic>
#include <cstdint>
#include <mutex>

namespace treevault {

// A writer that has come keeps further readers out until it has been through. Not recursive on
// either side: a thread that reads must not ask for another share.
class ReaderWriterLock {
public:
    ReaderWriterLock() = default;
    ~ReaderWriterLock() { NoteDestroyed(this); }
    ReaderWriterLock(const ReaderWriterLock&) = delete;
    ReaderWriterLock& operator=(const ReaderWriterLock&) = delete;

    void EnterShared() noexcept {
        uint32_t seen = State.load(std::memory_order_relaxed);
        for (;;) {
            if (seen & Writer)
                seen = Sleep(seen);
            else if (State.compare_exchange_weak(seen, seen + 1, std::memory_order_acquire,
                                                 std::memory_order_relaxed))
                break;
        }
        NoteEntered(this);
    }

    void LeaveShared() noexcept {
        NoteLeaving(this);
        // The last reader in front of a writer lets it in.
        const uint32_t before = State.fetch_sub(1, std::memory_order_release);
        if ((before & Sleepers) && (before & Readers) == 1)
            WakeAll(State);
    }

    void EnterExclusive() {
        Writers.lock();
        uint32_t seen = State.fetch_or(Writer, std::memory_order_acquire);
        while (seen & Readers)
            seen = Sleep(seen | Writer);
        NoteEntered(this);
    }

    void LeaveExclusive() noexcept {
        NoteLeaving(this);
        if (State.exchange(0, std::memory_order_release) & Sleepers)
            WakeAll(State);
        Writers.unlock();
    }

private:
    static constexpr uint32_t Writer = 0x80000000u;   // one has come or is inside
    static constexpr uint32_t Sleepers = 0x40000000u; // somebody may sleep until the state changes
    static constexpr uint32_t Readers = 0x3FFFFFFFu;  // how many are inside

    // Sleeps unless the state has changed, and returns the new one.
    uint32_t Sleep(uint32_t seen) noexcept {
        if ((seen & Sleepers) || State.compare_exchange_strong(seen, seen | Sleepers))
            WaitWhile(State, seen | Sleepers);
        return State.load(std::memory_order_acquire);
    }

    std::atomic<uint32_t> State{0};
    std::mutex Writers; // held from the coming of a writer to its leaving
};

// Hold a lock for a scope, among other readers or alone.
class SharedGuard {
public:
    explicit SharedGuard(ReaderWriterLock& lock) noexcept : Held(lock) { Held.EnterShared(); }
    ~SharedGuard() { Held.LeaveShared(); }
    SharedGuard(const SharedGuard&) = delete;
    SharedGuard& operator=(const SharedGuard&) = delete;

private:
    ReaderWriterLock& Held;
};

class ExclusiveGuard {
public:
    explicit ExclusiveGuard(ReaderWriterLock& lock) : Held(lock) { Held.EnterExclusive(); }
    ~ExclusiveGuard() { Held.LeaveExclusive(); }
    ExclusiveGuard(const ExclusiveGuard&) = delete;
    ExclusiveGuard& operator=(const ExclusiveGuard&) = delete;

private:
    ReaderWriterLock& Held;
};

} // namespace treevault

#endif
