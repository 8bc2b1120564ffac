// SPDX-License-Identifier: MIT
// A node interface that is implemented outside of the library. It remembers the last call and what
// came with it, and answers with a code of its own.
#ifndef TREEVAULT_TESTS_SUPPORT_FOREIGNNODE_H
#define TREEVAULT_TESTS_SUPPORT_FOREIGNNODE_H

#include <treevault/treevault.h>

#include <functional>
#include <sstream>
#include <string>

namespace treevault::tests {

// The result of every operation, one that the library does not have.
inline constexpr HRESULT ForeignResult = static_cast<HRESULT>(0x8004ABCDu);

class ForeignNode final : public IACNode {
public:
    // The call as "Operation(argument, argument)": pointers as they are, numbers in decimal.
    std::string LastCall;
    uint32_t References = 1;
    std::function<void()> WhenAsked; // for another interface

    template <class... Arguments>
    static std::string Call(const char* operation, Arguments... arguments) {
        std::ostringstream text;
        text << operation;
        ((text << ' ' << Plain(arguments)), ...);
        return text.str();
    }

    uint32_t TREEVAULT_CALL AddRef() override { return ++References; }
    uint32_t TREEVAULT_CALL Release() override { return --References; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID*, void**) override {
        if (WhenAsked)
            WhenAsked();
        return E_NOINTERFACE;
    }

    HRESULT TREEVAULT_CALL GetName(NodeNameKind kind, WCHAR* buffer, size_t* size) override {
        return Note("GetName", kind, buffer, size);
    }
    HRESULT TREEVAULT_CALL SetName(NodeNameKind kind, const WCHAR* name) override {
        return Note("SetName", kind, name);
    }
    HRESULT TREEVAULT_CALL GetType(WCHAR* buffer, size_t* size) override {
        return Note("GetType", buffer, size);
    }
    HRESULT TREEVAULT_CALL SetType(const WCHAR* type) override { return Note("SetType", type); }
    HRESULT TREEVAULT_CALL SetAttribute(const WCHAR* name, ValueType type, const void* data,
                                        size_t size) override {
        return Note("SetAttribute", name, type, data, size);
    }
    HRESULT TREEVAULT_CALL DeleteAttribute(const WCHAR* name) override {
        return Note("DeleteAttribute", name);
    }
    HRESULT TREEVAULT_CALL GetAttribute(const WCHAR* name, const ValueType* wantedType,
                                        void* buffer, size_t* size,
                                        ValueType* storedType) override {
        return Note("GetAttribute", name, wantedType, buffer, size, storedType);
    }
    HRESULT TREEVAULT_CALL GetAttributeNames(WCHAR* buffer, size_t* size) override {
        return Note("GetAttributeNames", buffer, size);
    }
    HRESULT TREEVAULT_CALL SetModifiedState(const WCHAR* name, uint32_t state) override {
        return Note("SetModifiedState", name, state);
    }
    HRESULT TREEVAULT_CALL GetModifiedState(const WCHAR* name, uint32_t* state) override {
        return Note("GetModifiedState", name, state);
    }
    HRESULT TREEVAULT_CALL GetModifiedAttributeNames(WCHAR* buffer, size_t* size) override {
        return Note("GetModifiedAttributeNames", buffer, size);
    }
    HRESULT TREEVAULT_CALL AddChild(IACNode* child) override { return Note("AddChild", child); }
    HRESULT TREEVAULT_CALL RemoveChild(IACNode* child) override {
        return Note("RemoveChild", child);
    }
    HRESULT TREEVAULT_CALL RemoveChildByIndex(uint64_t index) override {
        return Note("RemoveChildByIndex", index);
    }
    HRESULT TREEVAULT_CALL GetChildCount(size_t* count) override {
        return Note("GetChildCount", count);
    }
    HRESULT TREEVAULT_CALL GetChildByIndex(uint64_t index, IACNode** child) override {
        return Note("GetChildByIndex", index, child);
    }
    HRESULT TREEVAULT_CALL GetChildByName(const WCHAR* name, IACNode** child) override {
        return Note("GetChildByName", name, child);
    }
    HRESULT TREEVAULT_CALL GetParent(IACNode** parent) override {
        return Note("GetParent", parent);
    }
    HRESULT TREEVAULT_CALL Clone(uint64_t depth, uint32_t flags, IACNode** clone) override {
        return Note("Clone", depth, flags, clone);
    }

private:
    static const void* Plain(const void* pointer) { return pointer; }
    static uint64_t Plain(uint64_t number) { return number; }

    template <class... Arguments>
    HRESULT Note(Arguments... arguments) {
        LastCall = Call(arguments...);
        return ForeignResult;
    }
};

} // namespace treevault::tests

#endif
