// SPDX-License-Identifier: MIT
// The context behind AcnStartDeserialization.
#ifndef TREEVAULT_XML_XMLNODEDESERIALIZER_H
#define TREEVAULT_XML_XMLNODEDESERIALIZER_H

#include "common/components/componentobject.h"
#include "general/treevault/xml/xmlnodereader.h"

#include <memory>

namespace treevault {

class CXMLNodeDeserializer : public ComponentHead, public INodeDeserializer {
public:
    using ComponentHead::AddRef;
    using ComponentHead::QueryInterface;
    using ComponentHead::Release;

    // Raises what XmlNodeReader does.
    CXMLNodeDeserializer(NodeTextReadCallback read, void* readContext, uint32_t flags);

    HRESULT Lookup(const GUID* iid, void** out) noexcept;

    HRESULT TREEVAULT_CALL DeserializeNodes(IACNode** nodes, uint64_t count,
                                            uint64_t* retrieved) override;

protected:
    ~CXMLNodeDeserializer() = default;

private:
    std::unique_ptr<XmlNodeReader> Reader;
};

} // namespace treevault

#endif
