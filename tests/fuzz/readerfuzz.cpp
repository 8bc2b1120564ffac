// SPDX-License-Identifier: MIT
// Any bytes as a document: the reader ends in one of its codes, and what it accepts is written and
// read back as the same text. The entry is that of libFuzzer; the first byte chooses the flags.
#include <treevault/treevault.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

void Require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

HRESULT TREEVAULT_CALL Deliver(const char** text, uint64_t* size, uint32_t* end, void* context) {
    const std::string_view& whole = *static_cast<const std::string_view*>(context);
    *text = whole.data();
    *size = whole.size();
    *end = 1;
    return S_OK;
}

HRESULT TREEVAULT_CALL Keep(const char* text, uint64_t size, void* context) {
    static_cast<std::string*>(context)->assign(text, static_cast<size_t>(size));
    return S_OK;
}

// False when the text was refused; `nodes` is then empty.
bool Read(std::string_view text, uint32_t flags, std::vector<IACNode*>& nodes) {
    INodeDeserializer* context = nullptr;
    HRESULT hr = AcnStartDeserialization(TREEVAULT_FORMAT_XML, flags, &Deliver, &text, &context);
    if (FAILED(hr)) {
        Require(hr == TREEVAULT_E_NOT_WELL_FORMED || hr == TREEVAULT_E_NOT_A_NODE_DOCUMENT,
                "code of the start");
        return false;
    }
    uint64_t count = 1;
    while (SUCCEEDED(hr) && count > 0) {
        IACNode* node = nullptr;
        hr = AcnDeserializeNodes(context, &node, 1, &count);
        if (SUCCEEDED(hr) && count > 0)
            nodes.push_back(node);
    }
    AcnCloseDeserializationContext(context);
    return SUCCEEDED(hr);
}

std::string Write(std::vector<IACNode*>& nodes) {
    std::string text;
    INodeSerializer* context = nullptr;
    nodes.reserve(1);
    Require(AcnStartSerialization(TREEVAULT_FORMAT_XML, NodeSerializerFlagFullPath, &Keep, &text,
                                  &context) == S_OK,
            "start of writing");
    Require(AcnSerializeNodes(context, nodes.data(), nodes.size(), TREEVAULT_ALL_LEVELS) == S_OK,
            "writing");
    Require(AcnFinalizeSerialization(context) == S_OK, "end of writing");
    AcnCloseSerializationContext(context);
    return text;
}

void Close(std::vector<IACNode*>& nodes) {
    for (IACNode* node : nodes)
        AcnCloseNodeHandle(node);
    nodes.clear();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const uint32_t flags = (data[0] & 1u) * NodeSerializerFlagNoValueTypes |
                           (data[0] >> 1 & 1u) * NodeDeserializerFlagStrict;
    // A copy, so that reading behind the end is seen.
    const std::vector<char> text(data + 1, data + size);
    std::vector<IACNode*> nodes, again;
    if (Read({text.data(), text.size()}, flags, nodes)) {
        const std::string written = Write(nodes);
        // An empty name at the top has no path that reads back, and one below has no name.
        const bool nameless = written.find("n=\"\\\"") != std::string::npos ||
                              written.find("<n>") != std::string::npos ||
                              written.find("<n/>") != std::string::npos ||
                              written.find("<n t=") != std::string::npos;
        if (!nameless) {
            Require(Read(written, NodeDeserializerFlagStrict, again), "reading what was written");
            Require(Write(again) == written, "the text that comes back");
        }
    }
    Close(nodes);
    Close(again);
    return 0;
}
