// SPDX-License-Identifier: MIT
// A debugging aid for leaks: when the setting "EnableAliveObjectsTracking" of section "Debug" is
// on, every component is listed here while it lives, with the addresses of those who made it.
#ifndef TREEVAULT_COMMON_COMPONENTS_DBGALIVEOBJECTSTRACKER_H
#define TREEVAULT_COMMON_COMPONENTS_DBGALIVEOBJECTSTRACKER_H

#include "platform/recursivelock.h"

#include <atomic>
#include <map>

namespace treevault {

struct AliveObjectRecord {
    const void* Object;
    void* Frames[4]; // return addresses, null where the stack ended
    const char* Tag; // not owned
};

// One per process. Any thread may use any operation.
class AliveObjectsTracker {
public:
    // Reads the settings.
    AliveObjectsTracker();
    AliveObjectsTracker(const AliveObjectsTracker&) = delete;
    AliveObjectsTracker& operator=(const AliveObjectsTracker&) = delete;

    // Lists an object unless it is listed. `tag` may be null and must outlive the tracker. Does
    // nothing when tracking is off; std::bad_alloc otherwise leaves it.
    void Track(const char* tag, const void* object);
    void Untrack(const void* object) noexcept;

    // Writes the number of objects and a line for each to the log, in the order of addresses;
    // nothing when there are none or tracking is off.
    void Report() noexcept;

    // Turns tracking off for good and forgets the objects. The tracker is never destroyed:
    // components that die later find tracking off.
    void End() noexcept;

private:
    uint32_t FramesToSkip = 0;
    RecursiveLock Lock; // guards Records; the log may make components on the same thread
    std::map<const void*, AliveObjectRecord> Records;
};

// Made while the library is loaded.
AliveObjectsTracker& GetAliveObjectsTracker();

namespace detail {
inline constinit std::atomic<bool> AliveObjectsTrackingEnabled{false};
} // namespace detail

// What every construction and destruction of a component asks.
inline bool IsAliveObjectsTrackingEnabled() noexcept {
    return detail::AliveObjectsTrackingEnabled.load(std::memory_order_relaxed);
}

} // namespace treevault

#endif
