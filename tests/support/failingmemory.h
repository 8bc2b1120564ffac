// SPDX-License-Identifier: MIT
// Memory that runs out on demand, for programs that are linked with the objects of the library.
//
// This header replaces the allocation functions of the program, so that one source file of a
// program may include it.
#ifndef TREEVAULT_TESTS_SUPPORT_FAILINGMEMORY_H
#define TREEVAULT_TESTS_SUPPORT_FAILINGMEMORY_H

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace treevault::tests {

// Memory runs out for the calling thread alone.
class FailingMemory {
public:
    enum class Mode {
        Once,   // one allocation fails
        ForGood // it and all that follow fail
    };

    // While it lives, the `nth` allocation from now fails; 1 is the next one.
    FailingMemory(uint64_t nth, Mode mode) {
        Countdown = nth;
        KeepsFailing = mode == Mode::ForGood;
        HasFailed = false;
    }
    ~FailingMemory() { Countdown = 0; }
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;

    bool Failed() const { return HasFailed; }

    // The blocks that all threads have allocated and not given back: what one allocates another may
    // give back, as the settings that the log keeps. The other threads must be at rest.
    static int64_t LiveBlocks() { return Live; }

    // Out of line, since the compiler takes what it sees of malloc and free behind new and delete
    // for a mismatch.
    [[gnu::noinline]] static void* Allocate(std::size_t size) noexcept {
        if (Countdown != 0 && --Countdown == 0) {
            HasFailed = true;
            Countdown = KeepsFailing ? 1 : 0;
            return nullptr;
        }
        void* block = std::malloc(size != 0 ? size : 1);
        if (block)
            ++Live;
        return block;
    }

    [[gnu::noinline]] static void Free(void* block) noexcept {
        if (!block)
            return;
        --Live;
        std::free(block);
    }

private:
    inline static thread_local uint64_t Countdown = 0;
    inline static thread_local bool KeepsFailing = false;
    inline static thread_local bool HasFailed = false;
    inline static std::atomic<int64_t> Live{0};
};

} // namespace treevault::tests

void* operator new(std::size_t size) {
    if (void* block = treevault::tests::FailingMemory::Allocate(size))
        return block;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return treevault::tests::FailingMemory::Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return treevault::tests::FailingMemory::Allocate(size);
}
void operator delete(void* block) noexcept {
    treevault::tests::FailingMemory::Free(block);
}
void operator delete[](void* block) noexcept {
    treevault::tests::FailingMemory::Free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    treevault::tests::FailingMemory::Free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    treevault::tests::FailingMemory::Free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    treevault::tests::FailingMemory::Free(block);
}
// Memory resources of the standard library name the alignment, which is that of every block.
void* operator new(std::size_t size, std::align_val_t) {
    return operator new(size);
}
void operator delete(void* block, std::align_val_t) noexcept {
    treevault::tests::FailingMemory::Free(block);
}
void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    treevault::tests::FailingMemory::Free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    treevault::tests::FailingMemory::Free(block);
}

#endif
