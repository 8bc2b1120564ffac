// SPDX-License-Identifier: MIT
// Attributes that are read, written, marked and cloned from many threads.
#include "threads.h"

namespace treevault::tests {
namespace {

class AttributeStress : public NodeTest {};

constexpr size_t LargestValue = 64;
const WCHAR* const Keys[] = {W("k1"), W("k2"), W("k3"), W("k4"), W("k5")};

// A value of equal bytes: a reader that sees two different ones saw half of a write.
HRESULT SetUniform(IACNode* node, const WCHAR* name, size_t size, char byte) {
    const std::string bytes(size, byte);
    return AcnSetAttribute(node, name, VtBinary, bytes.data(), bytes.size());
}

void ExpectUniform(IACNode* node, const WCHAR* name) {
    char buffer[LargestValue];
    size_t size = sizeof buffer;
    ValueType stored = 77;
    const HRESULT hr = AcnGetAttribute(node, name, nullptr, buffer, &size, &stored);
    ASSERT_TRUE(IsOneOf(hr, {S_OK, TREEVAULT_E_NOT_FOUND}));
    if (hr != S_OK)
        return;
    EXPECT_EQ(VtBinary, stored);
    EXPECT_EQ(std::string(size, size ? buffer[0] : ' '), std::string(buffer, size));
}

// Every name that the node lists is one of the keys, once and in order.
void ExpectOrderedKeys(IACNode* node) {
    for (const auto list : {AcnGetAttributeNames, AcnGetModifiedAttributeNames}) {
        WCHAR buffer[32];
        size_t size = 32;
        ASSERT_EQ(S_OK, list(node, buffer, &size));
        const Names names = SplitNames(Text(buffer, size));
        for (size_t i = 0; i < names.size(); ++i) {
            EXPECT_TRUE(std::find(std::begin(Keys), std::end(Keys), names[i]) != std::end(Keys));
            EXPECT_TRUE(i == 0 || names[i - 1] < names[i]);
        }
    }
}

TEST_F(AttributeStress, ReadersSeeWholeValues) {
    const Node node = Create(W("n"));
    const Work write = [&](Choices& choices) {
        EXPECT_EQ(S_OK, SetUniform(node, choices.Of(Keys), choices.Below(LargestValue),
                                   static_cast<char>(choices.Below(256))));
    };
    const Work erase = [&](Choices& choices) {
        EXPECT_TRUE(
            IsOneOf(AcnDeleteAttribute(node, choices.Of(Keys)), {S_OK, TREEVAULT_E_NOT_FOUND}));
        if (choices.Below(100) == 0) {
            EXPECT_EQ(S_OK, AcnDeleteAttribute(node, nullptr));
        }
    };
    const Work read = [&](Choices& choices) {
        ExpectUniform(node, choices.Of(Keys));
        ExpectOrderedKeys(node);
    };
    WorkTogether({write, write, erase, read, read});
}

TEST_F(AttributeStress, ClonesAreTakenWhileTheSourceIsWritten) {
    const Node node = Create(W("n"));
    for (const WCHAR* key : Keys)
        ASSERT_EQ(S_OK, SetUniform(node, key, 16, 'x'));
    const Work write = [&](Choices& choices) {
        EXPECT_EQ(S_OK, SetUniform(node, choices.Of(Keys), choices.Below(LargestValue),
                                   static_cast<char>(choices.Below(256))));
    };
    const Work mark = [&](Choices& choices) {
        EXPECT_EQ(S_OK, AcnSetModifiedState(node, choices.Of(Keys),
                                            static_cast<uint32_t>(choices.Below(2))));
    };
    const Work clone = [&](Choices& choices) {
        const Node copy = Clone(node, 0, choices.Below(4) == 0 ? CloneOwnAttributes : 0);
        // Nobody else writes the clone: it must not change, whoever shares its table.
        const Value before = Get(copy, W("k3"));
        ExpectUniform(copy, choices.Of(Keys));
        EXPECT_EQ(S_OK,
                  AcnSetModifiedState(copy, nullptr, static_cast<uint32_t>(choices.Below(2))));
        EXPECT_EQ(before, Get(copy, W("k3")));
        EXPECT_EQ(S_OK, SetUniform(copy, W("k1"), 20, 'z'));
        EXPECT_EQ(std::string(20, 'z'), Get(copy, W("k1")).Bytes);
        EXPECT_EQ(before, Get(copy, W("k3")));
        EXPECT_EQ(1u, ModifiedState(copy, W("k1")));
        ExpectOrderedKeys(copy);
    };
    WorkTogether({write, mark, clone, clone});
    EXPECT_EQ(5u, AttributeNames(node).size());
}

TEST_F(AttributeStress, SharersMarkOneTable) {
    const Node node = Create(W("n"));
    for (const WCHAR* key : Keys)
        ASSERT_EQ(S_OK, SetUniform(node, key, 16, 'x'));
    const Node clone = Clone(node);
    const auto mark = [](const Node& sharer) {
        return [&sharer](Choices& choices) {
            const WCHAR* name = choices.Below(3) == 0 ? nullptr : choices.Of(Keys);
            EXPECT_EQ(S_OK,
                      AcnSetModifiedState(sharer, name, static_cast<uint32_t>(choices.Below(2))));
            EXPECT_LE(ModifiedState(sharer, name), 1u);
            ExpectUniform(sharer, choices.Of(Keys));
            ExpectOrderedKeys(sharer);
        };
    };
    WorkTogether({mark(node), mark(clone), mark(node)});
    EXPECT_EQ(S_OK, AcnSetModifiedState(node, nullptr, 0));
    EXPECT_EQ(0u, ModifiedState(clone, nullptr)); // still one table
}

TEST_F(AttributeStress, SharersPartAtTheSameTime) {
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        const Node node = Create(W("n"));
        for (const WCHAR* key : Keys)
            ASSERT_EQ(S_OK, SetUniform(node, key, 16, 'x'));
        const Node one = Clone(node), two = Clone(node);
        RaceOnce({[&] { EXPECT_EQ(S_OK, SetUniform(node, W("k1"), 16, 'a')); },
                  [&] { EXPECT_EQ(S_OK, SetUniform(one, W("k1"), 16, 'b')); },
                  [&] { EXPECT_EQ(S_OK, AcnDeleteAttribute(two, W("k1"))); }});
        EXPECT_EQ(std::string(16, 'a'), Get(node, W("k1")).Bytes);
        EXPECT_EQ(std::string(16, 'b'), Get(one, W("k1")).Bytes);
        EXPECT_FALSE(HasAttribute(two, W("k1")));
        for (const Node* each : {&node, &one, &two})
            EXPECT_EQ(std::string(16, 'x'), Get(*each, W("k2")).Bytes);
    }
}

TEST_F(AttributeStress, TypesAreReadWhole) {
    const Node node = Create(W("n"), W("aaaa"));
    const Work write = [&](Choices& choices) {
        EXPECT_EQ(S_OK, AcnSetNodeType(node, choices.Below(2) ? W("aaaa") : W("bbbbbbbb")));
    };
    const Work read = [&](Choices&) {
        WCHAR buffer[16];
        size_t size = 16;
        ASSERT_EQ(S_OK, AcnGetNodeType(node, buffer, &size));
        const Text type(buffer);
        EXPECT_TRUE(type == W("aaaa") || type == W("bbbbbbbb")) << Narrow(type);
        EXPECT_EQ(type.size() + 1, size);
        Clone(node, 0);
    };
    WorkTogether({write, write, read, read});
}

} // namespace
} // namespace treevault::tests
