// SPDX-License-Identifier: MIT
// The sinks of a storage, themselves behind the interface of a sink.
#ifndef TREEVAULT_STORAGE_MODIFYSINKPOOLIMPL_H
#define TREEVAULT_STORAGE_MODIFYSINKPOOLIMPL_H

#include "common/components/componentobject.h"
#include "platform/readerwriterlock.h"

#include <treevault/storage.h>

#include <map>

namespace treevault {

class CInnerModifySinkPool : public ComponentHead, public IModifySink, public IModifySinkRegistry {
public:
    using ComponentHead::AddRef;
    using ComponentHead::QueryInterface;
    using ComponentHead::Release;

    HRESULT Lookup(const GUID* iid, void** out) noexcept;

    HRESULT TREEVAULT_CALL OnStart() override;
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification* notification) override;
    HRESULT TREEVAULT_CALL OnPreCommit() override;
    void TREEVAULT_CALL OnFinish(int32_t result) override;

    // Without the lock: whoever comes or goes at the same time is told or not.
    bool HasSinks() const noexcept { return SinkCount.load(std::memory_order_acquire) != 0; }

    HRESULT TREEVAULT_CALL RegisterSink(IModifySink* sink, GUID* id) override;
    HRESULT TREEVAULT_CALL UnregisterSink(const GUID* id) override;

protected:
    ~CInnerModifySinkPool() = default;

private:
    class FanOut;

    struct GuidLess {
        bool operator()(const GUID& left, const GUID& right) const noexcept {
            return std::memcmp(&left, &right, sizeof(GUID)) < 0;
        }
    };

    template <class Call>
    HRESULT TellUntilFailure(const WCHAR* name, const Call& call);

    ReaderWriterLock Lock; // shared while sinks are told, exclusive while they come and go
    std::map<GUID, Ref<IModifySink>, GuidLess> Sinks;
    std::atomic<size_t> SinkCount{0};
};

} // namespace treevault

#endif
