// SPDX-License-Identifier: MIT
// Sees that what is done over and over leaves no memory behind, whatever the log does meanwhile.
#ifndef TREEVAULT_TESTS_SUPPORT_LEAKCHECK_H
#define TREEVAULT_TESTS_SUPPORT_LEAKCHECK_H

#include "common/loggerconfig.h"
#include "support/failingmemory.h"
#include "support/settingsource.h"

#include <gtest/gtest.h>

namespace treevault::tests {

// Runs `round` twice: what is read and kept once is made by the first time, as settings, statics
// and texts of errors; the second must leave as many blocks as it found. The log forgets its
// settings before blocks are counted, and does not open its file anew meanwhile: a file that cannot
// be opened, or has grown too big, has no block.
template <class Round>
void ExpectNoLeak(const Round& round) {
    TestSource settings;
    settings.Set(TV_W("KeepOpenInterval"), TV_W("1000000000"));
    round();
    GetLoggerConfig().Refresh();
    const int64_t blocks = FailingMemory::LiveBlocks();
    round();
    GetLoggerConfig().Refresh();
    EXPECT_EQ(blocks, FailingMemory::LiveBlocks()) << "memory leaked";
}

} // namespace treevault::tests

#endif
