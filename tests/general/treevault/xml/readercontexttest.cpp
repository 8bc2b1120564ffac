// SPDX-License-Identifier: MIT
// The life of a deserialization context: the callback, the batches, and what a failure leaves.
#include "support/xml.h"

namespace treevault::tests {

namespace {

class ReaderContext : public NodeTest {};

INodeDeserializer* UntouchedReader() {
    return reinterpret_cast<INodeDeserializer*>(Untouched());
}

HRESULT StartWith(Source& source, INodeDeserializer** context, uint32_t format = 1) {
    return AcnStartDeserialization(format, 0, &Source::Deliver, &source, context);
}

std::vector<Text> NamesOf(const Nodes& nodes) {
    std::vector<Text> names;
    for (const Node& node : nodes)
        names.push_back(Name(node));
    return names;
}

} // namespace

TEST_F(ReaderContext, NullArgumentsOfTheStartFailWithARecord) {
    Source source("<nr/>");
    INodeDeserializer* context = UntouchedReader();
    for (const uint32_t format : {1u, 2u}) {
        EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnStartDeserialization, format, 0, nullptr, &source,
                                    &context));
        EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnStartDeserialization, format, 0, &Source::Deliver,
                                    &source, nullptr));
    }
    EXPECT_EQ(UntouchedReader(), context);
    EXPECT_EQ(0u, source.Calls);
}

TEST_F(ReaderContext, AnUnknownFormatGivesANullHandleAndAsksForNoText) {
    for (const uint32_t format : {0u, 2u, 0xFFFFFFFFu}) {
        Source source("<nr/>");
        INodeDeserializer* context = UntouchedReader();
        EXPECT_TRUE(
            Succeeds(AcnStartDeserialization, format, 0, &Source::Deliver, &source, &context));
        EXPECT_EQ(nullptr, context);
        EXPECT_EQ(0u, source.Calls);
    }
}

TEST_F(ReaderContext, NullArgumentsOfReadingFailWithARecord) {
    Reader reader("<nr/>");
    IACNode* nodes[] = {nullptr};
    uint64_t retrieved = 7;
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnDeserializeNodes, nullptr, nodes, 1, &retrieved));
    EXPECT_TRUE(
        FailsWithRecord(E_POINTER, AcnDeserializeNodes, reader.Get(), nullptr, 0, &retrieved));
    EXPECT_EQ(7u, retrieved);
}

TEST_F(ReaderContext, ClosingNullDoesNothing) {
    const PendingMarker marker;
    AcnCloseDeserializationContext(nullptr);
    EXPECT_TRUE(marker.IsStillPending());
}

TEST_F(ReaderContext, HasItsInterfaceAndTheBaseInterface) {
    Reader reader("<nr/>");
    void* found = nullptr;
    ASSERT_EQ(S_OK, reader.Get()->QueryInterface(&IID_INodeDeserializer, &found));
    EXPECT_EQ(reader.Get(), found);
    EXPECT_EQ(1u, static_cast<INodeDeserializer*>(found)->Release());
    ASSERT_EQ(S_OK, reader.Get()->QueryInterface(&IID_IComponentUnknown, &found));
    EXPECT_EQ(1u, static_cast<IComponentUnknown*>(found)->Release());
    EXPECT_EQ(E_NOINTERFACE, reader.Get()->QueryInterface(&IID_INodeSerializer, &found));
    EXPECT_EQ(1, Made());
}

TEST_F(ReaderContext, TheTextMayComeInPieces) {
    const std::string_view text = "\xEF\xBB\xBF<nr><n n='\xC3\xA4&amp;'/></nr>";
    for (size_t first = 0; first <= text.size(); ++first)
        for (size_t second = first; second <= text.size(); second += 3) {
            Source source(
                {text.substr(0, first), text.substr(first, second - first), text.substr(second)});
            INodeDeserializer* context = nullptr;
            ASSERT_EQ(S_OK, StartWith(source, &context));
            EXPECT_EQ(3u, source.Calls);
            Node node;
            EXPECT_EQ(S_OK, AcnDeserializeNodes(context, node.Put(), 1, nullptr));
            EXPECT_EQ(W("\u00E4&"), Name(node));
            AcnCloseDeserializationContext(context);
        }
}

TEST_F(ReaderContext, TheVariablesOfTheCallbackStartEmptyAndKeepTheirValues) {
    struct State {
        const char* Text = "<nr/>";
        int Calls = 0;
    } state;
    const auto read = [](const char** text, uint64_t* size, uint32_t* end,
                         void* context) -> HRESULT {
        State& given = *static_cast<State*>(context);
        EXPECT_EQ(given.Calls == 0 ? nullptr : given.Text, *text);
        EXPECT_EQ(given.Calls == 0 ? 0u : 5u, *size);
        EXPECT_EQ(0u, *end);
        *text = given.Text;
        *size = 5;
        // The second call leaves everything as it is, and thus delivers the text again.
        if (++given.Calls == 3)
            *end = 0x80000000;
        return S_OK;
    };
    INodeDeserializer* context = nullptr;
    ASSERT_EQ(S_OK, AcnStartDeserialization(1, 0, read, &state, &context));
    EXPECT_EQ(3, state.Calls);
    AcnCloseDeserializationContext(context);
}

TEST_F(ReaderContext, ACallbackThatSetsNothingButTheEndGivesAnEmptyText) {
    const auto read = [](const char**, uint64_t*, uint32_t* end, void*) -> HRESULT {
        *end = 1;
        return S_FALSE;
    };
    INodeDeserializer* context = UntouchedReader();
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_NOT_A_NODE_DOCUMENT, AcnStartDeserialization, 1, 0,
                                read, nullptr, &context));
}

TEST_F(ReaderContext, AFailureOfTheCallbackStopsTheStart) {
    const auto read = [](const char** text, uint64_t* size, uint32_t* end,
                         void* context) -> HRESULT {
        *text = "<nr/>";
        *size = 5;
        *end = 1;
        return ++*static_cast<int*>(context) == 1 ? static_cast<HRESULT>(0x8A654321) : S_OK;
    };
    int calls = 0;
    INodeDeserializer* context = UntouchedReader();
    EXPECT_TRUE(FailsWithRecord(static_cast<HRESULT>(0x8A654321), AcnStartDeserialization, 1, 0,
                                read, &calls, &context));
    EXPECT_EQ(1, calls);
    EXPECT_EQ(UntouchedReader(), context);
    EXPECT_EQ(0, Made());
}

TEST_F(ReaderContext, NodesComeInBatches) {
    Reader reader("<nr><n n='1'/><n n='2'/><n n='3'/></nr>");
    Nodes nodes;
    for (const WCHAR* name : {W("1"), W("2"), W("3")}) {
        ASSERT_EQ(S_OK, reader.Next(1, nodes));
        EXPECT_EQ((Names{name}), NamesOf(nodes));
    }
    for (int call = 0; call < 2; ++call) {
        ASSERT_EQ(S_OK, reader.Next(1, nodes));
        EXPECT_TRUE(nodes.empty());
    }
}

TEST_F(ReaderContext, ABatchThatIsNotFilledEndsTheDocument) {
    Reader reader("<nr><n n='1'/><n n='2'/><n n='3'/></nr>");
    Nodes nodes;
    ASSERT_EQ(S_OK, reader.Next(2, nodes));
    EXPECT_EQ((Names{W("1"), W("2")}), NamesOf(nodes));
    ASSERT_EQ(S_OK, reader.Next(2, nodes));
    EXPECT_EQ((Names{W("3")}), NamesOf(nodes));
}

TEST_F(ReaderContext, ABatchOfNothingTakesNothing) {
    Reader reader("<nr><n n='1'/></nr>");
    Nodes nodes;
    ASSERT_EQ(S_OK, reader.Next(0, nodes));
    ASSERT_EQ(S_OK, reader.Next(1, nodes));
    EXPECT_EQ((Names{W("1")}), NamesOf(nodes));
}

TEST_F(ReaderContext, TheCountRetrievedIsOptional) {
    Reader reader("<nr><n n='1'/></nr>");
    IACNode* nodes[] = {nullptr, Untouched()};
    EXPECT_TRUE(Succeeds(AcnDeserializeNodes, reader.Get(), nodes, 2, nullptr));
    EXPECT_EQ(W("1"), Name(Node(nodes[0])));
    EXPECT_EQ(Untouched(), nodes[1]);
}

TEST_F(ReaderContext, TreesAreBuiltOnlyWhenAskedFor) {
    Reader reader("<nr><n n='1'/><n n='2'/><x/></nr>");
    Nodes nodes;
    EXPECT_EQ(1, Made());
    ASSERT_EQ(S_OK, reader.Next(1, nodes));
    EXPECT_EQ(2, Made());
}

TEST_F(ReaderContext, AFailedBatchLeavesTheArgumentsAndIsPassedOver) {
    Reader reader("<nr><n n='1'/><n n='2'/><x/><n n='3'/></nr>");
    IACNode* nodes[] = {Untouched(), Untouched(), Untouched(), Untouched()};
    uint64_t retrieved = 77;
    for (int call = 0; call < 2; ++call) {
        EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_NOT_A_NODE_DOCUMENT, AcnDeserializeNodes,
                                    reader.Get(), nodes, 4, &retrieved));
        EXPECT_EQ(77u, retrieved);
        EXPECT_EQ(Untouched(), nodes[0]);
        EXPECT_EQ(1, Made());
    }
    // Not even the nodes before the failure can be had any more.
    EXPECT_EQ(TREEVAULT_E_NOT_A_NODE_DOCUMENT,
              AcnDeserializeNodes(reader.Get(), nodes, 1, &retrieved));
}

TEST_F(ReaderContext, AFailureInsideATreeLeavesNothingOfIt) {
    Reader reader("<nr><n n='1'><n n='2'><n n='3'/></n><n n='4'><a n='A' t='x'/></n></n></nr>");
    IACNode* nodes[] = {Untouched()};
    EXPECT_TRUE(
        FailsWithRecord(E_INVALIDARG, AcnDeserializeNodes, reader.Get(), nodes, 1, nullptr));
    EXPECT_EQ(1, Made());
}

TEST_F(ReaderContext, NodesOutliveTheContext) {
    Nodes nodes;
    {
        Reader reader("<nr><n n='1'><a n='A' v='long enough for the heap'/></n></nr>");
        ASSERT_EQ(S_OK, reader.Next(1, nodes));
    }
    EXPECT_EQ(NarrowValue("long enough for the heap"), Get(nodes[0], W("A")));
}

TEST_F(ReaderContext, TheOperationOfTheInterfaceDoesWhatTheFunctionDoes) {
    Reader reader("<nr><n n='1'/></nr>");
    Node node;
    uint64_t retrieved = 0;
    EXPECT_EQ(S_OK, reader.Get()->DeserializeNodes(node.Put(), 1, &retrieved));
    EXPECT_EQ(1u, retrieved);
    EXPECT_EQ(W("1"), Name(node));
}

TEST_F(ReaderContext, OneFunctionServesBothKindsOfContext) {
    Reader reader("<nr><n n='1'/></nr>");
    Node node;
    uint64_t retrieved = 0;
    auto* const asWriter = reinterpret_cast<INodeSerializer*>(reader.Get());
    EXPECT_EQ(S_OK,
              AcnSerializeNodes(asWriter, node.Put(), 1, reinterpret_cast<uint64_t>(&retrieved)));
    EXPECT_EQ(1u, retrieved);
}

} // namespace treevault::tests
