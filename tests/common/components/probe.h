// SPDX-License-Identifier: MIT
// A small component class for tests: it notes in a journal what happens to it.
#ifndef TREEVAULT_TESTS_COMMON_COMPONENTS_PROBE_H
#define TREEVAULT_TESTS_COMMON_COMPONENTS_PROBE_H

#include "common/components/weakref.h"

#include <string>
#include <vector>

namespace treevault::tests {

inline constexpr GUID IID_IProbe = {
    0xA0000001, 0x0002, 0x0003, {0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B}};
inline constexpr GUID IID_Unknown = {
    0xA0000001, 0x0002, 0x0003, {0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0C}};

struct IProbe : IComponentUnknown {
    virtual int32_t TREEVAULT_CALL Number() = 0;

protected:
    ~IProbe() = default;
};

struct Journal {
    std::vector<std::string> Entries;
    IWeakRef* Weak = nullptr; // resolved by each entry, when set

    // The event, the number of live components, and the count of the object.
    void Note(const char* event, uint32_t count) {
        std::string entry = event;
        entry += " count " + std::to_string(count);
        if (Weak) {
            void* out = this;
            const HRESULT hr = Weak->Resolve(&IID_IProbe, &out);
            entry += hr == S_FALSE && out == nullptr ? " gone" : " alive";
        }
        Entries.push_back(entry);
    }
};

class Probe : public ComponentHead, public IProbe, public IWeakRefSource {
public:
    using ComponentHead::AddRef;
    using ComponentHead::QueryInterface;
    using ComponentHead::Release;

    explicit Probe(Journal& journal, int32_t number = 7)
        : Events(journal), Value(number), CountBefore(ComponentCount.load()) {
        Events.Note("constructed", References.load());
    }

    HRESULT Lookup(const GUID* iid, void** out) noexcept {
        return LookupInterface(
            iid, out, this, InterfaceEntry{IID_IProbe, static_cast<IProbe*>(this)},
            InterfaceEntry{IID_IWeakRefSource, static_cast<IWeakRefSource*>(this)});
    }

    void FinalRelease() noexcept { Events.Note("final release", References.load()); }

    int32_t TREEVAULT_CALL Number() override { return Value; }

    HRESULT TREEVAULT_CALL GetWeakReference(IWeakRef** out) override {
        return Holder.Get(this, out);
    }

    Journal& Events;
    int32_t Value;
    int32_t CountBefore; // live components while the class itself was constructed

protected:
    ~Probe() {
        Events.Note("destroyed", References.load());
        Holder.TellDestroyed();
    }

private:
    WeakReferenceHolder<Probe> Holder;
};

} // namespace treevault::tests

#endif
