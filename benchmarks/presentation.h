// SPDX-License-Identifier: MIT
// A node as text for the log, beside the XML of the same node, which is most of that text.
#ifndef TREEVAULT_BENCHMARKS_PRESENTATION_H
#define TREEVAULT_BENCHMARKS_PRESENTATION_H

#include "measure.h"
#include "vaulttree.h"

#include <string_view>
#include <vector>

namespace treevault::benchmarks {

inline const Workload& PresentedNode() {
    static const Workload workload{10, {DeepWorkload().Nodes.front()}};
    return workload;
}

// Masked text has a row of stars in it, other text has none.
inline void PresentNode(benchmark::State& state, bool masked) {
    const VaultTree tree(PresentedNode());
    std::vector<WCHAR> text(4096);
    for (auto _ : state) {
        size_t size = text.size();
        Require(AcnGetStringPresentation(tree.Root, 0, text.data(), &size));
        benchmark::ClobberMemory();
    }
    const std::basic_string_view<WCHAR> shown(text.data());
    if ((shown.find(TREEVAULT_WIDE("********")) != shown.npos) != masked)
        state.SkipWithError("the rules are not the ones that were meant");
    CountItems(state, 1);
}

inline HRESULT TREEVAULT_CALL DropText(const char* text, uint64_t, void*) {
    benchmark::DoNotOptimize(text);
    return S_OK;
}

inline void SerializeNode(benchmark::State& state) {
    VaultTree tree(PresentedNode());
    for (auto _ : state) {
        INodeSerializer* context = nullptr;
        Require(AcnStartSerialization(TREEVAULT_FORMAT_XML, 0, DropText, nullptr, &context));
        Require(AcnSerializeNodes(context, &tree.Root, 1, 0));
        Require(AcnFinalizeSerialization(context));
        AcnCloseSerializationContext(context);
    }
    CountItems(state, 1);
}

} // namespace treevault::benchmarks

#endif
