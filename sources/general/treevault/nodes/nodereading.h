// SPDX-License-Identifier: MIT
// Reading of nodes through their interface, into buffers that grow.
#ifndef TREEVAULT_NODES_NODEREADING_H
#define TREEVAULT_NODES_NODEREADING_H

#include "common/errorhandling.h"

#include <treevault/nodes.h>

#include <cstdint>
#include <vector>

namespace treevault {

// Reads what `read(buffer, size)` gives by the contract of texts that go out, terminators included.
// `text` is empty on failure, which is returned.
template <class Read>
HRESULT TryReadText(const Read& read, WideText& text) {
    constexpr size_t firstSize = 0x80;
    WCHAR first[firstSize];
    text.clear();
    size_t size = firstSize;
    HRESULT hr = read(first, &size);
    if (SUCCEEDED(hr)) {
        text.assign(first, size);
        return hr;
    }
    while (hr == TREEVAULT_E_INSUFFICIENT_BUFFER && size > text.size()) {
        text.resize(size);
        hr = read(text.data(), &size);
    }
    text.resize(SUCCEEDED(hr) ? size : 0);
    return hr;
}

// The text, or none if it cannot be read; none for a null node either.
template <class Read>
WideText ReadText(IACNode* node, const Read& read) {
    WideText text;
    if (node)
        static_cast<void>(TryReadText(read, text));
    return text;
}

// The same for a text with one terminator, which is taken off.
template <class Read>
WideText ReadOneText(IACNode* node, const Read& read) {
    WideText text = ReadText(node, read);
    if (!text.empty())
        text.pop_back();
    return text;
}

inline WideText ReadName(IACNode* node, NodeNameKind kind = NameShort) {
    return ReadOneText(
        node, [&](WCHAR* buffer, size_t* size) { return node->GetName(kind, buffer, size); });
}

inline WideText ReadType(IACNode* node) {
    return ReadOneText(node,
                       [&](WCHAR* buffer, size_t* size) { return node->GetType(buffer, size); });
}

// Names of attributes, each with its terminator.
inline WideText ReadAttributeNames(IACNode* node) {
    return ReadText(
        node, [&](WCHAR* buffer, size_t* size) { return node->GetAttributeNames(buffer, size); });
}

inline WideText ReadModifiedAttributeNames(IACNode* node) {
    return ReadText(node, [&](WCHAR* buffer, size_t* size) {
        return node->GetModifiedAttributeNames(buffer, size);
    });
}

// Calls `visit` with each name of such a list; empty ones are skipped.
template <class Visit>
void ForEachName(const WideText& names, const Visit& visit) {
    for (size_t begin = 0; begin < names.size();) {
        const WideView name(names.c_str() + begin);
        if (!name.empty())
            visit(name.data());
        begin += name.size() + 1;
    }
}

// The bytes of an attribute as they are stored. It is made to be used again and again.
struct RawAttribute {
    ValueType Type = VtEmpty;
    std::vector<uint8_t> Buffer;
    size_t Size = 0;

    // False when there is no such attribute; any other failure is raised.
    bool Read(IACNode* node, const WCHAR* name) {
        if (Buffer.empty())
            Buffer.resize(0x80);
        for (;;) {
            Size = Buffer.size();
            const HRESULT hr = node->GetAttribute(name, nullptr, Buffer.data(), &Size, &Type);
            if (hr == TREEVAULT_E_NOT_FOUND)
                return false;
            if (hr != TREEVAULT_E_INSUFFICIENT_BUFFER || Size <= Buffer.size()) {
                HRES{hr};
                return true;
            }
            Buffer.resize(Size);
        }
    }
};

// Reads an optional attribute converted to a type of fixed size. False when it is absent or empty;
// other failures are raised.
template <class Value>
bool ReadOptional(IACNode* node, const WCHAR* name, ValueType wantedType, Value& value) {
    ValueType storedType = VtEmpty;
    const HRESULT hr = node->GetAttribute(name, nullptr, nullptr, nullptr, &storedType);
    if (hr == TREEVAULT_E_NOT_FOUND)
        return false;
    HRES{hr};
    if (storedType == VtEmpty)
        return false;
    size_t size = sizeof(Value);
    HRES{node->GetAttribute(name, &wantedType, &value, &size, nullptr)};
    return true;
}

} // namespace treevault

#endif
