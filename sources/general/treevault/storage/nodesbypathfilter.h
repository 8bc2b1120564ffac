// SPDX-License-Identifier: MIT
// Filters: what a filter node selects, and the handing out of it.
#ifndef TREEVAULT_STORAGE_NODESBYPATHFILTER_H
#define TREEVAULT_STORAGE_NODESBYPATHFILTER_H

#include "common/inlinememory.h"
#include "general/treevault/storage/memorystorage.h"

#include <vector>

namespace treevault {

inline constexpr GUID IID_INodeFilter = {
    0x4F5F4FD8, 0x2195, 0x4BC3, {0xBF, 0xD8, 0x78, 0x87, 0xFC, 0x21, 0x19, 0xF1}};

// What a caller holds as a retrieval context. Used from one thread at a time; failures are raised.
struct INodeFilter : IComponentUnknown {
    // Selects, anew at each call. The caller holds the storage's lock, of either side.
    virtual void TREEVAULT_CALL Prepare(CMemoryStorage& storage) = 0;

    // Null at the end.
    virtual void TREEVAULT_CALL GetNext(IACNode** node) = 0;

protected:
    ~INodeFilter() = default;
};

// Selects the node at a path, or the children of that place.
class CMemoryStorage::CNodesByPathFilter : public ComponentHead, public INodeFilter {
public:
    using ComponentHead::AddRef;
    using ComponentHead::QueryInterface;
    using ComponentHead::Release;

    // `parameters` are the attributes of a filter node of the library.
    CNodesByPathFilter(IACNode* filter, AttributeTable parameters, bool handOutStored);

    HRESULT Lookup(const GUID* iid, void** out) noexcept;
    void TREEVAULT_CALL Prepare(CMemoryStorage& storage) override;
    void TREEVAULT_CALL GetNext(IACNode** node) override;

protected:
    ~CNodesByPathFilter() = default;

private:
    bool HandOutStored;        // otherwise clones
    AttributeTable Parameters; // none unless the path lies in it
    WideText ReadPath;         // empty if it does
    WideView NodePath;
    bool IsParent = false;
    int64_t MaxDepth = -1;
    static constexpr size_t QueuedInside = 8;
    InlineMemory<QueuedInside * sizeof(NodeRef)> QueueMemory;
    std::pmr::vector<NodeRef> NodeQueue{
        QueueMemory.Resource()}; // in front of NextInQueue they are handed out
    size_t NextInQueue = 0;
};

} // namespace treevault

#endif
