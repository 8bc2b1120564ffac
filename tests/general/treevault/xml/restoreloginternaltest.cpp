// SPDX-License-Identifier: MIT
// The log lines about values that cannot be brought back to their recorded type.
#include "general/treevault/xml/xmlnodedeserializer.h"
#include "support/logcapture.h"

#include <treevault/serialization.h>

#include <cstring>

namespace treevault::tests {

namespace {

HRESULT TREEVAULT_CALL DeliverText(const char** text, uint64_t* size, uint32_t* end,
                                   void* context) {
    *text = static_cast<const char*>(context);
    *size = std::strlen(*text);
    *end = 1;
    return S_OK;
}

// Reads a document whose only node has one attribute A, and gives the code.
HRESULT ReadAttribute(const std::string& rest, uint32_t flags) {
    std::string text = "<nr><n n='N'><a n='A' " + rest + "</n></nr>";
    const Ref<CXMLNodeDeserializer> context =
        MakeComponent<CXMLNodeDeserializer>(&DeliverText, text.data(), flags);
    IACNode* node = nullptr;
    const HRESULT hr = context->DeserializeNodes(&node, 1, nullptr);
    if (node)
        node->Release();
    return hr;
}

// The lines of severity WARN that the reading writes.
class RestoreLog : public testing::Test {
protected:
    std::vector<LogEntry> Read(const std::string& rest, uint32_t flags = 0) {
        const LogCapture capture;
        Code = ReadAttribute(rest, flags);
        std::vector<LogEntry> entries;
        for (const std::string& line : capture.Lines())
            if (ParseLine(line).Severity == " WARN ")
                entries.push_back(ParseLine(line));
        return entries;
    }

    HRESULT Code = S_OK;
    SeverityInForce Severity{SeverityWarn};
};

const std::string Unchanged = "The value type left unchanged";

void ExpectFirst(const std::string& message, const std::vector<LogEntry>& entries, size_t count) {
    ASSERT_EQ(count, entries.size());
    EXPECT_TRUE(entries[0].Message.starts_with(message)) << entries[0].Message;
    if (count > 1) {
        EXPECT_EQ(Unchanged, entries[1].Message);
    }
}

} // namespace

TEST_F(RestoreLog, TwoLinesTellOfAValueLeftAsText) {
    ExpectFirst("Cannot restore the original value type 3 for value: 'abc' stored as type 1: "
                "0x80040204 ",
                Read("t='3' v='abc'/>"), 2);
    EXPECT_EQ(S_OK, Code);
}

TEST_F(RestoreLog, TheStrictReaderWritesTheFirstLineOnly) {
    ExpectFirst("Cannot restore the original value type 3 for value: 'abc' stored as type 1: "
                "0x80040204 ",
                Read("t='3' v='abc'/>", NodeDeserializerFlagStrict), 1);
    EXPECT_EQ(static_cast<HRESULT>(0x80040204), Code);
}

TEST_F(RestoreLog, AnUnsupportedTypeIsToldTheSameWay) {
    ExpectFirst("Cannot restore the original value type 8 for value: '1' stored as type 1: "
                "0x80040203 ",
                Read("t='0x8' v='1'/>"), 2);
    ExpectFirst("Cannot restore the original value type 8 for value: '1' stored as type 1: "
                "0x80040203 ",
                Read("t='8' v='1'/>", NodeDeserializerFlagStrict), 1);
    EXPECT_EQ(static_cast<HRESULT>(0x80040203), Code);
}

TEST_F(RestoreLog, ValuesOtherThanNarrowTextAreNotShown) {
    ExpectFirst("Cannot restore the original value type 259 for value: '<n/a>' stored as type 257: "
                "0x80040204 ",
                Read("t='259'><v v='x'/></a>"), 2);
    ExpectFirst("Cannot restore the original value type 8 for value: '<n/a>' stored as type 0: "
                "0x80040203 ",
                Read("t='8'/>"), 2);
}

TEST_F(RestoreLog, TheValueIsShownAsWideText) {
    ExpectFirst("Cannot restore the original value type 3 for value: '\xC3\xA4\xE2\x82\xAC' stored",
                Read("t='3' v='\xC3\xA4&#x20AC;'/>"), 2);
    ExpectFirst("Cannot restore the original value type 65535 for value: '' stored",
                Read("t='65535' v=''/>"), 2);
}

TEST_F(RestoreLog, TheLinesComeFromTheDeserializer) {
    // Keeps where lines come from.
    struct PlaceKeeper final : LogLineFormatter {
        void Format(WideText&, uint32_t, SourcePlace place, WideView, int32_t,
                    const uint64_t*) override {
            Files.emplace_back(place.File);
        }
        std::vector<std::string> Files;
    } keeper;
    const LogCapture capture;
    GetLoggerConfig().SetFormatter(&keeper);
    EXPECT_EQ(S_OK, ReadAttribute("t='3' v='abc'/>", 0));
    GetLoggerConfig().SetFormatter(nullptr);
    EXPECT_EQ(std::vector<std::string>(2, "sources/general/treevault/xmlnodedeserializer"),
              keeper.Files);
}

TEST_F(RestoreLog, NothingIsWrittenAboutWhatIsInOrder) {
    EXPECT_TRUE(Read("t='3' v='5'/>").empty());
    EXPECT_TRUE(Read("v='5'/>").empty());
    EXPECT_TRUE(Read("t='3'/>").empty());
    EXPECT_TRUE(Read("t='3' v='abc'/>", NodeSerializerFlagNoValueTypes).empty());
    EXPECT_TRUE(Read("t='70000' v='abc'/>").empty());
}

TEST_F(RestoreLog, TheSeverityDecidesTheLinesAndNotTheFailure) {
    Severity.Change(SeverityErr);
    EXPECT_TRUE(Read("t='3' v='abc'/>").empty());
    EXPECT_EQ(S_OK, Code);
    EXPECT_TRUE(Read("t='3' v='abc'/>", NodeDeserializerFlagStrict).empty());
    EXPECT_EQ(static_cast<HRESULT>(0x80040204), Code);
}

} // namespace treevault::tests
