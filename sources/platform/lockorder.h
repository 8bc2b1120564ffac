// SPDX-License-Identifier: MIT
// Makes our own locks known to the thread sanitizer, for its search for locks that are taken in two
// orders. Without the sanitizer all of this is nothing.
#ifndef TREEVAULT_PLATFORM_LOCKORDER_H
#define TREEVAULT_PLATFORM_LOCKORDER_H

#if defined(__SANITIZE_THREAD__)
#define TREEVAULT_NOTES_LOCK_ORDER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define TREEVAULT_NOTES_LOCK_ORDER 1
#endif
#endif

#ifdef TREEVAULT_NOTES_LOCK_ORDER
#include <sanitizer/tsan_interface.h>
#endif

namespace treevault {

// The calling thread is inside of a lock, is about to leave it, or destroys it.
//
// Every side of every lock is noted as that of a reader, and at an address beside its own: so the
// sanitizer learns the order of the locks and nothing else. That a lock keeps threads apart it has
// to see from what the lock does.
#ifdef TREEVAULT_NOTES_LOCK_ORDER

inline void* LockOrderAddress(void* lock) noexcept {
    return static_cast<char*>(lock) + 1;
}

inline void NoteEntered(void* lock) noexcept {
    __tsan_mutex_pre_lock(LockOrderAddress(lock), __tsan_mutex_read_lock);
    __tsan_mutex_post_lock(LockOrderAddress(lock), __tsan_mutex_read_lock, 0);
}

inline void NoteLeaving(void* lock) noexcept {
    __tsan_mutex_pre_unlock(LockOrderAddress(lock), __tsan_mutex_read_lock);
    __tsan_mutex_post_unlock(LockOrderAddress(lock), __tsan_mutex_read_lock);
}

inline void NoteDestroyed(void* lock) noexcept {
    __tsan_mutex_destroy(LockOrderAddress(lock), 0);
}

// The locks of nodes count as one. Their order is that of the tree, which changes, so that the
// sanitizer cannot judge it; but it does judge their order to all other locks.
struct NodeLocksOrder {
    static void NoteEntered() noexcept {
        if (Held++ == 0)
            treevault::NoteEntered(&All);
    }
    static void NoteLeaving() noexcept {
        if (--Held == 0)
            treevault::NoteLeaving(&All);
    }

private:
    static inline thread_local unsigned Held = 0;
    static inline char All[2] = {};
};

#else

inline void NoteEntered(void*) noexcept {}
inline void NoteLeaving(void*) noexcept {}
inline void NoteDestroyed(void*) noexcept {}

struct NodeLocksOrder {
    static void NoteEntered() noexcept {}
    static void NoteLeaving() noexcept {}
};

#endif

} // namespace treevault

#endif
