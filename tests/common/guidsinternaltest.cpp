// SPDX-License-Identifier: MIT
// Identifiers: new ones and their text forms.
#include "common/guids.h"

#include "common/errorhandling.h"

#include <gtest/gtest.h>

namespace treevault {
namespace {

constexpr GUID Sample = {
    0x0123ABCD, 0x45EF, 0x06F7, {0x89, 0x0A, 0xBC, 0xDE, 0xF0, 0x12, 0x34, 0x5F}};

TEST(GuidToString, BracedFormIsUpperCase) {
    EXPECT_EQ(WideText(TV_W("{0123ABCD-45EF-06F7-890A-BCDEF012345F}")), GuidToString(Sample, 0));
    EXPECT_EQ(WideText(TV_W("{00000000-0000-0000-0000-000000000000}")), GuidToString(GUID{}, 0));
}

TEST(GuidToString, PlainFormIsLowerCase) {
    EXPECT_EQ(WideText(TV_W("0123abcd-45ef-06f7-890a-bcdef012345f")), GuidToString(Sample, 3));
    EXPECT_EQ(WideText(TV_W("00000000-0000-0000-0000-000000000000")), GuidToString(GUID{}, 3));
}

TEST(GuidToString, OtherFormsFail) {
    for (const uint32_t form : {1u, 2u, 4u, 0xFFFFFFFFu}) {
        try {
            GuidToString(Sample, form);
            ADD_FAILURE() << form;
        } catch (const HRX& failure) {
            EXPECT_EQ(E_FAIL, failure.Code) << form;
        }
    }
}

TEST(NewGuid, IsNeverTheSame) {
    const GUID first = NewGuid(), second = NewGuid();
    EXPECT_FALSE(SameGuid(first, second));
    EXPECT_FALSE(SameGuid(first, GUID{}));
}

TEST(NewGuid, MayBeUniqueOnThisMachineOnlyButNotZero) {
    EXPECT_TRUE(IsUsableGuid(0, Sample));
    EXPECT_TRUE(IsUsableGuid(0, GUID{}));
    EXPECT_TRUE(IsUsableGuid(1739, Sample));
    EXPECT_TRUE(IsUsableGuid(1824, Sample));
    EXPECT_FALSE(IsUsableGuid(1739, GUID{}));
    EXPECT_FALSE(IsUsableGuid(1824, GUID{}));
    EXPECT_FALSE(IsUsableGuid(14, Sample));
    EXPECT_FALSE(IsUsableGuid(-1, Sample));
}

TEST(SameGuid, LooksAtEveryByte) {
    for (size_t byte = 0; byte < sizeof(GUID); ++byte) {
        GUID other = Sample;
        reinterpret_cast<unsigned char*>(&other)[byte] ^= 1;
        EXPECT_FALSE(SameGuid(Sample, other)) << byte;
    }
    EXPECT_TRUE(SameGuid(Sample, GUID(Sample)));
}

} // namespace
} // namespace treevault
