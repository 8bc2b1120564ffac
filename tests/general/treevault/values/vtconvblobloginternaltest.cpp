// SPDX-License-Identifier: MIT
// The line that a binary text leaves in the log when it cannot be read.
#include "general/treevault/values/vtconvblob.h"

#include "general/treevault/values/conversion.h"
#include "general/treevault/values/raisetesting.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace treevault::tests {
namespace {

// The lines that a conversion to a binary leaves when it fails.
std::vector<std::string> LinesOf(const ValueView& source) {
    const LogCapture log;
    EXPECT_EQ(TREEVAULT_E_CANNOT_CONVERT,
              Raised([&] { ConvertValue(source, VtBinary, nullptr, 0, nullptr); }));
    return log.Lines();
}

void ExpectLine(const std::vector<std::string>& lines, const std::string& code) {
    ASSERT_EQ(1u, lines.size());
    const std::string& line = lines[0];
    EXPECT_NE(std::string::npos, line.find(" | ERR  |")) << line;
    EXPECT_NE(std::string::npos, line.find(" | vtconvblob:")) << line;
    EXPECT_NE(std::string::npos, line.find("| StringToBinary failed: " + code + " ")) << line;
    EXPECT_EQ("\r\n", line.substr(line.size() - 2));
}

TEST(StringToBinaryLog, TellsAMissingPrefix) {
    ExpectLine(LinesOf({VtStringA, "00", 3}), "0x80070057");
    const WCHAR wide[] = {'0', '0', 0};
    ExpectLine(LinesOf({VtStringW, wide, sizeof wide}), "0x80070057");
}

TEST(StringToBinaryLog, TellsBadDigits) {
    ExpectLine(LinesOf({VtStringA, "HEX:0", 6}), "0x8007000D");
    ExpectLine(LinesOf({VtStringA, "B64:A", 6}), "0x8007000D");
}

// A number meets binaries only through its text.
TEST(StringToBinaryLog, TellsOtherScalarsToo) {
    const int32_t number = 7;
    ExpectLine(LinesOf({VtInt32, &number, sizeof number}), "0x80070057");
    const GUID guid{};
    ExpectLine(LinesOf({VtGuid, &guid, sizeof guid}), "0x80070057");
}

TEST(StringToBinaryLog, IsSilentWhereNothingWasRead) {
    EXPECT_TRUE(LinesOf({VtInt32Array, "1234", 4}).empty());
}

TEST(StringToBinaryLog, IsSilentOnSuccess) {
    const LogCapture log;
    ConvertValue({VtStringA, "HEX:00", 7}, VtBinary, nullptr, 0, nullptr);
    EXPECT_TRUE(log.Lines().empty());
}

TEST(StringToBinaryLog, IsSilentBelowItsSeverityAndFailsAllTheSame) {
    const SeverityInForce crit(SeverityCrit);
    EXPECT_TRUE(LinesOf({VtStringA, "00", 3}).empty());
}

} // namespace
} // namespace treevault::tests
