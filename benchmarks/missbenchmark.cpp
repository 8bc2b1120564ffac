// SPDX-License-Identifier: MIT
// What the settings "Debug" and "Logger" change, without them: an expected miss leaves no record,
// and nodes are shown with all attributes.
#include "presentation.h"

#include <map>

namespace treevault::benchmarks {

namespace {

void BM_MissAttribute(benchmark::State& state) {
    const VaultTree tree(PresentedNode());
    for (auto _ : state) {
        size_t size = 0;
        Require(AcnGetAttribute(tree.Root, TREEVAULT_WIDE("Missing"), nullptr, nullptr, &size,
                                nullptr) == TREEVAULT_E_NOT_FOUND
                    ? S_OK
                    : E_UNEXPECTED);
    }
    CountItems(state, 1);
}

void BM_MissAttributeMap(benchmark::State& state) {
    const std::map<Text, int> names = {
        {NumberName, 1}, {GuidName, 2}, {StampName, 3}, {TitleName, 4}};
    const Text name = TREEVAULT_WIDE("Missing");
    for (auto _ : state)
        benchmark::DoNotOptimize(names.find(name) == names.end());
    CountItems(state, 1);
}

void BM_PresentNode(benchmark::State& state) {
    PresentNode(state, false);
}

} // namespace

BENCHMARK(BM_MissAttribute)->Name("BM_MissAttribute/treevault");
BENCHMARK(BM_MissAttributeMap)->Name("BM_MissAttribute/std_map");
BENCHMARK(BM_PresentNode)->Name("BM_PresentNode/treevault");
BENCHMARK(SerializeNode)->Name("BM_PresentNode/its_xml");

} // namespace treevault::benchmarks
