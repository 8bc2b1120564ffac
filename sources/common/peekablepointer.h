// SPDX-License-Identifier: MIT
// A pointer for the guess of what will be needed next.
#ifndef TREEVAULT_COMMON_PEEKABLEPOINTER_H
#define TREEVAULT_COMMON_PEEKABLEPOINTER_H

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace treevault {

inline constexpr size_t CacheLine = 64;

// Asks the processor for so many cache lines. No memory is read: what lies there may be gone.
inline void PrefetchLines(const void* from, size_t lines) noexcept {
    const auto begin = reinterpret_cast<uintptr_t>(from);
    for (size_t line = 0; line < lines; ++line)
        __builtin_prefetch(reinterpret_cast<const void*>(begin + line * CacheLine), 1);
}

// A pointer like any other for those who hold the lock that guards it. Whoever does not may only
// ask the processor for what it points to, which does no harm even if that is gone meanwhile.
template <class T>
class PeekablePointer {
public:
    PeekablePointer(T* target = nullptr) noexcept : Target(target) {}
    PeekablePointer(const PeekablePointer& other) noexcept : Target(other.Get()) {}
    PeekablePointer& operator=(const PeekablePointer& other) noexcept {
        Target.store(other.Get(), std::memory_order_relaxed);
        return *this;
    }

    T* Get() const noexcept { return Target.load(std::memory_order_relaxed); }
    operator T*() const noexcept { return Get(); }
    T* operator->() const noexcept { return Get(); }

    void Prefetch(size_t lines) const noexcept { PrefetchLines(Get(), lines); }

private:
    std::atomic<T*> Target;
};

} // namespace treevault

#endif
