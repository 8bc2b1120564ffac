// SPDX-License-Identifier: MIT
// BSTR: text behind its length in bytes.
#include <treevault/platform.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// Keeps the text aligned as an allocation is; the length stands in its last four bytes.
constexpr size_t PrefixSize = 8;

struct Prefix {
    uint32_t Unused;
    uint32_t ByteLength;
};
static_assert(sizeof(Prefix) == PrefixSize);

Prefix* PrefixOf(BSTR text) noexcept {
    return reinterpret_cast<Prefix*>(text) - 1;
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) BSTR SysAllocStringLen(const OLECHAR* text,
                                                              unsigned int length) {
    if (length > (UINT32_MAX - PrefixSize) / sizeof(OLECHAR) - 1)
        return nullptr;
    const size_t bytes = size_t{length} * sizeof(OLECHAR);
    auto* const prefix = static_cast<Prefix*>(std::malloc(PrefixSize + bytes + sizeof(OLECHAR)));
    if (!prefix)
        return nullptr;
    *prefix = {0, static_cast<uint32_t>(bytes)};
    const BSTR copy = reinterpret_cast<BSTR>(prefix + 1);
    if (text && length != 0)
        std::memcpy(copy, text, bytes);
    copy[length] = 0;
    return copy;
}

__attribute__((visibility("default"))) BSTR SysAllocString(const OLECHAR* text) {
    if (!text)
        return nullptr;
    const size_t length = std::char_traits<OLECHAR>::length(text);
    return length > UINT32_MAX ? nullptr
                               : SysAllocStringLen(text, static_cast<unsigned int>(length));
}

__attribute__((visibility("default"))) unsigned int SysStringLen(BSTR text) {
    return text ? PrefixOf(text)->ByteLength / static_cast<unsigned int>(sizeof(OLECHAR)) : 0;
}

__attribute__((visibility("default"))) void SysFreeString(BSTR text) {
    if (text)
        std::free(PrefixOf(text));
}

} // extern "C"
