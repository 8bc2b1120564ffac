// SPDX-License-Identifier: MIT
// Search for a code unit and hashes of names, at each length around the units that are taken at
// once.
#include "common/textcompare.h"
#include "common/texthash.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace treevault {
namespace {

TEST(FindUnit, FindsTheFirstAtEachPlace) {
    for (size_t length = 0; length <= 20; ++length) {
        // Neighbours of the wanted unit in either byte.
        WideText text;
        for (size_t at = 0; at < length; ++at)
            text += TV_W("\x005B\x005D\x015C\x5C00\xFF5C")[at % 5];
        EXPECT_EQ(length, FindUnit(text, PathSeparator)) << length;
        for (size_t place = 0; place < length; ++place) {
            WideText with = text;
            with[place] = PathSeparator;
            EXPECT_EQ(place, FindUnit(with, PathSeparator)) << length << ' ' << place;
            for (size_t later = place + 1; later < length; ++later)
                with[later] = PathSeparator;
            EXPECT_EQ(place, FindUnit(with, PathSeparator)) << length << ' ' << place;
            for (size_t begin = 0; begin <= length; ++begin)
                EXPECT_EQ(std::max(begin, place), FindUnit(with, PathSeparator, begin))
                    << length << ' ' << place << ' ' << begin;
        }
    }
}

// What follows a unit that is found must not be taken for it.
TEST(FindUnit, IsNotMisledByABorrow) {
    EXPECT_EQ(1u, FindUnit(TV_W("a\\]b"), PathSeparator));
    EXPECT_EQ(4u, FindUnit(TV_W("a]]b"), PathSeparator));
    EXPECT_EQ(2u, FindUnit(WideView(TV_W("ab\0\1"), 4), 0));
}

TEST(HashText, DependsOnEachUnitAndTheLength) {
    WideText text;
    std::set<uint32_t> hashes{HashText(text)};
    size_t count = 1;
    for (size_t length = 1; length <= 20; ++length) {
        text.assign(length, TV_W('a'));
        hashes.insert(HashText(text));
        ++count;
        for (size_t place = 0; place < length; ++place, ++count) {
            WideText other = text;
            other[place] = TV_W('b');
            hashes.insert(HashText(other));
        }
    }
    // Two of 231 of 2^32 meet once in 160,000 processes.
    EXPECT_EQ(count, hashes.size());
}

TEST(HashText, IsThatOfTheTextAlone) {
    const WideText text = TV_W("some name");
    const WideText around = TV_W("xsome namey");
    EXPECT_EQ(HashText(text), HashText(WideView(around).substr(1, 9)));
}

// How far from its own slot a name lies on average when names that count up are put one after the
// other into a table of twice as many slots, each into the next free one.
double MeanDisplacement(const WideText& before, size_t digits, uint64_t seed) {
    constexpr size_t capacity = 2048;
    constexpr size_t count = 1000;
    std::vector<bool> taken(capacity);
    size_t displacement = 0;
    for (size_t number = 0; number < count; ++number) {
        WideText name = before;
        for (size_t place = digits, unit = 1; place > 0; --place, unit *= 10)
            name.insert(before.size(), 1, static_cast<WCHAR>(TV_W('0') + number / unit % 10));
        size_t at = HashText(name, seed) % capacity;
        for (; taken[at]; at = (at + 1) % capacity)
            ++displacement;
        taken[at] = true;
    }
    return static_cast<double>(displacement) / count;
}

TEST(HashText, SpreadsNamesThatCountUpWithAnySeed) {
    std::mt19937_64 seeds;
    for (int round = 0; round < 300; ++round) {
        const uint64_t seed = seeds() | 1;
        // By chance it is 0.48.
        for (const auto& [before, digits] :
             std::vector<std::pair<WideText, size_t>>{{TV_W(""), 3},
                                                      {TV_W("n"), 4},
                                                      {TV_W("node"), 7},
                                                      {TV_W("a name of more units "), 8}})
            ASSERT_GT(1.0, MeanDisplacement(before, digits, seed)) << digits << ' ' << seed;
    }
}

} // namespace
} // namespace treevault
