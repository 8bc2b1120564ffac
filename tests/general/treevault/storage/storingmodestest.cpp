// SPDX-License-Identifier: MIT
// Storing: how a given node and a stored one are merged by each mode, and which notifications that
// gives in which order.
#include "support/storage.h"

namespace treevault::tests {
namespace {

constexpr StoreMode AllModes[] = {
    StoreMergeAll, StoreMergeModified, StoreReplaceAttributes, StoreReplaceAll, -1, 4, 77,
    INT32_MIN,     INT32_MAX};

constexpr bool IsMerge(StoreMode mode) {
    return mode == StoreMergeAll || mode == StoreMergeModified;
}

constexpr bool TakesEmptyType(StoreMode mode) {
    return mode == StoreReplaceAttributes || mode == StoreReplaceAll;
}

class StoringModes : public NodeTest {
protected:
    // Stores one forest on top of another; the calls are those of the second store.
    static void ExpectMerged(const std::string& stored, StoreMode mode, const std::string& given,
                             const std::string& result, const Calls& told) {
        SCOPED_TRACE(testing::Message() << given << " onto " << stored << " by mode " << mode);
        Storage storage(stored);
        Sink sink(storage);
        EXPECT_EQ(S_OK, storage.Store(mode, given));
        EXPECT_EQ(result, Forest(storage));
        EXPECT_EQ(Framed(told), sink.Told);
    }
};

// --- Attributes ----------------------------------------------------------------------------------

TEST_F(StoringModes, MergeAllSetsEveryGivenAttribute) {
    ExpectMerged("n{a=1 b=2 c=3}", StoreMergeAll, "n{a=1 b=5 ~d=4 e=6}", "n{a=1 b=5 c=3 d=4 e=6}",
                 {"changed /n [b d e]"});
}

TEST_F(StoringModes, MergeModifiedLooksAtModifiedAttributesAlone) {
    ExpectMerged("n{a=1 b=2 c=3}", StoreMergeModified, "n{a=1 b=5 ~d=4 e=6}", "n{a=1 b=5 c=3 e=6}",
                 {"changed /n [b e]"});
    ExpectMerged("n{a=1}", StoreMergeModified, "n{~a=2 ~b=3}", "n{a=1}", {});
}

TEST_F(StoringModes, OtherModesMakeAttributesEqual) {
    for (const StoreMode mode : AllModes)
        if (!IsMerge(mode))
            ExpectMerged("n{a=1 b=2 c=3 ca=4}", mode, "n{a=1 b=5 ~d=4 e=6}", "n{a=1 b=5 d=4 e=6}",
                         {"changed /n [b d e c ca]"});
}

TEST_F(StoringModes, NoGivenAttributes) {
    for (const StoreMode mode : AllModes) {
        if (IsMerge(mode))
            ExpectMerged("n{a=1 b=2}", mode, "n", "n{a=1 b=2}", {});
        else
            ExpectMerged("n{a=1 b=2}", mode, "n", "n", {"changed /n [a b]"});
    }
}

TEST_F(StoringModes, NoStoredAttributes) {
    for (const StoreMode mode : AllModes)
        ExpectMerged("n", mode, "n{b=1 a=2}", "n{a=2 b=1}", {"changed /n [a b]"});
}

// --- Types ---------------------------------------------------------------------------------------

TEST_F(StoringModes, AnotherTypeIsTakenAndNotTold) {
    for (const StoreMode mode : AllModes) {
        ExpectMerged("n:T{a=1}", mode, "n:U{a=1}", "n:U{a=1}", {});
        ExpectMerged("n{a=1}", mode, "n:U{a=1}", "n:U{a=1}", {});
        ExpectMerged("n:T{a=1}", mode, "n:T{a=1}", "n:T{a=1}", {});
    }
}

TEST_F(StoringModes, EmptyTypeIsTakenByTheReplacingModes) {
    for (const StoreMode mode : AllModes) {
        const char* const result = TakesEmptyType(mode) ? "n{a=1}" : "n:T{a=1}";
        ExpectMerged("n:T{a=1}", mode, "n{a=1}", result, {});
    }
}

TEST_F(StoringModes, TypesDifferByCaseAndPrefix) {
    ExpectMerged("n:T", StoreMergeAll, "n:t", "n:t", {});
    ExpectMerged("n:T", StoreMergeAll, "n:TT", "n:TT", {});
}

// --- Children ------------------------------------------------------------------------------------

TEST_F(StoringModes, UnmentionedChildrenStay) {
    for (const StoreMode mode : AllModes)
        if (mode != StoreReplaceAll)
            ExpectMerged("n(a b{x=1} c)", mode, "n(b{x=2} d)", "n(a b{x=2} c d)",
                         {"changed /n/b [x]", "created /n/d", "child+ /n"});
}

TEST_F(StoringModes, ReplaceAllRemovesUnmentionedChildren) {
    ExpectMerged(
        "n(a b{x=1} c)", StoreReplaceAll, "n(b{x=2} d)", "n(b{x=2} d)",
        {"changed /n/b [x]", "created /n/d", "deleted /n/a", "deleted /n/c", "child+- /n"});
}

TEST_F(StoringModes, RemovedChildrenGoInTheOrderOfTheirNames) {
    ExpectMerged("n(c a(x) B b)", StoreReplaceAll, "n", "n",
                 {"deleted /n/B", "deleted /n/a", "deleted /n/b", "deleted /n/c", "child- /n"});
}

TEST_F(StoringModes, GivenChildrenComeInTheirOrder) {
    ExpectMerged("n(m{x=1})", StoreMergeAll, "n(z m{x=2} a)", "n(m{x=2} z a)",
                 {"created /n/z", "changed /n/m [x]", "created /n/a", "child+ /n"});
}

TEST_F(StoringModes, AttributesComeBeforeChildrenAndFlagsLast) {
    ExpectMerged("n{x=1}(a(b{y=1}(d)))", StoreReplaceAll, "n{x=2}(a(b{y=2}(c)))",
                 "n{x=2}(a(b{y=2}(c)))",
                 {"changed /n [x]", "changed /n/a/b [y]", "created /n/a/b/c", "deleted /n/a/b/d",
                  "child+- /n/a/b"});
}

TEST_F(StoringModes, EachParentIsToldOfItsOwnChildren) {
    ExpectMerged("n(a(x) b)", StoreMergeAll, "n(a(y) b(z) c)", "n(a(x y) b(z) c)",
                 {"created /n/a/y", "child+ /n/a", "created /n/b/z", "child+ /n/b", "created /n/c",
                  "child+ /n"});
}

TEST_F(StoringModes, ModeHoldsAtEachLevel) {
    ExpectMerged("n(a:T{x=1 y=1}(b c))", StoreMergeModified, "n(a{~x=2 y=2}(c{z=1}))",
                 "n(a:T{x=1 y=2}(b c{z=1}))", {"changed /n/a [y]", "changed /n/a/c [z]"});
    ExpectMerged("n(a:T{x=1 y=1}(b c))", StoreReplaceAll, "n(a{x=1}(c))", "n(a{x=1}(c))",
                 {"changed /n/a [y]", "deleted /n/a/b", "child- /n/a"});
    ExpectMerged("n(a:T{x=1 y=1}(b c))", StoreReplaceAttributes, "n(a{x=1}(c))", "n(a{x=1}(b c))",
                 {"changed /n/a [y]"});
}

TEST_F(StoringModes, ChildrenMeetByNameAndCase) {
    ExpectMerged("n(a)", StoreMergeAll, "n(A)", "n(a A)", {"created /n/A", "child+ /n"});
    ExpectMerged("n(a)", StoreReplaceAll, "n(A)", "n(A)",
                 {"created /n/A", "deleted /n/a", "child+- /n"});
}

// --- What is equal, and what is not there --------------------------------------------------------

TEST_F(StoringModes, EqualTreesTellNothing) {
    const std::string tree = "n:T{a=1 b='text'}(c:U{d=2}(e) f)";
    for (const StoreMode mode : AllModes)
        ExpectMerged(tree, mode, tree, tree, {});
}

TEST_F(StoringModes, NewNodesAreAddedWholeByEveryMode) {
    const std::string tree = "n:T{~a=1 b=2}(c:U{~d=2}(e) f)";
    for (const StoreMode mode : AllModes) {
        Storage storage;
        Sink sink(storage);
        EXPECT_EQ(S_OK, storage.Store(mode, tree));
        EXPECT_EQ(tree, Forest(storage, Flags::Shown));
        EXPECT_EQ(Framed({"created /n"}), sink.Told);
    }
}

TEST_F(StoringModes, RootsDifferByCaseAlone) {
    ExpectMerged("A{x=1}", StoreReplaceAll, "a{x=2}", "A{x=1} a{x=2}", {"created /a"});
}

TEST_F(StoringModes, UnmentionedRootsStay) {
    ExpectMerged("a b c", StoreReplaceAll, "b{x=1}", "a b{x=1} c", {"changed /b [x]"});
}

// --- Modification state --------------------------------------------------------------------------

TEST_F(StoringModes, WrittenAttributesAreModifiedAndEqualOnesKeepTheirState) {
    Storage storage("n{~a=1 ~b=2 c=3}");
    EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, "n{a=1 ~b=5 ~c=3}"));
    EXPECT_EQ("n{~a=1 b=5 c=3}", Forest(storage, Flags::Shown));
}

TEST_F(StoringModes, GivenNodeKeepsItsState) {
    Storage storage("n{a=1}");
    const Nodes given = Trees("n{a=2 ~b=3}(c{~d=1})");
    EXPECT_EQ(S_OK, StoreNodes(storage, nullptr, StoreMergeModified, given));
    EXPECT_EQ("n{a=2 ~b=3}(c{~d=1})", Show(given, Flags::Shown));
    EXPECT_EQ("n{a=2}(c{~d=1})", Forest(storage, Flags::Shown));
}

} // namespace
} // namespace treevault::tests
