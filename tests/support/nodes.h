// SPDX-License-Identifier: MIT
// Nodes as tests speak of them: handles that close themselves, texts, attributes and children as
// plain values.
#ifndef TREEVAULT_TESTS_SUPPORT_NODES_H
#define TREEVAULT_TESTS_SUPPORT_NODES_H

#include "support/results.h"

#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace treevault::tests {

#define W(text) TREEVAULT_WIDE(text)

// Owns one reference, or none. Copies are duplicates of the handle.
class Node {
public:
    Node() = default;
    explicit Node(IACNode* handle) : Handle(handle) {}
    Node(const Node& other) {
        if (other.Handle) {
            EXPECT_EQ(S_OK, AcnDuplicateNodeHandle(other.Handle, &Handle));
        }
    }
    Node(Node&& other) noexcept : Handle(std::exchange(other.Handle, nullptr)) {}
    Node& operator=(Node other) noexcept {
        std::swap(Handle, other.Handle);
        return *this;
    }
    ~Node() { AcnCloseNodeHandle(Handle); }

    operator IACNode*() const { return Handle; }
    IACNode* operator->() const { return Handle; }
    IACNode* Get() const { return Handle; }
    void Close() { AcnCloseNodeHandle(std::exchange(Handle, nullptr)); }
    IACNode* Detach() { return std::exchange(Handle, nullptr); }

    // The place for an out argument.
    IACNode** Put() {
        Close();
        return &Handle;
    }

private:
    IACNode* Handle = nullptr;
};

// What out arguments hold before a call that must not write them.
inline IACNode* Untouched() {
    static char somewhere;
    return reinterpret_cast<IACNode*>(&somewhere);
}

inline Node Create(const WCHAR* name = nullptr, const WCHAR* type = nullptr) {
    Node node;
    EXPECT_TRUE(Succeeds(AcnCreateNode, name, type, node.Put()));
    return node;
}

// Creates a node and adds it.
inline Node AddNew(IACNode* parent, const WCHAR* name, const WCHAR* type = nullptr) {
    Node node = Create(name, type);
    EXPECT_TRUE(Succeeds(AcnAddChild, parent, node));
    return node;
}

inline Node Clone(IACNode* node, uint64_t depth = TREEVAULT_ALL_LEVELS, uint32_t flags = 0) {
    Node clone;
    EXPECT_TRUE(Succeeds(AcnCloneNode, node, depth, flags, clone.Put()));
    return clone;
}

// A text out: asks for the size, then reads.
template <class Read>
Text ReadText(Read&& read) {
    size_t size = 0;
    EXPECT_EQ(CodeText(S_OK), CodeText(read(nullptr, &size)));
    Text text(size, W('?'));
    const size_t needed = size;
    EXPECT_EQ(CodeText(S_OK), CodeText(read(text.data(), &size)));
    EXPECT_EQ(needed, size);
    return text;
}

inline Text NameOf(IACNode* node, NodeNameKind kind) {
    Text text = ReadText(
        [&](WCHAR* buffer, size_t* size) { return AcnGetNodeName(node, kind, buffer, size); });
    EXPECT_EQ(text.back(), WCHAR(0));
    text.pop_back();
    return text;
}

inline Text Name(IACNode* node) {
    return NameOf(node, NameShort);
}

inline Text ParentPath(IACNode* node) {
    return NameOf(node, NameParentPath);
}

inline Text Path(IACNode* node) {
    return NameOf(node, NameFullPath);
}

inline Text Type(IACNode* node) {
    Text text =
        ReadText([&](WCHAR* buffer, size_t* size) { return AcnGetNodeType(node, buffer, size); });
    EXPECT_EQ(text.back(), WCHAR(0));
    text.pop_back();
    return text;
}

// --- Attributes ----------------------------------------------------------------------------------

// A typed value with bytes of its own.
struct Value {
    ValueType Tag = VtEmpty;
    std::string Bytes;

    friend bool operator==(const Value&, const Value&) = default;
    friend void PrintTo(const Value& value, std::ostream* out) {
        *out << "tag " << value.Tag << ", " << testing::PrintToString(value.Bytes);
    }
};

template <class Number>
Value NumberValue(ValueType tag, Number number) {
    return {tag, std::string(reinterpret_cast<const char*>(&number), sizeof number)};
}

inline Value Int32Value(int32_t number) {
    return NumberValue(VtInt32, number);
}

inline Value TextValue(const Text& text) {
    return {VtStringW, std::string(reinterpret_cast<const char*>(text.c_str()),
                                   (text.size() + 1) * sizeof(WCHAR))};
}

inline HRESULT Set(IACNode* node, const WCHAR* name, const Value& value) {
    return AcnSetAttribute(node, name, value.Tag, value.Bytes.data(), value.Bytes.size());
}

inline HRESULT SetInt(IACNode* node, const WCHAR* name, int32_t number) {
    return AcnSetAttribute(node, name, VtInt32, &number, sizeof number);
}

inline bool HasAttribute(IACNode* node, const WCHAR* name) {
    return AcnGetAttribute(node, name, nullptr, nullptr, nullptr, nullptr) == S_OK;
}

inline Value Get(IACNode* node, const WCHAR* name) {
    Value value;
    size_t size = 0;
    EXPECT_TRUE(Succeeds(AcnGetAttribute, node, name, nullptr, nullptr, &size, &value.Tag));
    value.Bytes.resize(size);
    EXPECT_TRUE(Succeeds(AcnGetAttribute, node, name, nullptr, value.Bytes.data(), &size, nullptr));
    EXPECT_EQ(value.Bytes.size(), size);
    return value;
}

inline std::vector<Text> SplitNames(const Text& list) {
    std::vector<Text> names;
    for (size_t at = 0; at < list.size(); at += names.back().size() + 1)
        names.emplace_back(list.c_str() + at);
    return names;
}

inline std::vector<Text> AttributeNames(IACNode* node) {
    return SplitNames(ReadText(
        [&](WCHAR* buffer, size_t* size) { return AcnGetAttributeNames(node, buffer, size); }));
}

inline std::vector<Text> ModifiedNames(IACNode* node) {
    return SplitNames(ReadText([&](WCHAR* buffer, size_t* size) {
        return AcnGetModifiedAttributeNames(node, buffer, size);
    }));
}

// 0 or 1; null for any attribute.
inline uint32_t ModifiedState(IACNode* node, const WCHAR* name) {
    uint32_t state = 77;
    EXPECT_TRUE(Succeeds(AcnGetModifiedState, node, name, &state));
    return state;
}

// Whether the node has an attribute table at all: asking one without entries is a miss.
enum class Table { None, Empty, Filled };

inline Table TableOf(IACNode* node) {
    if (!AttributeNames(node).empty())
        return Table::Filled;
    uint32_t state = 77;
    return AcnGetModifiedState(node, nullptr, &state) == S_OK ? Table::None : Table::Empty;
}

// --- Children ------------------------------------------------------------------------------------

inline size_t ChildCount(IACNode* node) {
    size_t count = 777777;
    EXPECT_TRUE(Succeeds(AcnGetChildCount, node, &count));
    return count;
}

inline Node ChildAt(IACNode* node, uint64_t index) {
    Node child;
    EXPECT_TRUE(Succeeds(AcnGetChildByIndex, node, index, child.Put()));
    return child;
}

// Null when there is none.
inline Node FindChild(IACNode* node, const WCHAR* name) {
    Node child;
    const HRESULT hr = AcnGetChildByName(node, name, child.Put());
    EXPECT_TRUE(hr == S_OK || hr == TREEVAULT_E_NOT_FOUND) << CodeText(hr);
    return child;
}

// Null for a free node.
inline Node Parent(IACNode* node) {
    IACNode* parent = Untouched();
    EXPECT_TRUE(Succeeds(AcnGetParent, node, &parent));
    return Node(parent);
}

inline std::vector<Text> ChildNames(IACNode* node) {
    std::vector<Text> names;
    const size_t count = ChildCount(node);
    for (size_t i = 0; i < count; ++i)
        names.push_back(Name(ChildAt(node, i)));
    return names;
}

using Names = std::vector<Text>;

// List, index by name, parents and paths of the children agree.
inline void ExpectChildrenInStep(IACNode* node) {
    const Text path = Path(node);
    const size_t count = ChildCount(node);
    for (size_t i = 0; i < count; ++i) {
        const Node child = ChildAt(node, i);
        const Text name = Name(child);
        EXPECT_EQ(child.Get(), FindChild(node, name.c_str()).Get()) << Narrow(name);
        EXPECT_EQ(node, Parent(child).Get()) << Narrow(name);
        EXPECT_EQ(path + W("\\") + name, Path(child));
    }
}

// How many components live in the process.
inline int32_t LiveComponents() {
    IComponentsModule* module = nullptr;
    EXPECT_EQ(S_OK, GetComponentsModuleObject(&module));
    module->LockModule();
    return module->UnlockModule();
}

// The references that a node has.
inline uint32_t References(IACNode* node) {
    node->AddRef();
    return node->Release();
}

// A test that leaves as many components as it found, what the fixtures derived from it hold
// included.
class NodeTest : public testing::Test {
protected:
    ~NodeTest() override { EXPECT_EQ(Before, LiveComponents()) << "nodes leaked"; }

    // The components made since the beginning that are still there.
    int32_t Made() const { return LiveComponents() - Before; }

private:
    const int32_t Before = LiveComponents();
};

} // namespace treevault::tests

#endif
