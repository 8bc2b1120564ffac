// SPDX-License-Identifier: MIT
// The allocator as the benchmarks need it.
#include "measure.h"

#include <malloc.h>

#include <climits>
#include <cstdlib>

namespace treevault::benchmarks {

namespace {

// Freed memory stays with the process. Otherwise the page faults of memory that goes back and forth
// would outweigh what is measured, for TreeVault and its references alike.
const bool KeepsMemory = [] {
    mallopt(M_MMAP_THRESHOLD, INT_MAX);
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
    mallopt(M_TOP_PAD, 64 << 20);
    return true;
}();

} // namespace

size_t AllocatedBytes() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void SettleMemory() {
    // Freeing a large block makes the allocator join the small ones it had set aside.
    void* block = std::malloc(1 << 20);
    benchmark::DoNotOptimize(block);
    std::free(block);
}

} // namespace treevault::benchmarks
