// SPDX-License-Identifier: MIT
// XML text as tests speak of it: these nodes as text, this text as nodes.
#ifndef TREEVAULT_TESTS_SUPPORT_XML_H
#define TREEVAULT_TESTS_SUPPORT_XML_H

#include "support/nodes.h"

#include <string>
#include <string_view>
#include <vector>

namespace treevault::tests {

using Handles = std::vector<IACNode*>;
using Nodes = std::vector<Node>;

// A serialization context with a callback that keeps what it gets.
class Writer {
public:
    explicit Writer(uint32_t flags = 0) {
        EXPECT_TRUE(
            Succeeds(AcnStartSerialization, TREEVAULT_FORMAT_XML, flags, &Receive, this, &Context));
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() { AcnCloseSerializationContext(Context); }

    HRESULT Add(Handles nodes, uint64_t depth = TREEVAULT_ALL_LEVELS) {
        nodes.reserve(1); // an array of no nodes is an array all the same
        return AcnSerializeNodes(Context, nodes.data(), nodes.size(), depth);
    }
    HRESULT Finish() { return AcnFinalizeSerialization(Context); }
    INodeSerializer* Get() const { return Context; }

    std::string Text; // of the last call
    int Calls = 0;
    HRESULT Result = S_OK; // what the callback returns

private:
    static HRESULT TREEVAULT_CALL Receive(const char* text, uint64_t size, void* context) {
        auto* const writer = static_cast<Writer*>(context);
        ++writer->Calls;
        writer->Text.assign(text, static_cast<size_t>(size));
        return writer->Result;
    }

    INodeSerializer* Context = nullptr;
};

inline std::string Write(const Handles& nodes, uint32_t flags = 0,
                         uint64_t depth = TREEVAULT_ALL_LEVELS) {
    Writer writer(flags);
    EXPECT_EQ(CodeText(S_OK), CodeText(writer.Add(nodes, depth)));
    EXPECT_EQ(CodeText(S_OK), CodeText(writer.Finish()));
    EXPECT_EQ(1, writer.Calls);
    return writer.Text;
}

// Delivers a text, piece by piece; each piece is a buffer of its own that ends where it ends.
struct Source {
    explicit Source(std::string_view text) : Pieces{text} {}
    explicit Source(std::vector<std::string_view> pieces) : Pieces(std::move(pieces)) {}

    static HRESULT TREEVAULT_CALL Deliver(const char** text, uint64_t* size, uint32_t* end,
                                          void* context) {
        auto* const source = static_cast<Source*>(context);
        const std::string_view piece = source->Pieces.at(source->Calls++);
        source->Delivered.assign(piece.begin(), piece.end());
        *text = source->Delivered.data();
        *size = piece.size();
        *end = source->Calls == source->Pieces.size() ? 1 : 0;
        return S_OK;
    }

    std::vector<std::string_view> Pieces;
    std::vector<char> Delivered;
    size_t Calls = 0;
};

// Starts to read a text; `*context` receives the context.
inline HRESULT Start(std::string_view text, uint32_t flags, INodeDeserializer** context) {
    Source source(text);
    return AcnStartDeserialization(TREEVAULT_FORMAT_XML, flags, &Source::Deliver, &source, context);
}

// A deserialization context over a text that is in order.
class Reader {
public:
    explicit Reader(std::string_view text, uint32_t flags = 0) {
        EXPECT_EQ(CodeText(S_OK), CodeText(Start(text, flags, &Context)));
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader() { AcnCloseDeserializationContext(Context); }

    // Up to `count` trees; `nodes` is replaced.
    HRESULT Next(uint64_t count, Nodes& nodes) {
        Handles handles(static_cast<size_t>(count) + 1);
        uint64_t retrieved = 0;
        nodes.clear();
        const HRESULT hr = AcnDeserializeNodes(Context, handles.data(), count, &retrieved);
        for (size_t index = 0; index < retrieved; ++index)
            nodes.emplace_back(handles[index]);
        return hr;
    }
    INodeDeserializer* Get() const { return Context; }

private:
    INodeDeserializer* Context = nullptr;
};

// All trees of a text that is in order.
inline Nodes Read(std::string_view text, uint32_t flags = 0) {
    Reader reader(text, flags);
    Nodes nodes;
    EXPECT_EQ(CodeText(S_OK), CodeText(reader.Next(1000, nodes)));
    EXPECT_LT(nodes.size(), 1000u);
    return nodes;
}

// The only tree of a text.
inline Node ReadOne(std::string_view text, uint32_t flags = 0) {
    const Nodes nodes = Read(text, flags);
    EXPECT_EQ(1u, nodes.size()) << text;
    return nodes.empty() ? Create() : nodes.front();
}

// What a text as a whole gives: the code of the start or that of the reading.
inline HRESULT ReadCode(std::string_view text, uint32_t flags = 0) {
    INodeDeserializer* context = nullptr;
    HRESULT hr = Start(text, flags, &context);
    if (FAILED(hr))
        return hr;
    Handles handles(1000);
    uint64_t retrieved = 0;
    hr = AcnDeserializeNodes(context, handles.data(), handles.size(), &retrieved);
    for (size_t index = 0; index < retrieved; ++index)
        AcnCloseNodeHandle(handles[index]);
    AcnCloseDeserializationContext(context);
    return hr;
}

// The value that the attributes and children of an element `a` give, such as "t='3' v='5'/>".
inline Value ReadValue(std::string_view rest, uint32_t flags = 0) {
    return Get(ReadOne("<nr><n n='N'><a n='A' " + std::string(rest) + "</n></nr>", flags), W("A"));
}

inline HRESULT ReadValueCode(std::string_view rest, uint32_t flags = 0) {
    return ReadCode("<nr><n n='N'><a n='A' " + std::string(rest) + "</n></nr>", flags);
}

// A string of VtStringA, its terminator added; `text` may hold NULs.
inline Value NarrowValue(std::string_view text, ValueType tag = VtStringA) {
    return {tag, std::string(text) + '\0'};
}

} // namespace treevault::tests

#endif
