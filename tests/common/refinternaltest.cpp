// SPDX-License-Identifier: MIT
// Counted references: who adds, who releases, and when.
#include "common/ref.h"

#include <gtest/gtest.h>

#include <utility>

namespace treevault {
namespace {

struct Counted {
    int References = 1;
    Ref<Counted>* Holder = nullptr;
    bool HolderWasEmpty = false;

    void AddRef() { ++References; }
    void Release() {
        --References;
        if (Holder)
            HolderWasEmpty = !*Holder;
    }
};

TEST(Ref, IsNullAtFirst) {
    const Ref<Counted> ref;
    EXPECT_FALSE(ref);
    EXPECT_EQ(nullptr, ref.Get());
}

TEST(Ref, AttachTakesAReferenceOverAndShareAddsOne) {
    Counted object;
    {
        const Ref<Counted> shared = Ref<Counted>::Share(&object);
        EXPECT_EQ(2, object.References);
        EXPECT_EQ(&object, shared.Get());
        EXPECT_EQ(&object, &*shared);
        EXPECT_EQ(2, shared->References);
    }
    EXPECT_EQ(1, object.References);
    {
        const Ref<Counted> attached = Ref<Counted>::Attach(&object);
        EXPECT_EQ(1, object.References);
    }
    EXPECT_EQ(0, object.References);
    EXPECT_FALSE(Ref<Counted>::Share(nullptr));
}

TEST(Ref, DetachHandsTheReferenceOver) {
    Counted object;
    {
        Ref<Counted> ref = Ref<Counted>::Attach(&object);
        EXPECT_EQ(&object, ref.Detach());
        EXPECT_FALSE(ref);
    }
    EXPECT_EQ(1, object.References);
}

TEST(Ref, CopiesAddAndMovesDoNot) {
    Counted object;
    {
        Ref<Counted> ref = Ref<Counted>::Attach(&object);
        const Ref<Counted> copy(ref);
        EXPECT_EQ(2, object.References);
        const Ref<Counted> moved(std::move(ref));
        EXPECT_EQ(2, object.References);
        EXPECT_EQ(&object, moved.Get());
    }
    EXPECT_EQ(0, object.References);
}

TEST(Ref, AssignmentReleasesWhatWasHeld) {
    Counted first;
    Counted second;
    Ref<Counted> ref = Ref<Counted>::Attach(&first);
    ref = Ref<Counted>::Share(&second);
    EXPECT_EQ(0, first.References);
    EXPECT_EQ(2, second.References);
    const Ref<Counted>& same = ref;
    ref = same;
    EXPECT_EQ(2, second.References);
    EXPECT_EQ(&second, ref.Get());
    const Ref<Counted> none;
    ref = none;
    EXPECT_EQ(1, second.References);
}

TEST(Ref, PutReleasesWhatWasHeld) {
    Counted first;
    Counted second;
    {
        Ref<Counted> ref = Ref<Counted>::Attach(&first);
        *ref.Put() = &second;
        EXPECT_EQ(0, first.References);
        EXPECT_EQ(&second, ref.Get());
    }
    EXPECT_EQ(0, second.References);
}

TEST(Ref, IsNullBeforeTheReleaseRuns) {
    Counted object;
    Ref<Counted> ref = Ref<Counted>::Attach(&object);
    object.Holder = &ref;
    ref.Reset();
    EXPECT_TRUE(object.HolderWasEmpty);
    EXPECT_EQ(0, object.References);
    ref.Reset();
    EXPECT_EQ(0, object.References);
}

TEST(Ref, SwapExchanges) {
    Counted object;
    Ref<Counted> left = Ref<Counted>::Share(&object);
    Ref<Counted> right;
    left.Swap(right);
    EXPECT_FALSE(left);
    EXPECT_EQ(&object, right.Get());
    EXPECT_EQ(2, object.References);
}

} // namespace
} // namespace treevault
