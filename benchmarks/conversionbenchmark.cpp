// SPDX-License-Identifier: MIT
// Conversion of values: numbers, binaries, identifiers and the two encodings of text.
#include "conversiondata.h"
#include "measure.h"
#include "plainforms.h"
#include "vaulttree.h"

#include <cstdlib>
#include <cstring>

namespace treevault::benchmarks {

namespace {

// Every call converts `size` bytes at `source` as the program of a client does, in one call with a
// buffer that is large enough.
void Convert(benchmark::State& state, ValueType from, const void* source, uint64_t size,
             ValueType to) {
    std::vector<char> target(4 * BlockSize);
    for (auto _ : state) {
        uint64_t targetSize = target.size();
        benchmark::DoNotOptimize(source);
        Require(AcnConvertData(from, source, size, to, target.data(), &targetSize));
        benchmark::ClobberMemory();
    }
    CountItems(state, 1);
}

constexpr int32_t Number = -1234567;
constexpr const char* NumberText = "-1234567890123";
constexpr GUID Identifier = {
    0x64107A4E, 0x9383, 0x4398, {0x97, 0xFF, 0xEE, 0x55, 0xF0, 0xDA, 0x7F, 0xDF}};
constexpr const char* IdentifierText = "{64107A4E-9383-4398-97FF-EE55F0DA7FDF}";

// --- Numbers -------------------------------------------------------------------------------------

void BM_Int32ToText(benchmark::State& state) {
    Convert(state, VtInt32, &Number, sizeof Number, VtStringA);
}

void BM_Int32ToTextPlain(benchmark::State& state) {
    int32_t number = Number;
    for (auto _ : state) {
        char text[16];
        benchmark::DoNotOptimize(number);
        benchmark::DoNotOptimize(FormatNumber(number, text));
        benchmark::DoNotOptimize(text);
    }
    CountItems(state, 1);
}

void BM_TextToInt64(benchmark::State& state) {
    Convert(state, VtStringA, NumberText, std::strlen(NumberText) + 1, VtInt64);
}

void BM_TextToInt64Plain(benchmark::State& state) {
    const char* text = NumberText;
    for (auto _ : state) {
        benchmark::DoNotOptimize(text);
        benchmark::DoNotOptimize(std::strtoll(text, nullptr, 0));
    }
    CountItems(state, 1);
}

// --- Binaries ------------------------------------------------------------------------------------

void BM_BinaryToHex(benchmark::State& state) {
    const std::vector<uint8_t> bytes = Block();
    Convert(state, VtBinary, bytes.data(), bytes.size(), VtStringA);
}

void BM_BinaryToHexPlain(benchmark::State& state) {
    const std::vector<uint8_t> bytes = Block();
    std::vector<char> text(4 + 2 * bytes.size() + 1);
    for (auto _ : state) {
        std::memcpy(text.data(), "HEX:", 4);
        *FormatHex(bytes.data(), bytes.size(), text.data() + 4) = 0;
        benchmark::ClobberMemory();
    }
    CountItems(state, 1);
}

void BM_HexToBinary(benchmark::State& state) {
    const std::string text = HexText();
    Convert(state, VtStringA, text.c_str(), text.size() + 1, VtBinary);
}

void BM_HexToBinaryPlain(benchmark::State& state) {
    const std::string text = HexText();
    std::vector<uint8_t> bytes(BlockSize);
    for (auto _ : state) {
        benchmark::DoNotOptimize(ParseHex(text.data() + 4, bytes.size(), bytes.data()));
        benchmark::ClobberMemory();
    }
    CountItems(state, 1);
}

// --- Identifiers ---------------------------------------------------------------------------------

void BM_GuidToText(benchmark::State& state) {
    Convert(state, VtGuid, &Identifier, sizeof Identifier, VtStringA);
}

void BM_GuidToTextPlain(benchmark::State& state) {
    GUID guid = Identifier;
    char text[39];
    for (auto _ : state) {
        benchmark::DoNotOptimize(guid);
        FormatGuid(guid, text);
        benchmark::DoNotOptimize(text);
    }
    CountItems(state, 1);
}

void BM_TextToGuid(benchmark::State& state) {
    Convert(state, VtStringA, IdentifierText, std::strlen(IdentifierText) + 1, VtGuid);
}

void BM_TextToGuidPlain(benchmark::State& state) {
    const char* text = IdentifierText;
    for (auto _ : state) {
        GUID guid;
        benchmark::DoNotOptimize(text);
        benchmark::DoNotOptimize(ParseGuid(text, &guid));
        benchmark::DoNotOptimize(guid);
    }
    CountItems(state, 1);
}

// --- Encodings -----------------------------------------------------------------------------------

void BM_Utf8ToUtf16(benchmark::State& state) {
    const std::string text = AsciiText();
    Convert(state, VtStringA, text.c_str(), text.size() + 1, VtStringW);
}

void BM_Utf8ToUtf16Plain(benchmark::State& state) {
    const std::string text = AsciiText();
    std::vector<WCHAR> wide(text.size() + 1);
    for (auto _ : state) {
        Widen({text.c_str(), text.size() + 1}, wide.data());
        benchmark::ClobberMemory();
    }
    CountItems(state, 1);
}

void BM_Utf16ToUtf8(benchmark::State& state) {
    const std::string text = AsciiText();
    const Text wide(text.begin(), text.end());
    Convert(state, VtStringW, wide.c_str(), (wide.size() + 1) * sizeof(WCHAR), VtStringA);
}

void BM_Utf16ToUtf8Plain(benchmark::State& state) {
    const std::string text = AsciiText();
    const Text wide(text.begin(), text.end());
    std::vector<char> target(wide.size() + 1);
    for (auto _ : state) {
        Narrow(wide.c_str(), wide.size() + 1, target.data());
        benchmark::ClobberMemory();
    }
    CountItems(state, 1);
}

} // namespace

#define CONVERSION_BENCHMARK(workload, reference)                                                  \
    BENCHMARK(workload)->Name(#workload "/treevault");                                             \
    BENCHMARK(workload##Plain)->Name(#workload "/" reference)

CONVERSION_BENCHMARK(BM_Int32ToText, "to_chars");
CONVERSION_BENCHMARK(BM_TextToInt64, "strtoll");
CONVERSION_BENCHMARK(BM_BinaryToHex, "byte_table");
CONVERSION_BENCHMARK(BM_HexToBinary, "byte_table");
CONVERSION_BENCHMARK(BM_GuidToText, "byte_table");
CONVERSION_BENCHMARK(BM_TextToGuid, "byte_table");
CONVERSION_BENCHMARK(BM_Utf8ToUtf16, "plain_loop");
CONVERSION_BENCHMARK(BM_Utf16ToUtf8, "plain_loop");

} // namespace treevault::benchmarks
