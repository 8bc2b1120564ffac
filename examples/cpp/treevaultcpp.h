// SPDX-License-Identifier: MIT
// What a C++ client may put around the flat interface: handles that close themselves, and failures
// as exceptions.
#ifndef TREEVAULT_EXAMPLE_TREEVAULTCPP_H
#define TREEVAULT_EXAMPLE_TREEVAULTCPP_H

#include <treevault/treevault.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace example {

using WideText = std::basic_string<WCHAR>;

struct CloseHandle {
    void operator()(IACNode* node) const { AcnCloseNodeHandle(node); }
    void operator()(IErrorInfo* record) const { EhReleaseErrorContext(record); }
    void operator()(INodeStorage* storage) const { StgCloseStorageHandle(storage); }
    void operator()(IComponentUnknown* group) const { StgCloseOperationsGroup(nullptr, group); }
};

using Node = std::unique_ptr<IACNode, CloseHandle>;
using Storage = std::unique_ptr<INodeStorage, CloseHandle>;
using Group = std::unique_ptr<IOperationsGroup, CloseHandle>;

inline std::string ToUtf8(const WideText& wide) {
    uint64_t size = 0;
    const uint64_t wideSize = (wide.size() + 1) * sizeof(WCHAR);
    AcnConvertData(VtStringW, wide.c_str(), wideSize, VtStringA, nullptr, &size);
    std::string text(static_cast<size_t>(size), '\0');
    AcnConvertData(VtStringW, wide.c_str(), wideSize, VtStringA, text.data(), &size);
    text.resize(text.empty() ? 0 : text.size() - 1);
    return text;
}

// The code and the text of a failure, taken from the thread's error record.
class Error : public std::runtime_error {
public:
    explicit Error(HRESULT code) : std::runtime_error(MakeText(code)), Code(code) {}

    const HRESULT Code;

private:
    static std::string MakeText(HRESULT code) {
        IErrorInfo* pending = nullptr;
        EhGetErrorContext(nullptr, &pending);
        const std::unique_ptr<IErrorInfo, CloseHandle> record(pending);
        size_t size = 0;
        EhMakeErrorText(code, ErrorTextWithoutDetails, pending, nullptr, nullptr, &size);
        WideText text(size, WCHAR());
        EhMakeErrorText(code, ErrorTextWithoutDetails, pending, nullptr, text.data(), &size);
        text.resize(size - 1);
        return ToUtf8(text);
    }
};

inline void Check(HRESULT result) {
    if (FAILED(result))
        throw Error(result);
}

inline Node Create(const WCHAR* name, const WCHAR* type = nullptr) {
    IACNode* node = nullptr;
    Check(AcnCreateNode(name, type, &node));
    return Node(node);
}

inline Node Clone(const Node& node, uint64_t depth = TREEVAULT_ALL_LEVELS) {
    IACNode* clone = nullptr;
    Check(AcnCloneNode(node.get(), depth, 0, &clone));
    return Node(clone);
}

inline void Set(const Node& node, const WCHAR* name, int32_t value) {
    Check(AcnSetAttribute(node.get(), name, VtInt32, &value, sizeof(value)));
}

inline void Set(const Node& node, const WCHAR* name, const std::string& text) {
    Check(AcnSetAttribute(node.get(), name, VtStringA, text.c_str(), text.size() + 1));
}

// Any attribute that is not an array, as text.
inline std::string Get(const Node& node, const WCHAR* name) {
    const ValueType wanted = VtStringA;
    size_t size = 0;
    const HRESULT result = AcnGetAttribute(node.get(), name, &wanted, nullptr, &size, nullptr);
    if (result != TREEVAULT_E_INSUFFICIENT_BUFFER)
        Check(result);
    std::string text(size, '\0');
    Check(AcnGetAttribute(node.get(), name, &wanted, text.data(), &size, nullptr));
    text.resize(size - 1);
    return text;
}

inline Storage CreateStorage() {
    INodeStorage* storage = nullptr;
    Check(StgCreateStorage(TREEVAULT_MEMORY_STORAGE, nullptr, nullptr, 0, &storage));
    return Storage(storage);
}

inline Group CreateGroup(const Storage& storage) {
    IOperationsGroup* group = nullptr;
    Check(StgCreateOperationsGroup(storage.get(), &group));
    return Group(group);
}

// With a group, when that is finalized.
inline void Store(const Storage& storage, const Node& node, const Group& group = nullptr) {
    IACNode* nodes[] = {node.get()};
    Check(StgStoreData(storage.get(), group.get(), StoreMergeAll, nodes, 1));
}

} // namespace example

#endif
