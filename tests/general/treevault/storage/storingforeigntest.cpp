// SPDX-License-Identifier: MIT
// Storing of nodes that another module implements: a given node is read and cloned through its
// interface alone.
#include "support/storage.h"

namespace treevault::tests {
namespace {

// Passes every call on to a node of the library; single answers can be changed.
class PassingNode final : public IACNode {
public:
    explicit PassingNode(const Node& target) : Target(target) {}

    Text ModifiedNames, AttributeNames; // in place of those of the target, if not empty
    HRESULT NameResult = S_OK, TypeResult = S_OK, NamesResult = S_OK, CountResult = S_OK,
            ValueResult = S_OK, CloneResult = S_OK; // failures of these reads
    uint32_t References = 1;

    uint32_t TREEVAULT_CALL AddRef() override { return ++References; }
    uint32_t TREEVAULT_CALL Release() override { return --References; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID*, void**) override { return E_NOINTERFACE; }
    HRESULT TREEVAULT_CALL GetName(NodeNameKind kind, WCHAR* buffer, size_t* size) override {
        return FAILED(NameResult) ? NameResult : Target->GetName(kind, buffer, size);
    }
    HRESULT TREEVAULT_CALL SetName(NodeNameKind, const WCHAR*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL GetType(WCHAR* buffer, size_t* size) override {
        return FAILED(TypeResult) ? TypeResult : Target->GetType(buffer, size);
    }
    HRESULT TREEVAULT_CALL SetType(const WCHAR*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL SetAttribute(const WCHAR*, ValueType, const void*, size_t) override {
        return E_NOTIMPL;
    }
    HRESULT TREEVAULT_CALL DeleteAttribute(const WCHAR*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL GetAttribute(const WCHAR* name, const ValueType* wanted, void* buffer,
                                        size_t* size, ValueType* stored) override {
        return FAILED(ValueResult) ? ValueResult
                                   : Target->GetAttribute(name, wanted, buffer, size, stored);
    }
    HRESULT TREEVAULT_CALL GetAttributeNames(WCHAR* buffer, size_t* size) override {
        if (!AttributeNames.empty())
            return Give(AttributeNames, buffer, size);
        return FAILED(NamesResult) ? NamesResult : Target->GetAttributeNames(buffer, size);
    }
    HRESULT TREEVAULT_CALL SetModifiedState(const WCHAR*, uint32_t) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL GetModifiedState(const WCHAR*, uint32_t*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL GetModifiedAttributeNames(WCHAR* buffer, size_t* size) override {
        if (ModifiedNames.empty())
            return Target->GetModifiedAttributeNames(buffer, size);
        return Give(ModifiedNames, buffer, size);
    }
    HRESULT TREEVAULT_CALL AddChild(IACNode*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL RemoveChild(IACNode*) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL RemoveChildByIndex(uint64_t) override { return E_NOTIMPL; }
    HRESULT TREEVAULT_CALL GetChildCount(size_t* count) override {
        return FAILED(CountResult) ? CountResult : Target->GetChildCount(count);
    }
    HRESULT TREEVAULT_CALL GetChildByIndex(uint64_t index, IACNode** child) override {
        return Target->GetChildByIndex(index, child);
    }
    HRESULT TREEVAULT_CALL GetChildByName(const WCHAR* name, IACNode** child) override {
        return Target->GetChildByName(name, child);
    }
    HRESULT TREEVAULT_CALL GetParent(IACNode** parent) override {
        return Target->GetParent(parent);
    }
    HRESULT TREEVAULT_CALL Clone(uint64_t depth, uint32_t flags, IACNode** clone) override {
        return FAILED(CloneResult) ? CloneResult : Target->Clone(depth, flags, clone);
    }

private:
    static HRESULT Give(const Text& names, WCHAR* buffer, size_t* size) {
        const bool fits = names.size() <= *size;
        *size = names.size();
        if (fits)
            names.copy(buffer, names.size());
        return fits ? S_OK : TREEVAULT_E_INSUFFICIENT_BUFFER;
    }

    Node Target;
};

class StoringForeign : public NodeTest {
protected:
    HRESULT Store(StoreMode mode, IOperationsGroup* group = nullptr) {
        IACNode* nodes[] = {&Given};
        const HRESULT hr = StgStoreData(Subject, group, mode, nodes, 1);
        if (!group) {
            EXPECT_EQ(1u, Given.References);
        }
        return hr;
    }

    Storage Subject{"n:T{a=1 b=2 c=3}(k)"};
    Sink Watcher{Subject};
    PassingNode Given{Tree("n:U{a=5 d=4}(l)")};
};

TEST_F(StoringForeign, IsMergedAndItsChildrenAreCloned) {
    EXPECT_EQ(S_OK, Store(StoreReplaceAll));
    EXPECT_EQ("n:U{a=5 d=4}(l)", Forest(Subject));
    EXPECT_EQ(Framed({"changed /n [a d b c]", "created /n/l", "deleted /n/k", "child+- /n"}),
              Watcher.Told);
}

TEST_F(StoringForeign, IsClonedWhereItIsNew) {
    EXPECT_EQ(S_OK, Subject.Delete("/n"));
    EXPECT_EQ(S_OK, Store(StoreMergeAll));
    EXPECT_EQ("n:U{a=5 d=4}(l)", Forest(Subject));
}

TEST_F(StoringForeign, IsClonedIntoAGroup) {
    Group group(Subject);
    EXPECT_EQ(S_OK, Store(StoreReplaceAll, group.Get()));
    EXPECT_EQ(1u, Given.References);
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ("n:U{a=5 d=4}(l)", Forest(Subject));
}

// The order of the given node where its attributes are merged, that of the names where they
// replace.
TEST_F(StoringForeign, NamesOutOfOrderAreSortedWhereTheyReplace) {
    Given.AttributeNames = Text(W("d\0a\0"), 4);
    EXPECT_EQ(S_OK, Store(StoreReplaceAttributes));
    EXPECT_EQ("changed /n [a d b c]", Watcher.Told.at(1));
    EXPECT_EQ(S_OK, Subject.Delete("/n/l"));
    EXPECT_EQ(S_OK, Subject.Store(StoreReplaceAll, "n"));
    Watcher.Take();
    EXPECT_EQ(S_OK, Store(StoreMergeAll));
    EXPECT_EQ("changed /n [d a]", Watcher.Told.at(1));
}

// A modified name that the node no longer has is a deletion.
TEST_F(StoringForeign, MergeModifiedDeletesWhatIsModifiedAndGone) {
    Given.ModifiedNames = Text(W("c\0d\0\0x\0b\0"), 9);
    EXPECT_EQ(S_OK, Store(StoreMergeModified));
    EXPECT_EQ("n:U{a=1 d=4}(k l)", Forest(Subject));
    EXPECT_EQ("changed /n [c d b]", Watcher.Told.at(1));
}

TEST_F(StoringForeign, ListOfModifiedNamesMayBeLong) {
    Given.ModifiedNames = Text(500, W('x')) + Text(W("\0c\0"), 3);
    EXPECT_EQ(S_OK, Store(StoreMergeModified));
    EXPECT_EQ("changed /n [c]", Watcher.Told.at(1));
}

// --- Reads that fail -----------------------------------------------------------------------------

TEST_F(StoringForeign, UnreadableTypeIsAnEmptyOne) {
    Given.TypeResult = Refusal;
    EXPECT_EQ(S_OK, Store(StoreMergeAll));
    EXPECT_EQ("n:T{a=5 b=2 c=3 d=4}(k l)", Forest(Subject));
    EXPECT_EQ(S_OK, Store(StoreReplaceAttributes));
    EXPECT_EQ("n{a=5 d=4}(k l)", Forest(Subject));
}

TEST_F(StoringForeign, UnreadableNamesAreNone) {
    Given.NamesResult = Refusal;
    EXPECT_EQ(S_OK, Store(StoreMergeAll));
    EXPECT_EQ("n:U{a=1 b=2 c=3}(k l)", Forest(Subject));
    // Those of the stored node are looked up in the given one.
    EXPECT_EQ(S_OK, Store(StoreReplaceAttributes));
    EXPECT_EQ("n:U{a=5}(k l)", Forest(Subject));
}

TEST_F(StoringForeign, NodeWithoutAReadableNameHasNoParent) {
    Given.NameResult = Refusal;
    EXPECT_EQ(TREEVAULT_E_STG_PARENT_MISSING, Store(StoreMergeAll));
    EXPECT_EQ((Calls{"start", "finish(0)"}), Watcher.Told);
}

TEST_F(StoringForeign, FailingReadOfAValueIsRaisedAndUndone) {
    Given.ValueResult = Refusal;
    IACNode* nodes[] = {&Given};
    EXPECT_TRUE(FailsWithRecord(Refusal, StgStoreData, Subject, nullptr, StoreMergeAll, nodes, 1));
    EXPECT_EQ("n:T{a=1 b=2 c=3}(k)", Forest(Subject));
}

TEST_F(StoringForeign, FailingReadOfTheChildrenIsRaisedAndUndone) {
    Given.CountResult = Refusal;
    EXPECT_EQ(Refusal, Store(StoreReplaceAll));
    EXPECT_EQ("n:T{a=1 b=2 c=3}(k)", Forest(Subject));
    EXPECT_EQ((Calls{"start", "changed /n [a d b c]", "finish(0)"}), Watcher.Told);
}

TEST_F(StoringForeign, FailingCloneIsRaised) {
    Given.CloneResult = Refusal;
    Group group(Subject);
    EXPECT_EQ(Refusal, Store(StoreMergeAll, group.Get()));
    EXPECT_EQ(S_OK, Subject.Delete("/n"));
    EXPECT_EQ(Refusal, Store(StoreMergeAll));
    EXPECT_EQ("", Forest(Subject));
}

// A node that asks for ever more room, without ever asking for more, is refused at last.
TEST_F(StoringForeign, RoomThatNeverSufficesIsAFailure) {
    Given.ValueResult = TREEVAULT_E_INSUFFICIENT_BUFFER;
    EXPECT_EQ(TREEVAULT_E_INSUFFICIENT_BUFFER, Store(StoreMergeAll));
    EXPECT_EQ("n:T{a=1 b=2 c=3}(k)", Forest(Subject));
    Given.ValueResult = S_OK;
    Given.TypeResult = TREEVAULT_E_INSUFFICIENT_BUFFER;
    EXPECT_EQ(S_OK, Store(StoreMergeAll));
    EXPECT_EQ("n:T{a=5 b=2 c=3 d=4}(k l)", Forest(Subject));
}

} // namespace
} // namespace treevault::tests
