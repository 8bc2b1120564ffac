// SPDX-License-Identifier: MIT
// The flat functions of XML interchange. Those that close a context stand with the nodes.
#include "common/errorhandling.h"
#include "general/treevault/xml/xmlnodedeserializer.h"
#include "general/treevault/xml/xmlnodeserializer.h"

#include <treevault/serialization.h>

namespace {

using namespace treevault;

// What AcnStartSerialization and AcnStartDeserialization share. An unknown format gives a null
// context and no failure.
template <class Context, class Interface, class Callback>
HRESULT StartContext(const GUID& iid, uint32_t format, uint32_t flags, Callback callback,
                     void* callbackContext, Interface** context) {
    return Boundary([&] {
        CheckOutPointer(reinterpret_cast<const void*>(callback));
        CheckOutPointer(context);
        void* made = nullptr;
        if (format == TREEVAULT_FORMAT_XML)
            HRES hr = CreateComponent<Context>(&iid, &made, callback, callbackContext, flags);
        *context = static_cast<Interface*>(made);
    });
}

// The first operation of its own that a context has stands fourth in the table of its interface,
// whichever of the two interfaces that is.
HRESULT CallFirstOperation(void* context, IACNode** nodes, uint64_t count, uint64_t last) {
    using Operation = HRESULT(TREEVAULT_CALL*)(void*, IACNode**, uint64_t, uint64_t);
    const Operation* const table = *static_cast<const Operation* const*>(context);
    return table[3](context, nodes, count, last);
}

} // namespace

extern "C" {

HRESULT TREEVAULT_CALL AcnStartSerialization(uint32_t format, uint32_t flags,
                                             NodeTextWriteCallback write, void* writeContext,
                                             INodeSerializer** context) {
    return StartContext<CXMLNodeSerializer>(IID_INodeSerializer, format, flags, write, writeContext,
                                            context);
}

HRESULT TREEVAULT_CALL AcnStartDeserialization(uint32_t format, uint32_t flags,
                                               NodeTextReadCallback read, void* readContext,
                                               INodeDeserializer** context) {
    return StartContext<CXMLNodeDeserializer>(IID_INodeDeserializer, format, flags, read,
                                              readContext, context);
}

HRESULT TREEVAULT_CALL AcnSerializeNodes(INodeSerializer* context, IACNode** nodes, uint64_t count,
                                         uint64_t depth) {
    return Boundary([&] {
        CheckOutPointer(context);
        CheckOutPointer(nodes);
        HRES hr = CallFirstOperation(context, nodes, count, depth);
    });
}

HRESULT TREEVAULT_CALL AcnFinalizeSerialization(INodeSerializer* context) {
    return context ? context->Finalize() : E_POINTER;
}

// One function under two names: the last argument is a number for the one and a pointer of the same
// size for the other.
#ifndef __clang__
#pragma GCC diagnostic ignored "-Wattribute-alias"
#endif
HRESULT TREEVAULT_CALL AcnDeserializeNodes(INodeDeserializer* context, IACNode** nodes,
                                           uint64_t count, uint64_t* retrieved)
    __attribute__((alias("AcnSerializeNodes")));

} // extern "C"
