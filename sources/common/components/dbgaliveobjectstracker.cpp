// SPDX-License-Identifier: MIT
// The list of components alive.
#include "common/components/dbgaliveobjectstracker.h"

#include "common/logging.h"
#include "common/settings.h"
#include "platform/callstack.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <new>
#include <string_view>

namespace treevault {

AliveObjectsTracker& GetAliveObjectsTracker() {
    alignas(AliveObjectsTracker) static std::byte storage[sizeof(AliveObjectsTracker)];
    static AliveObjectsTracker& tracker = *new (storage) AliveObjectsTracker;
    return tracker;
}

namespace {

constexpr uint32_t DeepestStack = 0xFFFF; // more than the platforms can skip

struct TrackerEnd {
    TrackerEnd() { GetAliveObjectsTracker(); }
    ~TrackerEnd() { GetAliveObjectsTracker().End(); }
};
[[maybe_unused]] const TrackerEnd trackerEnd; // made, as the tracker is, while the library loads

// The name of this file in the lines of the report.
SourcePlace ReportPlace(uint32_t line = __builtin_LINE()) noexcept {
    return {"dbgaliveobjectstracker", line};
}

void WriteRecord(WideStream& line, const AliveObjectRecord& record) {
    const std::string_view tag = record.Tag ? record.Tag : "(null)";
    line << TV_W("ObjTag='") << WideText(tag.begin(), tag.end()) << TV_W("' Ptr=");
    line.Address(record.Object) << TV_W(" EIPs=");
    const WCHAR* separator = TV_W("");
    for (const void* frame : record.Frames) {
        (line << separator).Address(frame);
        separator = TV_W(";");
    }
}

} // namespace

AliveObjectsTracker::AliveObjectsTracker() {
    const bool enabled = GetBooleanSetting(TV_W("Debug"), TV_W("EnableAliveObjectsTracking"));
    if (enabled && FAILED(GetSettingNumber(TV_W("Debug"), TV_W("AliveObjectsTrackingFramesToSkip"),
                                           FramesToSkip)))
        FramesToSkip = 0;
    FramesToSkip = std::min(FramesToSkip, DeepestStack);
    detail::AliveObjectsTrackingEnabled = enabled;
}

// A lock that is taken now belongs to a thread that the end of the process has caught inside.
void AliveObjectsTracker::End() noexcept {
    detail::AliveObjectsTrackingEnabled = false;
    if (!Lock.TryEnter())
        return;
    Records.clear();
    Lock.Leave();
}

__attribute__((noinline)) void AliveObjectsTracker::Track(const char* tag, const void* object) {
    if (!IsAliveObjectsTrackingEnabled())
        return;
    AliveObjectRecord record{object, {}, tag};
    CaptureReturnAddresses(FramesToSkip, record.Frames, std::size(record.Frames));
    const LockGuard guard(Lock);
    Records.emplace(object, record);
}

void AliveObjectsTracker::Untrack(const void* object) noexcept {
    const LockGuard guard(Lock);
    Records.erase(object);
}

void AliveObjectsTracker::Report() noexcept {
    if (!IsAliveObjectsTrackingEnabled())
        return;
    const LockGuard guard(Lock);
    if (Records.empty())
        return;
    Log(
        SeverityWarn,
        [&](WideStream& line) { line << TV_W("Alive component objects: ") << Records.size(); },
        ReportPlace());
    for (const auto& [object, record] : Records)
        Log(
            SeverityWarn, [&](WideStream& line) { WriteRecord(line, record); }, ReportPlace());
}

} // namespace treevault
