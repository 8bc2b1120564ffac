// SPDX-License-Identifier: MIT
// Filter nodes: how they are read, and which are refused, by retrievals and deletes alike.
#include "support/storage.h"

namespace treevault::tests {
namespace {

class Filters : public NodeTest {
protected:
    // What a retrieval by this filter finds.
    std::string Find(const Node& filter) { return Show(Retrieve(Subject, filter)); }

    // Both refuse the filter at once; a group gets nothing queued by it.
    void ExpectRefused(HRESULT code, const Node& filter) {
        IACNode* handles[1] = {Untouched()};
        IRetrievalContext* context = nullptr;
        uint64_t count = 777;
        EXPECT_TRUE(
            FailsWithRecord(code, StgRetrieveData, Subject, filter, &context, handles, 1, &count));
        EXPECT_EQ(nullptr, context);
        EXPECT_EQ(777u, count);
        EXPECT_TRUE(FailsWithRecord(code, StgDeleteData, Subject, nullptr, filter));
        Group group(Subject);
        EXPECT_TRUE(FailsWithRecord(code, StgDeleteData, Subject, group.Get(), filter));
        EXPECT_EQ(S_OK, group.Finish());
        EXPECT_EQ(Framed({}), Watcher.Take());
        EXPECT_EQ("a(b(c)) d", Forest(Subject));
    }

    static Node WithPath(const WCHAR* type, const Value& path) {
        Node filter = Create(W("any name"), type);
        EXPECT_EQ(S_OK, Set(filter, W("NodePath"), path));
        return filter;
    }

    static Node With(const WCHAR* name, const Value& value) {
        Node filter = Filter("/a");
        EXPECT_EQ(S_OK, Set(filter, name, value));
        return filter;
    }

    static Value Bool(char byte) { return {VtBool, std::string(1, byte)}; }

    Storage Subject{"a(b(c)) d"};
    Sink Watcher{Subject};
};

TEST_F(Filters, TypeMustBeTheOne) {
    for (const WCHAR* type :
         {W(""), W("filterbypath"), W("FilterByPath "), W("FilterByPat"), W("FilterByPathX")})
        ExpectRefused(TREEVAULT_E_STG_BAD_FILTER, WithPath(type, TextValue(W("\\a"))));
    const Text longType(500, W('F'));
    ExpectRefused(TREEVAULT_E_STG_BAD_FILTER, WithPath(longType.c_str(), TextValue(W("\\a"))));
}

TEST_F(Filters, TypeIsLookedAtFirst) {
    ExpectRefused(TREEVAULT_E_STG_BAD_FILTER, Create());
    ExpectRefused(TREEVAULT_E_STG_BAD_FILTER, WithPath(W("x"), TextValue(W("bad"))));
}

TEST_F(Filters, PathMustBeThere) {
    ExpectRefused(TREEVAULT_E_NOT_FOUND, Create(nullptr, TREEVAULT_FILTER_BY_PATH));
}

TEST_F(Filters, PathMustBeAbsolute) {
    ExpectRefused(E_NOTIMPL, Filter("a"));
    ExpectRefused(E_NOTIMPL, Filter(""));
    ExpectRefused(TREEVAULT_E_STG_BAD_PATH, Filter("a/b"));
    ExpectRefused(TREEVAULT_E_STG_BAD_PATH, Filter("a/"));
}

TEST_F(Filters, PathIsTextOfAnyKind) {
    EXPECT_EQ("b(c)",
              Find(WithPath(TREEVAULT_FILTER_BY_PATH, {VtStringA, std::string("\\a\\b\0", 5)})));
    ExpectRefused(TREEVAULT_E_CANNOT_CONVERT,
                  WithPath(TREEVAULT_FILTER_BY_PATH, {VtStringWArray, TextValue(W("\\a")).Bytes}));
    // What other types give as text is no absolute path.
    ExpectRefused(E_NOTIMPL, WithPath(TREEVAULT_FILTER_BY_PATH, Int32Value(5)));
    ExpectRefused(E_NOTIMPL, WithPath(TREEVAULT_FILTER_BY_PATH, {VtEmpty, ""}));
}

TEST_F(Filters, PathsMayBeLong) {
    for (const size_t length : {124, 125, 126, 127, 128, 129, 1000, 100000}) {
        const std::string name(length, 'x');
        Storage storage("/a/" + name + "(leaf)");
        EXPECT_EQ("leaf", Show(Retrieve(storage, Filter("/a/" + name + "/leaf")))) << length;
        EXPECT_EQ("", Show(Retrieve(storage, Filter("/a/" + name + "y")))) << length;
    }
}

TEST_F(Filters, IsParentIsConverted) {
    EXPECT_EQ("b(c)", Find(With(W("IsParent"), Bool(1))));
    EXPECT_EQ("b(c)", Find(With(W("IsParent"), Bool(2))));
    EXPECT_EQ("a(b(c))", Find(With(W("IsParent"), Bool(0))));
    EXPECT_EQ("b(c)", Find(With(W("IsParent"), TextValue(W("True")))));
    EXPECT_EQ("a(b(c))", Find(With(W("IsParent"), TextValue(W("False")))));
    EXPECT_EQ("a(b(c))", Find(With(W("IsParent"), {VtEmpty, ""})));
    EXPECT_EQ("a(b(c))", Find(With(W("isparent"), Bool(1))));
    ExpectRefused(TREEVAULT_E_CANNOT_CONVERT, With(W("IsParent"), TextValue(W("maybe"))));
}

TEST_F(Filters, MaxDepthIsConverted) {
    EXPECT_EQ("a", Find(With(W("MaxDepth"), Int32Value(0))));
    EXPECT_EQ("a(b)", Find(With(W("MaxDepth"), TextValue(W("1")))));
    EXPECT_EQ("a(b(c))", Find(With(W("MaxDepth"), Int32Value(-1))));
    EXPECT_EQ("a(b(c))", Find(With(W("MaxDepth"), {VtEmpty, ""})));
    // Cut to its low 32 bits.
    EXPECT_EQ("a(b)", Find(With(W("MaxDepth"), NumberValue(VtUInt64, uint64_t{0x100000001}))));
    ExpectRefused(TREEVAULT_E_CANNOT_CONVERT, With(W("MaxDepth"), TextValue(W("deep"))));
}

TEST_F(Filters, ParametersAreReadBeforeThePathIsChecked) {
    Node filter = Filter("a");
    ASSERT_EQ(S_OK, Set(filter, W("MaxDepth"), TextValue(W("deep"))));
    ExpectRefused(TREEVAULT_E_CANNOT_CONVERT, filter);
}

TEST_F(Filters, OtherAttributesDoNotMatter) {
    EXPECT_EQ("a(b(c))", Find(With(W("Other"), TextValue(W("text")))));
}

TEST_F(Filters, PlaceAboveTheRootsIsNoNode) {
    IACNode* handles[1] = {Untouched()};
    uint64_t count = 777;
    EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_STG_BAD_PATH, StgRetrieveData, Subject, Filter("/"),
                                nullptr, handles, 1, &count));
    EXPECT_EQ(777u, count);
    // Nothing holds the storage locked afterwards.
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "d"));
}

} // namespace
} // namespace treevault::tests
