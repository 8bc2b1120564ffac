// SPDX-License-Identifier: MIT
// The same with settings, which the library reads once for the process: a miss leaves a record, and
// an attribute of the shown node is hidden.
#include "presentation.h"

#include <stdexcept>

namespace treevault::benchmarks {

namespace {

const bool HasSettings = [] {
    setenv("GS_Debug_EnableAdvancedErrorInfo", "1", 1);
    setenv("GS_Logger_HiddenNodeTypeAttrs", "*:Title;Account:Secret,Pin", 1);
    return true;
}();

HRESULT Miss(IACNode* node) {
    size_t size = 0;
    return AcnGetAttribute(node, TREEVAULT_WIDE("Missing"), nullptr, nullptr, &size, nullptr);
}

// Each record takes the place of the one before.
void BM_FailLookup(benchmark::State& state) {
    const VaultTree tree(PresentedNode());
    for (auto _ : state)
        Require(Miss(tree.Root) == TREEVAULT_E_NOT_FOUND ? S_OK : E_UNEXPECTED);
    IErrorInfo* record = nullptr;
    if (GetErrorInfo(0, &record) != S_OK)
        state.SkipWithError("there is no record");
    else
        record->Release();
    CountItems(state, 1);
}

[[gnu::noinline]] void Throw(const char* name) {
    throw std::runtime_error(std::string("0x80070490 Element not found. (Attribute='") + name +
                             "'; NodePath='\\abcdefgh')");
}

// A failure with a text as the language has it.
void BM_FailLookupThrow(benchmark::State& state) {
    std::string record;
    for (auto _ : state) {
        try {
            Throw("Missing");
        } catch (const std::exception& failure) {
            record = failure.what();
        }
        benchmark::DoNotOptimize(record);
    }
    CountItems(state, 1);
}

void BM_PresentMaskedNode(benchmark::State& state) {
    PresentNode(state, true);
}

} // namespace

BENCHMARK(BM_FailLookup)->Name("BM_FailLookup/treevault");
BENCHMARK(BM_FailLookupThrow)->Name("BM_FailLookup/throw_and_catch");
BENCHMARK(BM_PresentMaskedNode)->Name("BM_PresentMaskedNode/treevault");
BENCHMARK(SerializeNode)->Name("BM_PresentMaskedNode/its_xml");

} // namespace treevault::benchmarks
