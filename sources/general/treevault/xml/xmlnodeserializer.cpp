// SPDX-License-Identifier: MIT
// The operations of a serialization context.
#include "general/treevault/xml/xmlnodeserializer.h"

#include "common/errorhandling.h"

namespace treevault {

CXMLNodeSerializer::CXMLNodeSerializer(NodeTextWriteCallback write, void* writeContext,
                                       uint32_t flags)
    : Writer(std::make_unique<XmlNodeWriter>(write, writeContext, flags)) {
    Options.FullPathForRoots = (flags & NodeSerializerFlagFullPath) != 0;
}

HRESULT CXMLNodeSerializer::Lookup(const GUID* iid, void** out) noexcept {
    return LookupInterface(
        iid, out, this, InterfaceEntry{IID_INodeSerializer, static_cast<INodeSerializer*>(this)});
}

HRESULT CXMLNodeSerializer::SerializeNodes(IACNode** nodes, uint64_t count, uint64_t depth) {
    return Boundary([&] {
        XmlNodeWriter& writer = OpenWriter();
        for (uint64_t index = 0; index < count; ++index) {
            CheckOutPointer(nodes[index]);
            WalkNode(Options, writer, nodes[index], depth, Options.FullPathForRoots);
        }
    });
}

HRESULT CXMLNodeSerializer::Finalize() {
    return Boundary([&] {
        OpenWriter().Finalize();
        Writer.reset();
    });
}

XmlNodeWriter& CXMLNodeSerializer::OpenWriter() const {
    if (!Writer)
        ThrowHr(TREEVAULT_E_CONTEXT_FINISHED);
    return *Writer;
}

} // namespace treevault
