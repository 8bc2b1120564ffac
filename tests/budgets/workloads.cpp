// SPDX-License-Identifier: MIT
// The work whose instructions are counted: each workload prepares what it needs and then does one
// thing a number of times in RunCounted, the only function that is counted.
#include <treevault/treevault.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

using Text = std::basic_string<WCHAR>;

void Require(HRESULT hr) {
    if (FAILED(hr)) {
        std::fprintf(stderr, "failed: 0x%08X\n", static_cast<unsigned>(hr));
        std::exit(1);
    }
}

// The prefix and seven digits. It costs little beside what is counted.
Text Numbered(const WCHAR* prefix, size_t number) {
    Text text(prefix);
    text.append(7, TREEVAULT_WIDE('0'));
    for (size_t at = text.size(); number != 0; number /= 10)
        text[--at] = static_cast<WCHAR>('0' + number % 10);
    return text;
}

void SetAttributes(IACNode* node, int32_t seed) {
    const GUID id = {static_cast<uint32_t>(seed), 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};
    const uint64_t big = 0x123456789ABCDEFull + static_cast<uint64_t>(seed);
    Text text = Numbered(TREEVAULT_WIDE("value"), static_cast<size_t>(seed) % 10000000);
    Require(AcnSetAttribute(node, TREEVAULT_WIDE("count"), VtInt32, &seed, sizeof seed));
    Require(AcnSetAttribute(node, TREEVAULT_WIDE("label"), VtStringW, text.c_str(),
                            (text.size() + 1) * sizeof(WCHAR)));
    Require(AcnSetAttribute(node, TREEVAULT_WIDE("owner"), VtGuid, &id, sizeof id));
    Require(AcnSetAttribute(node, TREEVAULT_WIDE("total"), VtUInt64, &big, sizeof big));
}

IACNode* MakeNode(const Text& name, int32_t seed) {
    IACNode* node = nullptr;
    Require(AcnCreateNode(name.c_str(), TREEVAULT_WIDE("Record"), &node));
    SetAttributes(node, seed);
    return node;
}

// A node with `count` children of four attributes each.
IACNode* MakeTree(size_t count) {
    IACNode* top = MakeNode(Text(TREEVAULT_WIDE("top")), 0);
    for (size_t i = 0; i < count; ++i) {
        IACNode* child = MakeNode(Numbered(TREEVAULT_WIDE("node"), i), static_cast<int32_t>(i));
        Require(AcnAddChild(top, child));
        AcnCloseNodeHandle(child);
    }
    return top;
}

// What is counted. Its name is known to the script.
extern "C" __attribute__((noinline)) void RunCounted(const std::function<void(size_t)>& work,
                                                     size_t times) {
    for (size_t i = 0; i < times; ++i)
        work(i);
}

constexpr size_t Nodes = 1000;

void Build(size_t times) {
    IACNode* top = MakeTree(0);
    RunCounted(
        [&](size_t i) {
            IACNode* child = MakeNode(Numbered(TREEVAULT_WIDE("node"), i), static_cast<int32_t>(i));
            Require(AcnAddChild(top, child));
            AcnCloseNodeHandle(child);
        },
        times);
    AcnCloseNodeHandle(top);
}

void Free(size_t times) {
    IACNode* top = MakeTree(times);
    RunCounted([&](size_t) { AcnCloseNodeHandle(top); }, 1);
}

void Clone(size_t times) {
    IACNode* top = MakeTree(times);
    IACNode* clone = nullptr;
    RunCounted([&](size_t) { Require(AcnCloneNode(top, TREEVAULT_ALL_LEVELS, 0, &clone)); }, 1);
    AcnCloseNodeHandle(clone);
    AcnCloseNodeHandle(top);
}

void ReadNumber(size_t times) {
    IACNode* node = MakeTree(0);
    RunCounted(
        [&](size_t) {
            int32_t value = 0;
            size_t size = sizeof value;
            Require(
                AcnGetAttribute(node, TREEVAULT_WIDE("count"), nullptr, &value, &size, nullptr));
        },
        times);
    AcnCloseNodeHandle(node);
}

void OverwriteText(size_t times) {
    IACNode* node = MakeTree(0);
    RunCounted(
        [&](size_t) {
            Require(AcnSetAttribute(node, TREEVAULT_WIDE("label"), VtStringW,
                                    TREEVAULT_WIDE("twelve chars"), 13 * sizeof(WCHAR)));
        },
        times);
    AcnCloseNodeHandle(node);
}

void FindChild(size_t times) {
    IACNode* top = MakeTree(Nodes);
    const Text name = Numbered(TREEVAULT_WIDE("node"), Nodes / 3);
    RunCounted(
        [&](size_t) {
            IACNode* child = nullptr;
            Require(AcnGetChildByName(top, name.c_str(), &child));
            AcnCloseNodeHandle(child);
        },
        times);
    AcnCloseNodeHandle(top);
}

INodeStorage* MakeStorage() {
    INodeStorage* storage = nullptr;
    Require(StgCreateStorage(TREEVAULT_MEMORY_STORAGE, nullptr, nullptr, 0, &storage));
    IACNode* top = MakeTree(Nodes);
    Require(StgStoreData(storage, nullptr, StoreMergeAll, &top, 1));
    AcnCloseNodeHandle(top);
    return storage;
}

void Store(INodeStorage* storage, IOperationsGroup* group, size_t i) {
    IACNode* node =
        MakeNode(Text(TREEVAULT_WIDE("\\top\\")) + Numbered(TREEVAULT_WIDE("node"), i * 7 % Nodes),
                 static_cast<int32_t>(i + 5));
    Require(StgStoreData(storage, group, StoreMergeAll, &node, 1));
    AcnCloseNodeHandle(node);
}

void Upsert(size_t times) {
    INodeStorage* storage = MakeStorage();
    RunCounted([&](size_t i) { Store(storage, nullptr, i); }, times);
    StgCloseStorageHandle(storage);
}

void UpsertGroup(size_t times) {
    INodeStorage* storage = MakeStorage();
    RunCounted(
        [&](size_t) {
            IOperationsGroup* group = nullptr;
            Require(StgCreateOperationsGroup(storage, &group));
            for (size_t i = 0; i < times; ++i)
                Store(storage, group, i);
            Require(StgFinalizeOperationsGroup(storage, group));
            StgCloseOperationsGroup(storage, group);
        },
        1);
    StgCloseStorageHandle(storage);
}

// The group ends with a delete that is refused when it runs.
void Rollback(size_t times) {
    INodeStorage* storage = MakeStorage();
    IACNode* filter = nullptr;
    Require(AcnCreateNode(nullptr, TREEVAULT_FILTER_BY_PATH, &filter));
    Require(
        AcnSetAttribute(filter, TREEVAULT_WIDE("NodePath"), VtStringW, TREEVAULT_WIDE("\\"), 4));
    IOperationsGroup* group = nullptr;
    Require(StgCreateOperationsGroup(storage, &group));
    for (size_t i = 0; i < times; ++i)
        Store(storage, group, i);
    Require(StgDeleteData(storage, group, filter));
    RunCounted(
        [&](size_t) {
            if (SUCCEEDED(StgFinalizeOperationsGroup(storage, group)))
                Require(E_UNEXPECTED);
        },
        1);
    StgCloseOperationsGroup(storage, group);
    AcnCloseNodeHandle(filter);
    StgCloseStorageHandle(storage);
}

void Retrieve(size_t times) {
    INodeStorage* storage = MakeStorage();
    IACNode* filter = nullptr;
    Require(AcnCreateNode(nullptr, TREEVAULT_FILTER_BY_PATH, &filter));
    const Text path = Text(TREEVAULT_WIDE("\\top\\")) + Numbered(TREEVAULT_WIDE("node"), Nodes / 3);
    Require(AcnSetAttribute(filter, TREEVAULT_WIDE("NodePath"), VtStringW, path.c_str(),
                            (path.size() + 1) * sizeof(WCHAR)));
    RunCounted(
        [&](size_t) {
            IACNode* node = nullptr;
            uint64_t count = 0;
            Require(StgRetrieveData(storage, filter, nullptr, &node, 1, &count));
            AcnCloseNodeHandle(node);
        },
        times);
    AcnCloseNodeHandle(filter);
    StgCloseStorageHandle(storage);
}

HRESULT TREEVAULT_CALL TakeText(const char* text, uint64_t size, void* context) {
    static_cast<std::string*>(context)->assign(text, static_cast<size_t>(size));
    return S_OK;
}

HRESULT TREEVAULT_CALL GiveText(const char** text, uint64_t* size, uint32_t* end, void* context) {
    const auto& whole = *static_cast<const std::string*>(context);
    *text = whole.data();
    *size = whole.size();
    *end = 1;
    return S_OK;
}

std::string Written(IACNode* top) {
    std::string text;
    INodeSerializer* writer = nullptr;
    Require(AcnStartSerialization(TREEVAULT_FORMAT_XML, 0, TakeText, &text, &writer));
    Require(AcnSerializeNodes(writer, &top, 1, TREEVAULT_ALL_LEVELS));
    Require(AcnFinalizeSerialization(writer));
    AcnCloseSerializationContext(writer);
    return text;
}

void WriteXml(size_t times) {
    IACNode* top = MakeTree(times);
    RunCounted([&](size_t) { Written(top); }, 1);
    AcnCloseNodeHandle(top);
}

void ReadXml(size_t times) {
    IACNode* top = MakeTree(times);
    std::string text = Written(top);
    IACNode* read = nullptr;
    RunCounted(
        [&](size_t) {
            INodeDeserializer* reader = nullptr;
            Require(AcnStartDeserialization(TREEVAULT_FORMAT_XML, 0, GiveText, &text, &reader));
            uint64_t count = 0;
            Require(AcnDeserializeNodes(reader, &read, 1, &count));
            AcnCloseDeserializationContext(reader);
        },
        1);
    AcnCloseNodeHandle(read);
    AcnCloseNodeHandle(top);
}

void NumberToText(size_t times) {
    RunCounted(
        [&](size_t i) {
            const auto number = static_cast<int32_t>(i * 12345);
            WCHAR text[16];
            uint64_t size = sizeof text;
            Require(AcnConvertData(VtInt32, &number, sizeof number, VtStringW, text, &size));
        },
        times);
}

} // namespace

int main(int argc, char** argv) {
    const std::map<std::string, void (*)(size_t)> workloads = {{"build", Build},
                                                               {"free", Free},
                                                               {"clone", Clone},
                                                               {"read-number", ReadNumber},
                                                               {"overwrite-text", OverwriteText},
                                                               {"find-child", FindChild},
                                                               {"upsert", Upsert},
                                                               {"upsert-group", UpsertGroup},
                                                               {"rollback", Rollback},
                                                               {"retrieve", Retrieve},
                                                               {"write-xml", WriteXml},
                                                               {"read-xml", ReadXml},
                                                               {"number-to-text", NumberToText}};
    const auto found = argc == 3 ? workloads.find(argv[1]) : workloads.end();
    if (found == workloads.end()) {
        std::fprintf(stderr, "usage: workloads NAME TIMES\n");
        return 2;
    }
    found->second(static_cast<size_t>(std::atoi(argv[2])));
    return 0;
}
