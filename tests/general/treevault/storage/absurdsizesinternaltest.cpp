// SPDX-License-Identifier: MIT
// Nodes of another module that tell of more than any memory holds.
#include "outsidernode.h"

#include <cstdint>
#include <new>

namespace treevault::tests {
namespace {

class AbsurdSizes : public NodeTest {
protected:
    // What is told does not change the storage, nor does it lock it for good.
    void TearDown() override {
        EXPECT_EQ("n{a=1}(c)", Forest(Subject));
        EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "m"));
    }

    Storage Subject{"n{a=1}(c)"};
};

TEST_F(AbsurdSizes, OfAGivenNodeAreMemoryThatIsNotThere) {
    for (const size_t size : {SIZE_MAX, SIZE_MAX / 2, SIZE_MAX / 16 + 1}) {
        OutsiderNode given(Tree("n{a=2}(d)"));
        given.SizeTold = size;
        IACNode* nodes[] = {&given};
        EXPECT_THROW(StgStoreData(Subject, nullptr, StoreMergeAll, nodes, 1), std::bad_alloc);
        EXPECT_EQ(1u, given.References);
    }
}

TEST_F(AbsurdSizes, OfAFilterAreMemoryThatIsNotThere) {
    OutsiderNode filter(Filter("/n"));
    IACNode* out[1];
    filter.SizeTold = SIZE_MAX;
    EXPECT_THROW(StgRetrieveData(Subject, &filter, nullptr, out, 1, nullptr), std::bad_alloc);
    EXPECT_THROW(StgDeleteData(Subject, nullptr, &filter), std::bad_alloc);
}

} // namespace
} // namespace treevault::tests
