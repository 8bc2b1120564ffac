// SPDX-License-Identifier: MIT
// Attributes of one node, which stays in the caches: reading a number by name, as it is and as
// text, and overwriting values.
#include "measure.h"
#include "plainforms.h"
#include "propertytree.h"
#include "pugitree.h"
#include "structtree.h"
#include "vaulttree.h"

#include <cstring>

namespace treevault::benchmarks {

namespace {

// The same nodes for all: the root of the workload, without children.
const Workload& OneNode() {
    static const Workload workload{10, {DeepWorkload().Nodes.front()}};
    return workload;
}

void BM_ReadInt32(benchmark::State& state) {
    const VaultTree tree(OneNode());
    const ValueType wanted = VtInt32;
    for (auto _ : state) {
        int32_t number = 0;
        size_t size = sizeof number;
        Require(AcnGetAttribute(tree.Root, NumberName, &wanted, &number, &size, nullptr));
        benchmark::DoNotOptimize(number);
    }
    CountItems(state, 1);
}

template <class Tree>
void BM_ReadInt32Plain(benchmark::State& state) {
    const Tree tree(OneNode());
    const Text name = NumberName;
    for (auto _ : state)
        benchmark::DoNotOptimize(std::get<int32_t>(*tree.Root->Attributes.Find(name)));
    CountItems(state, 1);
}

void BM_ReadInt32AsText(benchmark::State& state) {
    const VaultTree tree(OneNode());
    const ValueType wanted = VtStringW;
    for (auto _ : state) {
        WCHAR text[16];
        size_t size = sizeof text;
        Require(AcnGetAttribute(tree.Root, NumberName, &wanted, text, &size, nullptr));
        benchmark::DoNotOptimize(text);
    }
    CountItems(state, 1);
}

template <class Tree>
void BM_ReadInt32AsTextPlain(benchmark::State& state) {
    const Tree tree(OneNode());
    const Text name = NumberName;
    for (auto _ : state) {
        char narrow[16];
        WCHAR text[16];
        const int32_t number = std::get<int32_t>(*tree.Root->Attributes.Find(name));
        const size_t length = FormatNumber(number, narrow);
        Widen({narrow, length + 1}, text);
        benchmark::DoNotOptimize(text);
    }
    CountItems(state, 1);
}

void BM_WriteInt32(benchmark::State& state) {
    const VaultTree tree(OneNode());
    int32_t number = 0;
    for (auto _ : state) {
        ++number;
        Require(AcnSetAttribute(tree.Root, NumberName, VtInt32, &number, sizeof number));
    }
    CountItems(state, 1);
}

template <class Tree>
void BM_WriteInt32Plain(benchmark::State& state) {
    const Tree tree(OneNode());
    const Text name = NumberName;
    int32_t number = 0;
    for (auto _ : state) {
        tree.Root->Attributes.Set(name, ++number);
        benchmark::ClobberMemory();
    }
    CountItems(state, 1);
}

void BM_WriteText(benchmark::State& state) {
    const VaultTree tree(OneNode());
    Text title = OneNode().Nodes.front().Title;
    for (auto _ : state) {
        ++title[0];
        Require(AcnSetAttribute(tree.Root, TitleName, VtStringW, title.c_str(),
                                (title.size() + 1) * sizeof(WCHAR)));
    }
    CountItems(state, 1);
}

template <class Tree>
void BM_WriteTextPlain(benchmark::State& state) {
    const Tree tree(OneNode());
    const Text name = TitleName;
    Text title = OneNode().Nodes.front().Title;
    for (auto _ : state) {
        ++title[0];
        tree.Root->Attributes.Set(name, title);
        benchmark::ClobberMemory();
    }
    CountItems(state, 1);
}

// --- Libraries whose values are text -------------------------------------------------------------

void BM_ReadInt32Pugi(benchmark::State& state) {
    const PugiTree tree(OneNode());
    for (auto _ : state)
        benchmark::DoNotOptimize(tree.ValueOf(NarrowNumberName).as_int());
    CountItems(state, 1);
}

void BM_ReadInt32Ptree(benchmark::State& state) {
    PropertyTree tree(OneNode());
    for (auto _ : state)
        benchmark::DoNotOptimize(tree.RootAttributes().get<int32_t>(NarrowNumberName));
    CountItems(state, 1);
}

// The text goes into the caller's buffer.
void BM_ReadInt32AsTextPugi(benchmark::State& state) {
    const PugiTree tree(OneNode());
    for (auto _ : state) {
        char text[16];
        const char* value = tree.ValueOf(NarrowNumberName).value();
        std::memcpy(text, value, std::strlen(value) + 1);
        benchmark::DoNotOptimize(text);
    }
    CountItems(state, 1);
}

void BM_ReadInt32AsTextPtree(benchmark::State& state) {
    PropertyTree tree(OneNode());
    for (auto _ : state)
        benchmark::DoNotOptimize(tree.RootAttributes().get<std::string>(NarrowNumberName));
    CountItems(state, 1);
}

void BM_WriteInt32Pugi(benchmark::State& state) {
    const PugiTree tree(OneNode());
    int32_t number = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(tree.ValueOf(NarrowNumberName).set_value(++number));
    CountItems(state, 1);
}

void BM_WriteInt32Ptree(benchmark::State& state) {
    PropertyTree tree(OneNode());
    int32_t number = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(&tree.RootAttributes().put(NarrowNumberName, ++number));
    CountItems(state, 1);
}

void BM_WriteTextPugi(benchmark::State& state) {
    const PugiTree tree(OneNode());
    std::string title = OneNode().Nodes.front().Narrow->Title;
    for (auto _ : state) {
        ++title[0];
        benchmark::DoNotOptimize(tree.ValueOf(NarrowTitleName).set_value(title.c_str()));
    }
    CountItems(state, 1);
}

void BM_WriteTextPtree(benchmark::State& state) {
    PropertyTree tree(OneNode());
    std::string title = OneNode().Nodes.front().Narrow->Title;
    for (auto _ : state) {
        ++title[0];
        benchmark::DoNotOptimize(&tree.RootAttributes().put(NarrowTitleName, title));
    }
    CountItems(state, 1);
}

} // namespace

#define ATTRIBUTE_BENCHMARK(workload)                                                              \
    BENCHMARK(workload)->Name(#workload "/treevault");                                             \
    BENCHMARK_TEMPLATE(workload##Plain, VectorTree)->Name(#workload "/struct_vector");             \
    BENCHMARK_TEMPLATE(workload##Plain, MapTree)->Name(#workload "/struct_map");                   \
    BENCHMARK(workload##Pugi)->Name(#workload "/pugixml");                                         \
    BENCHMARK(workload##Ptree)->Name(#workload "/ptree")

ATTRIBUTE_BENCHMARK(BM_ReadInt32);
ATTRIBUTE_BENCHMARK(BM_ReadInt32AsText);
ATTRIBUTE_BENCHMARK(BM_WriteInt32);
ATTRIBUTE_BENCHMARK(BM_WriteText);

} // namespace treevault::benchmarks
