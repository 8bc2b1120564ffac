// SPDX-License-Identifier: MIT
// What the benchmarks of conversions convert.
#ifndef TREEVAULT_BENCHMARKS_CONVERSIONDATA_H
#define TREEVAULT_BENCHMARKS_CONVERSIONDATA_H

#include "plainforms.h"
#include "workload.h"

#include <string>
#include <vector>

namespace treevault::benchmarks {

inline constexpr size_t BlockSize = 1024;

// Bytes of all values.
inline std::vector<uint8_t> Block() {
    std::vector<uint8_t> bytes(BlockSize);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<uint8_t>(i * 167 + i / 256);
    return bytes;
}

inline std::string HexText() {
    const std::vector<uint8_t> bytes = Block();
    std::string text = "HEX:" + std::string(2 * bytes.size(), '0');
    FormatHex(bytes.data(), bytes.size(), text.data() + 4);
    return text;
}

inline std::string AsciiText() {
    std::string text(BlockSize, ' ');
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char>(' ' + i % 95);
    return text;
}

} // namespace treevault::benchmarks

#endif
