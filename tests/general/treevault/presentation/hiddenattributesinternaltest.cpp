// SPDX-License-Identifier: MIT
// The grammar of the setting that hides attributes, and the masking itself.
#include "common/errorhandling.h"
#include "general/treevault/presentation/masking.h"
#include "support/trees.h"

namespace treevault::tests {
namespace {

// The names that nodes of a type must not show, with a blank behind each.
std::string NamesFor(const HiddenAttrsConfig& config, const WCHAR* type) {
    std::string names;
    config.AnyName(type, [&](const WCHAR* name) {
        names += Narrow(name) + ' ';
        return false;
    });
    return names;
}

std::string NamesIn(const WCHAR* setting, const WCHAR* type) {
    return NamesFor(HiddenAttrsConfig(setting), type);
}

TEST(HiddenAttributesGrammar, AnEmptySettingHidesNothing) {
    for (const WCHAR* setting : {W(""), W(";"), W(";;;")})
        EXPECT_TRUE(HiddenAttrsConfig(setting).HidesNothing());
    EXPECT_FALSE(HiddenAttrsConfig(W("T:a")).HidesNothing());
}

TEST(HiddenAttributesGrammar, ARuleNamesAttributesOfAType) {
    const WCHAR* const setting = W("Account:Secret,Pin;*:Token");
    EXPECT_EQ("Pin Secret Token ", NamesIn(setting, W("Account")));
    EXPECT_EQ("Token ", NamesIn(setting, W("Other")));
    EXPECT_EQ("Token ", NamesIn(setting, W("")));
}

TEST(HiddenAttributesGrammar, TypesAreCaseSensitive) {
    EXPECT_EQ("", NamesIn(W("Account:Secret"), W("account")));
}

TEST(HiddenAttributesGrammar, EmptyRulesAndNamesAreSkipped) {
    EXPECT_EQ("a b ", NamesIn(W(";;T:,a,,b,;"), W("T")));
    EXPECT_EQ("", NamesIn(W("T:,"), W("T")));
}

TEST(HiddenAttributesGrammar, EmptyPartsOfARuleAreDropped) {
    EXPECT_EQ("a ", NamesIn(W(":T::a:"), W("T")));
}

TEST(HiddenAttributesGrammar, WhiteSpaceIsCutAtBothEnds) {
    EXPECT_EQ("a b b x ", NamesIn(W(" \t\r\nT \r\n: a ,\tb\t, ,b x\n"), W("T")));
}

TEST(HiddenAttributesGrammar, ABlankTypeIsTheEmptyType) {
    EXPECT_EQ("a ", NamesIn(W(" :a"), W("")));
    EXPECT_EQ("", NamesIn(W(" :a"), W("T")));
}

TEST(HiddenAttributesGrammar, RulesOfOneTypeAreMerged) {
    EXPECT_EQ("a b c ", NamesIn(W("T:b,a;U:x;T:c,a"), W("T")));
}

TEST(HiddenAttributesGrammar, TheTypesOwnNamesComeFirst) {
    EXPECT_EQ("z a ", NamesIn(W("*:a;T:z"), W("T")));
}

TEST(HiddenAttributesGrammar, ARuleOfOtherThanTwoPartsIsAnError) {
    for (const WCHAR* setting : {W("a"), W("a:"), W(":a"), W("a:b:c"), W(":"), W(" "), W("T:a;U"),
                                 W("T:a; ;U:b"), W("::")}) {
        try {
            HiddenAttrsConfig config(setting);
            ADD_FAILURE() << Narrow(setting);
        } catch (const HRX& failure) {
            EXPECT_EQ(E_INVALIDARG, failure.Code) << Narrow(setting);
        }
    }
}

// --- Masking -------------------------------------------------------------------------------------

class Masking : public NodeTest {
protected:
    static Node Mask(IACNode* node, uint64_t depth, const WCHAR* setting) {
        return Node(MaskHiddenAttributes(node, depth, HiddenAttrsConfig(setting)).Detach());
    }
};

TEST_F(Masking, GivesTheNodeItselfWhenNothingIsHidden) {
    const Node node = Tree("n:T{a=1}(c:T{a=1})");
    for (const WCHAR* setting : {W(""), W("U:a"), W("T:b"), W("t:a"), W("*:A")})
        EXPECT_EQ(node.Get(), Mask(node, TREEVAULT_ALL_LEVELS, setting).Get()) << Narrow(setting);
    EXPECT_EQ(1u, References(node));
}

TEST_F(Masking, MasksTheWholeSubtreeInAClone) {
    const Node node = Tree("n:T{a=1 b=2}(c:U{a=3}(d:T{a=4}) e:T)");
    const Node masked = Mask(node, TREEVAULT_ALL_LEVELS, W("T:a"));
    EXPECT_NE(node.Get(), masked.Get());
    EXPECT_EQ("n:T{a='********' b=2}(c:U{a=3}(d:T{a='********'}) e:T)", Show(masked));
    EXPECT_EQ("n:T{a=1 b=2}(c:U{a=3}(d:T{a=4}) e:T)", Show(node));
}

TEST_F(Masking, LooksNoDeeperThanItIsTold) {
    const Node node = Tree("n(c(d:T{a=1}))");
    EXPECT_EQ(node.Get(), Mask(node, 0, W("T:a")).Get());
    EXPECT_EQ(node.Get(), Mask(node, 1, W("T:a")).Get());
    EXPECT_EQ("n(c(d:T{a='********'}))", Show(Mask(node, 2, W("T:a"))));
    EXPECT_EQ("n:X{a='********'}", Show(Mask(Tree("n:X{a=1}(c:X{a=1})"), 0, W("*:a"))));
}

// Names that no path could tell apart.
TEST_F(Masking, FindsNodesOfAnyName) {
    const Node node = Create(W("n"));
    for (const WCHAR* name : {W(""), W("x"), W("x "), W("X")}) {
        const Node child = AddNew(node, name, W("T"));
        ASSERT_EQ(S_OK, SetInt(child, W("a"), 1));
        const Node grandchild = AddNew(child, W(""), W("T"));
        ASSERT_EQ(S_OK, SetInt(grandchild, W("a"), 2));
    }
    EXPECT_EQ("n(:T{a='********'}(:T{a='********'}) x:T{a='********'}(:T{a='********'}) "
              "x :T{a='********'}(:T{a='********'}) X:T{a='********'}(:T{a='********'}))",
              Show(Mask(node, TREEVAULT_ALL_LEVELS, W("T:a"))));
}

TEST_F(Masking, OfADeepTreeCostsNoStack) {
    constexpr int levels = 100000;
    const Node top = Create(W("top"), W("T"));
    Node at = top;
    for (int level = 1; level < levels; ++level)
        at = AddNew(at, W("n"), W("T"));
    ASSERT_EQ(S_OK, SetInt(at, W("a"), 1));
    Node masked = Mask(top, TREEVAULT_ALL_LEVELS, W("T:a"));
    for (int level = 1; level < levels; ++level)
        masked = ChildAt(masked, 0);
    EXPECT_EQ("n:T{a='********'}", Show(masked));
}

} // namespace
} // namespace treevault::tests
