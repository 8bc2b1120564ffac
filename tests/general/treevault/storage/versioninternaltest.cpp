// SPDX-License-Identifier: MIT
// Version data of a storage, which no client can reach, and the number that counts its runs.
#include "general/treevault/storage/memorystorage.h"
#include "support/storage.h"

namespace treevault::tests {
namespace {

const GUID SomeId = {0x11223344, 0x5566, 0x7788, {0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF, 0x01}};

class Version : public NodeTest {
protected:
    IStorageVersion& Data() { return *Subject; }
    INodeStorage* Storage() { return Subject.Get(); }

    Node Read() {
        Node node;
        EXPECT_EQ(S_OK, Data().GetVersionInfo(node.Put()));
        return node;
    }
    uint64_t Usn() {
        const Value value = Get(Read(), W("StorageUsn"));
        EXPECT_EQ(VtInt64, value.Tag);
        uint64_t usn = 0;
        EXPECT_EQ(sizeof usn, value.Bytes.size());
        std::memcpy(&usn, value.Bytes.data(), sizeof usn);
        return usn;
    }
    Value BackupId() { return Get(Read(), W("StorageBackupId")); }

    static Node VersionNode(const GUID& id, const Value& usn) {
        Node node = Create(nullptr, W("StorageVersionInfo"));
        EXPECT_EQ(S_OK, Set(node, W("StorageBackupId"), NumberValue(VtGuid, id)));
        EXPECT_EQ(S_OK, Set(node, W("StorageUsn"), usn));
        return node;
    }

    // The call fails with a record.
    template <class Call>
    static void ExpectRefused(HRESULT code, const Call& call) {
        ClearRecord();
        EXPECT_EQ(CodeText(code), CodeText(call()));
        Text record;
        EXPECT_TRUE(TakeRecord(record));
    }

    HRESULT Store(std::string_view forest) {
        return StoreNodes(Storage(), nullptr, StoreMergeAll, Trees(forest));
    }

    Ref<CMemoryStorage> Subject = MakeComponent<CMemoryStorage>();
};

// --- The node ------------------------------------------------------------------------------------

TEST_F(Version, OfANewStorage) {
    const Node node = Read();
    EXPECT_EQ(Text(W("StorageVersionInfo")), Type(node));
    EXPECT_EQ(36u, Name(node).size());
    EXPECT_EQ((Names{W("StorageBackupId"), W("StorageUsn")}), AttributeNames(node));
    EXPECT_EQ(NumberValue(VtGuid, GUID{}), Get(node, W("StorageBackupId")));
    EXPECT_EQ(NumberValue(VtInt64, int64_t{0}), Get(node, W("StorageUsn")));
    EXPECT_EQ(0u, ChildCount(node));
}

TEST_F(Version, IsSetAndReadBack) {
    EXPECT_EQ(S_OK, Data().SetVersionInfo(VersionNode(SomeId, NumberValue(VtInt64, int64_t{7}))));
    EXPECT_EQ(NumberValue(VtGuid, SomeId), BackupId());
    EXPECT_EQ(7u, Usn());
    EXPECT_EQ(S_OK, Data().SetVersionInfo(Read()));
    EXPECT_EQ(NumberValue(VtGuid, SomeId), BackupId());
    EXPECT_EQ(7u, Usn());
    EXPECT_EQ(S_OK, Store("n"));
    EXPECT_EQ(8u, Usn());
    EXPECT_EQ(NumberValue(VtGuid, SomeId), BackupId());
}

TEST_F(Version, LargeNumbersKeepTheirBits) {
    for (const uint64_t usn : {uint64_t{0x8000000000000000}, UINT64_MAX, uint64_t{INT64_MAX}}) {
        EXPECT_EQ(S_OK, Data().SetVersionInfo(VersionNode(SomeId, NumberValue(VtUInt64, usn))));
        EXPECT_EQ(usn, Usn());
        EXPECT_EQ(S_OK, Data().SetVersionInfo(Read()));
        EXPECT_EQ(usn, Usn());
    }
    EXPECT_EQ(S_OK, Data().SetVersionInfo(VersionNode(SomeId, NumberValue(VtUInt64, UINT64_MAX))));
    EXPECT_EQ(S_OK, Store(""));
    EXPECT_EQ(0u, Usn());
}

TEST_F(Version, ValuesAreConverted) {
    const Node node = VersionNode(SomeId, TextValue(W("0x10")));
    ASSERT_EQ(S_OK, Set(node, W("StorageBackupId"),
                        TextValue(W("{11223344-5566-7788-99AA-BBCCDDEEFF01}"))));
    EXPECT_EQ(S_OK, Data().SetVersionInfo(node));
    EXPECT_EQ(NumberValue(VtGuid, SomeId), BackupId());
    EXPECT_EQ(16u, Usn());
}

// --- Failures ------------------------------------------------------------------------------------

TEST_F(Version, ArgumentsMustNotBeNull) {
    ExpectRefused(E_POINTER, [&] { return Data().GetVersionInfo(nullptr); });
    ExpectRefused(E_POINTER, [&] { return Data().SetVersionInfo(nullptr); });
}

TEST_F(Version, TypeMustBeTheOne) {
    for (const WCHAR* type : {W(""), W("storageversioninfo"), W("StorageVersionInfoX")}) {
        const Node node = VersionNode(SomeId, NumberValue(VtInt64, int64_t{7}));
        ASSERT_EQ(S_OK, AcnSetNodeType(node, type));
        ExpectRefused(E_INVALIDARG, [&] { return Data().SetVersionInfo(node); });
    }
    EXPECT_EQ(NumberValue(VtGuid, GUID{}), BackupId());
    EXPECT_EQ(0u, Usn());
}

TEST_F(Version, MissingIdChangesNothing) {
    const Node node = VersionNode(SomeId, NumberValue(VtInt64, int64_t{7}));
    ASSERT_EQ(S_OK, AcnDeleteAttribute(node, W("StorageBackupId")));
    ExpectRefused(TREEVAULT_E_NOT_FOUND, [&] { return Data().SetVersionInfo(node); });
    EXPECT_EQ(0u, Usn());
}

TEST_F(Version, MissingNumberLeavesTheNewId) {
    const Node node = VersionNode(SomeId, NumberValue(VtInt64, int64_t{7}));
    ASSERT_EQ(S_OK, AcnDeleteAttribute(node, W("StorageUsn")));
    ExpectRefused(TREEVAULT_E_NOT_FOUND, [&] { return Data().SetVersionInfo(node); });
    EXPECT_EQ(NumberValue(VtGuid, SomeId), BackupId());
    EXPECT_EQ(0u, Usn());
}

TEST_F(Version, UnconvertibleNumberLeavesTheNewId) {
    const Node node = VersionNode(SomeId, TextValue(W("many")));
    ExpectRefused(TREEVAULT_E_CANNOT_CONVERT, [&] { return Data().SetVersionInfo(node); });
    EXPECT_EQ(NumberValue(VtGuid, SomeId), BackupId());
    EXPECT_EQ(0u, Usn());
}

TEST_F(Version, IsNoInterfaceForClients) {
    for (const GUID& iid : {IID_INodeStorage, IID_IStorageConfig}) {
        const auto found = Query<IComponentUnknown>(Storage(), iid);
        EXPECT_NE(static_cast<void*>(static_cast<IStorageVersion*>(Subject.Get())),
                  static_cast<void*>(found.Get()));
    }
}

// --- Counting ------------------------------------------------------------------------------------

TEST_F(Version, EachRunCountsOnce) {
    EXPECT_EQ(S_OK, Store("a b c"));
    EXPECT_EQ(1u, Usn());
    EXPECT_EQ(S_OK, Store(""));
    EXPECT_EQ(2u, Usn());
    EXPECT_EQ(S_OK, StgDeleteData(Storage(), nullptr, Filter("/none")));
    EXPECT_EQ(3u, Usn());
    Group group(Storage());
    group.Store(StoreMergeAll, "a b").Delete("/c");
    EXPECT_EQ(3u, Usn());
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(4u, Usn());
    EXPECT_EQ(S_OK, group.Finish());
    EXPECT_EQ(5u, Usn());
}

TEST_F(Version, UnfinishedGroupDoesNotCount) {
    {
        Group group(Storage());
        group.Store(StoreMergeAll, "a");
    }
    EXPECT_EQ(0u, Usn());
    EXPECT_EQ("", Forest(Storage()));
}

TEST_F(Version, FailedRunDoesNotCount) {
    Sink sink(Storage());
    sink.RefuseOn = "created /n";
    EXPECT_EQ(Refusal, Store("n"));
    EXPECT_EQ(TREEVAULT_E_STG_BAD_PATH, StgDeleteData(Storage(), nullptr, Filter("/")));
    EXPECT_EQ(E_POINTER, StgStoreData(Storage(), nullptr, StoreMergeAll, nullptr, 0));
    EXPECT_EQ(0u, Usn());
}

TEST_F(Version, RunRefusedBeforeItsCommitCountsAllTheSame) {
    Sink sink(Storage());
    sink.RefuseOn = "precommit";
    EXPECT_EQ(Refusal, Store("n"));
    EXPECT_EQ("", Forest(Storage()));
    EXPECT_EQ(1u, Usn());
}

TEST_F(Version, IsCountedBeforeThePreCommitAndAfterTheLastChange) {
    Sink sink(Storage());
    std::vector<uint64_t> seen;
    sink.Inside = [&](const std::string&, const ModifyNotification*) { seen.push_back(Usn()); };
    EXPECT_EQ(S_OK, Store("a b"));
    EXPECT_EQ((std::vector<uint64_t>{0, 0, 0, 1, 1}), seen);
}

TEST_F(Version, NestedStoreCountsForItself) {
    Sink sink(Storage());
    sink.Inside = [&](const std::string& call, const ModifyNotification*) {
        if (call == "created /a") {
            EXPECT_EQ(S_OK, Store("nested"));
        }
    };
    EXPECT_EQ(S_OK, Store("a"));
    EXPECT_EQ(2u, Usn());
}

TEST_F(Version, WithoutAtomicityItIsTheSame) {
    EXPECT_EQ(S_OK, Subject->Configure(Configuration(false, false)));
    EXPECT_EQ(TREEVAULT_E_STG_PARENT_MISSING, Store("a /none/b"));
    EXPECT_EQ("a", Forest(Storage()));
    EXPECT_EQ(0u, Usn());
    EXPECT_EQ(S_OK, Store("b"));
    EXPECT_EQ(1u, Usn());
}

// The number is that of the storage that made the operations.
TEST_F(Version, GroupFinishedOnAnotherStorage) {
    const Ref<CMemoryStorage> other = MakeComponent<CMemoryStorage>();
    Group group(Storage());
    group.Store(StoreMergeAll, "a");
    EXPECT_EQ(S_OK, StgFinalizeOperationsGroup(other.Get(), group.Get()));
    EXPECT_EQ(1u, Usn());
    Node node;
    EXPECT_EQ(S_OK, other->GetVersionInfo(node.Put()));
    EXPECT_EQ(NumberValue(VtInt64, int64_t{0}), Get(node, W("StorageUsn")));
}

} // namespace
} // namespace treevault::tests
