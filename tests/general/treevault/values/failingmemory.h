// SPDX-License-Identifier: MIT
// Memory that fails on request, and a count of the blocks that live. It serves the whole program.
#ifndef TREEVAULT_TESTS_VALUES_FAILINGMEMORY_H
#define TREEVAULT_TESTS_VALUES_FAILINGMEMORY_H

#include <cstddef>

namespace treevault::tests {

// How many blocks of this program live, and how many were ever made.
size_t LiveBlocks() noexcept;
size_t MadeBlocks() noexcept;

// While it lives, allocations of `size` bytes and more fail.
class FailingMemory {
public:
    explicit FailingMemory(size_t size) noexcept;
    ~FailingMemory();
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;
};

// While it lives, `hook` is called before each allocation.
class AllocationHook {
public:
    AllocationHook(void (*hook)(void*), void* context) noexcept;
    ~AllocationHook();
    AllocationHook(const AllocationHook&) = delete;
    AllocationHook& operator=(const AllocationHook&) = delete;
};

} // namespace treevault::tests

#endif
