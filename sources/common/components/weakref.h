// SPDX-License-Identifier: MIT
// Weak references: a small component that knows its owner without keeping it alive, and the holder
// through which the owner makes it on demand and takes leave of it.
#ifndef TREEVAULT_COMMON_COMPONENTS_WEAKREF_H
#define TREEVAULT_COMMON_COMPONENTS_WEAKREF_H

#include "common/components/componentobject.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace treevault {

namespace Detail {

template <class T>
class CWeakRefObj : public ComponentHead, public IWeakRef {
public:
    using ComponentHead::AddRef;
    using ComponentHead::QueryInterface;
    using ComponentHead::Release;

    explicit CWeakRefObj(T* owner) noexcept : Owner(owner) {}

    HRESULT Lookup(const GUID* iid, void** out) noexcept {
        return LookupInterface(iid, out, this,
                               InterfaceEntry{IID_IWeakRef, static_cast<IWeakRef*>(this)});
    }

    // A lookup that fails leaves the reference gained where it is: the operation is meant for
    // interfaces that the owner has.
    HRESULT TREEVAULT_CALL Resolve(const GUID* iid, void** out) override {
        T* owner = nullptr;
        {
            const std::lock_guard guard(Lock);
            if (Owner && Owner->CountUpIfAlive())
                owner = Owner;
        }
        if (owner)
            return owner->Lookup(iid, out);
        if (out)
            *out = nullptr;
        return S_FALSE;
    }

    HRESULT TREEVAULT_CALL AddListener(IWeakRefListener* listener) override {
        const std::lock_guard guard(Lock);
        Listeners.push_back(listener);
        return S_OK;
    }

    HRESULT TREEVAULT_CALL RemoveListener(IWeakRefListener* listener) override {
        const std::lock_guard guard(Lock);
        std::erase(Listeners, listener);
        return S_OK;
    }

    // Tells the listeners, in the order of their adding and under the lock, and forgets the owner.
    void TellDestroyed() {
        const std::lock_guard guard(Lock);
        const std::vector<IWeakRefListener*> listeners = std::exchange(Listeners, {});
        for (IWeakRefListener* listener : listeners)
            listener->OnDestroy(this);
        Owner = nullptr;
    }

protected:
    ~CWeakRefObj() = default;

private:
    T* Owner;                  // null once the owner is gone
    std::recursive_mutex Lock; // a listener may come back while it is told
    std::vector<IWeakRefListener*> Listeners;
};

} // namespace Detail

// A member of a class with weak references. The class calls TellDestroyed as the last step of its
// destruction.
template <class T>
class WeakReferenceHolder {
public:
    WeakReferenceHolder() = default;
    WeakReferenceHolder(const WeakReferenceHolder&) = delete;
    WeakReferenceHolder& operator=(const WeakReferenceHolder&) = delete;

    // `out` receives the weak reference of `owner`, made by the first caller, with a reference for
    // the caller.
    HRESULT Get(T* owner, IWeakRef** out) {
        using WeakObject = Detail::CWeakRefObj<T>;
        WeakObject* held = Object.load(std::memory_order_acquire);
        if (!held) {
            Ref<WeakObject> made = MakeComponent<WeakObject>(owner);
            if (Object.compare_exchange_strong(held, made.Get(), std::memory_order_acq_rel))
                held = made.Detach();
        }
        held->CountUp();
        *out = held;
        return S_OK;
    }

    void TellDestroyed() {
        if (Detail::CWeakRefObj<T>* held = Object.exchange(nullptr)) {
            held->TellDestroyed();
            held->Release();
        }
    }

private:
    std::atomic<Detail::CWeakRefObj<T>*> Object{nullptr};
};

} // namespace treevault

#endif
