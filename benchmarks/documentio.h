// SPDX-License-Identifier: MIT
// Whole documents of TreeVault, in one piece of text.
#ifndef TREEVAULT_BENCHMARKS_DOCUMENTIO_H
#define TREEVAULT_BENCHMARKS_DOCUMENTIO_H

#include "vaulttree.h"

#include <string>

namespace treevault::benchmarks {

inline HRESULT TREEVAULT_CALL KeepText(const char* text, uint64_t size, void* target) {
    static_cast<std::string*>(target)->assign(text, size);
    return S_OK;
}

inline void WriteDocument(const VaultTree& tree, std::string& text) {
    IACNode* root = tree.Root;
    INodeSerializer* context = nullptr;
    Require(AcnStartSerialization(TREEVAULT_FORMAT_XML, 0, KeepText, &text, &context));
    Require(AcnSerializeNodes(context, &root, 1, TREEVAULT_ALL_LEVELS));
    Require(AcnFinalizeSerialization(context));
    AcnCloseSerializationContext(context);
}

inline HRESULT TREEVAULT_CALL GiveText(const char** text, uint64_t* size, uint32_t* end,
                                       void* source) {
    const auto& whole = *static_cast<const std::string*>(source);
    *text = whole.data();
    *size = whole.size();
    *end = 1;
    return S_OK;
}

// The tree of the document's only node.
inline VaultTree ReadDocument(const std::string& text) {
    INodeDeserializer* context = nullptr;
    Require(AcnStartDeserialization(TREEVAULT_FORMAT_XML, 0, GiveText,
                                    const_cast<std::string*>(&text), &context));
    IACNode* root = nullptr;
    uint64_t retrieved = 0;
    Require(AcnDeserializeNodes(context, &root, 1, &retrieved));
    AcnCloseDeserializationContext(context);
    return VaultTree(root);
}

} // namespace treevault::benchmarks

#endif
