// SPDX-License-Identifier: MIT
// Binaries written to and read from text.
#include "general/treevault/values/valuetesting.h"

namespace treevault::tests {
namespace {

using namespace std::string_view_literals;

const Outcome X = CannotConvert;

void ExpectBinary(std::string_view text, const Outcome& outcome) {
    ExpectOutcome(Value(VtStringA, A(text)), VtBinary, outcome);
    ExpectOutcome(Value(VtStringW, U(text)), VtBinary, outcome);
}

const Bytes TwoBytes = "\x0A\xFF";

TEST(BinaryText, EveryByteIsWrittenAsTwoLowerCaseDigits) {
    Bytes bytes, text = "HEX:";
    for (unsigned value = 0; value < 256; ++value) {
        bytes += static_cast<char>(value);
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", value);
        text += digits;
    }
    ExpectConverts(Value(VtBinary, bytes), VtStringA, A(text));
    ExpectConverts(Value(VtBinary, bytes), VtStringW, U(text));
    ExpectBinary(text, bytes);
}

TEST(BinaryText, PrefixesAreCaseSensitive) {
    for (const std::string_view text :
         {"00"sv, "0aff"sv, "hex:00"sv, "Hex:00"sv, "HEX00"sv, "HEX"sv, "H"sv, "b64:AAAA"sv,
          "B64"sv, "B64AAAA"sv, "HEX;00"sv, "B65:AAAA"sv, " HEX:00"sv, "0xHEX:"sv, ""sv})
        ExpectBinary(text, X);
}

TEST(BinaryText, NothingBehindThePrefixIsEmpty) {
    ExpectBinary("HEX:", Bytes());
    ExpectBinary("B64:", Bytes());
}

TEST(BinaryText, HexDigitsOfEitherCase) {
    ExpectBinary("HEX:0aff", TwoBytes);
    ExpectBinary("HEX:0AFF", TwoBytes);
    ExpectBinary("HEX:0aFf", TwoBytes);
}

TEST(BinaryText, WhiteSpaceBetweenPairsAndAtTheEnds) {
    ExpectBinary("HEX:0a ff", TwoBytes);
    ExpectBinary("HEX: 0a\t\r\n\v\fff ", TwoBytes);
    ExpectBinary("HEX:  ", Bytes());
}

TEST(BinaryText, WhatIsNotHexIsRefused) {
    for (const std::string_view text :
         {"HEX:0"sv, "HEX:0af"sv, "HEX:0 a"sv, "HEX:0 aff"sv, "HEX:0a f f"sv, "HEX:0a f"sv,
          "HEX:0g"sv, "HEX:g0"sv, "HEX:0aff-"sv, "HEX:0a,ff"sv, "HEX:0x0a"sv, "HEX:HEX:00"sv,
          "HEX:Cv8="sv})
        ExpectBinary(text, X);
}

TEST(BinaryText, Base64) {
    ExpectBinary("B64:Cv8=", TwoBytes);
    ExpectBinary("B64:AA==", Bytes("\0", 1));
    ExpectBinary("B64:AQID", Bytes("\1\2\3"));
    ExpectBinary("B64:AQIDBA==", Bytes("\1\2\3\4"));
    ExpectBinary("B64:+/+/", Bytes("\xFB\xFF\xBF"));
    ExpectBinary("B64:VHJlZVZhdWx0", Bytes("TreeVault"));
    ExpectBinary("B64:azAxMjM0NTY3ODl6", Bytes("k0123456789z"));
}

TEST(BinaryText, Base64WithWhiteSpace) {
    ExpectBinary("B64: C v 8 = ", TwoBytes);
    ExpectBinary("B64:AQ\r\nID\t\v\fBA\n=\n=", Bytes("\1\2\3\4"));
    ExpectBinary("B64: ", Bytes());
}

TEST(BinaryText, Base64WithAHeader) {
    ExpectBinary("B64:-----BEGIN CERTIFICATE-----\r\nCv8=\r\n-----END CERTIFICATE-----\r\n",
                 TwoBytes);
    ExpectBinary("B64:-----BEGIN DATA-----\nAQID\nBA==\n-----END DATA-----", Bytes("\1\2\3\4"));
    ExpectBinary("B64: \n-----BEGIN DATA-----\nCv8=\n", TwoBytes);
}

TEST(BinaryText, Base64WithABrokenHeaderIsRefused) {
    for (const std::string_view text :
         {"B64:-----BEGIN DATA\nCv8=\n-----END DATA-----"sv,
          "B64:----BEGIN DATA-----\nCv8=\n-----END DATA-----"sv,
          "B64:-----BEGIN DATA-----\nCv8=\n-----END DATA"sv,
          "B64:-----BEGIN DATA-----\nCv8=\n-----END DATA-----\nCv8="sv,
          "B64:Cv8=\n-----END DATA-----"sv, "B64:-----BEGIN DATA"sv, "B64:-----BEGIN "sv,
          "B64:-----BEGIN DATA-----\nCv8\n-----END DATA-----"sv})
        ExpectBinary(text, X);
}

TEST(BinaryText, WrongPaddingIsRefused) {
    for (const std::string_view text :
         {"B64:C"sv, "B64:Cv"sv, "B64:Cv8"sv, "B64:Cv="sv, "B64:C==="sv, "B64:===="sv, "B64:="sv,
          "B64:Cv8=="sv, "B64:AQID="sv, "B64:AQID===="sv, "B64:Cv8=AQID"sv, "B64:AA=A"sv,
          "B64:A=AA"sv, "B64:AQIDB"sv, "B64:AQIDBA"sv})
        ExpectBinary(text, X);
}

TEST(BinaryText, WhatIsNotBase64IsRefused) {
    for (const std::string_view text :
         {"B64:Cv8*"sv, "B64:Cv-_"sv, "B64:HEX:"sv, "B64:Cv8=."sv, "B64:\x7F\x7F\x7F\x7F"sv})
        ExpectBinary(text, X);
}

TEST(BinaryText, IsReadUpToItsFirstNul) {
    ExpectBinary("HEX:0aff\0zz"sv, TwoBytes);
    ExpectBinary("B64:Cv8=\0="sv, TwoBytes);
    ExpectBinary("HEX:0a\0ff"sv, Bytes("\x0A"));
    ExpectBinary("HEX\0:00"sv, X);
}

// Units whose low byte alone is a digit, and characters of other alphabets.
TEST(BinaryText, OtherUnitsAreNoDigits) {
    for (const unsigned unit : {0x0130u, 0xFF10u, 0x3041u, 0x0660u}) {
        ExpectFails(Value(VtStringW, Units({'H', 'E', 'X', ':', unit, '0', 0})), VtBinary,
                    CannotConvert);
        ExpectFails(Value(VtStringW, Units({'B', '6', '4', ':', unit, 'A', 'A', 'A', 0})), VtBinary,
                    CannotConvert);
    }
    ExpectFails(Value(VtStringW, Units({'H' + 0x100u, 'E', 'X', ':', '0', '0', 0})), VtBinary,
                CannotConvert);
    ExpectFails(Value(VtStringA, A("HEX:\xB0\xB0")), VtBinary, CannotConvert);
}

// Digits are taken many at a time: whatever the length, and wherever something else stands.
TEST(BinaryText, HexOfEveryLengthWithOneOtherUnitAnywhere) {
    constexpr std::string_view wrong = "/:@G`g\x7F\xB0";
    for (size_t length = 0; length <= 50; ++length) {
        Bytes bytes;
        std::string text = "HEX:", written = "HEX:";
        for (size_t at = 0; at < length; ++at) {
            const auto value = static_cast<unsigned char>(at * 37 + length);
            bytes += static_cast<char>(value);
            text += "0123456789aBcDeF"[value >> 4];
            text += "0123456789AbCdEf"[value & 15];
            written += "0123456789abcdef"[value >> 4];
            written += "0123456789abcdef"[value & 15];
        }
        ExpectBinary(text, bytes);
        ExpectConverts(Value(VtBinary, bytes), VtStringA, A(written));
        ExpectConverts(Value(VtBinary, bytes), VtStringW, U(written));
        for (size_t at = 4; at < text.size(); ++at) {
            std::string broken = text;
            broken[at] = wrong[(at + length) % wrong.size()];
            ExpectOutcome(Value(VtStringA, A(broken)), VtBinary, X);
            Bytes wide = U(text);
            wide[2 * at + 1] = static_cast<char>(1 << at % 8); // the high byte of a digit
            ExpectOutcome(Value(VtStringW, wide), VtBinary, X);
            std::string spaced = text;
            spaced.insert(at, 1, ' ');
            ExpectBinary(spaced, at % 2 == 0 ? Outcome(bytes) : X);
        }
    }
}

TEST(BinaryText, ABinaryThatDoesNotFitIsNotWrittenInParts) {
    for (const std::string_view text : {"HEX:010203"sv, "B64:AQID"sv}) {
        const Attempt attempt(Value(VtStringA, A(text)), VtBinary, 2);
        EXPECT_EQ(CodeText(TooSmall), CodeText(attempt.Code));
        EXPECT_EQ(3u, attempt.Size);
        EXPECT_EQ(Bytes("??"), attempt.Buffer);
    }
}

TEST(BinaryText, ATextThatIsWrongAtItsEndWritesNothing) {
    for (const std::string_view text : {"HEX:0102030"sv, "B64:AQIDB"sv}) {
        const Attempt attempt(Value(VtStringA, A(text)), VtBinary, 8);
        EXPECT_EQ(CodeText(CannotConvert), CodeText(attempt.Code));
        EXPECT_EQ(Bytes(8, '?'), attempt.Buffer);
    }
}

} // namespace
} // namespace treevault::tests
