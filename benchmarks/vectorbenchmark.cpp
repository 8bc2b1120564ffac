// SPDX-License-Identifier: MIT
// Vector instructions as further references of conversions, where the processor has them.
#include "conversiondata.h"
#include "measure.h"
#include "vectorforms.h"

#include <cstring>

namespace treevault::benchmarks {

namespace {

void BM_BinaryToHex(benchmark::State& state) {
    const std::vector<uint8_t> bytes = Block();
    std::vector<char> text(4 + 2 * bytes.size() + 1);
    for (auto _ : state) {
        std::memcpy(text.data(), "HEX:", 4);
        FormatHexByVectors(bytes.data(), bytes.size(), text.data() + 4);
        text.back() = 0;
        benchmark::ClobberMemory();
    }
    if (HexText() != text.data())
        state.SkipWithError("the text is not that of the byte table");
    CountItems(state, 1);
}

void BM_HexToBinary(benchmark::State& state) {
    const std::string text = HexText();
    std::vector<uint8_t> bytes(BlockSize);
    for (auto _ : state) {
        benchmark::DoNotOptimize(ParseHexByVectors(text.data() + 4, bytes.size(), bytes.data()));
        benchmark::ClobberMemory();
    }
    if (bytes != Block())
        state.SkipWithError("the bytes are not those of the text");
    CountItems(state, 1);
}

void BM_Utf8ToUtf16(benchmark::State& state) {
    const std::string text = AsciiText();
    std::vector<WCHAR> wide(text.size() + 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(WidenByVectors(text.c_str(), text.size() + 1, wide.data()));
        benchmark::ClobberMemory();
    }
    if (Text(text.begin(), text.end()) != wide.data())
        state.SkipWithError("the text is another one");
    CountItems(state, 1);
}

void BM_Utf16ToUtf8(benchmark::State& state) {
    const std::string text = AsciiText();
    const Text wide(text.begin(), text.end());
    std::vector<char> target(wide.size() + 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(NarrowByVectors(wide.c_str(), wide.size() + 1, target.data()));
        benchmark::ClobberMemory();
    }
    if (text != target.data())
        state.SkipWithError("the text is another one");
    CountItems(state, 1);
}

} // namespace

BENCHMARK(BM_BinaryToHex)->Name("BM_BinaryToHex/vector_instructions");
BENCHMARK(BM_HexToBinary)->Name("BM_HexToBinary/vector_instructions");
BENCHMARK(BM_Utf8ToUtf16)->Name("BM_Utf8ToUtf16/ascii_fast_path");
BENCHMARK(BM_Utf16ToUtf8)->Name("BM_Utf16ToUtf8/ascii_fast_path");

} // namespace treevault::benchmarks
