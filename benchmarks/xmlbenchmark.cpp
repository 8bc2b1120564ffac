// SPDX-License-Identifier: MIT
// Writing and reading whole documents, for each node.
#include "measure.h"
#include "plaindocument.h"
#include "vaulttree.h"

namespace treevault::benchmarks {

namespace {

// The document that all benchmarks write or read.
const std::string& DocumentText() {
    static const std::string text = [] {
        Document document;
        FillDocument(DeepWorkload(), document);
        std::string printed;
        PrintToString(document, printed);
        return printed;
    }();
    return text;
}

void Report(benchmark::State& state) {
    CountItems(state, DeepWorkload().Nodes.size());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(DocumentText().size()));
}

// --- Writing -------------------------------------------------------------------------------------

HRESULT TREEVAULT_CALL KeepText(const char* text, uint64_t size, void* target) {
    static_cast<std::string*>(target)->assign(text, size);
    return S_OK;
}

void WriteTree(const VaultTree& tree, std::string& text) {
    IACNode* root = tree.Root;
    INodeSerializer* context = nullptr;
    Require(AcnStartSerialization(TREEVAULT_FORMAT_XML, 0, KeepText, &text, &context));
    Require(AcnSerializeNodes(context, &root, 1, TREEVAULT_ALL_LEVELS));
    Require(AcnFinalizeSerialization(context));
    AcnCloseSerializationContext(context);
}

void BM_WriteXmlNode(benchmark::State& state) {
    SettleMemory();
    const VaultTree tree(DeepWorkload());
    std::string text;
    for (auto _ : state) {
        std::string().swap(text);
        SettleMemory();
        const Stopwatch watch;
        WriteTree(tree, text);
        state.SetIterationTime(watch.Seconds());
    }
    if (text != DocumentText())
        state.SkipWithError("the text is not the one that the reference writes");
    Report(state);
}

// The document is ready; printing it is all. The string has `room` to begin with.
void PrintPlain(benchmark::State& state, void (*print)(const Document&, std::string&),
                size_t room) {
    Document document;
    FillDocument(DeepWorkload(), document);
    for (auto _ : state) {
        std::string text(room, ' ');
        SettleMemory();
        const Stopwatch watch;
        print(document, text);
        state.SetIterationTime(watch.Seconds());
    }
    Report(state);
}

void BM_WriteXmlNodeArray(benchmark::State& state) {
    PrintPlain(state, PrintToArray, DocumentText().size());
}

void BM_WriteXmlNodeString(benchmark::State& state) {
    PrintPlain(state, PrintToString, 0);
}

// --- Reading -------------------------------------------------------------------------------------

HRESULT TREEVAULT_CALL GiveText(const char** text, uint64_t* size, uint32_t* end, void*) {
    *text = DocumentText().data();
    *size = DocumentText().size();
    *end = 1;
    return S_OK;
}

VaultTree ReadTree() {
    INodeDeserializer* context = nullptr;
    Require(AcnStartDeserialization(TREEVAULT_FORMAT_XML, 0, GiveText, nullptr, &context));
    IACNode* root = nullptr;
    uint64_t retrieved = 0;
    Require(AcnDeserializeNodes(context, &root, 1, &retrieved));
    AcnCloseDeserializationContext(context);
    return VaultTree(root);
}

void BM_ReadXmlNode(benchmark::State& state) {
    DocumentText();
    for (auto _ : state) {
        SettleMemory();
        const Stopwatch watch;
        const VaultTree tree = ReadTree();
        state.SetIterationTime(watch.Seconds());
    }
    Report(state);
}

// Parsing destroys the text, so that each iteration has a copy, which is not part of its time.
template <class AttributeSet>
void BM_ReadXmlNodePlain(benchmark::State& state) {
    for (auto _ : state) {
        std::string text = DocumentText();
        SettleMemory();
        const Stopwatch watch;
        const StructTree<AttributeSet> tree = ReadDocument<AttributeSet>(text.data());
        state.SetIterationTime(watch.Seconds());
    }
    Report(state);
}

} // namespace

BENCHMARK(BM_WriteXmlNode)->Name("BM_WriteXmlNode/treevault")->UseManualTime();
BENCHMARK(BM_WriteXmlNodeArray)->Name("BM_WriteXmlNode/rapidxml_array")->UseManualTime();
BENCHMARK(BM_WriteXmlNodeString)->Name("BM_WriteXmlNode/rapidxml_string")->UseManualTime();
BENCHMARK(BM_ReadXmlNode)->Name("BM_ReadXmlNode/treevault")->UseManualTime();
BENCHMARK_TEMPLATE(BM_ReadXmlNodePlain, VectorAttributes)
    ->Name("BM_ReadXmlNode/rapidxml_struct_vector")
    ->UseManualTime();
BENCHMARK_TEMPLATE(BM_ReadXmlNodePlain, MapAttributes)
    ->Name("BM_ReadXmlNode/rapidxml_struct_map")
    ->UseManualTime();

} // namespace treevault::benchmarks
