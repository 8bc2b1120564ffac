// SPDX-License-Identifier: MIT
// Nodes of another module where a storage calls them itself: as configurations that fail or call
// back, and as roots, whose clones are handed out batch by batch.
#include "outsidernode.h"

#include <chrono>
#include <future>

namespace treevault::tests {
namespace {

class OutsiderNodes : public NodeTest {};

// --- Configurations ------------------------------------------------------------------------------

// Only an attribute that is absent when its type is asked for has the default.
TEST_F(OutsiderNodes, FailingReadsOfAConfigurationAreRaised) {
    Storage storage;
    const auto config = Query<IStorageConfig>(storage, IID_IStorageConfig);
    OutsiderNode node(Configuration(true, false));
    node.TypeResult = Refusal;
    EXPECT_EQ(CodeText(Refusal), CodeText(config->Configure(&node)));
    node.TypeResult = S_OK;
    node.ValueResult = TREEVAULT_E_NOT_FOUND;
    EXPECT_EQ(CodeText(TREEVAULT_E_NOT_FOUND), CodeText(config->Configure(&node)));
    node.ValueResult = S_OK;
    node.TypeResult = TREEVAULT_E_NOT_FOUND;
    EXPECT_EQ(S_OK, config->Configure(&node));
    EXPECT_EQ(1u, node.References);
    ClearRecord();
}

// The name that a nested creation took meanwhile goes over to the storage that is made last.
TEST_F(OutsiderNodes, NameTakenWhileConfiguringGoesToTheOuterStorage) {
    Handle<INodeStorage> inner, outer, found;
    OutsiderNode node(Configuration(true, true));
    node.OnRead = [&] {
        if (!inner) {
            EXPECT_EQ(S_OK, StgCreateStorage(TREEVAULT_MEMORY_STORAGE, nullptr, W("name"), 0,
                                             inner.Put()));
        }
    };
    ASSERT_EQ(S_OK, StgCreateStorage(TREEVAULT_MEMORY_STORAGE, &node, W("name"), 0, outer.Put()));
    ASSERT_TRUE(inner);
    EXPECT_NE(inner.Get(), outer.Get());
    EXPECT_EQ(S_OK, StgOpenStorageInstance(W("name"), found.Put()));
    EXPECT_EQ(outer.Get(), found.Get());
    // The death of its former bearer does not free the name, that of the present one does.
    inner.Close();
    EXPECT_EQ(S_OK, StgOpenStorageInstance(W("name"), found.Put()));
    EXPECT_EQ(outer.Get(), found.Get());
    found.Close();
    outer.Close();
    EXPECT_EQ(TREEVAULT_E_NOT_FOUND, StgOpenStorageInstance(W("name"), found.Put()));
    ClearRecord();
}

// --- Roots ---------------------------------------------------------------------------------------

// What stands before a node of the library is asked itself, and never gone around.
TEST_F(OutsiderNodes, NodeBeforeAnotherIsNotTakenForIt) {
    const Node target = Create(W("n"));
    OutsiderNode stored(target);
    stored.PassesIdentityOn = true;
    stored.CloneGiven = &stored;
    Storage storage;
    IACNode* nodes[] = {&stored};
    ASSERT_EQ(S_OK, StgStoreData(storage, nullptr, StoreMergeAll, nodes, 1));
    EXPECT_EQ(CodeText(E_NOTIMPL), CodeText(storage.Store(StoreMergeAll, "n{x=1}")));
    EXPECT_EQ("n", Show(target));
    ClearRecord();
    storage.Close();
    EXPECT_EQ(1u, stored.References);
}

// --- Batches -------------------------------------------------------------------------------------

TEST_F(OutsiderNodes, FailingCloneLosesTheBatchAndTheNextOneGoesOn) {
    OutsiderNode stored(Create(W("b"))), given(Create(W("b")));
    given.CloneGiven = &stored;
    Storage storage("a c");
    IACNode* nodes[] = {&given};
    ASSERT_EQ(S_OK, StgStoreData(storage, nullptr, StoreMergeAll, nodes, 1));
    stored.CloneResult = Refusal;
    const Node filter = Filter("/", Select::Children);
    IACNode* handles[3] = {Untouched(), Untouched(), Untouched()};
    IRetrievalContext* context = nullptr;
    uint64_t count = 777;
    ASSERT_EQ(S_OK, StgRetrieveData(storage, filter, &context, handles, 0, nullptr));
    const int32_t before = LiveComponents();
    EXPECT_TRUE(
        FailsWithRecord(Refusal, StgRetrieveNextData, storage, context, handles, 3, &count));
    EXPECT_EQ(before, LiveComponents());
    EXPECT_EQ(Untouched(), handles[0]);
    EXPECT_EQ(777u, count);
    EXPECT_EQ(S_OK, StgRetrieveNextData(storage, context, handles, 3, &count));
    ASSERT_EQ(1u, count);
    EXPECT_EQ("c", Show(Node(handles[0])));
    StgCloseRetrivalContext(storage, context);
    // A failure in the first batch leaves no context either.
    context = storage;
    EXPECT_TRUE(
        FailsWithRecord(Refusal, StgRetrieveData, storage, filter, &context, handles, 3, &count));
    EXPECT_EQ(static_cast<IRetrievalContext*>(storage), context);
    storage.Close();
    EXPECT_EQ(1u, stored.References);
}

// The storage is locked while nodes are selected, and no longer while they are cloned.
TEST_F(OutsiderNodes, FirstBatchIsClonedWhileOthersStore) {
    OutsiderNode stored(Create(W("b"))), given(Create(W("b")));
    given.CloneGiven = &stored;
    Storage storage;
    IACNode* nodes[] = {&given};
    ASSERT_EQ(S_OK, StgStoreData(storage, nullptr, StoreMergeAll, nodes, 1));
    std::future<HRESULT> other;
    stored.OnClone = [&] {
        other = std::async(std::launch::async, [&] { return storage.Store(StoreMergeAll, "a"); });
        EXPECT_EQ(std::future_status::ready, other.wait_for(std::chrono::seconds(60)));
    };
    EXPECT_EQ("b", Show(Retrieve(storage, Filter("/b"))));
    ASSERT_TRUE(other.valid());
    EXPECT_EQ(S_OK, other.get());
    stored.OnClone = nullptr;
    EXPECT_EQ("a b", Forest(storage));
}

} // namespace
} // namespace treevault::tests
