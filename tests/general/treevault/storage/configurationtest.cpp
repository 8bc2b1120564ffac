// SPDX-License-Identifier: MIT
// Configuration of a storage: what is read, how it is converted, and what a failure leaves.
#include "support/storage.h"

namespace treevault::tests {
namespace {

class Configuring : public NodeTest {
protected:
    HRESULT Configure(IACNode* node) {
        return Query<IStorageConfig>(Subject, IID_IStorageConfig)->Configure(node);
    }

    static Node With(const WCHAR* name, const Value& value) {
        Node node = Create(W("any"), W("thing"));
        EXPECT_EQ(S_OK, Set(node, name, value));
        return node;
    }

    // How the storage behaves.
    bool BuildsParents() {
        const HRESULT hr = Subject.Store(StoreMergeAll, "/parent/n");
        EXPECT_TRUE(hr == S_OK || hr == TREEVAULT_E_STG_PARENT_MISSING) << CodeText(hr);
        EXPECT_EQ(S_OK, Subject.Delete("/parent"));
        return hr == S_OK;
    }
    bool IsAtomic() {
        Sink sink(Subject);
        sink.RefuseOn = "precommit";
        EXPECT_EQ(Refusal, Subject.Store(StoreMergeAll, "n"));
        sink.RefuseOn.clear();
        const bool undone = Forest(Subject).empty();
        EXPECT_EQ(S_OK, Subject.Delete("/n"));
        return undone;
    }

    Storage Subject;
};

const WCHAR* const Build = W("BuildParentNodesIfMissing");
const WCHAR* const Atomic = W("MaintainAtomicity");

TEST_F(Configuring, BothAreOnByDefault) {
    EXPECT_TRUE(BuildsParents());
    EXPECT_TRUE(IsAtomic());
    EXPECT_EQ(S_OK, Configure(Create()));
    EXPECT_TRUE(BuildsParents());
    EXPECT_TRUE(IsAtomic());
}

TEST_F(Configuring, EachIsReadForItself) {
    for (const bool build : {false, true})
        for (const bool atomic : {false, true}) {
            EXPECT_EQ(S_OK, Configure(Configuration(build, atomic)));
            EXPECT_EQ(build, BuildsParents());
            EXPECT_EQ(atomic, IsAtomic());
        }
}

TEST_F(Configuring, CreationConfigures) {
    Storage storage(Configuration(false, true));
    EXPECT_EQ(TREEVAULT_E_STG_PARENT_MISSING, storage.Store(StoreMergeAll, "/p/n"));
}

TEST_F(Configuring, WhatIsLeftOutGoesBackToTheDefault) {
    EXPECT_EQ(S_OK, Configure(Configuration(false, false)));
    EXPECT_EQ(S_OK, Configure(With(Atomic, {VtBool, std::string(1, '\0')})));
    EXPECT_TRUE(BuildsParents());
    EXPECT_FALSE(IsAtomic());
    EXPECT_EQ(S_OK, Configure(With(Build, {VtBool, std::string(1, '\0')})));
    EXPECT_FALSE(BuildsParents());
    EXPECT_TRUE(IsAtomic());
}

TEST_F(Configuring, ValuesAreConverted) {
    EXPECT_EQ(S_OK, Configure(With(Atomic, TextValue(W("False")))));
    EXPECT_FALSE(IsAtomic());
    EXPECT_EQ(S_OK, Configure(With(Atomic, TextValue(W("True")))));
    EXPECT_TRUE(IsAtomic());
    EXPECT_EQ(S_OK, Configure(With(Atomic, Int32Value(0))));
    EXPECT_FALSE(IsAtomic());
    EXPECT_EQ(S_OK, Configure(With(Atomic, Int32Value(256))));
    EXPECT_TRUE(IsAtomic());
    EXPECT_EQ(S_OK, Configure(With(Build, NumberValue(VtUInt64, uint64_t{0}))));
    EXPECT_FALSE(BuildsParents());
}

TEST_F(Configuring, EmptyValueCountsAsAbsent) {
    for (const WCHAR* name : {Build, Atomic}) {
        EXPECT_EQ(S_OK, Configure(Configuration(false, false)));
        EXPECT_EQ(S_OK, Configure(With(name, {VtEmpty, ""})));
        EXPECT_TRUE(BuildsParents());
        EXPECT_TRUE(IsAtomic());
    }
}

TEST_F(Configuring, NamesAreCaseSensitiveAndOthersIgnored) {
    const Node node = With(W("maintainatomicity"), TextValue(W("False")));
    ASSERT_EQ(S_OK, Set(node, W("Other"), TextValue(W("perhaps"))));
    EXPECT_EQ(S_OK, Configure(node));
    EXPECT_TRUE(IsAtomic());
}

TEST_F(Configuring, NodeMustNotBeNull) {
    EXPECT_EQ(S_OK, Configure(Configuration(false, false)));
    ClearRecord();
    EXPECT_EQ(E_POINTER, Configure(nullptr));
    Text record;
    EXPECT_TRUE(TakeRecord(record));
    EXPECT_FALSE(BuildsParents());
    EXPECT_FALSE(IsAtomic());
}

TEST_F(Configuring, FailureLeavesWhatWasReadBeforeIt) {
    const Node node = Configuration(false, true);
    ASSERT_EQ(S_OK, Set(node, Atomic, TextValue(W("perhaps"))));
    ASSERT_EQ(S_OK, Configure(Configuration(true, false)));
    ClearRecord();
    EXPECT_EQ(TREEVAULT_E_CANNOT_CONVERT, Configure(node));
    Text record;
    EXPECT_TRUE(TakeRecord(record));
    EXPECT_FALSE(BuildsParents());
    EXPECT_FALSE(IsAtomic());
}

TEST_F(Configuring, FirstFailureEndsIt) {
    const Node node = Configuration(true, false);
    ASSERT_EQ(S_OK, Set(node, Build, {VtBoolArray, std::string(1, '\0')}));
    EXPECT_EQ(TREEVAULT_E_CANNOT_CONVERT, Configure(node));
    EXPECT_TRUE(BuildsParents());
    EXPECT_TRUE(IsAtomic());
}

TEST_F(Configuring, NodeIsHeldForTheCallAlone) {
    const Node node = Configuration(true, true);
    EXPECT_EQ(S_OK, Configure(node));
    EXPECT_EQ(1u, References(node));
}

} // namespace
} // namespace treevault::tests
