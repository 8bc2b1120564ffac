// SPDX-License-Identifier: MIT
// Where a node keeps the bytes of a value, and who frees them.
#include "general/treevault/values/valuestorage.h"

#include "general/treevault/values/failingmemory.h"
#include "general/treevault/values/raisetesting.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace treevault::tests {
namespace {

std::string BytesOf(const ValueStorage& storage) {
    return std::string(static_cast<const char*>(storage.Data()), storage.Size());
}

bool LiesInside(const ValueStorage& storage) {
    const auto* begin = reinterpret_cast<const char*>(&storage);
    const auto* data = static_cast<const char*>(storage.Data());
    return data >= begin && data < begin + sizeof storage;
}

class ValueStorageTest : public testing::Test {
protected:
    void SetUp() override { Before = LiveBlocks(); }
    void TearDown() override { EXPECT_EQ(Before, LiveBlocks()) << "blocks leaked"; }

    size_t Blocks() const { return LiveBlocks() - Before; }

private:
    size_t Before = 0;
};

TEST_F(ValueStorageTest, StartsEmpty) {
    const ValueStorage storage;
    EXPECT_EQ(0u, storage.Size());
    EXPECT_NE(nullptr, storage.Data());
}

TEST_F(ValueStorageTest, IsInlineUpTo8Bytes) {
    for (const uint32_t size : {1u, 7u, 8u}) {
        const ValueStorage storage("12345678", size);
        EXPECT_EQ(size, storage.Size());
        EXPECT_TRUE(LiesInside(storage));
        EXPECT_EQ(std::string("12345678", size), BytesOf(storage));
        EXPECT_EQ(0u, Blocks());
    }
}

TEST_F(ValueStorageTest, IsOnTheHeapFrom9Bytes) {
    const ValueStorage storage("123456789", 9);
    EXPECT_FALSE(LiesInside(storage));
    EXPECT_EQ("123456789", BytesOf(storage));
    EXPECT_EQ(1u, Blocks());
}

TEST_F(ValueStorageTest, ResizingFreesTheBlock) {
    ValueStorage storage("123456789", 9);
    storage.Resize(8);
    EXPECT_EQ(8u, storage.Size());
    EXPECT_TRUE(LiesInside(storage));
    EXPECT_EQ(0u, Blocks());
    storage.Resize(20);
    EXPECT_EQ(1u, Blocks());
    storage.Resize(10);
    EXPECT_EQ(1u, Blocks());
    EXPECT_EQ(10u, storage.Size());
    storage.Resize(0);
    EXPECT_EQ(0u, Blocks());
}

TEST_F(ValueStorageTest, ResizingToTheSameSizeKeepsTheBytes) {
    ValueStorage storage("123456789", 9);
    const void* const block = storage.Data();
    storage.Resize(9);
    EXPECT_EQ(block, storage.Data());
    EXPECT_EQ("123456789", BytesOf(storage));
}

TEST_F(ValueStorageTest, AssigningNothingGivesZeros) {
    for (const uint32_t size : {0u, 3u, 8u, 9u, 40u}) {
        ValueStorage storage(std::string(size, 'x').data(), size);
        storage.Assign(nullptr, size);
        EXPECT_EQ(std::string(size, '\0'), BytesOf(storage));
    }
}

TEST_F(ValueStorageTest, ACopyHasBytesOfItsOwn) {
    for (const std::string bytes : {"12345", "123456789"}) {
        ValueStorage storage(bytes.data(), bytes.size());
        const ValueStorage copy(storage);
        EXPECT_NE(storage.Data(), copy.Data());
        static_cast<char*>(storage.Data())[0] = '?';
        EXPECT_EQ(bytes, BytesOf(copy));
    }
}

TEST_F(ValueStorageTest, AMoveTakesTheBytesAndLeavesNothing) {
    ValueStorage source("123456789", 9);
    const void* const block = source.Data();
    ValueStorage target(std::move(source));
    EXPECT_EQ(0u, source.Size());
    EXPECT_EQ(block, target.Data());
    EXPECT_EQ(1u, Blocks());

    ValueStorage small("abc", 3);
    target = std::move(small);
    EXPECT_EQ("abc", BytesOf(target));
    EXPECT_EQ(0u, small.Size());
    EXPECT_EQ(0u, Blocks());
}

TEST_F(ValueStorageTest, AssigningToItselfKeepsTheBytes) {
    ValueStorage storage("123456789", 9);
    ValueStorage& same = storage;
    storage = std::move(same);
    EXPECT_EQ("123456789", BytesOf(storage));
    storage = same;
    EXPECT_EQ("123456789", BytesOf(storage));
}

TEST_F(ValueStorageTest, MoreThan32BitsOfSizeAreRefused) {
    ValueStorage storage("123456789", 9);
    EXPECT_EQ(E_INVALIDARG, Raised([&] { storage.Resize(0x100000000); }));
    EXPECT_EQ("123456789", BytesOf(storage));
    EXPECT_EQ(E_INVALIDARG, Raised([&] { storage.Assign(nullptr, UINT64_MAX); }));
    EXPECT_EQ("123456789", BytesOf(storage));
}

TEST_F(ValueStorageTest, WithoutMemoryItIsLeftEmpty) {
    ValueStorage storage("123456789", 9);
    {
        const FailingMemory memory(5000);
        EXPECT_EQ(E_OUTOFMEMORY, Raised([&] { storage.Resize(5000); }));
    }
    EXPECT_EQ(0u, storage.Size());
    EXPECT_EQ(0u, Blocks());
}

TEST_F(ValueStorageTest, ACopyThatFailsLeavesTheOldBytes) {
    ValueStorage target("old", 3);
    const ValueStorage source(std::string(5000, 'x').data(), 5000);
    {
        const FailingMemory memory(5000);
        EXPECT_EQ(E_OUTOFMEMORY, Raised([&] { target = source; }));
    }
    EXPECT_EQ("old", BytesOf(target));
}

// What a structure puts behind it costs nothing.
struct Entry {
    [[no_unique_address]] ValueStorage Value;
    uint16_t Type;
    uint16_t Flags;
};
static_assert(sizeof(Entry) == sizeof(ValueStorage));

TEST_F(ValueStorageTest, LeavesItsPaddingAlone) {
    Entry entry{ValueStorage(), 0x1234, 0x5678};
    entry.Value = ValueStorage("123456789", 9);
    entry.Value.Assign("1", 1);
    entry.Value = ValueStorage();
    EXPECT_EQ(0x1234, entry.Type);
    EXPECT_EQ(0x5678, entry.Flags);
}

} // namespace
} // namespace treevault::tests
