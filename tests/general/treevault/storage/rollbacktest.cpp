// SPDX-License-Identifier: MIT
// Rollback: what a failed group takes back, in which state, and what it deliberately does not.
#include "support/storage.h"

namespace treevault::tests {
namespace {

class Rollback : public NodeTest {
protected:
    // Runs one refused group of one store on a storage with some content.
    static void ExpectUndone(const std::string& stored, StoreMode mode, const std::string& given,
                             const std::string& left) {
        SCOPED_TRACE(testing::Message() << given << " onto " << stored << " by mode " << mode);
        Storage storage(stored);
        Sink sink(storage);
        sink.RefuseOn = "precommit";
        EXPECT_EQ(Refusal, storage.Store(mode, given));
        EXPECT_EQ(left, Forest(storage));
        EXPECT_EQ("finish(0)", sink.Told.back());
    }

    static void ExpectUndone(const std::string& stored, StoreMode mode, const std::string& given) {
        ExpectUndone(stored, mode, given, stored);
    }
};

// --- Each kind of change -------------------------------------------------------------------------

TEST_F(Rollback, OfAddedNodes) {
    ExpectUndone("", StoreMergeAll, "n:T{x=1}(a(b))");
    ExpectUndone("n(a)", StoreMergeAll, "n(b c) m");
}

TEST_F(Rollback, OfBuiltParents) {
    ExpectUndone("", StoreMergeAll, "/a/b/c");
    ExpectUndone("a(x)", StoreMergeAll, "/a/b/c");
}

TEST_F(Rollback, OfAttributes) {
    ExpectUndone("n:T{a=1 b='text' c=3}", StoreMergeAll, "n{a=2 d=4}");
    ExpectUndone("n:T{a=1 b='text' c=3}", StoreReplaceAll, "n");
    ExpectUndone("n", StoreMergeAll, "n{a=1}");
}

TEST_F(Rollback, OfATypeThatChangedWithAttributes) {
    ExpectUndone("n:T{a=1}", StoreMergeAll, "n:U{a=2}");
    ExpectUndone("n{a=1}", StoreMergeAll, "n:U{a=2}");
    ExpectUndone("n:T{a=1}", StoreReplaceAll, "n{a=2}");
}

TEST_F(Rollback, OfRemovedChildren) {
    ExpectUndone("n(a:T{x=1}(b(c)))", StoreReplaceAll, "n");
}

TEST_F(Rollback, OfEverythingAtOnce) {
    ExpectUndone("n:T{a=1}(k{y=1}(gone(x)) l)", StoreReplaceAll, "n:U{b=2}(k{y=2}(new) l m) /p/q");
}

TEST_F(Rollback, OfRepeatedChangesOfOneNode) {
    ExpectUndone("n{a=1}", StoreMergeAll, "n{a=2} n{a=3 b=1} n{a=4}(c) n(c{d=1}) n(c(e))");
}

TEST_F(Rollback, OfAttributesBringsBackOneWithoutAName) {
    ExpectUndone("n{=5 a=1}", StoreMergeAll, "n{a=2}");
}

TEST_F(Rollback, OfLongNamesAndValues) {
    const std::string name(1000, 'n'), text(1000, 't');
    ExpectUndone(name + "{" + name + "='" + text + "'}(" + name + ")", StoreReplaceAll,
                 name + "{a=1}");
}

// --- What is not restored ------------------------------------------------------------------------

TEST_F(Rollback, TypeThatChangedAloneStays) {
    ExpectUndone("n:T{a=1}", StoreMergeAll, "n:U{a=1}", "n:U{a=1}");
    ExpectUndone("n:T{a=1}", StoreReplaceAll, "n{a=1}", "n{a=1}");
    ExpectUndone("n:T{a=1}", StoreMergeAll, "n:U{a=1}(b)", "n:U{a=1}");
}

TEST_F(Rollback, TypeChangedAloneFirstIsTheOneThatALaterChangeBringsBack) {
    ExpectUndone("n:T{a=1}", StoreMergeAll, "n:U n:V{a=2}", "n:U{a=1}");
}

TEST_F(Rollback, ReattachedChildrenStandLast) {
    ExpectUndone("n(a b c d)", StoreReplaceAll, "n(b d)", "n(b d c a)");
}

TEST_F(Rollback, RestoredAttributesAreModified) {
    Storage storage("n{~a=1 ~b=2}(~c)");
    Sink sink(storage);
    sink.RefuseOn = "precommit";
    EXPECT_EQ(Refusal, storage.Store(StoreMergeAll, "n{a=5}"));
    EXPECT_EQ("n{a=1 b=2}(~c)", Forest(storage, Flags::Shown));
}

TEST_F(Rollback, UntouchedAttributesKeepTheirState) {
    Storage storage("n{~a=1 b=2}(c{~d=1})");
    Sink sink(storage);
    sink.RefuseOn = "precommit";
    EXPECT_EQ(Refusal, storage.Store(StoreReplaceAll, "n{a=1 b=2}(e)"));
    EXPECT_EQ("n{~a=1 b=2}(c{~d=1})", Forest(storage, Flags::Shown));
}

TEST_F(Rollback, IsToldByTheFinishAlone) {
    Storage storage("n{a=1}(b)");
    Sink sink(storage);
    sink.RefuseOn = "precommit";
    EXPECT_EQ(Refusal, storage.Store(StoreReplaceAll, "n{a=2}(c)"));
    EXPECT_EQ((Calls{"start", "changed /n [a]", "created /n/c", "deleted /n/b", "child+- /n",
                     "precommit", "finish(0)"}),
              sink.Told);
}

// --- Identity ------------------------------------------------------------------------------------

TEST_F(Rollback, PutsTheSameObjectsBack) {
    Storage storage("n(a(b)) m");
    Sink sink(storage);
    Nodes deleted;
    sink.Inside = [&](const std::string&, const ModifyNotification* told) {
        if (told && told->Mask == ModifyNodeDeleted) {
            told->OldNode->AddRef();
            deleted.emplace_back(told->OldNode);
        }
    };
    sink.RefuseOn = "precommit";
    Group group(storage);
    group.Delete("/n/a").Delete("/m");
    EXPECT_EQ(Refusal, group.Finish());
    ASSERT_EQ(2u, deleted.size());
    EXPECT_EQ("m n(a(b))", Forest(storage));
    EXPECT_EQ("n(a(b))", Show(Parent(deleted[0])));
    // A change shows on the object that the sink kept.
    sink.RefuseOn.clear();
    EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, "m{x=1} /n/a/b{y=1}"));
    EXPECT_EQ("a(b{y=1}) m{x=1}", Show(deleted));
}

TEST_F(Rollback, AddedNodesAreFreeAgain) {
    Storage storage("n");
    Sink sink(storage);
    Node added;
    sink.Inside = [&](const std::string&, const ModifyNotification* told) {
        if (told && told->Mask == ModifyNodeCreated) {
            told->NewNode->AddRef();
            added = Node(told->NewNode);
        }
    };
    sink.RefuseOn = "child+ /n";
    EXPECT_EQ(Refusal, storage.Store(StoreMergeAll, "n(a)"));
    EXPECT_EQ(nullptr, Parent(added).Get());
    EXPECT_EQ(1u, References(added));
    EXPECT_EQ("n", Forest(storage));
}

// --- Without atomicity ---------------------------------------------------------------------------

class WithoutAtomicity : public NodeTest {
protected:
    static void ExpectLeft(const std::string& stored, StoreMode mode, const std::string& given,
                           const std::string& left) {
        SCOPED_TRACE(testing::Message() << given << " onto " << stored << " by mode " << mode);
        Storage storage(stored);
        storage.Configure(true, false);
        Sink sink(storage);
        sink.RefuseOn = "precommit";
        EXPECT_EQ(Refusal, storage.Store(mode, given));
        EXPECT_EQ(left, Forest(storage));
        EXPECT_EQ("start", sink.Told.front());
        EXPECT_EQ("finish(0)", sink.Told.back());
    }
};

TEST_F(WithoutAtomicity, AddedAndBuiltNodesStay) {
    ExpectLeft("", StoreMergeAll, "n(a) /p/q", "n(a) p(q)");
    ExpectLeft("n", StoreMergeAll, "n(a)", "n(a)");
}

TEST_F(WithoutAtomicity, RemovedNodesStayAway) {
    ExpectLeft("n(a b)", StoreReplaceAll, "n(b)", "n(b)");
}

TEST_F(WithoutAtomicity, AttributesAreUndoneAllTheSame) {
    ExpectLeft("n:T{a=1}(b{c=1})", StoreReplaceAll, "n:U{d=2}(b{c=2} e)", "n:T{a=1}(b{c=1} e)");
}

TEST_F(WithoutAtomicity, SinksAreToldTheSame) {
    Storage storage("n{a=1}(b)");
    storage.Configure(true, false);
    Sink sink(storage);
    EXPECT_EQ(S_OK, storage.Store(StoreReplaceAll, "n{a=2}(c) /p/q"));
    EXPECT_EQ(S_OK, storage.Delete("/p/q"));
    EXPECT_EQ((Calls{"start", "changed /n [a]", "created /n/c", "deleted /n/b", "child+- /n",
                     "created /p", "created /p/q", "child+ /p", "precommit", "finish(1)", "start",
                     "deleted /p/q", "child- /p", "precommit", "finish(1)"}),
              sink.Told);
}

TEST_F(WithoutAtomicity, FailureInTheSecondStoreLeavesTheFirst) {
    Storage storage(Configuration(false, false));
    Group group(storage);
    group.Store(StoreMergeAll, "a").Store(StoreMergeAll, "/none/b").Store(StoreMergeAll, "c");
    EXPECT_EQ(TREEVAULT_E_STG_PARENT_MISSING, group.Finish());
    EXPECT_EQ("a", Forest(storage));
}

} // namespace
} // namespace treevault::tests
