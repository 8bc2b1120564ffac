// SPDX-License-Identifier: MIT
// The number that the hashes of this process depend on.
#include "common/texthash.h"

#include "platform/clock.h"

namespace treevault::detail {

// Where the system put the library and when it was loaded. Odd, so that it is never 0.
const uint64_t HashSeed =
    MixHash(reinterpret_cast<uintptr_t>(&HashSeed), HashFactor ^ PerformanceCounter()) | 1;

} // namespace treevault::detail
