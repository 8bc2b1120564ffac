// SPDX-License-Identifier: MIT
// What the settings of the tracker do. CTest runs the program with several of them and tells each
// time how many lines a report of one object has and how many frames are skipped.
#include "common/components/dbgaliveobjectstracker.h"
#include "support/logcapture.h"

#include <cstdlib>

namespace treevault::tests {
namespace {

int Expected(const char* name) {
    const char* const value = std::getenv(name);
    EXPECT_NE(nullptr, value) << name;
    return value ? std::atoi(value) : -1;
}

// Tracks an object for one report. `caller` receives the address that this function returns to.
__attribute__((noinline)) std::vector<std::string> ReportOne(const void** caller) {
    *caller = __builtin_return_address(0);
    const int object = 0;
    const LogCapture capture;
    GetAliveObjectsTracker().Track("tag", &object);
    GetAliveObjectsTracker().Report();
    GetAliveObjectsTracker().Untrack(&object);
    return capture.Messages();
}

// Four addresses, the first of them that of whoever tracks, or further up.
void ExpectFrames(const std::string& line, const void* caller) {
    const std::string frames = line.substr(line.find("EIPs=") + 5);
    ASSERT_EQ(4 * 18 + 3u, frames.size()) << frames;
    WideStream expected;
    expected.Address(caller);
    const auto place = static_cast<size_t>(1 - Expected("TREEVAULT_EXPECTED_SKIP"));
    EXPECT_EQ(ToUtf8(expected.Str()), frames.substr(place * 19, 18)) << frames;
    for (const size_t separator : {18, 37, 56})
        EXPECT_EQ(';', frames[separator]);
}

TEST(AliveObjectsSettings, DecideWhatIsWrittenAndWhereTheAddressesBegin) {
    const void* caller = nullptr;
    const std::vector<std::string> lines = ReportOne(&caller);
    ASSERT_EQ(static_cast<size_t>(Expected("TREEVAULT_EXPECTED_LINES")), lines.size());
    if (lines.size() == 2)
        ExpectFrames(lines[1], caller);
}

} // namespace
} // namespace treevault::tests
