// SPDX-License-Identifier: MIT
// Identifiers written to and read from text.
#include "general/treevault/values/valuetesting.h"

namespace treevault::tests {
namespace {

void ExpectGuid(std::string_view text, const Outcome& outcome) {
    ExpectOutcome(Value(VtStringA, A(text)), VtGuid, outcome);
    ExpectOutcome(Value(VtStringW, U(text)), VtGuid, outcome);
    ExpectOutcome(Value(VtStringAArray, A(text)), VtGuidArray, outcome);
    ExpectOutcome(Value(VtStringWArray, U(text)), VtGuidArray, outcome);
}

const Outcome X = CannotConvert;
const Bytes Sample = Raw(SampleGuid);

// The bytes of the text's groups, where the first three are numbers.
Bytes GuidOf(uint32_t data1, uint16_t data2, uint16_t data3, std::initializer_list<uint8_t> rest) {
    return Raw(data1) + Raw(data2) + Raw(data3) + List(rest);
}

TEST(GuidText, IsWrittenInBracesAndUpperCase) {
    const GUID guid = {0x0000ABCD, 0x00EF, 0x0001, {0, 1, 2, 3, 0xFE, 0xDC, 0xBA, 0x98}};
    const char* const text = "{0000ABCD-00EF-0001-0001-0203FEDCBA98}";
    ExpectConverts(Value(VtGuid, Raw(guid)), VtStringA, A(text));
    ExpectConverts(Value(VtGuid, Raw(guid)), VtStringW, U(text));
}

TEST(GuidText, Formats) {
    ExpectGuid("{00112233-4455-6677-8899-AABBCCDDEEFF}", Sample);
    ExpectGuid("{00112233-4455-6677-8899-aabbccddeeff}", Sample);
    ExpectGuid("00112233-4455-6677-8899-aabbccddeeff", Sample);
    ExpectGuid("00112233-4455-6677-8899-AABBCCDDEEFF", Sample);
    ExpectGuid("00112233445566778899aabbccddeeff", Sample);
    ExpectGuid("00112233445566778899AABBCCDDEEFF", Sample);
}

TEST(GuidText, WhatFollowsTheLastDigitIsIgnored) {
    ExpectGuid("{00112233-4455-6677-8899-aabbccddeeff", Sample);
    ExpectGuid("{00112233-4455-6677-8899-aabbccddeeff]", Sample);
    ExpectGuid("{00112233-4455-6677-8899-aabbccddeeff} and more", Sample);
    ExpectGuid("00112233-4455-6677-8899-aabbccddeeff}", Sample);
    ExpectGuid("00112233445566778899aabbccddeeff0", Sample);
    ExpectGuid("00112233445566778899aabbccddeeff, and more", Sample);
}

TEST(GuidText, WhatIsMissingIsRefused) {
    ExpectGuid("", X);
    ExpectGuid("-", X);
    ExpectGuid("{", X);
    ExpectGuid("{-", X);
    ExpectGuid("00112233-4455-6677-8899-aabbccddee", X);
    ExpectGuid("00112233445566778899aabbccddee", X);
    ExpectGuid("00112233-44556677-8899-aabbccddeeff", X);
    ExpectGuid("0011223344556677-8899-aabbccddeeff", X);
    ExpectGuid("00112233-4455-6677-8899aabbccddeeff", X);
    ExpectGuid("00112233-4455-6677-88-99-aabbccddeeff", X);
    ExpectGuid("g0112233-4455-6677-8899-aabbccddeeff", X);
    ExpectGuid("00112233-4455-6677-8899-aabbccddeegf", X);
}

// The format is chosen by the first character and by a dash anywhere.
TEST(GuidText, FormatIsChosenByBraceAndDash) {
    ExpectGuid("{00112233445566778899aabbccddeeff}", X);
    ExpectGuid(" {00112233-4455-6677-8899-aabbccddeeff}", X);
    ExpectGuid("00112233445566778899aabbccddeeff-", X);
    ExpectGuid("(00112233-4455-6677-8899-aabbccddeeff)", X);
}

// A group takes as many digits as it is wide, and fewer when the text has fewer.
TEST(GuidText, GroupsMayBeShort) {
    ExpectGuid("1-2-3-4 5-6 7 8 9 a b", GuidOf(1, 2, 3, {4, 5, 6, 7, 8, 9, 0xA, 0xB}));
    ExpectGuid("1 2 3 4 5 6 7 8 9 a b", GuidOf(1, 2, 3, {4, 5, 6, 7, 8, 9, 0xA, 0xB}));
    ExpectGuid("123456789-2-3-4 5-6 7 8 9 a b", X);
}

TEST(GuidText, WhiteSpaceMayStandBeforeDigits) {
    ExpectGuid(" 00112233-4455-6677-8899-aabbccddeeff", Sample);
    ExpectGuid("{ 00112233-\t4455-\n6677-\r88\v99-\faa bb cc dd ee ff}", Sample);
    ExpectGuid("00112233 4455 6677 88 99 aa bb cc dd ee ff", Sample);
    // But not before a dash.
    ExpectGuid("00112233 -4455-6677-8899-aabbccddeeff", X);
    ExpectGuid("00112233-4455-6677-8899 -aabbccddeeff", X);
}

// A sign and a prefix count towards the width of a group.
TEST(GuidText, SignsAndPrefixesMayStandBeforeDigits) {
    ExpectGuid("0x112233-0x55-0X77-8899-aabbccddeeff",
               GuidOf(0x112233, 0x55, 0x77, {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}));
    ExpectGuid("+1--1-+3-+4-5-+6+7+8+9+a+b", GuidOf(1, 0xFFFF, 3, {4, 0xFB, 6, 7, 8, 9, 0xA, 0xB}));
    ExpectGuid("-1-2-3-4 5-6 7 8 9 a b", GuidOf(0xFFFFFFFF, 2, 3, {4, 5, 6, 7, 8, 9, 0xA, 0xB}));
    ExpectGuid("0x-4455-6677-8899-aabbccddeeff", X);
    ExpectGuid("+-1-2-3-4 5-6 7 8 9 a b", X);
    ExpectGuid("- 1-2-3-4 5-6 7 8 9 a b", X);
    // A dash where digits are due is a sign, also in the last group.
    ExpectGuid("1-2-3-45-6789abcdef0", X);
    ExpectGuid("00112233-4455-6677-8899-aabbccddee-ff",
               GuidOf(0x112233, 0x4455, 0x6677, {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xF1}));
    // The width of two is spent on the prefix.
    ExpectGuid("1-2-3-0x4 5-6 7 8 9 a b", X);
    // Behind a sign there is no room for one.
    ExpectGuid("1-2-3--0x4 5-6 7 8 9 a b", X);
}

// The written form is taken at once. Something else in any place is found all the same.
TEST(GuidText, TheWrittenFormWithOneOtherCharacterAnywhere) {
    constexpr std::string_view wrong = "/:@G`g\x7F";
    const std::string inner = "01234567-89aB-CdEf-8899-AabBcCdDeEfF";
    const Bytes guid =
        GuidOf(0x01234567, 0x89AB, 0xCDEF, {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF});
    for (const std::string brace : {"", "{"}) {
        ExpectGuid(brace + inner, guid);
        for (size_t at = 0; at + 1 < inner.size(); ++at) {
            std::string broken = inner;
            broken[at] = wrong[at % wrong.size()];
            ExpectGuid(brace + broken, X);
            Bytes wide = U(brace + inner);
            wide[2 * (brace.size() + at) + 1] = static_cast<char>(1 << at % 8); // a high byte
            ExpectFails(Value(VtStringW, wide), VtGuid, CannotConvert);
            // Nothing is read behind the end.
            ExpectGuid(brace + inner.substr(0, at), X);
        }
        // Of the last group one digit is enough.
        const Bytes shorter =
            GuidOf(0x01234567, 0x89AB, 0xCDEF, {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xF});
        ExpectGuid(brace + inner.substr(0, inner.size() - 1), shorter);
        ExpectGuid(brace + inner.substr(0, inner.size() - 1) + "g", shorter);
    }
}

TEST(GuidText, IsReadUpToItsFirstNul) {
    using namespace std::string_view_literals;
    ExpectConverts(Value(VtStringA, A("00112233445566778899aabbccddeeff\0-"sv)), VtGuid, Sample);
    ExpectFails(Value(VtStringW, U("00112233445566778899aabbccddee\0ff"sv)), VtGuid, CannotConvert);
}

TEST(GuidText, OtherCharactersAreNoDigits) {
    // Fullwidth one, and units whose low byte alone is a digit or a dash.
    for (const unsigned unit : {0xFF11u, 0x0131u, 0x3130u}) {
        Bytes text = U("00112233445566778899aabbccddeeff");
        text.replace(0, sizeof(WCHAR), Units({unit}));
        ExpectFails(Value(VtStringW, text), VtGuid, CannotConvert);
    }
    ExpectFails(Value(VtStringA, A("\xB1\x30"
                                   "112233445566778899aabbccddeeff")),
                VtGuid, CannotConvert);
    // Behind the last digit anything may stand.
    ExpectConverts(Value(VtStringA, A("00112233445566778899aabbccddeeff\xC3\xA4")), VtGuid, Sample);
}

} // namespace
} // namespace treevault::tests
