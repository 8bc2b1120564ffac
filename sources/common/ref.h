// SPDX-License-Identifier: MIT
// A counted reference to anything with AddRef and Release.
#ifndef TREEVAULT_COMMON_REF_H
#define TREEVAULT_COMMON_REF_H

#include <utility>

namespace treevault {

// Owns one reference, or none. The member is null before Release runs, so that a release that comes
// back here finds nothing.
template <class T>
class Ref {
public:
    Ref() noexcept = default;
    Ref(const Ref& other) noexcept : Target(other.Target) { Count(); }
    Ref(Ref&& other) noexcept : Target(other.Detach()) {}
    ~Ref() { Reset(); }

    Ref& operator=(const Ref& other) noexcept {
        Ref(other).Swap(*this);
        return *this;
    }
    Ref& operator=(Ref&& other) noexcept {
        Ref(std::move(other)).Swap(*this);
        return *this;
    }

    // Takes over a reference that the caller owns.
    static Ref Attach(T* target) noexcept {
        Ref ref;
        ref.Target = target;
        return ref;
    }

    // Adds a reference.
    static Ref Share(T* target) noexcept {
        Ref ref;
        ref.Target = target;
        ref.Count();
        return ref;
    }

    // Hands the reference to the caller.
    [[nodiscard]] T* Detach() noexcept { return std::exchange(Target, nullptr); }

    // Releases what is held and gives the place for an out argument.
    T** Put() noexcept {
        Reset();
        return &Target;
    }

    void Reset() noexcept {
        if (T* old = Detach())
            old->Release();
    }

    void Swap(Ref& other) noexcept { std::swap(Target, other.Target); }

    T* Get() const noexcept { return Target; }
    T* operator->() const noexcept { return Target; }
    T& operator*() const noexcept { return *Target; }
    explicit operator bool() const noexcept { return Target != nullptr; }

private:
    void Count() noexcept {
        if (Target)
            Target->AddRef();
    }

    T* Target = nullptr;
};

} // namespace treevault

#endif
