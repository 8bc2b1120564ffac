// SPDX-License-Identifier: MIT
// Retrieval: selection, batches, what is handed out and when it is read.
#include "support/storage.h"

namespace treevault::tests {
namespace {

// A retrieval that goes on; each batch is shown as text.
class Retrieval {
public:
    Retrieval(INodeStorage* storage, IACNode* filter, uint64_t first = 0) : Storage(storage) {
        std::vector<IACNode*> handles(static_cast<size_t>(first) + 1, Untouched());
        uint64_t count = 777;
        EXPECT_TRUE(
            Succeeds(StgRetrieveData, storage, filter, &Context, handles.data(), first, &count));
        First = Take(handles, count, first);
    }
    Retrieval(const Retrieval&) = delete;
    Retrieval& operator=(const Retrieval&) = delete;
    ~Retrieval() { StgCloseRetrivalContext(nullptr, Context); }

    std::string Next(uint64_t most) {
        std::vector<IACNode*> handles(static_cast<size_t>(most) + 1, Untouched());
        uint64_t count = 777;
        EXPECT_TRUE(Succeeds(StgRetrieveNextData, Storage, Context, handles.data(), most, &count));
        return Take(handles, count, most);
    }
    IRetrievalContext* Get() const { return Context; }

    std::string First;

private:
    // Only as many places are written as there are nodes.
    static std::string Take(const std::vector<IACNode*>& handles, uint64_t count, uint64_t most) {
        EXPECT_LE(count, most);
        Nodes nodes;
        for (size_t at = 0; at < handles.size(); ++at)
            if (at < count)
                nodes.emplace_back(handles[at]);
            else
                EXPECT_EQ(Untouched(), handles[at]);
        return Show(nodes);
    }

    INodeStorage* Storage;
    IRetrievalContext* Context = nullptr;
};

class Retrieving : public NodeTest {
protected:
    std::string Find(std::string_view path, Select what = Select::Itself) {
        return Show(Retrieve(Subject, Filter(path, what)));
    }

    Storage Subject{"b:T{x=1}(d(e(f)) c) a B aa ab(k)"};
};

// --- Selection -----------------------------------------------------------------------------------

TEST_F(Retrieving, NodeAtAPath) {
    EXPECT_EQ("a", Find("/a"));
    EXPECT_EQ("b:T{x=1}(d(e(f)) c)", Find("/b"));
    EXPECT_EQ("e(f)", Find("/b/d/e"));
    EXPECT_EQ("f", Find("/b/d/e/f"));
}

TEST_F(Retrieving, PathThatNamesNoNodeFindsNothing) {
    for (const char* path :
         {"/x", "/b/x", "/b/d/e/f/g", "/A", "/b/D", "//a", "/b//d", "/aaa", "//"}) {
        EXPECT_EQ("", Find(path)) << path;
        EXPECT_EQ("", Find(path, Select::Children)) << path;
    }
}

TEST_F(Retrieving, SeparatorAtTheEndDoesNotMatter) {
    EXPECT_EQ("a", Find("/a/"));
    EXPECT_EQ("e(f)", Find("/b/d/e/"));
    EXPECT_EQ("d(e(f)) c", Find("/b/", Select::Children));
    EXPECT_EQ("", Find("/a//"));
}

TEST_F(Retrieving, EmptyNamesAreNames) {
    ASSERT_EQ(S_OK, Subject.Store(StoreMergeAll, "{n=1}(x) p((q{n=2}))"));
    EXPECT_EQ("{n=1}(x)", Find("//"));
    EXPECT_EQ("x", Find("//x"));
    EXPECT_EQ("q{n=2}", Find("/p//q"));
    EXPECT_EQ("(q{n=2})", Find("/p//"));
    EXPECT_EQ("x", Find("//", Select::Children));
}

TEST_F(Retrieving, RootsComeInTheOrderOfTheirNames) {
    EXPECT_EQ("B a aa ab(k) b:T{x=1}(d(e(f)) c)", Find("/", Select::Children));
}

TEST_F(Retrieving, ChildrenComeInTheirOrder) {
    EXPECT_EQ("d(e(f)) c", Find("/b", Select::Children));
    EXPECT_EQ("", Find("/a", Select::Children));
}

TEST_F(Retrieving, EmptyStorageHasNoRoots) {
    const Storage empty;
    EXPECT_EQ("", Show(Retrieve(empty, Filter("/", Select::Children))));
    EXPECT_EQ("", Show(Retrieve(empty, Filter("/a"))));
}

// --- Depth ---------------------------------------------------------------------------------------

TEST_F(Retrieving, DepthBoundsWhatIsHandedOut) {
    const auto find = [&](uint32_t depth) {
        return Show(Retrieve(Subject, FilterToDepth("/b", depth)));
    };
    EXPECT_EQ("b:T{x=1}", find(0));
    EXPECT_EQ("b:T{x=1}(d c)", find(1));
    EXPECT_EQ("b:T{x=1}(d(e) c)", find(2));
    EXPECT_EQ("b:T{x=1}(d(e(f)) c)", find(3));
    for (const uint32_t all : {0xFFFFFFFFu, 0xFFFFFFFEu, 0x80000000u, 0x7FFFFFFFu, 4u})
        EXPECT_EQ("b:T{x=1}(d(e(f)) c)", find(all)) << all;
}

TEST_F(Retrieving, DepthCountsFromEachSelectedNode) {
    EXPECT_EQ("d c", Show(Retrieve(Subject, FilterToDepth("/b", 0, Select::Children))));
    EXPECT_EQ("d(e) c", Show(Retrieve(Subject, FilterToDepth("/b", 1, Select::Children))));
}

// --- Clones --------------------------------------------------------------------------------------

TEST_F(Retrieving, ClonesAreDistinctAndCarryTheirPath) {
    const Node one = Retrieve(Subject, Filter("/b/d")).at(0);
    const Node two = Retrieve(Subject, Filter("/b/d")).at(0);
    EXPECT_NE(one.Get(), two.Get());
    EXPECT_EQ(Text(W("\\b\\d")), Path(one));
    EXPECT_EQ(nullptr, Parent(one).Get());
    EXPECT_EQ(1u, References(one));
    EXPECT_EQ(S_OK, SetInt(one, W("x"), 5));
    EXPECT_EQ(S_OK, AcnSetNodeType(one, W("T")));
    AddNew(one, W("new"));
    EXPECT_EQ("d(e(f))", Show(two));
    EXPECT_EQ("d(e(f))", Find("/b/d"));
}

TEST_F(Retrieving, CloneCanBeStoredBack) {
    const Node clone = Retrieve(Subject, Filter("/b/d/e")).at(0);
    EXPECT_EQ(S_OK, SetInt(clone, W("x"), 5));
    EXPECT_EQ(S_OK, StoreNodes(Subject, nullptr, StoreMergeAll, {clone}));
    EXPECT_EQ("b:T{x=1}(d(e{x=5}(f)) c)", Find("/b"));
}

// --- Batches -------------------------------------------------------------------------------------

TEST_F(Retrieving, BatchesGoOnWhereTheLastOneEnded) {
    Retrieval roots(Subject, FilterToDepth("/", 0, Select::Children), 2);
    EXPECT_EQ("B a", roots.First);
    EXPECT_EQ("", roots.Next(0));
    EXPECT_EQ("aa", roots.Next(1));
    EXPECT_EQ("ab b:T{x=1}", roots.Next(5));
    EXPECT_EQ("", roots.Next(5));
    EXPECT_EQ("", roots.Next(1));
}

TEST_F(Retrieving, NothingNeedBeTakenAtFirst) {
    Retrieval roots(Subject, FilterToDepth("/", 0, Select::Children), 0);
    EXPECT_EQ("", roots.First);
    EXPECT_EQ("B a aa ab b:T{x=1}", roots.Next(5));
}

TEST_F(Retrieving, WithoutAContextTheRestIsLost) {
    IACNode* handles[3] = {Untouched(), Untouched(), Untouched()};
    uint64_t count = 0;
    EXPECT_TRUE(Succeeds(StgRetrieveData, Subject, Filter("/", Select::Children), nullptr, handles,
                         2, &count));
    EXPECT_EQ(2u, count);
    EXPECT_EQ("B", Show(Node(handles[0])));
    EXPECT_EQ("a", Show(Node(handles[1])));
    EXPECT_EQ(Untouched(), handles[2]);
}

TEST_F(Retrieving, CountMayBeLeftOut) {
    IACNode* handles[2] = {};
    IRetrievalContext* context = nullptr;
    EXPECT_TRUE(Succeeds(StgRetrieveData, Subject, Filter("/", Select::Children), &context, handles,
                         1, nullptr));
    EXPECT_EQ("B", Show(Node(handles[0])));
    EXPECT_TRUE(Succeeds(StgRetrieveNextData, Subject, context, handles, 2, nullptr));
    EXPECT_EQ("a", Show(Node(handles[0])));
    EXPECT_EQ("aa", Show(Node(handles[1])));
    StgCloseRetrivalContext(Subject, context);
}

TEST_F(Retrieving, HugeBatchesNeedNoMoreThanTheNodesThereAre) {
    IACNode* handles[5] = {};
    uint64_t count = 0;
    EXPECT_TRUE(Succeeds(StgRetrieveData, Subject, Filter("/", Select::Children), nullptr, handles,
                         0x1FFFFFFFFFFFFFFF, &count));
    EXPECT_EQ(5u, count);
    for (IACNode* handle : handles)
        AcnCloseNodeHandle(handle);
}

// --- When it is read -----------------------------------------------------------------------------

TEST_F(Retrieving, ContentIsReadWhenHandedOut) {
    Retrieval roots(Subject, Filter("/", Select::Children), 1);
    ASSERT_EQ(S_OK, Subject.Store(StoreMergeAll, "a{x=7}(new) /ab/k{y=1}"));
    EXPECT_EQ("a{x=7}(new) aa ab(k{y=1})", roots.Next(3));
}

TEST_F(Retrieving, SelectionIsFixed) {
    Retrieval roots(Subject, FilterToDepth("/", 0, Select::Children), 0);
    ASSERT_EQ(S_OK, Subject.Store(StoreMergeAll, "aaa C"));
    ASSERT_EQ(S_OK, Subject.Delete("/aa"));
    ASSERT_EQ(S_OK, Subject.Store(StoreMergeAll, "aa{x=1}"));
    EXPECT_EQ("B a aa ab b:T{x=1}", roots.Next(10));
}

TEST_F(Retrieving, DeletedNodesAreStillHandedOut) {
    Retrieval children(Subject, Filter("/b", Select::Children), 0);
    ASSERT_EQ(S_OK, Subject.Delete("/b"));
    EXPECT_EQ("d(e(f)) c", children.Next(10));
    EXPECT_EQ("", Find("/b"));
}

TEST_F(Retrieving, ContextOutlivesItsStorageAndServesAnother) {
    Retrieval roots(Subject, Filter("/", Select::Children), 1);
    Subject.Close();
    const Storage other;
    IACNode* handles[5] = {};
    uint64_t count = 0;
    EXPECT_TRUE(Succeeds(StgRetrieveNextData, other, roots.Get(), handles, 5, &count));
    ASSERT_EQ(4u, count);
    EXPECT_EQ("a", Show(Node(handles[0])));
    EXPECT_EQ("aa", Show(Node(handles[1])));
    EXPECT_EQ("ab(k)", Show(Node(handles[2])));
    EXPECT_EQ("b:T{x=1}(d(e(f)) c)", Show(Node(handles[3])));
}

TEST_F(Retrieving, FilterNodeIsReadAtOnce) {
    const Node filter = Filter("/", Select::Children);
    Retrieval roots(Subject, filter, 1);
    EXPECT_EQ(1u, References(filter));
    ASSERT_EQ(S_OK, Set(filter, W("NodePath"), TextValue(W("\\b"))));
    ASSERT_EQ(S_OK, AcnSetNodeType(filter, W("T")));
    EXPECT_EQ("a", roots.Next(1));
}

// --- Failures ------------------------------------------------------------------------------------

TEST_F(Retrieving, ArgumentsMustNotBeNull) {
    IACNode* handles[1] = {Untouched()};
    IRetrievalContext* context = Subject;
    uint64_t count = 777;
    const Node filter = Filter("/a");
    EXPECT_TRUE(
        FailsPlainly(E_POINTER, StgRetrieveData, nullptr, filter, &context, handles, 1, &count));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, StgRetrieveData, Subject, nullptr, &context, handles, 1,
                                &count));
    EXPECT_TRUE(
        FailsWithRecord(E_POINTER, StgRetrieveData, Subject, filter, &context, nullptr, 0, &count));
    EXPECT_EQ(static_cast<IRetrievalContext*>(Subject), context);
    EXPECT_EQ(Untouched(), handles[0]);
    EXPECT_EQ(777u, count);
}

TEST_F(Retrieving, FurtherArgumentsMustNotBeNull) {
    const Retrieval some(Subject, Filter("/a"));
    IACNode* handles[1] = {Untouched()};
    uint64_t count = 777;
    EXPECT_TRUE(
        FailsPlainly(E_POINTER, StgRetrieveNextData, nullptr, some.Get(), handles, 1, &count));
    EXPECT_TRUE(
        FailsWithRecord(E_POINTER, StgRetrieveNextData, Subject, nullptr, handles, 1, &count));
    EXPECT_TRUE(
        FailsWithRecord(E_POINTER, StgRetrieveNextData, Subject, some.Get(), nullptr, 0, &count));
    EXPECT_EQ(Untouched(), handles[0]);
    EXPECT_EQ(777u, count);
}

TEST_F(Retrieving, ContextMustBeOne) {
    const Group group(Subject);
    const Node node = Create();
    IACNode* handles[1] = {Untouched()};
    uint64_t count = 777;
    for (IComponentUnknown* other : {static_cast<IComponentUnknown*>(Subject),
                                     static_cast<IComponentUnknown*>(node.Get()), group.Get()})
        EXPECT_TRUE(FailsWithRecord(E_NOINTERFACE, StgRetrieveNextData, Subject, other, handles, 1,
                                    &count));
    EXPECT_EQ(777u, count);
}

TEST_F(Retrieving, TooLongABatchTakesNothing) {
    Retrieval roots(Subject, FilterToDepth("/", 0, Select::Children), 1);
    IACNode* handles[1] = {Untouched()};
    uint64_t count = 777;
    EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, StgRetrieveNextData, Subject, roots.Get(), handles,
                                0x2000000000000000, &count));
    IRetrievalContext* context = Subject;
    EXPECT_TRUE(FailsWithRecord(E_INVALIDARG, StgRetrieveData, Subject, Filter("/a"), &context,
                                handles, UINT64_MAX, &count));
    EXPECT_EQ(static_cast<IRetrievalContext*>(Subject), context);
    EXPECT_EQ(Untouched(), handles[0]);
    EXPECT_EQ(777u, count);
    EXPECT_EQ("a", roots.Next(1));
}

} // namespace
} // namespace treevault::tests
