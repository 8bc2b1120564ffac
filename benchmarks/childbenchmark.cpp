// SPDX-License-Identifier: MIT
// One child among few or many, by name and by index, each time a random one.
#include "measure.h"
#include "propertytree.h"
#include "structtree.h"
#include "vaulttree.h"

#include <map>

namespace treevault::benchmarks {

namespace {

// The first `count` children of the flat workload below its root.
Workload Siblings(size_t count) {
    const std::vector<NodeData>& nodes = FlatWorkload().Nodes;
    return {count, {nodes.begin(), nodes.begin() + static_cast<ptrdiff_t>(count) + 1}};
}

// Random indexes below `count`: in an order that soon comes again the processor would learn whole
// searches by heart.
class Order {
public:
    explicit Order(size_t count) : Count(count) {}

    size_t Next() {
        Seed = Seed * 6364136223846793005u + 1442695040888963407u;
        return static_cast<size_t>((Seed >> 32) * Count >> 32);
    }

private:
    uint64_t Count;
    uint64_t Seed = 1;
};

std::vector<Text> NamesOf(const Workload& workload) {
    std::vector<Text> names;
    for (size_t i = 1; i < workload.Nodes.size(); ++i)
        names.push_back(workload.Nodes[i].Name);
    return names;
}

void BM_ChildByName(benchmark::State& state) {
    const Workload workload = Siblings(static_cast<size_t>(state.range(0)));
    const VaultTree tree(workload);
    const std::vector<Text> names = NamesOf(workload);
    Order order(names.size());
    for (auto _ : state) {
        IACNode* child = nullptr;
        Require(AcnGetChildByName(tree.Root, names[order.Next()].c_str(), &child));
        AcnCloseNodeHandle(child);
    }
    CountItems(state, 1);
}

void BM_ChildByNameMap(benchmark::State& state) {
    const Workload workload = Siblings(static_cast<size_t>(state.range(0)));
    const MapTree tree(workload);
    std::map<Text, MapTree::Node*> index;
    for (const auto& child : tree.Root->Children)
        index.emplace(child->Name, child.get());
    const std::vector<Text> names = NamesOf(workload);
    Order order(names.size());
    for (auto _ : state)
        benchmark::DoNotOptimize(index.find(names[order.Next()])->second);
    CountItems(state, 1);
}

void BM_ChildByNamePtree(benchmark::State& state) {
    const Workload workload = Siblings(static_cast<size_t>(state.range(0)));
    PropertyTree tree(workload);
    const boost::property_tree::ptree& root = tree.Root();
    Order order(workload.Nodes.size() - 1);
    for (auto _ : state)
        benchmark::DoNotOptimize(&*root.find(workload.Nodes[order.Next() + 1].Narrow->Name));
    CountItems(state, 1);
}

void BM_ChildByIndex(benchmark::State& state) {
    const Workload workload = Siblings(static_cast<size_t>(state.range(0)));
    const VaultTree tree(workload);
    Order order(workload.Nodes.size() - 1);
    for (auto _ : state) {
        IACNode* child = nullptr;
        Require(AcnGetChildByIndex(tree.Root, order.Next(), &child));
        AcnCloseNodeHandle(child);
    }
    CountItems(state, 1);
}

void BM_ChildByIndexVector(benchmark::State& state) {
    const Workload workload = Siblings(static_cast<size_t>(state.range(0)));
    const VectorTree tree(workload);
    Order order(workload.Nodes.size() - 1);
    for (auto _ : state)
        benchmark::DoNotOptimize(tree.Root->Children[order.Next()].get());
    CountItems(state, 1);
}

} // namespace

BENCHMARK(BM_ChildByName)->Name("BM_ChildByName/treevault")->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(BM_ChildByNameMap)->Name("BM_ChildByName/std_map")->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(BM_ChildByNamePtree)->Name("BM_ChildByName/ptree")->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(BM_ChildByIndex)->Name("BM_ChildByIndex/treevault")->Arg(10)->Arg(100000);
BENCHMARK(BM_ChildByIndexVector)->Name("BM_ChildByIndex/std_vector")->Arg(10)->Arg(100000);

} // namespace treevault::benchmarks
