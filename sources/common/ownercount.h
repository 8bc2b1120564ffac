// SPDX-License-Identifier: MIT
// Counts of the owners of shared memory.
#ifndef TREEVAULT_COMMON_OWNERCOUNT_H
#define TREEVAULT_COMMON_OWNERCOUNT_H

#include <atomic>
#include <cstdint>

namespace treevault {

// Takes an owner off; true for the last one, which frees the memory. Nobody can join an owner that
// is alone, so that one needs no atomic exchange.
inline bool IsLastOwner(std::atomic<uint32_t>& owners) noexcept {
    return owners.load(std::memory_order_acquire) == 1 ||
           owners.fetch_sub(1, std::memory_order_acq_rel) == 1;
}

} // namespace treevault

#endif
