// SPDX-License-Identifier: MIT
// The context behind AcnStartSerialization.
#ifndef TREEVAULT_XML_XMLNODESERIALIZER_H
#define TREEVAULT_XML_XMLNODESERIALIZER_H

#include "common/components/componentobject.h"
#include "general/treevault/xml/nodewalk.h"
#include "general/treevault/xml/xmlnodewriter.h"

#include <memory>

namespace treevault {

class CXMLNodeSerializer : public ComponentHead, public INodeSerializer {
public:
    using ComponentHead::AddRef;
    using ComponentHead::QueryInterface;
    using ComponentHead::Release;

    CXMLNodeSerializer(NodeTextWriteCallback write, void* writeContext, uint32_t flags);

    HRESULT Lookup(const GUID* iid, void** out) noexcept;

    HRESULT TREEVAULT_CALL SerializeNodes(IACNode** nodes, uint64_t count, uint64_t depth) override;
    HRESULT TREEVAULT_CALL Finalize() override;

    // For a context that is not finished, see XmlNodeWriter.
    void LimitText(size_t most) const noexcept { Writer->LimitText(most); }

protected:
    ~CXMLNodeSerializer() = default;

private:
    // Raises 0x80040207 when the context is finished.
    XmlNodeWriter& OpenWriter() const;

    std::unique_ptr<XmlNodeWriter> Writer; // null when the context is finished
    NodeWalkOptions Options;
};

} // namespace treevault

#endif
