// SPDX-License-Identifier: MIT
// Creation of nodes: what a name may be, what a new node holds, and what a failure leaves behind.
#include "support/nodes.h"

#include <set>

namespace treevault::tests {
namespace {

class Creation : public NodeTest {};

bool IsLowerCaseGuid(const Text& text) {
    if (text.size() != 36)
        return false;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool hyphen = i == 8 || i == 13 || i == 18 || i == 23;
        const bool digit =
            (text[i] >= W('0') && text[i] <= W('9')) || (text[i] >= W('a') && text[i] <= W('f'));
        if (hyphen ? text[i] != W('-') : !digit)
            return false;
    }
    return true;
}

TEST_F(Creation, NewNodeIsFreeAndEmpty) {
    const Node node = Create(W("name"), W("type"));
    EXPECT_EQ(W("name"), Name(node));
    EXPECT_EQ(W("\\"), ParentPath(node));
    EXPECT_EQ(W("\\name"), Path(node));
    EXPECT_EQ(W("type"), Type(node));
    EXPECT_EQ(nullptr, Parent(node).Get());
    EXPECT_EQ(0u, ChildCount(node));
    EXPECT_EQ(Table::None, TableOf(node));
}

TEST_F(Creation, HandleIsTheOnlyReference) {
    const Node node = Create(W("name"));
    EXPECT_EQ(1u, References(node));
    EXPECT_EQ(1, Made());
}

TEST_F(Creation, NullNameIsAFreshGuid) {
    std::set<Text> names;
    for (int i = 0; i < 100; ++i) {
        const Node node = Create(nullptr, nullptr);
        const Text name = Name(node);
        EXPECT_TRUE(IsLowerCaseGuid(name)) << Narrow(name);
        EXPECT_EQ(W("\\") + name, Path(node));
        EXPECT_EQ(W(""), Type(node));
        names.insert(name);
    }
    EXPECT_EQ(100u, names.size());
}

TEST_F(Creation, PathAsNameGivesAChainWithoutParents) {
    const Node node = Create(W("\\a\\b\\c"));
    EXPECT_EQ(W("c"), Name(node));
    EXPECT_EQ(W("\\a\\b"), ParentPath(node));
    EXPECT_EQ(W("\\a\\b\\c"), Path(node));
    EXPECT_EQ(nullptr, Parent(node).Get());
    EXPECT_EQ(0u, ChildCount(node));
    EXPECT_EQ(1, Made());
}

TEST_F(Creation, PathOfOneNameIsAtTheTop) {
    const Node node = Create(W("\\a"));
    EXPECT_EQ(W("a"), Name(node));
    EXPECT_EQ(W("\\"), ParentPath(node));
}

TEST_F(Creation, RunOfSeparatorsCountsAsOne) {
    const Node node = Create(W("\\\\a\\\\\\b"));
    EXPECT_EQ(W("\\a\\b"), Path(node));
    EXPECT_EQ(W("b"), Name(node));
}

TEST_F(Creation, EmptyNameIsAName) {
    const Node node = Create(W(""));
    EXPECT_EQ(W(""), Name(node));
    EXPECT_EQ(W("\\"), ParentPath(node));
    EXPECT_EQ(W("\\"), Path(node));
}

TEST_F(Creation, NothingButTheSeparatorIsRefusedInAName) {
    for (const WCHAR* name : {W("/"), W("a/b"), W(" "), W("."), W(".."), W("a:b*?<>|\""),
                              W("\t\r\n"), W("\u00e4\u4e2d"), W("\xd800")}) {
        const Node node = Create(name);
        EXPECT_EQ(name, Name(node));
        EXPECT_EQ(Text(W("\\")) + name, Path(node));
    }
}

TEST_F(Creation, NamesHaveNoLengthLimit) {
    const Text name(100000, W('x'));
    const Node node = Create(name.c_str(), name.c_str());
    EXPECT_EQ(name, Name(node));
    EXPECT_EQ(name, Type(node));
    EXPECT_EQ(W("\\") + name, Path(node));
}

TEST_F(Creation, BadNamesAreRefused) {
    for (const WCHAR* name : {W("\\"), W("\\\\"), W("\\\\\\"), W("\\a\\"), W("\\a\\b\\\\"),
                              W("a\\b"), W("a\\"), W(" \\a")}) {
        IACNode* node = Untouched();
        EXPECT_TRUE(FailsWithRecord(TREEVAULT_E_INVALID_NAME, AcnCreateNode, name, W("t"), &node))
            << Narrow(name);
        EXPECT_EQ(Untouched(), node);
    }
    EXPECT_EQ(0, Made());
}

TEST_F(Creation, NullOutIsRefusedBeforeTheName) {
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnCreateNode, W("a"), W("t"), nullptr));
    EXPECT_TRUE(FailsWithRecord(E_POINTER, AcnCreateNode, W("a\\b"), nullptr, nullptr));
    EXPECT_EQ(0, Made());
}

TEST_F(Creation, EmptyTypeIsATypeLikeNone) {
    EXPECT_EQ(W(""), Type(Create(W("a"), W(""))));
    EXPECT_EQ(W(""), Type(Create(W("a"), nullptr)));
}

TEST_F(Creation, TextsAreCopied) {
    Text name(W("name")), type(W("type"));
    const Node node = Create(name.c_str(), type.c_str());
    name.assign(4, W('x'));
    type.assign(4, W('x'));
    EXPECT_EQ(W("name"), Name(node));
    EXPECT_EQ(W("type"), Type(node));
}

TEST_F(Creation, ModuleCreatesANodeWithoutAName) {
    IComponentsModule* module = nullptr;
    ASSERT_EQ(S_OK, GetComponentsModuleObject(&module));
    void* out = nullptr;
    ASSERT_EQ(S_OK, module->CreateInstance(&CLSID_ACNode, &IID_IACNode, &out));
    const Node node(static_cast<IACNode*>(out));
    EXPECT_TRUE(IsLowerCaseGuid(Name(node)));
    EXPECT_EQ(W(""), Type(node));
    EXPECT_EQ(1u, References(node));
}

} // namespace
} // namespace treevault::tests
