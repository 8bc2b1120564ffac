// SPDX-License-Identifier: MIT
// Retrieving: selection under the lock, hand-out in batches without it.
#include "common/errorhandling.h"
#include "common/functiontrace.h"
#include "general/treevault/nodes/nodereading.h"
#include "general/treevault/presentation/nodelogview.h"
#include "general/treevault/storage/nodesbypathfilter.h"

namespace treevault {

Ref<INodeFilter> CMemoryStorage::CreateFilter(IACNode* filter, bool handOutStored) {
    const AnyNode node = AnyNode::Share(filter);
    AttributeTable parameters;
    WideString type;
    if (const CACNodeImpl* const own = node.Own())
        own->GetContent(parameters, type);
    else
        type = WideString(ReadType(filter));
    if (!EqualText(type, TREEVAULT_FILTER_BY_PATH))
        ThrowHr(TREEVAULT_E_STG_BAD_FILTER);
    return Ref<INodeFilter>::Attach(
        MakeComponent<CNodesByPathFilter>(filter, std::move(parameters), handOutStored).Detach());
}

HRESULT CMemoryStorage::RetrieveData(IACNode* filter, IRetrievalContext** context, IACNode** nodes,
                                     uint64_t maxNodes, uint64_t* retrieved) {
    const auto writeName = [](WideStream& line) { line << TV_W("CMemoryStorage::RetrieveData"); };
    return NamedBoundary(SeverityDbg2, writeName, [&] {
        const FunctionTrace trace(TV_W("CMemoryStorage::RetrieveData"), SeverityDbg2);
        LogNode(SeverityDbg2, TV_W("Filter: "), filter);
        CheckOutPointer(filter);
        CheckOutPointer(nodes);
        Ref<INodeFilter> selection = CreateFilter(filter, false);
        {
            const StorageLock::Shared guard(Lock);
            selection->Prepare(*this);
        }
        HRES{static_cast<INodeStorage*>(this)->RetrieveNextData(selection.Get(), nodes, maxNodes,
                                                                retrieved)};
        if (context) {
            *context = selection.Detach();
            LogPointer(TV_W("RetrievalContext: "), *context);
        }
    });
}

HRESULT CMemoryStorage::RetrieveNextData(IRetrievalContext* context, IACNode** nodes,
                                         uint64_t maxNodes, uint64_t* retrieved) {
    const auto writeName = [](WideStream& line) {
        line << TV_W("CMemoryStorage::RetrieveNextData");
    };
    return NamedBoundary(SeverityDbg2, writeName, [&] {
        const FunctionTrace trace(TV_W("CMemoryStorage::RetrieveNextData"), SeverityDbg2);
        LogPointer(TV_W("RetrievalContext: "), context);
        LogTraced(SeverityDbg2,
                  [&](WideStream& line) { line << TV_W("MaxNodesCount: ") << maxNodes; });
        CheckOutPointer(context);
        CheckOutPointer(nodes);
        Ref<INodeFilter> selection;
        HRES{context->QueryInterface(&IID_INodeFilter, reinterpret_cast<void**>(selection.Put()))};
        if (maxNodes > 0x1FFFFFFFFFFFFFFF)
            ThrowHr(E_INVALIDARG);
        // Grows as nodes come: callers may ask for more than there are.
        constexpr size_t inside = 16;
        InlineMemory<inside * sizeof(NodeRef)> memory;
        std::pmr::vector<NodeRef> batch(memory.Resource());
        batch.reserve(inside);
        while (batch.size() < maxNodes) {
            NodeRef node;
            selection->GetNext(node.Put());
            if (!node)
                break;
            LogNode(SeverityDbg3, TV_W("Retreived node: "), node.Get());
            batch.push_back(std::move(node));
        }
        for (size_t at = 0; at < batch.size(); ++at)
            nodes[at] = batch[at].Detach();
        if (retrieved)
            *retrieved = batch.size();
    });
}

} // namespace treevault
