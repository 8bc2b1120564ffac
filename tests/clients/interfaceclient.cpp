// SPDX-License-Identifier: MIT
// A client in C++17 that works through the interfaces: each operation must stand at its place in
// the table of operations.
#include <treevault/treevault.h>

#include <cstdio>
#include <string>
#include <type_traits>

namespace {

using WideText = std::basic_string<WCHAR>;

int failures = 0;

void Expect(bool holds, const char* condition, int line) {
    if (holds)
        return;
    std::printf("%s:%d: does not hold: %s\n", __FILE__, line, condition);
    ++failures;
}

#define EXPECT(condition) Expect((condition), #condition, __LINE__)

IACNode* Create(const WCHAR* name) {
    IACNode* node = nullptr;
    EXPECT(AcnCreateNode(name, nullptr, &node) == S_OK);
    return node;
}

// What an operation of the interface writes as text.
template <typename Operation>
WideText ReadText(Operation&& operation) {
    WCHAR buffer[64] = {};
    size_t size = 64;
    EXPECT(operation(buffer, &size) == S_OK);
    return buffer;
}

void TestNodeNames() {
    IACNode* node = Create(TREEVAULT_WIDE("a"));
    EXPECT(node->AddRef() == 2);
    EXPECT(node->Release() == 1);
    EXPECT(node->SetName(NameShort, TREEVAULT_WIDE("b")) == S_OK);
    EXPECT(ReadText([&](WCHAR* text, size_t* size) {
               return node->GetName(NameFullPath, text, size);
           }) == TREEVAULT_WIDE("\\b"));
    EXPECT(node->SetType(TREEVAULT_WIDE("kind")) == S_OK);
    EXPECT(ReadText([&](WCHAR* text, size_t* size) { return node->GetType(text, size); }) ==
           TREEVAULT_WIDE("kind"));
    EXPECT(node->Release() == 0);
}

void TestNodeAttributes() {
    IACNode* node = Create(TREEVAULT_WIDE("a"));
    const uint64_t big = uint64_t{1} << 40;
    uint64_t read = 0;
    size_t size = sizeof(read);
    ValueType stored = VtEmpty;
    uint32_t state = 0;
    EXPECT(node->SetAttribute(TREEVAULT_WIDE("x"), VtUInt64, &big, sizeof(big)) == S_OK);
    EXPECT(node->GetAttribute(TREEVAULT_WIDE("x"), nullptr, &read, &size, &stored) == S_OK);
    EXPECT(read == big && size == 8 && stored == VtUInt64);
    EXPECT(ReadText([&](WCHAR* text, size_t* length) {
               return node->GetAttributeNames(text, length);
           }) == TREEVAULT_WIDE("x"));
    EXPECT(ReadText([&](WCHAR* text, size_t* length) {
               return node->GetModifiedAttributeNames(text, length);
           }) == TREEVAULT_WIDE("x"));
    EXPECT(node->SetModifiedState(TREEVAULT_WIDE("x"), 0) == S_OK);
    state = 7;
    EXPECT(node->GetModifiedState(TREEVAULT_WIDE("x"), &state) == S_OK);
    EXPECT(state == 0);
    EXPECT(node->DeleteAttribute(TREEVAULT_WIDE("x")) == S_OK);
    EXPECT(node->DeleteAttribute(TREEVAULT_WIDE("x")) == TREEVAULT_E_NOT_FOUND);
    node->Release();
}

void TestNodeChildren() {
    IACNode* parent = Create(TREEVAULT_WIDE("p"));
    IACNode* child = Create(TREEVAULT_WIDE("c"));
    IACNode* found = nullptr;
    size_t count = 0;
    EXPECT(parent->AddChild(child) == S_OK);
    EXPECT(parent->GetChildCount(&count) == S_OK && count == 1);
    EXPECT(parent->GetChildByIndex(0, &found) == S_OK && found == child);
    found->Release();
    EXPECT(parent->GetChildByName(TREEVAULT_WIDE("c"), &found) == S_OK && found == child);
    found->Release();
    EXPECT(child->GetParent(&found) == S_OK && found == parent);
    found->Release();
    EXPECT(parent->Clone(TREEVAULT_ALL_LEVELS, 0, &found) == S_OK && found != parent);
    EXPECT(found->GetChildCount(&count) == S_OK && count == 1);
    found->Release();
    EXPECT(parent->RemoveChild(child) == S_OK);
    EXPECT(parent->AddChild(child) == S_OK);
    EXPECT(parent->RemoveChildByIndex(0) == S_OK);
    EXPECT(parent->GetChildCount(&count) == S_OK && count == 0);
    child->Release();
    parent->Release();
}

void TestInterfaces() {
    IACNode* node = Create(TREEVAULT_WIDE("a"));
    void* out = nullptr;
    EXPECT(node->QueryInterface(&IID_IACNode, &out) == S_OK && out == node);
    EXPECT(node->Release() == 1);
    EXPECT(node->QueryInterface(&IID_IComponentUnknown, &out) == S_OK);
    EXPECT(static_cast<IComponentUnknown*>(out)->Release() == 1);
    EXPECT(node->QueryInterface(&IID_IWeakRefSource, &out) == E_NOINTERFACE);
    EXPECT(node->QueryInterface(nullptr, &out) == E_INVALIDARG);
    EXPECT(node->Release() == 0);
}

void TestModule() {
    IComponentsModule* module = nullptr;
    EXPECT(GetComponentsModuleObject(&module) == S_OK);
    EXPECT(module->AddRef() == 0xFFFFFFFF && module->Release() == 0xFFFFFFFF);
    EXPECT(module->Reserved() == 0);
    int32_t locked = 7;
    EXPECT(module->GetLockState(&locked) == 0 && locked == 0);
    EXPECT(module->LockModule() == 1);
    EXPECT(module->GetLockState(&locked) == 0 && locked == 1);
    EXPECT(module->UnlockModule() == 0);
    void* out = nullptr;
    EXPECT(module->CreateInstance(&CLSID_ACNode, &IID_IACNode, &out) == S_OK);
    EXPECT(module->GetLockState(&locked) == 0 && locked == 1);
    static_cast<IACNode*>(out)->Release();
    EXPECT(module->CreateInstance(&IID_IACNode, &IID_IACNode, &out) == REGDB_E_CLASSNOTREG);
}

HRESULT TREEVAULT_CALL Keep(const char* text, uint64_t size, void* context) {
    static_cast<std::string*>(context)->assign(text, static_cast<size_t>(size));
    return S_OK;
}

HRESULT TREEVAULT_CALL Give(const char** text, uint64_t* size, uint32_t* end, void* context) {
    const auto& whole = *static_cast<const std::string*>(context);
    *text = whole.data();
    *size = whole.size();
    *end = 1;
    return S_OK;
}

void TestContexts() {
    std::string text;
    IACNode* node = Create(TREEVAULT_WIDE("a"));
    INodeSerializer* writer = nullptr;
    EXPECT(AcnStartSerialization(TREEVAULT_FORMAT_XML, 0, Keep, &text, &writer) == S_OK);
    EXPECT(writer->SerializeNodes(&node, 1, 0) == S_OK);
    EXPECT(writer->Finalize() == S_OK);
    EXPECT(text == "<nr><n n=\"a\"/></nr>");
    EXPECT(writer->Release() == 0);
    node->Release();

    INodeDeserializer* reader = nullptr;
    IACNode* nodes[2] = {};
    uint64_t count = 0;
    EXPECT(AcnStartDeserialization(TREEVAULT_FORMAT_XML, 0, Give, &text, &reader) == S_OK);
    EXPECT(reader->DeserializeNodes(nodes, 2, &count) == S_OK && count == 1);
    nodes[0]->Release();
    EXPECT(reader->Release() == 0);
}

// A client makes a record of its own, and the library forms its text.
void TestForeignRecord() {
    ICreateErrorInfo* made = nullptr;
    void* out = nullptr;
    WCHAR boom[] = TREEVAULT_WIDE("Boom");
    EXPECT(CreateErrorInfo(&made) == S_OK);
    EXPECT(made->SetDescription(boom) == S_OK);
    EXPECT(made->QueryInterface(IID_IErrorInfo, &out) == S_OK);
    made->Release();
    auto* record = static_cast<IErrorInfo*>(out);
    EXPECT(SetErrorInfo(0, record) == S_OK);
    IErrorInfo* taken = nullptr;
    EXPECT(EhGetErrorContext(nullptr, &taken) == S_OK && taken == record);
    EXPECT(ReadText([&](WCHAR* text, size_t* size) {
               return EhMakeErrorText(E_FAIL, 0, taken, nullptr, text, size);
           }) == TREEVAULT_WIDE("0x80004005 Boom"));
    BSTR description = nullptr;
    EXPECT(taken->GetDescription(&description) == S_OK);
    EXPECT(SysStringLen(description) == 4);
    SysFreeString(description);
    EhReleaseErrorContext(taken);
    record->Release();
}

} // namespace

int main() {
    static_assert(std::is_same_v<std::underlying_type_t<ValueTypeTag>, ValueType>);
    TestNodeNames();
    TestNodeAttributes();
    TestNodeChildren();
    TestInterfaces();
    TestModule();
    TestContexts();
    TestForeignRecord();
    if (failures == 0)
        std::printf("all is as expected\n");
    return failures == 0 ? 0 : 1;
}
