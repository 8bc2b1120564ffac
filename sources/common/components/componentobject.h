// SPDX-License-Identifier: MIT
// Components: the head that every component class begins with, the wrapper that makes a class a
// live component, and creation.
#ifndef TREEVAULT_COMMON_COMPONENTS_COMPONENTOBJECT_H
#define TREEVAULT_COMMON_COMPONENTS_COMPONENTOBJECT_H

#include "common/components/componentcount.h"
#include "common/components/componenttag.h"
#include "common/components/dbgaliveobjectstracker.h"
#include "common/guids.h"
#include "common/ref.h"

#include <treevault/components.h>

#include <atomic>
#include <utility>

namespace treevault {

// The primary table. The deleting destructor is an ordinary operation, so that the table is the
// same with every compiler.
struct IPrimaryComponent : IComponentUnknown {
    // Destroys the object, and frees its memory if bit 0 of `flags` is set.
    virtual void TREEVAULT_CALL DeletingDestructor(uint32_t flags) = 0;

protected:
    ~IPrimaryComponent() = default;
};

// A component class derives from the head first and from its further interfaces behind it, and has
// an operation `HRESULT Lookup(const GUID* iid, void** out)`, which finds an interface without
// counting. The creator holds the first reference.
class ComponentHead : public IPrimaryComponent {
public:
    // Declared here so that a class of several interfaces can name these three.
    uint32_t TREEVAULT_CALL AddRef() override = 0;
    uint32_t TREEVAULT_CALL Release() override = 0;
    HRESULT TREEVAULT_CALL QueryInterface(const GUID* iid, void** out) override = 0;

    void CountUp(uint32_t by = 1) noexcept { References.fetch_add(by, std::memory_order_relaxed); }

    // The new count.
    uint32_t CountDown(uint32_t by = 1) noexcept {
        return References.fetch_sub(by, std::memory_order_acq_rel) - by;
    }

    // Gives the caller's references up, `own` of them, if there are no others. The object is dying
    // then.
    bool GiveUpLast(uint32_t own) noexcept {
        return References.compare_exchange_strong(own, 0, std::memory_order_acq_rel,
                                                  std::memory_order_relaxed);
    }

    // Adds a reference unless the object is already dying.
    bool CountUpIfAlive() noexcept {
        uint32_t count = References.load(std::memory_order_relaxed);
        while (count != 0)
            if (References.compare_exchange_weak(count, count + 1, std::memory_order_acquire,
                                                 std::memory_order_relaxed))
                return true;
        return false;
    }

protected:
    ComponentHead() = default;
    ~ComponentHead() = default;
    ComponentHead(const ComponentHead&) = delete;
    ComponentHead& operator=(const ComponentHead&) = delete;

    std::atomic<uint32_t> References{1};
};

// One line of a class's list of interfaces.
struct InterfaceEntry {
    const GUID& Id;
    void* Pointer;
};

// The lookup without counting: the base interface gives the primary pointer, then come the entries
// in order. The out value is written on success only.
template <class... Entries>
HRESULT LookupInterface(const GUID* iid, void** out, ComponentHead* primary,
                        const Entries&... entries) noexcept {
    if (!iid || !out)
        return E_INVALIDARG;
    void* answer = SameGuid(*iid, IID_IComponentUnknown) ? primary : nullptr;
    static_cast<void>(
        (answer || ... || (SameGuid(*iid, entries.Id) && (answer = entries.Pointer) != nullptr)));
    if (!answer)
        return E_NOINTERFACE;
    *out = answer;
    return S_OK;
}

// A live component of class `T`. A class that has `FinalRelease` gets it called when the count has
// reached 0, before the destructor; it must not raise anything.
template <class T>
class CComponentObject final : public T {
public:
    template <class... Arguments>
    explicit CComponentObject(Arguments&&... arguments) : T(std::forward<Arguments>(arguments)...) {
        if (IsAliveObjectsTrackingEnabled())
            GetAliveObjectsTracker().Track(ComponentTag<T>, PrimaryPointer());
        ComponentCount.fetch_add(1, std::memory_order_relaxed);
    }

    uint32_t TREEVAULT_CALL AddRef() override {
        return this->References.fetch_add(1, std::memory_order_relaxed) + 1;
    }

    uint32_t TREEVAULT_CALL Release() override {
        const uint32_t count = this->CountDown();
        if (count == 0) {
            if constexpr (requires { this->FinalRelease(); })
                this->FinalRelease();
            DeletingDestructor(1);
        }
        return count;
    }

    HRESULT TREEVAULT_CALL QueryInterface(const GUID* iid, void** out) override {
        const HRESULT hr = this->Lookup(iid, out);
        if (SUCCEEDED(hr))
            this->CountUp();
        return hr;
    }

    void TREEVAULT_CALL DeletingDestructor(uint32_t flags) override {
        if (flags & 1)
            delete this;
        else
            this->~CComponentObject();
    }

private:
    ~CComponentObject() {
        if (IsAliveObjectsTrackingEnabled())
            GetAliveObjectsTracker().Untrack(PrimaryPointer());
        ComponentCount.fetch_sub(1, std::memory_order_relaxed);
    }

    const void* PrimaryPointer() const noexcept { return static_cast<const ComponentHead*>(this); }
};

// A new component, with its first reference.
template <class T, class... Arguments>
Ref<T> MakeComponent(Arguments&&... arguments) {
    return Ref<T>::Attach(new CComponentObject<T>(std::forward<Arguments>(arguments)...));
}

// Makes a component and hands its first reference out through the interface `iid`. When it lacks
// that, it is destroyed and the result of the lookup returned.
template <class T, class... Arguments>
HRESULT CreateComponent(const GUID* iid, void** out, Arguments&&... arguments) {
    Ref<T> component = MakeComponent<T>(std::forward<Arguments>(arguments)...);
    const HRESULT hr = component->Lookup(iid, out);
    if (SUCCEEDED(hr))
        static_cast<void>(component.Detach());
    return hr;
}

} // namespace treevault

#endif
