// SPDX-License-Identifier: MIT
// No line of the log shows a hidden attribute. Runs with GS_Logger_MaxSeverity=DBG3 and, in turn,
// with GS_Logger_HiddenNodeTypeAttrs=*:Secret, without, and with a malformed one.
#include "support/logcapture.h"
#include "support/storage.h"

#include <cstdlib>

namespace treevault::tests {
namespace {

class HiddenAttributesLog : public NodeTest {
protected:
    // All lines of a storage's life in which a secret is stored, found and deleted.
    static std::string LinesOfAStorage() {
        const LogCapture capture;
        Node config = Configuration(true, true);
        EXPECT_EQ(S_OK, Set(config, W("Secret"), TextValue(W("xyzzy"))));
        Storage storage(config);
        EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, "/a/b:T{Secret='xyzzy'}(c{Secret='xyzzy'})"));
        Node filter = Filter("/a/b");
        EXPECT_EQ(S_OK, Set(filter, W("Secret"), TextValue(W("xyzzy"))));
        EXPECT_EQ(1u, Retrieve(storage, filter).size());
        EXPECT_EQ(S_OK, StgDeleteData(storage, nullptr, filter));
        std::string text;
        for (const std::string& line : capture.Lines())
            text += line;
        return text;
    }

    static size_t CountOf(const std::string& part, const std::string& text) {
        size_t count = 0;
        for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
            ++count;
        return count;
    }

    static bool Expects(const char* what) {
        const char* const expected = std::getenv("TREEVAULT_EXPECTED_VIEW");
        EXPECT_NE(nullptr, expected);
        return expected && std::string(expected) == what;
    }
};

// The configuration, two filters, and the node stored and found with its child: seven values.
TEST_F(HiddenAttributesLog, ShowsTheMask) {
    const std::string lines = LinesOfAStorage();
    const size_t shown = CountOf("xyzzy", lines), masked = CountOf("v=\"********\"", lines);
    const size_t broken = CountOf("... (***EXCEPTION***)", lines);
    if (Expects("masked")) {
        EXPECT_EQ(0u, shown) << lines;
        EXPECT_EQ(7u, masked) << lines;
        EXPECT_EQ(0u, broken) << lines;
    } else if (Expects("plain")) {
        EXPECT_EQ(7u, shown) << lines;
        EXPECT_EQ(0u, masked) << lines;
        EXPECT_EQ(0u, broken) << lines;
    } else {
        // Each of the five lines keeps its label.
        EXPECT_EQ(0u, shown) << lines;
        EXPECT_EQ(5u, broken) << lines;
        for (const char* line :
             {"Config: ... (***EXCEPTION***)\r\n", "Storing: ... (***EXCEPTION***)\r\n",
              "Retreived node: ... (***EXCEPTION***)\r\n"})
            EXPECT_EQ(1u, CountOf(line, lines)) << line << lines;
        EXPECT_EQ(2u, CountOf("Filter: ... (***EXCEPTION***)\r\n", lines)) << lines;
    }
}

// The indented text of 5,000 levels is larger than a line may be.
TEST_F(HiddenAttributesLog, ShowsNoNodeBeyondTheLongestLine) {
    Node top = Create(W("top"));
    Node at = top;
    for (int level = 1; level < 5000; ++level)
        at = AddNew(at, W("n"));
    Storage storage;
    IACNode* nodes[] = {top};
    const LogCapture capture;
    EXPECT_EQ(S_OK, StgStoreData(storage, nullptr, StoreMergeAll, nodes, 1));
    size_t labels = 0;
    for (const std::string& message : capture.Messages())
        labels += message.find("Storing: ... (***EXCEPTION***)") != std::string::npos;
    EXPECT_EQ(1u, labels);
}

} // namespace
} // namespace treevault::tests
