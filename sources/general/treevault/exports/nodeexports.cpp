// SPDX-License-Identifier: MIT
// The exported node functions. Each checks its handle and forwards; the operations behind them are
// the boundaries.
#include "common/errorhandling.h"
#include "general/treevault/exports/forward.h"
#include "general/treevault/nodes/acnodeimpl.h"
#include "general/treevault/presentation/nodelogview.h"

#include <treevault/serialization.h>
#include <treevault/storage.h>

#include <algorithm>

using namespace treevault;

extern "C" {

HRESULT TREEVAULT_CALL AcnCreateNode(const WCHAR* name, const WCHAR* type, IACNode** node) {
    return Boundary([&] {
        CheckOutPointer(node);
        *node = MakeComponent<CACNodeImpl>(name, type).Detach();
    });
}

HRESULT TREEVAULT_CALL AcnCloneNode(IACNode* node, uint64_t depth, uint32_t flags,
                                    IACNode** clone) {
    return Forward(node, &IACNode::Clone, depth, flags, clone);
}

HRESULT TREEVAULT_CALL AcnDuplicateNodeHandle(IACNode* node, IACNode** copy) {
    if (!node || !copy)
        return E_POINTER;
    node->AddRef();
    *copy = node;
    return S_OK;
}

HRESULT TREEVAULT_CALL StgDuplicateStorageHandle(INodeStorage* storage, INodeStorage** copy)
    __attribute__((alias("AcnDuplicateNodeHandle")));

// Knows its handle by the operations of IComponentUnknown only, so that it serves every kind.
void TREEVAULT_CALL AcnCloseNodeHandle(IACNode* node) {
    if (node)
        node->Release();
}

void TREEVAULT_CALL AcnCloseSerializationContext(INodeSerializer* context)
    __attribute__((alias("AcnCloseNodeHandle")));
void TREEVAULT_CALL AcnCloseDeserializationContext(INodeDeserializer* context)
    __attribute__((alias("AcnCloseNodeHandle")));
void TREEVAULT_CALL StgCloseStorageHandle(INodeStorage* storage)
    __attribute__((alias("AcnCloseNodeHandle")));

HRESULT TREEVAULT_CALL AcnGetNodeName(IACNode* node, NodeNameKind kind, WCHAR* buffer,
                                      size_t* size) {
    return Forward(node, &IACNode::GetName, kind, buffer, size);
}

HRESULT TREEVAULT_CALL AcnSetNodeName(IACNode* node, NodeNameKind kind, const WCHAR* name) {
    return Forward(node, &IACNode::SetName, kind, name);
}

HRESULT TREEVAULT_CALL AcnGetNodeType(IACNode* node, WCHAR* buffer, size_t* size) {
    return Forward(node, &IACNode::GetType, buffer, size);
}

HRESULT TREEVAULT_CALL AcnSetNodeType(IACNode* node, const WCHAR* type) {
    return Forward(node, &IACNode::SetType, type);
}

HRESULT TREEVAULT_CALL AcnSetAttribute(IACNode* node, const WCHAR* name, ValueType type,
                                       const void* data, size_t size) {
    return Forward(node, &IACNode::SetAttribute, name, type, data, size);
}

HRESULT TREEVAULT_CALL AcnDeleteAttribute(IACNode* node, const WCHAR* name) {
    return Forward(node, &IACNode::DeleteAttribute, name);
}

HRESULT TREEVAULT_CALL AcnGetAttribute(IACNode* node, const WCHAR* name,
                                       const ValueType* wantedType, void* buffer, size_t* size,
                                       ValueType* storedType) {
    return Forward(node, &IACNode::GetAttribute, name, wantedType, buffer, size, storedType);
}

HRESULT TREEVAULT_CALL AcnGetAttributeNames(IACNode* node, WCHAR* buffer, size_t* size) {
    return Forward(node, &IACNode::GetAttributeNames, buffer, size);
}

HRESULT TREEVAULT_CALL AcnSetModifiedState(IACNode* node, const WCHAR* name, uint32_t state) {
    return Forward(node, &IACNode::SetModifiedState, name, state);
}

HRESULT TREEVAULT_CALL AcnGetModifiedState(IACNode* node, const WCHAR* name, uint32_t* state) {
    return Forward(node, &IACNode::GetModifiedState, name, state);
}

HRESULT TREEVAULT_CALL AcnGetModifiedAttributeNames(IACNode* node, WCHAR* buffer, size_t* size) {
    return Forward(node, &IACNode::GetModifiedAttributeNames, buffer, size);
}

HRESULT TREEVAULT_CALL AcnAddChild(IACNode* node, IACNode* child) {
    return Forward(node, &IACNode::AddChild, child);
}

HRESULT TREEVAULT_CALL AcnRemoveChild(IACNode* node, IACNode* child) {
    return Forward(node, &IACNode::RemoveChild, child);
}

HRESULT TREEVAULT_CALL AcnRemoveChildByIndex(IACNode* node, uint64_t index) {
    return Forward(node, &IACNode::RemoveChildByIndex, index);
}

HRESULT TREEVAULT_CALL AcnGetChildCount(IACNode* node, size_t* count) {
    return Forward(node, &IACNode::GetChildCount, count);
}

HRESULT TREEVAULT_CALL AcnGetChildByIndex(IACNode* node, uint64_t index, IACNode** child) {
    return Forward(node, &IACNode::GetChildByIndex, index, child);
}

HRESULT TREEVAULT_CALL AcnGetChildByName(IACNode* node, const WCHAR* name, IACNode** child) {
    return Forward(node, &IACNode::GetChildByName, name, child);
}

HRESULT TREEVAULT_CALL AcnGetParent(IACNode* node, IACNode** parent) {
    return Forward(node, &IACNode::GetParent, parent);
}

HRESULT TREEVAULT_CALL AcnGetStringPresentation(IACNode* node, uint32_t mode, WCHAR* buffer,
                                                size_t* size) {
    return Boundary([&]() -> HRESULT {
        const WideText text = NodeLogView(node, mode == 1).ToText();
        const size_t needed = text.size() + 1;
        const bool fits = buffer && needed <= *size;
        *size = needed;
        if (!fits)
            return TREEVAULT_E_INSUFFICIENT_BUFFER;
        std::copy_n(text.c_str(), needed, buffer);
        return S_OK;
    });
}

} // extern "C"
