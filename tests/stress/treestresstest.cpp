// SPDX-License-Identifier: MIT
// Renames, moves and readings of the same nodes from many threads.
#include "threads.h"

namespace treevault::tests {
namespace {

class TreeStress : public NodeTest {};

const WCHAR* const ManyNames[] = {W("a"), W("b"), W("c"), W("d"), W("e"), W("f"), W("g"), W("h")};

bool IsOneOfMany(const Text& name) {
    return std::find(std::begin(ManyNames), std::end(ManyNames), name) != std::end(ManyNames);
}

// The node has exactly these children, and is found by its name and by no other.
void ExpectOneEntryEach(IACNode* parent) {
    ExpectChildrenInStep(parent);
    const Names names = ChildNames(parent);
    for (const WCHAR* name : ManyNames) {
        const auto count = std::count(names.begin(), names.end(), name);
        EXPECT_EQ(count == 1, FindChild(parent, name).Get() != nullptr) << Narrow(name);
        EXPECT_LE(count, 1) << Narrow(name);
    }
}

TEST_F(TreeStress, TwoRenamesOfOneChildBothSucceed) {
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        const Node root = Create(W("r")), child = AddNew(root, W("old"));
        HRESULT one = E_FAIL, two = E_FAIL;
        RaceOnce({[&] { one = AcnSetNodeName(child, NameShort, W("one")); },
                  [&] { two = AcnSetNodeName(child, NameShort, W("two")); }});
        EXPECT_EQ(CodeText(S_OK), CodeText(one));
        EXPECT_EQ(CodeText(S_OK), CodeText(two));
        const Text name = Name(child);
        EXPECT_TRUE(name == W("one") || name == W("two"));
        EXPECT_EQ(nullptr, FindChild(root, W("old")).Get());
        EXPECT_EQ(name == W("one"), FindChild(root, W("one")).Get() != nullptr);
        EXPECT_EQ(name == W("two"), FindChild(root, W("two")).Get() != nullptr);
        EXPECT_EQ(1u, ChildCount(root));
    }
}

// Neither is a child of the other, so that no order between their locks exists.
TEST_F(TreeStress, RefusedRemovalsInBothDirectionsDoNotBlock) {
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    const Node one = Create(W("one")), two = Create(W("two"));
    const auto refuse = [](const Node& parent, const Node& child) {
        for (int times = 0; times < 1000; ++times)
            ASSERT_EQ(TREEVAULT_E_NOT_FOUND, AcnRemoveChild(parent, child));
    };
    while (std::chrono::steady_clock::now() < end && !HasFailure())
        RaceOnce({[&] { refuse(one, two); }, [&] { refuse(two, one); }});
}

TEST_F(TreeStress, RenamesOfOneChildWhileOthersLookItUp) {
    const Node root = Create(W("r")), child = AddNew(root, W("a"));
    const Node below = AddNew(child, W("below"));
    const Work rename = [&](Choices& choices) {
        EXPECT_EQ(S_OK, AcnSetNodeName(child, NameShort, choices.Of(ManyNames)));
    };
    const Work read = [&](Choices& choices) {
        Node found;
        EXPECT_TRUE(IsOneOf(AcnGetChildByName(root, choices.Of(ManyNames), found.Put()),
                            {S_OK, TREEVAULT_E_NOT_FOUND}));
        EXPECT_EQ(S_OK, AcnGetChildByIndex(root, 0, found.Put()));
        EXPECT_EQ(child.Get(), found.Get());
        WCHAR path[32];
        size_t size = 32;
        ASSERT_EQ(S_OK, AcnGetNodeName(below, NameFullPath, path, &size));
        const Text text(path);
        EXPECT_EQ(10u, text.size()) << Narrow(text);
        EXPECT_TRUE(text.substr(0, 3) == W("\\r\\") && text.substr(4) == W("\\below") &&
                    IsOneOfMany(text.substr(3, 1)))
            << Narrow(text);
    };
    WorkTogether({rename, rename, rename, read});
    EXPECT_EQ(1u, ChildCount(root));
    ExpectOneEntryEach(root);
}

TEST_F(TreeStress, SiblingsCompeteForNames) {
    const Node root = Create(W("r"));
    std::vector<Node> children;
    for (size_t i = 0; i < 6; ++i)
        children.push_back(AddNew(root, ManyNames[i]));
    const Work rename = [&](Choices& choices) {
        EXPECT_TRUE(IsOneOf(AcnSetNodeName(choices.Of(children), NameShort, choices.Of(ManyNames)),
                            {S_OK, TREEVAULT_E_CHILD_EXISTS}));
    };
    WorkTogether({rename, rename, rename});
    EXPECT_EQ(6u, ChildCount(root));
    ExpectOneEntryEach(root);
}

TEST_F(TreeStress, OnlyOneParentGetsTheChild) {
    const Node one = Create(W("one")), two = Create(W("two"));
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        const Node child = Create(W("c"));
        HRESULT codes[2] = {};
        RaceOnce({[&] { codes[0] = AcnAddChild(one, child); },
                  [&] { codes[1] = AcnAddChild(two, child); }});
        const bool firstWon = codes[0] == S_OK;
        EXPECT_EQ(CodeText(firstWon ? TREEVAULT_E_HAS_PARENT : S_OK), CodeText(codes[1]));
        EXPECT_EQ(CodeText(firstWon ? S_OK : TREEVAULT_E_HAS_PARENT), CodeText(codes[0]));
        const Node& winner = firstWon ? one : two;
        EXPECT_EQ(winner.Get(), Parent(child).Get());
        EXPECT_EQ(1u, ChildCount(one) + ChildCount(two));
        EXPECT_EQ(S_OK, AcnRemoveChild(winner, child));
        EXPECT_EQ(1u, References(child));
    }
}

// A parent that refuses the child for its name claims it for a moment. Whoever adds it in that
// moment or right behind must not lose it again.
TEST_F(TreeStress, RefusalDoesNotTakeTheChildFromAnother) {
    const Node refusing = Create(W("refusing")), taking = Create(W("taking"));
    AddNew(refusing, W("c"));
    const Node child = Create(W("c"));
    const Work refuse = [&](Choices&) {
        EXPECT_TRUE(IsOneOf(AcnAddChild(refusing, child),
                            {TREEVAULT_E_CHILD_EXISTS, TREEVAULT_E_HAS_PARENT}));
    };
    const Work take = [&](Choices&) {
        if (AcnAddChild(taking, child) != S_OK)
            return;
        for (int i = 0; i < 20; ++i)
            EXPECT_EQ(taking.Get(), Parent(child).Get());
        EXPECT_EQ(S_OK, AcnRemoveChild(taking, child));
    };
    WorkTogether({refuse, refuse, take});
    EXPECT_EQ(1u, ChildCount(refusing));
    EXPECT_EQ(0u, ChildCount(taking));
    EXPECT_EQ(1u, References(child));
}

TEST_F(TreeStress, ChildrenMoveWhileOthersRenameAndRead) {
    const Node top = Create(W("t"));
    const Node parents[] = {AddNew(top, W("1")), AddNew(top, W("2")), AddNew(top, W("3"))};
    std::vector<Node> children;
    for (size_t i = 0; i < 5; ++i) {
        children.push_back(AddNew(parents[i % 3], ManyNames[i]));
        AddNew(children.back(), W("below"));
    }
    const Work move = [&](Choices& choices) {
        const Node& child = choices.Of(children);
        if (AcnRemoveChild(choices.Of(parents), child) == S_OK) {
            EXPECT_TRUE(IsOneOf(AcnAddChild(choices.Of(parents), child),
                                {S_OK, TREEVAULT_E_CHILD_EXISTS, TREEVAULT_E_HAS_PARENT}));
        }
        EXPECT_TRUE(IsOneOf(AcnAddChild(choices.Of(parents), choices.Of(children)),
                            {S_OK, TREEVAULT_E_CHILD_EXISTS, TREEVAULT_E_HAS_PARENT}));
    };
    const Work rename = [&](Choices& choices) {
        EXPECT_TRUE(IsOneOf(AcnSetNodeName(choices.Of(children), NameShort, choices.Of(ManyNames)),
                            {S_OK, TREEVAULT_E_CHILD_EXISTS}));
        EXPECT_EQ(S_OK, AcnSetNodeName(top, NameShort, choices.Below(2) ? W("t") : W("u")));
    };
    const Work read = [&](Choices& choices) {
        WCHAR path[32];
        size_t size = 32;
        ASSERT_EQ(S_OK,
                  AcnGetNodeName(ChildAt(choices.Of(children), 0), NameFullPath, path, &size));
        const Text text(path);
        EXPECT_TRUE(text.size() == 12 && (text[1] == W('t') || text[1] == W('u')) &&
                    text[3] >= W('1') && text[3] <= W('3') && IsOneOfMany(text.substr(5, 1)) &&
                    text.substr(6) == W("\\below"))
            << Narrow(text);
        Node parent;
        EXPECT_EQ(S_OK, AcnGetParent(choices.Of(children), parent.Put()));
        Clone(choices.Of(parents));
    };
    WorkTogether({move, move, rename, read});
    size_t placed = 0;
    for (const Node& parent : parents) {
        ExpectOneEntryEach(parent);
        placed += ChildCount(parent);
    }
    for (const Node& child : children) {
        placed += Parent(child).Get() == nullptr;
        ExpectChildrenInStep(child);
    }
    EXPECT_EQ(children.size(), placed);
}

TEST_F(TreeStress, ClonesOfAChangingTreeAreInStep) {
    const Node root = Create(W("r"));
    std::vector<Node> children;
    for (size_t i = 0; i < 4; ++i) {
        children.push_back(AddNew(root, ManyNames[i]));
        AddNew(children.back(), W("below"));
    }
    const Work change = [&](Choices& choices) {
        const Node& child = choices.Of(children);
        AcnRemoveChild(root, child);
        EXPECT_TRUE(IsOneOf(AcnSetNodeName(child, NameShort, choices.Of(ManyNames)),
                            {S_OK, TREEVAULT_E_CHILD_EXISTS}));
        EXPECT_TRUE(IsOneOf(AcnAddChild(root, child),
                            {S_OK, TREEVAULT_E_CHILD_EXISTS, TREEVAULT_E_HAS_PARENT}));
    };
    const Work clone = [&](Choices&) {
        const Node copy = Clone(root);
        ExpectOneEntryEach(copy);
        EXPECT_LE(ChildCount(copy), 4u);
        const size_t count = ChildCount(copy);
        for (size_t i = 0; i < count; ++i)
            ExpectChildrenInStep(ChildAt(copy, i));
    };
    WorkTogether({change, change, clone, clone});
    ExpectOneEntryEach(root);
}

} // namespace
} // namespace treevault::tests
