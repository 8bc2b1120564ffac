// SPDX-License-Identifier: MIT
// The order of roots and of removed children, which is that of code units and not of characters.
#include "support/storage.h"

namespace treevault::tests {
namespace {

// U+1F600 begins with a unit below that of U+FF5E, though the character itself is above it.
const Text Face = {static_cast<WCHAR>(0xD83D), static_cast<WCHAR>(0xDE00)};
const Text Tilde = {static_cast<WCHAR>(0xFF5E)};
const Text Longer = {static_cast<WCHAR>(0xFF5E), static_cast<WCHAR>('a')};

class RootOrder : public NodeTest {
protected:
    static Node Named(const Text& name) { return Create(name.c_str()); }
};

TEST_F(RootOrder, IsThatOfCodeUnitsAndThenOfLength) {
    const Storage storage;
    ASSERT_EQ(S_OK, StoreNodes(storage, nullptr, StoreMergeAll,
                               {Named(Longer), Named(Tilde), Named(Face), Create(W("z"))}));
    const Nodes roots = Retrieve(storage, Filter("/", Select::Children));
    ASSERT_EQ(4u, roots.size());
    EXPECT_EQ(Text(W("z")), Name(roots[0]));
    EXPECT_EQ(Face, Name(roots[1]));
    EXPECT_EQ(Tilde, Name(roots[2]));
    EXPECT_EQ(Longer, Name(roots[3]));
}

TEST_F(RootOrder, RemovedChildrenGoInTheSameOrder) {
    const Storage storage;
    const Node parent = Create(W("p"));
    for (const Text& name : {Tilde, Face})
        ASSERT_EQ(S_OK, AcnAddChild(parent, Named(name)));
    ASSERT_EQ(S_OK, StoreNodes(storage, nullptr, StoreMergeAll, {parent}));
    Sink sink(storage);
    std::vector<Text> removed;
    sink.Inside = [&](const std::string&, const ModifyNotification* told) {
        if (told && told->Mask == ModifyNodeDeleted)
            removed.emplace_back(told->Path);
    };
    EXPECT_EQ(S_OK, StoreNodes(storage, nullptr, StoreReplaceAll, {Create(W("p"))}));
    EXPECT_EQ((std::vector<Text>{W("\\p\\") + Face, W("\\p\\") + Tilde}), removed);
}

} // namespace
} // namespace treevault::tests
