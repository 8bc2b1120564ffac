// SPDX-License-Identifier: MIT
// The operation of a deserialization context.
#include "general/treevault/xml/xmlnodedeserializer.h"

#include "common/errorhandling.h"

namespace treevault {

CXMLNodeDeserializer::CXMLNodeDeserializer(NodeTextReadCallback read, void* readContext,
                                           uint32_t flags)
    : Reader(std::make_unique<XmlNodeReader>(read, readContext, flags)) {}

HRESULT CXMLNodeDeserializer::Lookup(const GUID* iid, void** out) noexcept {
    return LookupInterface(
        iid, out, this,
        InterfaceEntry{IID_INodeDeserializer, static_cast<INodeDeserializer*>(this)});
}

HRESULT CXMLNodeDeserializer::DeserializeNodes(IACNode** nodes, uint64_t count,
                                               uint64_t* retrieved) {
    return Boundary([&] {
        if (!Reader)
            ThrowHr(TREEVAULT_E_CONTEXT_FINISHED);
        std::vector<Ref<CACNodeImpl>> batch;
        while (batch.size() < count) {
            // The place comes first: a tree that was read must not be lost for want of one.
            batch.emplace_back();
            batch.back() = Reader->ReadNextNode();
            if (!batch.back()) {
                batch.pop_back();
                break;
            }
        }
        // Nothing fails from here on.
        for (size_t index = 0; index < batch.size(); ++index)
            nodes[index] = batch[index].Detach();
        if (retrieved)
            *retrieved = batch.size();
    });
}

} // namespace treevault
