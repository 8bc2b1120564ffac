// SPDX-License-Identifier: MIT
// Writing and reading whole documents, for each node.
#include "documentio.h"
#include "libxmltree.h"
#include "measure.h"
#include "plaindocument.h"
#include "propertytree.h"
#include "pugitree.h"

#include <cstring>
#include <type_traits>

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

void BM_WriteXmlNode(benchmark::State& state) {
    SettleMemory();
    const VaultTree tree(DeepWorkload());
    std::string text;
    for (auto _ : state) {
        std::string().swap(text);
        SettleMemory();
        const Stopwatch watch;
        WriteDocument(tree, text);
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

// A tree that writes itself, appending to a string that begins empty.
template <class Tree>
void BM_WriteXmlNodeLibrary(benchmark::State& state) {
    SettleMemory();
    const Tree tree(DeepWorkload());
    std::string text;
    for (auto _ : state) {
        std::string().swap(text);
        SettleMemory();
        const Stopwatch watch;
        tree.Write(text);
        state.SetIterationTime(watch.Seconds());
    }
    if (text != DocumentText())
        state.SkipWithError("the text is not the one that the others write");
    Report(state);
}

// Its text has another form: an element for a node with all attributes in it.
void BM_WriteXmlNodePtree(benchmark::State& state) {
    SettleMemory();
    const PropertyTree tree(DeepWorkload());
    for (auto _ : state) {
        SettleMemory();
        const Stopwatch watch;
        const std::string text = tree.Write();
        state.SetIterationTime(watch.Seconds());
    }
    CountItems(state, DeepWorkload().Nodes.size());
}

// --- Reading -------------------------------------------------------------------------------------

void BM_ReadXmlNode(benchmark::State& state) {
    DocumentText();
    for (auto _ : state) {
        SettleMemory();
        const Stopwatch watch;
        const VaultTree tree = ReadDocument(DocumentText());
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

// Whether a node holds what the workload says, with all below it.
bool IsWholeTree(VectorTree::Node& node, size_t index) {
    const Workload& workload = DeepWorkload();
    const NodeData& data = workload.Nodes[index];
    const auto holds = [&](const WCHAR* name, const auto& wanted) {
        const PlainValue* value = node.Attributes.Find(name);
        const auto* held = value ? std::get_if<std::decay_t<decltype(wanted)>>(value) : nullptr;
        if constexpr (std::is_same_v<decltype(wanted), const GUID&>)
            return held && std::memcmp(held, &wanted, sizeof wanted) == 0;
        else
            return held && *held == wanted;
    };
    if (node.Name != data.Name || node.Type != *data.Type || !holds(NumberName, data.Number) ||
        !holds(TitleName, data.Title) || !holds(GuidName, data.Id) ||
        !holds(StampName, data.Stamp) || node.Children.size() != workload.ChildCount(index))
        return false;
    size_t child = workload.FirstChild(index);
    for (const auto& each : node.Children)
        if (!IsWholeTree(*each, child++))
            return false;
    return true;
}

bool IsWhole(const VectorTree& tree) {
    return IsWholeTree(*tree.Root, 0);
}

bool IsWhole(const boost::property_tree::ptree& entries) {
    const auto& last = entries.get_child("nr.n").back().second.get_child("n.n.n.n");
    return last.size() == 5; // its own attributes in XML and the four of the node
}

template <class Read>
void ReadLibrary(benchmark::State& state, const Read& read) {
    std::string whole = DocumentText();
    if (!IsWhole(read(whole)))
        state.SkipWithError("the tree is not the one that was written");
    for (auto _ : state) {
        std::string text = DocumentText();
        SettleMemory();
        const Stopwatch watch;
        const auto tree = read(text);
        state.SetIterationTime(watch.Seconds());
    }
    Report(state);
}

void BM_ReadXmlNodePugi(benchmark::State& state) {
    ReadLibrary(state, ReadWithPugixml);
}

void BM_ReadXmlNodeLibxml(benchmark::State& state) {
    ReadLibrary(state, ReadWithLibxml);
}

void BM_ReadXmlNodePtree(benchmark::State& state) {
    ReadLibrary(state, ReadWithPropertyTree);
}

} // namespace

BENCHMARK(BM_WriteXmlNode)->Name("BM_WriteXmlNode/treevault")->UseManualTime();
BENCHMARK(BM_WriteXmlNodeArray)->Name("BM_WriteXmlNode/rapidxml_array")->UseManualTime();
BENCHMARK(BM_WriteXmlNodeString)->Name("BM_WriteXmlNode/rapidxml_string")->UseManualTime();
BENCHMARK_TEMPLATE(BM_WriteXmlNodeLibrary, PugiTree)
    ->Name("BM_WriteXmlNode/pugixml")
    ->UseManualTime();
BENCHMARK_TEMPLATE(BM_WriteXmlNodeLibrary, LibxmlTree)
    ->Name("BM_WriteXmlNode/libxml2")
    ->UseManualTime();
BENCHMARK(BM_WriteXmlNodePtree)->Name("BM_WriteXmlNode/ptree")->UseManualTime();
BENCHMARK(BM_ReadXmlNode)->Name("BM_ReadXmlNode/treevault")->UseManualTime();
BENCHMARK_TEMPLATE(BM_ReadXmlNodePlain, VectorAttributes)
    ->Name("BM_ReadXmlNode/rapidxml_struct_vector")
    ->UseManualTime();
BENCHMARK_TEMPLATE(BM_ReadXmlNodePlain, MapAttributes)
    ->Name("BM_ReadXmlNode/rapidxml_struct_map")
    ->UseManualTime();
BENCHMARK(BM_ReadXmlNodePugi)->Name("BM_ReadXmlNode/pugixml_struct_vector")->UseManualTime();
BENCHMARK(BM_ReadXmlNodeLibxml)->Name("BM_ReadXmlNode/libxml2_struct_vector")->UseManualTime();
BENCHMARK(BM_ReadXmlNodePtree)->Name("BM_ReadXmlNode/ptree")->UseManualTime();

} // namespace treevault::benchmarks
