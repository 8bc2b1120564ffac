// SPDX-License-Identifier: MIT
// The life of a serialization context: starting, adding, finishing, failing, and how deep it goes.
#include "support/foreignnode.h"
#include "support/xml.h"

#include <thread>

namespace treevault::tests {

namespace {

class WriterContext : public NodeTest {};

HRESULT TREEVAULT_CALL Ignore(const char*, uint64_t, void*) {
    return S_OK;
}

INodeSerializer* UntouchedWriter() {
    return reinterpret_cast<INodeSerializer*>(Untouched());
}

// Levels 0 to 3, one node each.
Node Ladder() {
    const Node root = Create(W("0"));
    AddNew(AddNew(AddNew(root, W("1")), W("2")), W("3"));
    return root;
}

const char* const Ladders[] = {
    "<nr><n n=\"0\"/></nr>",
    "<nr><n n=\"0\"><n n=\"1\"/></n></nr>",
    "<nr><n n=\"0\"><n n=\"1\"><n n=\"2\"/></n></n></nr>",
    "<nr><n n=\"0\"><n n=\"1\"><n n=\"2\"><n n=\"3\"/></n></n></n></nr>",
};

// How many groups of addresses the details of the pending record hold.
int AddressGroups() {
    Text description;
    if (!TakeRecord(description) || description.back() != W(']'))
        return 0;
    const size_t details = description.rfind(W('['));
    int groups = 1;
    for (size_t at = details; at < description.size(); ++at)
        groups += description[at] == W(';');
    return groups;
}

} // namespace

TEST_F(WriterContext, NullArgumentsOfTheStartFailWithARecord) {
    INodeSerializer* context = UntouchedWriter();
    EXPECT_TRUE(
        FailsWithRecord(E_POINTER, AcnStartSerialization, 1, 0, nullptr, nullptr, &context));
    EXPECT_TRUE(
        FailsWithRecord(E_POINTER, AcnStartSerialization, 2, 0, nullptr, nullptr, &context));
    EXPECT_EQ(UntouchedWriter(), context);
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnStartSerialization, 1, 0, &Ignore, nullptr, nullptr));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnStartSerialization, 2, 0, &Ignore, nullptr, nullptr));
}

TEST_F(WriterContext, AnUnknownFormatGivesANullHandleAndNoFailure) {
    for (const uint32_t format : {0u, 2u, 0xFFFFFFFFu}) {
        INodeSerializer* context = UntouchedWriter();
        EXPECT_TRUE(Succeeds(AcnStartSerialization, format, 0, &Ignore, nullptr, &context));
        EXPECT_EQ(nullptr, context);
    }
    const Node node = Create();
    IACNode* nodes[] = {node};
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnSerializeNodes, nullptr, nodes, 1, 0));
}

TEST_F(WriterContext, NullArgumentsOfAddingFailWithARecord) {
    Writer writer;
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnSerializeNodes, nullptr, nullptr, 0, 0));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnSerializeNodes, writer.Get(), nullptr, 0, 0));
}

TEST_F(WriterContext, FinalizingANullContextFailsPlainly) {
    EXPECT_TRUE(FailsPlainly(E_POINTER, AcnFinalizeSerialization, nullptr));
}

TEST_F(WriterContext, ClosingNullDoesNothing) {
    const PendingMarker marker;
    AcnCloseSerializationContext(nullptr);
    EXPECT_TRUE(marker.IsStillPending());
}

TEST_F(WriterContext, HasItsInterfaceAndTheBaseInterface) {
    Writer writer;
    void* found = nullptr;
    ASSERT_EQ(S_OK, writer.Get()->QueryInterface(&IID_INodeSerializer, &found));
    EXPECT_EQ(writer.Get(), found);
    EXPECT_EQ(1u, static_cast<INodeSerializer*>(found)->Release());
    ASSERT_EQ(S_OK, writer.Get()->QueryInterface(&IID_IComponentUnknown, &found));
    EXPECT_EQ(1u, static_cast<IComponentUnknown*>(found)->Release());
    EXPECT_EQ(E_NOINTERFACE, writer.Get()->QueryInterface(&IID_INodeDeserializer, &found));
    EXPECT_EQ(1, Made());
}

TEST_F(WriterContext, TheOperationsOfTheInterfaceDoWhatTheFunctionsDo) {
    Writer writer;
    const Node node = Create(W("N"));
    IACNode* nodes[] = {node};
    EXPECT_EQ(S_OK, writer.Get()->SerializeNodes(nodes, 1, 0));
    EXPECT_EQ(S_OK, writer.Get()->Finalize());
    EXPECT_EQ("<nr><n n=\"N\"/></nr>", writer.Text);
    ClearRecord();
    EXPECT_EQ(TREEVAULT_E_CONTEXT_FINISHED, writer.Get()->SerializeNodes(nodes, 1, 0));
    EXPECT_EQ(1, AddressGroups());
}

TEST_F(WriterContext, TheCallbackGetsTheTextOnceAtTheEnd) {
    Writer writer;
    ASSERT_EQ(S_OK, writer.Add({Create(W("N"))}));
    EXPECT_EQ(0, writer.Calls);
    EXPECT_TRUE(Succeeds(AcnFinalizeSerialization, writer.Get()));
    EXPECT_EQ(1, writer.Calls);
}

TEST_F(WriterContext, APositiveResultOfTheCallbackIsSuccess) {
    Writer writer;
    writer.Result = S_FALSE;
    EXPECT_EQ(S_OK, writer.Finish());
    EXPECT_EQ(TREEVAULT_E_CONTEXT_FINISHED, writer.Finish());
}

TEST_F(WriterContext, AFinishedContextRefusesEverything) {
    Writer writer;
    const Node node = Create();
    IACNode* nodes[] = {node, nullptr};
    ASSERT_EQ(S_OK, writer.Finish());
    EXPECT_TRUE(
        FailsWithRecord(TREEVAULT_E_CONTEXT_FINISHED, AcnFinalizeSerialization, writer.Get()));
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_CONTEXT_FINISHED, AcnSerializeNodes, writer.Get(),
                                nodes, 2, 0));
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_CONTEXT_FINISHED, AcnSerializeNodes, writer.Get(),
                                nodes, 0, 0));
    EXPECT_EQ(1, writer.Calls);
}

TEST_F(WriterContext, AFailingCallbackKeepsTheTextForAnotherTry) {
    Writer writer(NodeSerializerFlagBom);
    ASSERT_EQ(S_OK, writer.Add({Create(W("a"))}));
    writer.Result = static_cast<HRESULT>(0x8A123456);
    EXPECT_TRUE(FailsWithRecord(writer.Result, AcnFinalizeSerialization, writer.Get()));
    EXPECT_EQ("\xEF\xBB\xBF<nr><n n=\"a\"/></nr>", writer.Text);
    writer.Text.clear();
    EXPECT_EQ(writer.Result, writer.Finish());
    EXPECT_EQ("\xEF\xBB\xBF<nr><n n=\"a\"/></nr>", writer.Text);
    ASSERT_EQ(S_OK, writer.Add({Create(W("b"))}));
    writer.Result = S_OK;
    EXPECT_EQ(S_OK, writer.Finish());
    EXPECT_EQ("\xEF\xBB\xBF<nr><n n=\"a\"/><n n=\"b\"/></nr>", writer.Text);
    EXPECT_EQ(3, writer.Calls);
}

TEST_F(WriterContext, ARecordOfTheCallbackIsPassedOn) {
    INodeSerializer* context = nullptr;
    const auto fail = [](const char*, uint64_t, void*) -> HRESULT {
        IACNode* node = nullptr;
        return AcnCreateNode(W("\\"), nullptr, &node);
    };
    ASSERT_EQ(S_OK, AcnStartSerialization(1, 0, fail, nullptr, &context));
    ClearRecord();
    EXPECT_EQ(TREEVAULT_E_INVALID_NAME, AcnFinalizeSerialization(context));
    EXPECT_EQ(2, AddressGroups());
    AcnCloseSerializationContext(context);
}

TEST_F(WriterContext, ClosingWithoutFinalizingNeverCallsBack) {
    int calls = 0;
    const auto count = [](const char*, uint64_t, void* context) -> HRESULT {
        ++*static_cast<int*>(context);
        return S_OK;
    };
    INodeSerializer* context = nullptr;
    ASSERT_EQ(S_OK, AcnStartSerialization(1, 0, count, &calls, &context));
    const Node node = Create();
    IACNode* nodes[] = {node};
    ASSERT_EQ(S_OK, AcnSerializeNodes(context, nodes, 1, 0));
    EXPECT_EQ(2, Made());
    AcnCloseSerializationContext(context);
    EXPECT_EQ(0, calls);
    EXPECT_EQ(1, Made());
    EXPECT_EQ(1u, References(node));
}

TEST_F(WriterContext, TheFunctionAddsAnAddressGroupToThatOfTheOperation) {
    Writer writer;
    const Node node = Create(W("N"));
    IACNode* nodes[] = {node, nullptr};
    ClearRecord();
    EXPECT_EQ(E_POINTER, AcnSerializeNodes(writer.Get(), nodes, 2, 0));
    EXPECT_EQ(2, AddressGroups());
    EXPECT_EQ(E_POINTER, AcnSerializeNodes(writer.Get(), nullptr, 2, 0));
    EXPECT_EQ(1, AddressGroups());
}

TEST_F(WriterContext, NodesBeforeANullEntryStay) {
    Writer writer;
    const Node first = Create(W("1")), third = Create(W("3"));
    EXPECT_EQ(E_POINTER, writer.Add({first, nullptr, third}));
    ASSERT_EQ(S_OK, writer.Add({third}));
    ASSERT_EQ(S_OK, writer.Finish());
    EXPECT_EQ("<nr><n n=\"1\"/><n n=\"3\"/></nr>", writer.Text);
}

TEST_F(WriterContext, AForeignNodeIsRefused) {
    Writer writer;
    ForeignNode foreign;
    const Node node = Create(W("N"));
    IACNode* nodes[] = {node, &foreign};
    EXPECT_TRUE(FailsWithRecord(E_NOINTERFACE, AcnSerializeNodes, writer.Get(), nodes, 2, 0));
    ASSERT_EQ(S_OK, writer.Finish());
    EXPECT_EQ("<nr><n n=\"N\"/></nr>", writer.Text);
}

TEST_F(WriterContext, TheDepthCountsTheLevelsBelowTheNode) {
    const Node root = Ladder();
    for (uint64_t depth = 0; depth < 4; ++depth)
        EXPECT_EQ(Ladders[depth], Write({root}, 0, depth));
    for (const uint64_t depth : {uint64_t(4), uint64_t(0x7FFFFFFE), TREEVAULT_ALL_LEVELS,
                                 uint64_t(0x80000000), UINT64_MAX})
        EXPECT_EQ(Ladders[3], Write({root}, 0, depth));
}

TEST_F(WriterContext, ADepthOfNothingStillWritesTheAttributes) {
    const Node root = Ladder();
    ASSERT_EQ(S_OK, SetInt(root, W("A"), 1));
    EXPECT_EQ("<nr><n n=\"0\"><a n=\"A\" t=\"3\" v=\"1\"/></n></nr>", Write({root}, 0, 0));
}

TEST_F(WriterContext, NodesAreUnlockedWhenAWalkIsOver) {
    const Node root = Ladder();
    const Node child = ChildAt(root, 0);
    Writer writer;
    ASSERT_EQ(S_OK, writer.Add({root}));
    // A lock that was left behind would stop another thread.
    std::thread other([&] {
        EXPECT_EQ(S_OK, AcnSetNodeType(root, W("T")));
        EXPECT_EQ(S_OK, AcnSetNodeType(child, W("T")));
    });
    other.join();
}

TEST_F(WriterContext, TheContextKeepsNoNodes) {
    Writer writer;
    const Node node = Ladder();
    ASSERT_EQ(S_OK, writer.Add({node}));
    EXPECT_EQ(1u, References(node));
}

} // namespace treevault::tests
