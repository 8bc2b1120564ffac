// SPDX-License-Identifier: MIT
// A node of another module, which a storage calls itself.
#ifndef TREEVAULT_TESTS_STORAGE_OUTSIDERNODE_H
#define TREEVAULT_TESTS_STORAGE_OUTSIDERNODE_H

#include "support/storage.h"

namespace treevault::tests {

// Passes reads on to a node of the library; clones are as told.
class OutsiderNode final : public IACNode {
public:
    explicit OutsiderNode(const Node& target) : Target(target) {}

    HRESULT TypeResult = S_OK, ValueResult = S_OK, CloneResult = S_OK; // failures of these reads
    IACNode* CloneGiven = nullptr;                                     // in place of a real clone
    size_t SizeTold = 0; // in place of real sizes of texts and numbers of children
    std::function<void()> OnRead, OnClone;
    uint32_t References = 1;
    bool PassesIdentityOn = false; // what the library asks about itself reaches its own node

    uint32_t TREEVAULT_CALL AddRef() override { return ++References; }
    uint32_t TREEVAULT_CALL Release() override { return --References; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID* iid, void** out) override {
        return PassesIdentityOn ? Target->QueryInterface(iid, out) : E_NOINTERFACE;
    }
    HRESULT TREEVAULT_CALL GetName(NodeNameKind kind, WCHAR* buffer, size_t* size) override {
        return SizeTold ? Tell(size) : Target->GetName(kind, buffer, size);
    }
    HRESULT TREEVAULT_CALL SetName(NodeNameKind, const WCHAR*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL GetType(WCHAR* buffer, size_t* size) override {
        return Target->GetType(buffer, size);
    }
    HRESULT TREEVAULT_CALL SetType(const WCHAR*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL SetAttribute(const WCHAR*, ValueType, const void*, size_t) override {
        return E_NOTIMPL;
    }
    HRESULT TREEVAULT_CALL DeleteAttribute(const WCHAR*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL GetAttribute(const WCHAR* name, const ValueType* wanted, void* buffer,
                                        size_t* size, ValueType* stored) override {
        if (OnRead)
            OnRead();
        if (SizeTold && size)
            return Tell(size);
        const HRESULT result = size ? ValueResult : TypeResult;
        return FAILED(result) ? result : Target->GetAttribute(name, wanted, buffer, size, stored);
    }
    HRESULT TREEVAULT_CALL GetAttributeNames(WCHAR* buffer, size_t* size) override {
        return Target->GetAttributeNames(buffer, size);
    }
    HRESULT TREEVAULT_CALL SetModifiedState(const WCHAR*, uint32_t) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL GetModifiedState(const WCHAR*, uint32_t*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL GetModifiedAttributeNames(WCHAR*, size_t*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL AddChild(IACNode*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL RemoveChild(IACNode*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL RemoveChildByIndex(uint64_t) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL GetChildCount(size_t* count) override {
        if (!SizeTold)
            return Target->GetChildCount(count);
        *count = SizeTold;
        return S_OK;
    }
    HRESULT TREEVAULT_CALL GetChildByIndex(uint64_t index, IACNode** child) override {
        return Target->GetChildByIndex(index, child);
    }
    HRESULT TREEVAULT_CALL GetChildByName(const WCHAR* name, IACNode** child) override {
        return Target->GetChildByName(name, child);
    }
    HRESULT TREEVAULT_CALL GetParent(IACNode** parent) override {
        return Target->GetParent(parent);
    }
    HRESULT TREEVAULT_CALL Clone(uint64_t depth, uint32_t flags, IACNode** clone) override {
        if (OnClone)
            OnClone();
        if (FAILED(CloneResult))
            return CloneResult;
        if (!CloneGiven)
            return Target->Clone(depth, flags, clone);
        CloneGiven->AddRef();
        *clone = CloneGiven;
        return S_OK;
    }

private:
    HRESULT Tell(size_t* size) const {
        *size = SizeTold;
        return TREEVAULT_E_INSUFFICIENT_BUFFER;
    }

    Node Target;
};

} // namespace treevault::tests

#endif
