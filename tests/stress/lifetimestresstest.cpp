// SPDX-License-Identifier: MIT
// Nodes that die on one thread while others use what belonged to them.
#include "threads.h"

namespace treevault::tests {
namespace {

class LifetimeStress : public NodeTest {};

TEST_F(LifetimeStress, HandlesAreCountedFromAllThreads) {
    const Node root = Create(W("r")), child = AddNew(root, W("c"));
    const uint32_t references = References(child);
    const Work handle = [&](Choices&) {
        IACNode* copy = nullptr;
        EXPECT_EQ(S_OK, AcnDuplicateNodeHandle(child, &copy));
        void* other = nullptr;
        EXPECT_EQ(S_OK, copy->QueryInterface(&IID_IACNode, &other));
        Node byName, parent;
        EXPECT_EQ(S_OK, AcnGetChildByName(root, W("c"), byName.Put()));
        EXPECT_EQ(S_OK, AcnGetParent(byName, parent.Put()));
        EXPECT_EQ(root.Get(), parent.Get());
        AcnCloseNodeHandle(copy);
        AcnCloseNodeHandle(static_cast<IACNode*>(other));
    };
    WorkTogether({handle, handle, handle, handle});
    EXPECT_EQ(references, References(child));
    EXPECT_EQ(1u, References(root));
}

TEST_F(LifetimeStress, LastHandleMayBeClosedOnAnyThread) {
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        Node root = Create(W("r"));
        AddNew(AddNew(root, W("c")), W("d"));
        Node one = root, two = root;
        RaceOnce({[&] { one.Close(); }, [&] { two.Close(); }, [&] { root.Close(); }});
        EXPECT_EQ(0, Made());
    }
}

// What the holders of two children do while their parent dies.
void UseOrphan(IACNode* child, const WCHAR* newName, HRESULT* renamed) {
    for (int i = 0; i < 10; ++i) {
        Node parent;
        EXPECT_EQ(S_OK, AcnGetParent(child, parent.Put()));
        if (parent) {
            EXPECT_EQ(W("r"), Name(parent));
        }
    }
    *renamed = AcnSetNodeName(child, NameShort, newName);
}

TEST_F(LifetimeStress, ParentDiesWhileChildrenAreUsed) {
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        Node root = Create(W("r"));
        const Node one = AddNew(root, W("1")), two = AddNew(root, W("2"));
        const Node below = AddNew(one, W("below"));
        for (const WCHAR* name : {W("x"), W("y"), W("z")})
            AddNew(root, name);
        HRESULT codes[2] = {E_FAIL, E_FAIL};
        RaceOnce({[&] { root.Close(); }, [&] { UseOrphan(one, W("new 1"), &codes[0]); },
                  [&] { UseOrphan(two, W("new 2"), &codes[1]); }});
        EXPECT_EQ(CodeText(S_OK), CodeText(codes[0]));
        EXPECT_EQ(CodeText(S_OK), CodeText(codes[1]));
        EXPECT_EQ(nullptr, Parent(one).Get());
        EXPECT_EQ(nullptr, Parent(two).Get());
        EXPECT_EQ(W("\\r\\new 1\\below"), Path(below));
        EXPECT_EQ(1u, References(two));
        EXPECT_EQ(3, Made());
    }
}

TEST_F(LifetimeStress, OrphansAreAddedElsewhereWhileTheirParentDies) {
    const Node other = Create(W("other"));
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        Node root = Create(W("r"));
        const Node child = AddNew(root, W("c"));
        const Node below = AddNew(child, W("below"));
        RaceOnce({[&] { root.Close(); },
                  [&] {
                      // It can be added as soon as the dying parent has let it go.
                      HRESULT code;
                      while ((code = AcnAddChild(other, child)) == TREEVAULT_E_HAS_PARENT)
                          std::this_thread::yield();
                      EXPECT_EQ(CodeText(S_OK), CodeText(code));
                  }});
        EXPECT_EQ(other.Get(), Parent(child).Get());
        EXPECT_EQ(W("\\other\\c\\below"), Path(below));
        ExpectChildrenInStep(other);
        EXPECT_EQ(S_OK, AcnRemoveChildByIndex(other, 0));
        EXPECT_EQ(1u, References(child));
    }
}

TEST_F(LifetimeStress, ParentDiesWhileAChildIsRemovedAndTheHandleOfItClosed) {
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        Node root = Create(W("r"));
        Node child = AddNew(root, W("c"));
        AddNew(child, W("below"));
        RaceOnce({[&] { root.Close(); },
                  [&] {
                      const Node parent = Parent(child);
                      if (parent) {
                          EXPECT_EQ(S_OK, AcnRemoveChild(parent, child));
                      }
                      child.Close();
                  }});
        EXPECT_EQ(0, Made());
    }
}

} // namespace
} // namespace treevault::tests
