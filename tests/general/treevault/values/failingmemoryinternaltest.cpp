// SPDX-License-Identifier: MIT
// The allocation functions of the program that tests the internals of values.
#include "general/treevault/values/failingmemory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace treevault::tests {
namespace {

std::atomic<size_t> live{0}, made{0}, failFrom{SIZE_MAX};
void (*hookFunction)(void*) = nullptr;
void* hookContext = nullptr;

void* Allocate(size_t size) noexcept {
    if (hookFunction)
        hookFunction(hookContext);
    if (size >= failFrom)
        return nullptr;
    void* const block = std::malloc(size != 0 ? size : 1);
    if (block) {
        ++live;
        ++made;
    }
    return block;
}

void* AllocateOrThrow(size_t size) {
    if (void* const block = Allocate(size))
        return block;
    throw std::bad_alloc();
}

void Free(void* block) noexcept {
    if (block)
        --live;
    std::free(block);
}

} // namespace

size_t LiveBlocks() noexcept {
    return live;
}

size_t MadeBlocks() noexcept {
    return made;
}

FailingMemory::FailingMemory(size_t size) noexcept {
    failFrom = size;
}

FailingMemory::~FailingMemory() {
    failFrom = SIZE_MAX;
}

AllocationHook::AllocationHook(void (*hook)(void*), void* context) noexcept {
    hookContext = context;
    hookFunction = hook;
}

AllocationHook::~AllocationHook() {
    hookFunction = nullptr;
}

namespace {

TEST(FailingMemory, FailsFromTheGivenSizeOnAndWhileItLives) {
    {
        const FailingMemory memory(1000);
        EXPECT_EQ(nullptr, ::operator new(1000, std::nothrow));
        EXPECT_THROW(::operator delete(::operator new(1000)), std::bad_alloc);
        ::operator delete(::operator new(999));
    }
    const size_t before = LiveBlocks();
    void* const block = ::operator new(1000, std::nothrow);
    EXPECT_NE(nullptr, block);
    EXPECT_EQ(before + 1, LiveBlocks());
    ::operator delete(block);
    EXPECT_EQ(before, LiveBlocks());
}

} // namespace
} // namespace treevault::tests

void* operator new(size_t size) {
    return treevault::tests::AllocateOrThrow(size);
}
void* operator new[](size_t size) {
    return treevault::tests::AllocateOrThrow(size);
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return treevault::tests::Allocate(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return treevault::tests::Allocate(size);
}
void operator delete(void* block) noexcept {
    treevault::tests::Free(block);
}
void operator delete[](void* block) noexcept {
    treevault::tests::Free(block);
}
void operator delete(void* block, size_t) noexcept {
    treevault::tests::Free(block);
}
void operator delete[](void* block, size_t) noexcept {
    treevault::tests::Free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    treevault::tests::Free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    treevault::tests::Free(block);
}
