// SPDX-License-Identifier: MIT
// Memory that begins inside its owner.
#ifndef TREEVAULT_COMMON_INLINEMEMORY_H
#define TREEVAULT_COMMON_INLINEMEMORY_H

#include <cstddef>
#include <memory_resource>

namespace treevault {

// For what is made piece by piece and goes together: the first `Size` bytes cost no allocation, and
// pieces that are given back one by one are not used again before Release.
template <size_t Size>
class InlineMemory {
public:
    InlineMemory() = default;
    InlineMemory(const InlineMemory&) = delete;
    InlineMemory& operator=(const InlineMemory&) = delete;

    std::pmr::memory_resource* Resource() noexcept { return &Blocks; }

    // Gives everything back; nothing may be in use.
    void Release() noexcept { Blocks.release(); }

private:
    alignas(std::max_align_t) std::byte First[Size];
    std::pmr::monotonic_buffer_resource Blocks{First, Size, std::pmr::new_delete_resource()};
};

} // namespace treevault

#endif
