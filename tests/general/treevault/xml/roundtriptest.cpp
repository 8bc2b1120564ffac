// SPDX-License-Identifier: MIT
// Trees that are written and read back are the same trees, fixed ones and random ones.
#include "support/xml.h"

#include <cstdlib>
#include <iostream>
#include <map>
#include <random>
#include <set>

namespace treevault::tests {

namespace {

class RoundTrip : public NodeTest {};

// A tree as plain values.
struct Tree {
    Text Name;
    Text Type;
    std::map<Text, Value> Attributes;
    std::vector<Tree> Children;

    friend bool operator==(const Tree&, const Tree&) = default;
};

Tree TreeOf(IACNode* node) {
    Tree tree{Name(node), Type(node), {}, {}};
    for (const Text& name : AttributeNames(node))
        tree.Attributes.emplace(name, Get(node, name.c_str()));
    for (size_t index = 0; index < ChildCount(node); ++index)
        tree.Children.push_back(TreeOf(ChildAt(node, index)));
    return tree;
}

Node Build(const Tree& tree) {
    const Node node = Create(tree.Name.c_str(), tree.Type.c_str());
    for (const auto& [name, value] : tree.Attributes)
        EXPECT_EQ(S_OK, Set(node, name.c_str(), value));
    for (const Tree& child : tree.Children)
        EXPECT_EQ(S_OK, AcnAddChild(node, Build(child)));
    return node;
}

// What comes back of a value: any true reads back as 1.
Value Normal(Value value) {
    if (value.Tag == VtBool || value.Tag == VtBoolArray)
        for (char& byte : value.Bytes)
            byte = byte != 0;
    return value;
}

Tree Normal(Tree tree) {
    for (auto& [name, value] : tree.Attributes)
        value = Normal(value);
    for (Tree& child : tree.Children)
        child = Normal(std::move(child));
    return tree;
}

uint64_t NumberFromEnvironment(const char* name, uint64_t otherwise) {
    const char* const text = std::getenv(name);
    return text ? std::strtoull(text, nullptr, 0) : otherwise;
}

class RandomTrees {
public:
    explicit RandomTrees(uint64_t seed) : Random(seed) {}

    // Takes nodes from `budget` as long as there are any.
    Tree MakeTree(uint64_t& budget, int level = 0) {
        --budget;
        Tree tree{MakeName(1), MakeText(false), {}, {}};
        for (uint64_t count = Below(6); count > 0; --count)
            tree.Attributes.insert_or_assign(MakeText(false), MakeValue());
        std::set<Text> names;
        for (uint64_t count = level < 12 ? Below(4) : 0; count > 0 && budget > 0; --count) {
            Tree child = MakeTree(budget, level + 1);
            while (!names.insert(child.Name).second)
                child.Name += W('+');
            tree.Children.push_back(std::move(child));
        }
        return tree;
    }

    uint64_t Below(uint64_t limit) { return Random() % limit; }

private:
    // A name of a node may hold anything but a separator.
    Text MakeName(size_t minimum) {
        Text name = MakeText(false);
        for (WCHAR& unit : name)
            if (unit == W('\\'))
                unit = W('/');
        while (name.size() < minimum)
            name += W('x');
        return name;
    }

    // Valid UTF-16 with a liking for what is hard to write.
    Text MakeText(bool withNuls) {
        static const Text Hard = W("<>&'\"\\ \t\r\n;#x]\x01\x1F\x7F\u0080\u07FF\u0800\uFFFE\uFFFF");
        Text text;
        for (uint64_t count = Below(3) == 0 ? Below(40) : Below(6); count > 0; --count) {
            const uint64_t kind = Below(8);
            if (kind < 3)
                text += static_cast<WCHAR>('a' + Below(26));
            else if (kind < 6)
                text += Hard[Below(Hard.size())];
            else if (kind == 6)
                text += MakeAstral();
            else if (withNuls)
                text += WCHAR(0);
        }
        return text;
    }

    Text MakeAstral() {
        return {static_cast<WCHAR>(0xD800 + Below(0x400)),
                static_cast<WCHAR>(0xDC00 + Below(0x400))};
    }

    // Any bytes; narrow text need not be UTF-8.
    std::string MakeBytes(size_t size, bool withNuls = true) {
        std::string bytes(size, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(withNuls ? Below(256) : 1 + Below(255));
        return bytes;
    }

    Value MakeValue() {
        static constexpr ValueType Tags[] = {0,  1,   2,   3,   4,   5,   6,   7,   12,
                                             13, 257, 258, 259, 260, 261, 262, 263, 269};
        const ValueType tag = Tags[Below(std::size(Tags))];
        switch (tag) {
        case VtStringA:
            return {tag, MakeBytes(Below(30)) + '\0'};
        case VtStringW:
            return TextValue(MakeText(true));
        case VtBinary:
            return {tag, MakeBytes(Below(30))};
        case VtStringAArray:
        case VtStringWArray:
            return MakeTextArray(tag);
        default:
            const size_t count = tag & VtArray ? Below(5) : tag == VtEmpty ? 0 : 1;
            return {tag, MakeBytes(count * ElementSize(tag))};
        }
    }

    Value MakeTextArray(ValueType tag) {
        Value value{tag, {}};
        for (uint64_t count = Below(5); count > 0; --count) {
            if (tag == VtStringAArray)
                value.Bytes += MakeBytes(Below(12), false) + '\0';
            else
                value.Bytes += TextValue(MakeText(false)).Bytes;
        }
        return value;
    }

    static size_t ElementSize(ValueType tag) {
        switch (tag & 0xFF) {
        case VtBool:
            return 1;
        case VtInt32:
        case VtUInt32:
            return 4;
        case VtInt64:
        case VtUInt64:
            return 8;
        default:
            return 16;
        }
    }

    std::mt19937_64 Random;
};

} // namespace

TEST_F(RoundTrip, ModificationStateIsNotRecorded) {
    const Node node = Create(W("N"));
    ASSERT_EQ(S_OK, SetInt(node, W("A"), 1));
    ASSERT_EQ(S_OK, AcnSetModifiedState(node, nullptr, 0));
    EXPECT_EQ(1u, ModifiedState(ReadOne(Write({node})), W("A")));
}

TEST_F(RoundTrip, AnyTrueReadsBackAsOne) {
    const Node node = Create(W("N"));
    ASSERT_EQ(S_OK, Set(node, W("A"), {VtBool, "\x80"}));
    ASSERT_EQ(S_OK, Set(node, W("B"), {VtBoolArray, std::string("\x00\x02", 2)}));
    const Node read = ReadOne(Write({node}));
    EXPECT_EQ((Value{VtBool, "\x01"}), Get(read, W("A")));
    EXPECT_EQ((Value{VtBoolArray, std::string("\x00\x01", 2)}), Get(read, W("B")));
}

TEST_F(RoundTrip, WithoutTypesEverythingReadsBackAsText) {
    const Node node = Create(W("N"));
    ASSERT_EQ(S_OK, SetInt(node, W("A"), 5));
    ASSERT_EQ(S_OK, Set(node, W("B"), {VtInt32Array, std::string("\x01\0\0\0", 4)}));
    const Node read = ReadOne(Write({node}, NodeSerializerFlagNoValueTypes));
    EXPECT_EQ(NarrowValue("5"), Get(read, W("A")));
    EXPECT_EQ(NarrowValue("1", VtStringAArray), Get(read, W("B")));
}

TEST_F(RoundTrip, APathOfATopLevelNodeReadsBackAsItsPath) {
    const Node top = Create(W("top"));
    const Node child = AddNew(top, W("child"));
    const Node read = ReadOne(Write({child}, NodeSerializerFlagFullPath));
    EXPECT_EQ(W("\\top\\child"), Path(read));
    // The path of a node with an empty name at the top is no name.
    EXPECT_EQ(TREEVAULT_E_INVALID_NAME,
              ReadCode(Write({Create(W(""))}, NodeSerializerFlagFullPath)));
}

TEST_F(RoundTrip, AnEmptyNodeNameReadsBackGenerated) {
    EXPECT_EQ(36u, Name(ReadOne(Write({Create(W(""))}))).size());
}

TEST_F(RoundTrip, RandomTreesComeBackEqual) {
    const uint64_t seed = NumberFromEnvironment("TREEVAULT_TEST_SEED", std::random_device()());
    uint64_t steps = NumberFromEnvironment("TREEVAULT_TEST_STEPS", 100000);
    std::cout << "TREEVAULT_TEST_SEED=" << seed << " TREEVAULT_TEST_STEPS=" << steps << std::endl;
    RandomTrees random(seed);
    while (steps > 0) {
        const Tree tree = random.MakeTree(steps);
        const uint32_t flags = static_cast<uint32_t>(random.Below(2) * NodeSerializerFlagIndent +
                                                     random.Below(2) * NodeSerializerFlagBom);
        const std::string text = Write({Build(tree)}, flags);
        const Node read = ReadOne(text, NodeDeserializerFlagStrict);
        ASSERT_TRUE(TreeOf(read) == Normal(tree)) << text;
        ASSERT_EQ(text, Write({read}, flags));
    }
}

} // namespace treevault::tests
