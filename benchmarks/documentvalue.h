// SPDX-License-Identifier: MIT
// A value of a document as the typed value of a struct: what every reference that reads documents
// does with what its parser gives.
#ifndef TREEVAULT_BENCHMARKS_DOCUMENTVALUE_H
#define TREEVAULT_BENCHMARKS_DOCUMENTVALUE_H

#include "plainforms.h"
#include "structtree.h"

#include <cstdlib>
#include <string_view>

namespace treevault::benchmarks {

inline Text Widened(std::string_view text) {
    Text wide(text.size(), 0);
    Widen(text, wide.data());
    return wide;
}

// Both zero-terminated; `type` is null for text.
inline PlainValue DocumentValue(const char* type, std::string_view value) {
    const long tag = type ? std::strtol(type, nullptr, 10) : long{VtStringA};
    GUID guid{};
    switch (tag) {
    case VtInt32:
        return static_cast<int32_t>(std::strtol(value.data(), nullptr, 0));
    case VtUInt64:
        return static_cast<uint64_t>(std::strtoull(value.data(), nullptr, 0));
    case VtGuid:
        ParseGuid(value.data(), &guid);
        return guid;
    default:
        return Widened(value);
    }
}

} // namespace treevault::benchmarks

#endif
