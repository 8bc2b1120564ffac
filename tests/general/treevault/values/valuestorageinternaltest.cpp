// SPDX-License-Identifier: MIT
// Where the bytes of a value are kept, and who frees them.
#include "general/treevault/values/valuestorage.h"

#include "general/treevault/values/failingmemory.h"
#include "general/treevault/values/raisetesting.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
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

// --- Lent room -----------------------------------------------------------------------------------

class LentRoom : public ValueStorageTest {
protected:
    char Room[24] = {};
    ValueStorage Storage{Room, sizeof Room, "123456789", 9};
};

TEST_F(LentRoom, HoldsTheBytesWithoutABlock) {
    EXPECT_EQ(static_cast<void*>(Room), Storage.Data());
    EXPECT_EQ("123456789", BytesOf(Storage));
    EXPECT_EQ(sizeof Room, Storage.LentRoom());
    EXPECT_EQ(0u, Blocks());
}

TEST_F(LentRoom, IsUsedForWhatFits) {
    for (const std::string_view bytes : {"987654321", "abcdefghijklmnopqrstuvwx", "0123456789"}) {
        ASSERT_LE(bytes.size(), sizeof Room);
        EXPECT_TRUE(Storage.Fits(bytes.size()));
        Storage.Assign(bytes.data(), bytes.size());
        EXPECT_EQ(static_cast<void*>(Room), Storage.Data());
        EXPECT_EQ(bytes, BytesOf(Storage));
    }
    EXPECT_EQ(0u, Blocks());
}

TEST_F(LentRoom, IsLeftForWhatLiesInlineOrDoesNotFit) {
    for (const size_t size : {size_t{8}, sizeof Room + 1}) {
        ValueStorage storage(Room, sizeof Room, "123456789", 9);
        EXPECT_FALSE(storage.Fits(size));
        storage.Assign(std::string(size, 'x').data(), size);
        EXPECT_NE(static_cast<void*>(Room), storage.Data());
        EXPECT_EQ(std::string(size, 'x'), BytesOf(storage));
        EXPECT_EQ(0u, storage.LentRoom());
    }
}

TEST_F(LentRoom, ACopyLeavesItAlone) {
    const ValueStorage copy(Storage);
    Room[0] = '?';
    EXPECT_EQ("123456789", BytesOf(copy));
    EXPECT_EQ(0u, copy.LentRoom());
    EXPECT_EQ(1u, Blocks());
}

TEST_F(LentRoom, AMoveTakesItAlong) {
    ValueStorage target(std::move(Storage));
    EXPECT_EQ(static_cast<void*>(Room), target.Data());
    EXPECT_EQ(0u, Storage.LentRoom());
    EXPECT_EQ(0u, Storage.Size());
    Storage = ValueStorage("abcdefghijk", 11);
    target = std::move(Storage);
    EXPECT_EQ("abcdefghijk", BytesOf(target));
    EXPECT_EQ(0u, target.LentRoom());
    EXPECT_EQ(1u, Blocks());
}

TEST_F(LentRoom, CanBeChangedForOther) {
    char other[sizeof Room] = {};
    Storage.MoveRoom(other);
    EXPECT_EQ(static_cast<void*>(other), Storage.Data());
    EXPECT_EQ("123456789", BytesOf(Storage));
}

} // namespace
} // namespace treevault::tests
