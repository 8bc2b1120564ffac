// SPDX-License-Identifier: MIT
// The log lines of storages. Runs with GS_Logger_MaxSeverity=DBG3.
#include "common/loggerconfig.h"
#include "general/treevault/storage/memorystorage.h"
#include "support/storage.h"

#include <string_view>

namespace treevault::tests {
namespace {

using Lines = std::vector<std::string>;

// Collects the lines that the storage itself writes as "severity message", indented by two blanks
// for each level of its own; addresses, ids, durations and what follows an error's code are cut.
class Recorder final : public LogSink, public LogLineFormatter {
public:
    Recorder() {
        GetLoggerConfig().SetFormatter(this);
        GetLoggerConfig().AddSink(this);
    }
    ~Recorder() {
        GetLoggerConfig().RemoveSink(this);
        GetLoggerConfig().SetFormatter(nullptr);
    }

    void Format(WideText& line, uint32_t severity, SourcePlace place, WideView message,
                int32_t indentation, const uint64_t*) override {
        line.clear();
        if (std::string_view(place.File).find("/storage/") == std::string_view::npos)
            return;
        WideStream stream;
        stream << severity << W(" ") << WideText(static_cast<size_t>(indentation) * 2, W(' '))
               << message;
        line = stream.Str();
    }

    void Write(const WCHAR* text, ptrdiff_t length) override {
        std::string line(text, text + length);
        if (line.empty())
            return;
        if (const size_t at = line.find(" failed: 0x"); at != std::string::npos)
            line.erase(at + 19);
        if (const size_t at = line.find("(failed): 0x"); at != std::string::npos)
            line.erase(at + 20);
        if (line.find("Exiting: ") != std::string::npos)
            line.erase(std::min(line.find(" ["), line.size()));
        if (line.find("EXCEPTION at: ") != std::string::npos)
            line.erase(std::min(line.find(" ["), line.size()));
        Collected.push_back(HideAddresses(line));
    }

    Lines Collected;

private:
    // Addresses are 16 digits; "0" alone stands for null.
    static std::string HideAddresses(std::string line) {
        for (size_t at = 0; (at = line.find("0x", at)) != std::string::npos; ++at)
            if (line.find_first_not_of("0123456789ABCDEFabcdef", at + 2) >= at + 18 &&
                line.size() >= at + 18)
                line.replace(at, 18,
                             line.find_first_not_of('0', at + 2) >= at + 18 ? "null" : "ADDR");
        if (const size_t at = line.find('{'); at != std::string::npos)
            line.replace(at, 38, "{ID}");
        return line;
    }
};

class StorageLog : public NodeTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(IsSeverityEnabled(SeverityDbg3)) << "GS_Logger_MaxSeverity must be DBG3";
    }

    template <class Call>
    static Lines Of(const Call& call) {
        Recorder recorder;
        call();
        ClearRecord();
        return recorder.Collected;
    }

    Storage Subject{"n{x=1}"};
};

// --- Storing -------------------------------------------------------------------------------------

TEST_F(StorageLog, Store) {
    EXPECT_EQ((Lines{"6 Entering: CMemoryStorage::StoreData", "6   GroupContext: null",
                     "6   Mode: 0", "6   Count: 1",
                     "7   Storing: ACNode[ADDR]:\r\n\t<n n=\"\\m\">\r\n\t\t<n n=\"c\"/>\r\n\t</n>",
                     "6   Entering: CPendingOperations::Execute",
                     "6     Signaling OnModified: path='\\m' mask=2",
                     "6   Exiting: CPendingOperations::Execute", "6   Signaling PreCommit",
                     "6   Signaling Finish (successful)", "6 Exiting: CMemoryStorage::StoreData"}),
              Of([&] { Subject.Store(StoreMergeAll, "m(c)"); }));
}

TEST_F(StorageLog, StoreIntoAGroup) {
    Group group(Subject);
    EXPECT_EQ(
        (Lines{"6 Entering: CMemoryStorage::StoreData", "6   GroupContext: ADDR", "6   Mode: -7",
               "6   Count: 2", "7   Storing: ACNode[ADDR]:\r\n\t<n n=\"\\a\"/>",
               "7   Storing: ACNode[ADDR]:\r\n\t<n n=\"\\p\\b\"/>",
               "6 Exiting: CMemoryStorage::StoreData"}),
        Of([&] { group.Store(-7, "a /p/b"); }));
    EXPECT_EQ((Lines{"6 Entering: CMemoryStorage::FinalizeOperationsGroup",
                     "6   GroupContext: ADDR", "6   Entering: CPendingOperations::Execute",
                     "6     Signaling OnModified: path='\\a' mask=2",
                     "6     Signaling OnModified: path='\\p' mask=2",
                     "6     Signaling OnModified: path='\\p\\b' mask=2",
                     "6     Signaling OnModified: path='\\p' mask=8",
                     "6   Exiting: CPendingOperations::Execute", "6   Signaling PreCommit",
                     "6   Signaling Finish (successful)",
                     "6 Exiting: CMemoryStorage::FinalizeOperationsGroup"}),
              Of([&] { group.Finish(); }));
}

TEST_F(StorageLog, RefusedStore) {
    EXPECT_EQ((Lines{"6 Entering: CMemoryStorage::StoreData", "6   GroupContext: null",
                     "6   Mode: 0", "6   Count: 0", "6 EXCEPTION at: CMemoryStorage::StoreData",
                     "6 CMemoryStorage::StoreData failed: 0x80004003"}),
              Of([&] { StgStoreData(Subject, nullptr, StoreMergeAll, nullptr, 0); }));
}

TEST_F(StorageLog, StoreThatFailsWhileItRuns) {
    Subject.Configure(false, true);
    EXPECT_EQ(
        (Lines{"6 Entering: CMemoryStorage::StoreData", "6   GroupContext: null", "6   Mode: 3",
               "6   Count: 2", "7   Storing: ACNode[ADDR]:\r\n\t<n n=\"\\m\"/>",
               "7   Storing: ACNode[<null>]", "6   Entering: CPendingOperations::Execute",
               "6     Signaling OnModified: path='\\m' mask=2",
               "6   EXCEPTION at: CPendingOperations::Execute",
               "5   CPendingOperations::Execute failed: 0x80040303",
               "5   Entering: Rolling the changes back", "5   Exiting: Rolling the changes back",
               "6   Signaling Finish (failed): 0x80040303",
               "6 EXCEPTION at: CMemoryStorage::StoreData",
               "6 CMemoryStorage::StoreData failed: 0x80040303"}),
        Of([&] {
            const Node node = Create(W("m"));
            IACNode* nodes[] = {node, nullptr};
            StgStoreData(Subject, nullptr, StoreReplaceAll, nodes, 2);
        }));
}

TEST_F(StorageLog, VetoedStore) {
    Sink sink(Subject);
    sink.RefuseOn = "precommit";
    const Lines lines = Of([&] { Subject.Store(StoreMergeAll, "n{x=2}"); });
    ASSERT_LT(8u, lines.size());
    EXPECT_EQ(
        (Lines{"6   Signaling PreCommit",
               "2   CInnerModifySinkPool::OnPreCommit failed: 0x8004ABCD",
               "5   Entering: Rolling the changes back", "5   Exiting: Rolling the changes back",
               "6   Signaling Finish (failed): 0x8004ABCD",
               "6 EXCEPTION at: CMemoryStorage::StoreData",
               "6 CMemoryStorage::StoreData failed: 0x8004ABCD"}),
        Lines(lines.begin() + 8, lines.end()));
}

// --- Sinks ---------------------------------------------------------------------------------------

TEST_F(StorageLog, FailingSinks) {
    Sink sink(Subject);
    sink.RefuseOn = "start";
    Lines lines = Of([&] { Subject.Store(StoreMergeAll, ""); });
    EXPECT_EQ(1, std::count(lines.begin(), lines.end(),
                            "2   CInnerModifySinkPool::OnStart failed: 0x8004ABCD"));
    sink.RefuseOn = "created /m";
    lines = Of([&] { Subject.Store(StoreMergeAll, "m"); });
    EXPECT_EQ(1, std::count(lines.begin(), lines.end(),
                            "2     CInnerModifySinkPool::OnModified failed: 0x8004ABCD"));
}

TEST_F(StorageLog, Registration) {
    const auto registry = Query<IModifySinkRegistry>(Subject, IID_IModifySinkRegistry);
    Sink sink;
    GUID id = {};
    EXPECT_EQ((Lines{"6 New config server modify sink ADDR with id {ID}"}),
              Of([&] { registry->RegisterSink(&sink, &id); }));
    EXPECT_EQ((Lines{"5 Removed config server modify sink with id {ID}"}),
              Of([&] { registry->UnregisterSink(&id); }));
    EXPECT_EQ((Lines{"3 Unknown modify sink id {ID}"}), Of([&] { registry->UnregisterSink(&id); }));
    EXPECT_EQ(Lines{}, Of([&] { registry->RegisterSink(nullptr, &id); }));
}

TEST_F(StorageLog, IdsAreInBracesAndUpperCase) {
    const auto registry = Query<IModifySinkRegistry>(Subject, IID_IModifySinkRegistry);
    const GUID id = {0xabcdef01, 0x2345, 0x6789, {0xab, 0xcd, 0xef, 1, 2, 3, 4, 5}};
    struct Last final : LogSink {
        void Write(const WCHAR* text, ptrdiff_t length) override {
            Line.assign(text, text + length);
        }
        std::string Line;
    } last;
    GetLoggerConfig().AddSink(&last);
    EXPECT_EQ(E_INVALIDARG, registry->UnregisterSink(&id));
    GetLoggerConfig().RemoveSink(&last);
    EXPECT_NE(std::string::npos,
              last.Line.find("Unknown modify sink id {ABCDEF01-2345-6789-ABCD-EF0102030405}"))
        << last.Line;
}

// --- Deleting, retrieving, configuring -----------------------------------------------------------

const char* const FilterOfX =
    "ACNode[ADDR]:\r\n\t<n n=\"\\f\" t=\"FilterByPath\">\r\n\t\t<a n=\"NodePath\" t=\"2\" "
    "v=\"\\x\"/>\r\n\t</n>";

Node NamedFilter() {
    const Node filter = Filter("/x");
    EXPECT_EQ(S_OK, AcnSetNodeName(filter, NameShort, W("f")));
    return filter;
}

TEST_F(StorageLog, Delete) {
    const Node filter = NamedFilter();
    EXPECT_EQ(
        (Lines{"6 Entering: CMemoryStorage::DeleteData", "6   GroupContext: null",
               std::string("6   Filter: ") + FilterOfX, "6   Entering: CPendingOperations::Execute",
               "6   Exiting: CPendingOperations::Execute", "6   Signaling PreCommit",
               "6   Signaling Finish (successful)", "6 Exiting: CMemoryStorage::DeleteData"}),
        Of([&] { StgDeleteData(Subject, nullptr, filter); }));
    EXPECT_EQ((Lines{"6 Entering: CMemoryStorage::DeleteData", "6   GroupContext: null",
                     "6   Filter: ACNode[<null>]", "6 EXCEPTION at: CMemoryStorage::DeleteData",
                     "6 CMemoryStorage::DeleteData failed: 0x80004003"}),
              Of([&] { StgDeleteData(Subject, nullptr, nullptr); }));
}

TEST_F(StorageLog, Retrieve) {
    const Node filter = NamedFilter();
    ASSERT_EQ(S_OK, Subject.Store(StoreMergeAll, "x"));
    IRetrievalContext* context = nullptr;
    Node found;
    EXPECT_EQ(
        (Lines{"6 Entering: CMemoryStorage::RetrieveData", std::string("6   Filter: ") + FilterOfX,
               "6   Entering: CMemoryStorage::RetrieveNextData", "6     RetrievalContext: ADDR",
               "6     MaxNodesCount: 1", "7     Retreived node: ACNode[ADDR]:\r\n\t<n n=\"\\x\"/>",
               "6   Exiting: CMemoryStorage::RetrieveNextData", "6   RetrievalContext: ADDR",
               "6 Exiting: CMemoryStorage::RetrieveData"}),
        Of([&] { StgRetrieveData(Subject, filter, &context, found.Put(), 1, nullptr); }));
    StgCloseRetrivalContext(Subject, context);
}

TEST_F(StorageLog, RefusedRetrieval) {
    Node found;
    EXPECT_EQ((Lines{"6 Entering: CMemoryStorage::RetrieveData", "6   Filter: ACNode[<null>]",
                     "6 EXCEPTION at: CMemoryStorage::RetrieveData",
                     "6 CMemoryStorage::RetrieveData failed: 0x80004003"}),
              Of([&] { StgRetrieveData(Subject, nullptr, nullptr, found.Put(), 1, nullptr); }));
    EXPECT_EQ((Lines{"6 Entering: CMemoryStorage::RetrieveNextData", "6   RetrievalContext: null",
                     "6   MaxNodesCount: 3", "6 EXCEPTION at: CMemoryStorage::RetrieveNextData",
                     "6 CMemoryStorage::RetrieveNextData failed: 0x80004003"}),
              Of([&] { StgRetrieveNextData(Subject, nullptr, found.Put(), 3, nullptr); }));
}

TEST_F(StorageLog, Configuration) {
    const auto config = Query<IStorageConfig>(Subject, IID_IStorageConfig);
    const Node node = Create(W("c"));
    EXPECT_EQ((Lines{"5 Entering: CMemoryStorage::Configure",
                     "5   Config: ACNode[ADDR]:\r\n\t<n n=\"\\c\"/>",
                     "5 Exiting: CMemoryStorage::Configure"}),
              Of([&] { config->Configure(node); }));
    EXPECT_EQ(
        (Lines{"5 Entering: CMemoryStorage::Configure", "5 EXCEPTION at: CMemoryStorage::Configure",
               "2 CMemoryStorage::Configure failed: 0x80004003"}),
        Of([&] { config->Configure(nullptr); }));
}

// --- Without lines -------------------------------------------------------------------------------

TEST_F(StorageLog, QuietOperations) {
    EXPECT_EQ(Lines{}, Of([] {
                  Storage storage;
                  INodeStorage* out = nullptr;
                  StgOpenStorageInstance(W("unknown"), &out);
                  StgCreateStorage(W("unknown"), nullptr, nullptr, 0, &out);
                  const Group group(storage);
                  StgCreateOperationsGroup(storage, nullptr);
              }));
}

// --- Rollbacks -----------------------------------------------------------------------------------

// A name that a nested store took meanwhile keeps a removed child out.
TEST_F(StorageLog, FailedRollback) {
    ASSERT_EQ(S_OK, Subject.Store(StoreMergeAll, "p(c{old=1}) q"));
    Sink sink(Subject);
    sink.Inside = [&](const std::string& call, const ModifyNotification*) {
        if (call == "deleted /p/c")
            Subject.Store(StoreMergeAll, "/p/c{new=1}");
    };
    Group group(Subject);
    group.Store(StoreMergeAll, "first").Delete("/p/c").Store(StoreMergeAll, "q{x=1}");
    sink.RefuseOn = "changed /q [x]";
    HRESULT hr = S_OK;
    const Lines lines = Of([&] { hr = group.Finish(); });
    EXPECT_EQ(CodeText(Refusal), CodeText(hr));
    EXPECT_EQ(1, std::count(lines.begin(), lines.end(),
                            "2     CPendingOperations::Rollback failed: Rollback failed: "
                            "0x80040206"))
        << testing::PrintToString(lines);
    // The first failing step ends the undo; what stands before it in the list stays done.
    EXPECT_EQ("first n{x=1} p(c{new=1}) q", Forest(Subject));
    // Nothing is left to undo afterwards.
    sink.Inside = nullptr;
    sink.RefuseOn = "start";
    EXPECT_EQ(S_OK, Subject.Delete("/p/c"));
}

} // namespace
} // namespace treevault::tests
