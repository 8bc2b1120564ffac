// SPDX-License-Identifier: MIT
// The lock of a storage: many readers or one writer, and the writer may come back.
#ifndef TREEVAULT_STORAGE_STORAGELOCK_H
#define TREEVAULT_STORAGE_STORAGELOCK_H

#include "platform/process.h"
#include "platform/readerwriterlock.h"

namespace treevault {

// The thread that writes passes both sides freely, so that a sink may read and store from inside a
// notification. A reader must not come back for either side.
class StorageLock {
public:
    class Exclusive {
    public:
        explicit Exclusive(StorageLock& lock) : Held(lock.IsOwner() ? nullptr : &lock) {
            if (Held) {
                Held->Lock.EnterExclusive();
                Held->OwnerThreadId.store(CurrentThreadId(), std::memory_order_relaxed);
            }
        }
        ~Exclusive() {
            if (Held) {
                Held->OwnerThreadId.store(0, std::memory_order_relaxed);
                Held->Lock.LeaveExclusive();
            }
        }
        Exclusive(const Exclusive&) = delete;
        Exclusive& operator=(const Exclusive&) = delete;

    private:
        StorageLock* Held;
    };

    class Shared {
    public:
        explicit Shared(StorageLock& lock) noexcept : Held(lock.IsOwner() ? nullptr : &lock) {
            if (Held)
                Held->Lock.EnterShared();
        }
        ~Shared() {
            if (Held)
                Held->Lock.LeaveShared();
        }
        Shared(const Shared&) = delete;
        Shared& operator=(const Shared&) = delete;

    private:
        StorageLock* Held;
    };

private:
    // A stale value cannot be that of the calling thread.
    bool IsOwner() const noexcept {
        return OwnerThreadId.load(std::memory_order_relaxed) == CurrentThreadId();
    }

    ReaderWriterLock Lock;
    std::atomic<uint32_t> OwnerThreadId{0};
};

} // namespace treevault

#endif
