// SPDX-License-Identifier: MIT
// The log lines of node operations. Runs with GS_Logger_MaxSeverity=DBG3.
#include "common/loggerconfig.h"
#include "support/nodes.h"

#include <thread>

namespace treevault::tests {
namespace {

using Lines = std::vector<std::string>;

// Collects the lines of its thread as "severity message", indented by two blanks for each level;
// what differs from run to run is cut off behind "[", "0x" of an address and an error's code.
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

    void Format(WideText& line, uint32_t severity, SourcePlace, WideView message,
                int32_t indentation, const uint64_t*) override {
        WideStream stream;
        stream << severity << W(" ") << WideText(static_cast<size_t>(indentation) * 2, W(' '))
               << message;
        line = stream.Str();
    }

    void Write(const WCHAR* text, ptrdiff_t length) override {
        std::string line(text, text + length);
        for (const char* cut : {" [", "Child=0x"})
            if (const size_t at = line.find(cut); at != std::string::npos)
                line.erase(at);
        if (const size_t at = line.find(" failed: 0x"); at != std::string::npos)
            line.erase(at + 19);
        Collected.push_back(line);
    }

    Lines Collected;
};

class NodeLog : public NodeTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(IsSeverityEnabled(SeverityDbg3)) << "GS_Logger_MaxSeverity must be DBG3";
    }

    // The lines that a call writes.
    template <class... Parameters>
    static Lines Of(HRESULT(TREEVAULT_CALL* function)(Parameters...),
                    std::type_identity_t<Parameters>... arguments) {
        Recorder recorder;
        function(arguments...);
        return recorder.Collected;
    }
};

// --- Life ----------------------------------------------------------------------------------------

TEST_F(NodeLog, Creation) {
    Node node;
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::CACNodeImpl", "7   Creating: Name=n Type=t",
                     "7 Exiting: CACNodeImpl::CACNodeImpl"}),
              Of(AcnCreateNode, W("n"), W("t"), node.Put()));
    EXPECT_EQ(
        (Lines{"7 Entering: CACNodeImpl::CACNodeImpl", "7   Creating: Name=(null) Type=(null)",
               "7 Exiting: CACNodeImpl::CACNodeImpl"}),
        Of(AcnCreateNode, nullptr, nullptr, node.Put()));
}

TEST_F(NodeLog, FailedCreation) {
    IACNode* out = nullptr;
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::CACNodeImpl", "7   Creating: Name=\\ Type=t",
                     "7 EXCEPTION at: CACNodeImpl::CACNodeImpl"}),
              Of(AcnCreateNode, W("\\"), W("t"), &out));
    EXPECT_EQ(Lines{}, Of(AcnCreateNode, W("n"), W("t"), nullptr));
}

TEST_F(NodeLog, CloneOfOneNode) {
    const Node node = Create(W("\\p\\n"), W("t"));
    Node clone;
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::CACNodeImpl", "7   Cloning: Name=n Type=t",
                     "7 Exiting: CACNodeImpl::CACNodeImpl"}),
              Of(AcnCloneNode, node, 5, 0, clone.Put()));
}

TEST_F(NodeLog, CloneOfATreeTellsEachNode) {
    const Node root = Create(W("r"));
    AddNew(AddNew(root, W("a"), W("ta")), W("b"));
    Node clone;
    Lines cloning;
    for (const std::string& line : Of(AcnCloneNode, root, 2, 0, clone.Put()))
        if (const size_t at = line.find("Cloning: "); at != std::string::npos)
            cloning.push_back(line.substr(at));
    EXPECT_EQ((Lines{"Cloning: Name=r Type=", "Cloning: Name=a Type=ta", "Cloning: Name=b Type="}),
              cloning);
}

TEST_F(NodeLog, CloneWithoutOut) {
    EXPECT_EQ((Lines{"7 CACNodeImpl::Clone failed: 0x80004003"}),
              Of(AcnCloneNode, Create(W("n")), 0, 0, nullptr));
}

TEST_F(NodeLog, FinalRelease) {
    Node node = Create(W("n"));
    Recorder recorder;
    node.Close();
    EXPECT_EQ(
        (Lines{"7 Entering: CACNodeImpl::FinalRelease", "7 Exiting: CACNodeImpl::FinalRelease"}),
        recorder.Collected);
}

TEST_F(NodeLog, FinalReleaseOfEachNodeOfATree) {
    Node root = Create(W("r"));
    AddNew(AddNew(root, W("a")), W("b"));
    Recorder recorder;
    root.Close();
    size_t entered = 0;
    for (const std::string& line : recorder.Collected)
        entered += line.find("Entering: CACNodeImpl::FinalRelease") != std::string::npos;
    EXPECT_EQ(3u, entered);
    EXPECT_EQ(6u, recorder.Collected.size());
}

// --- Operations without lines --------------------------------------------------------------------

TEST_F(NodeLog, QuietOperations) {
    const Node root = Create(W("r")), child = AddNew(root, W("c"));
    ASSERT_EQ(S_OK, SetInt(root, W("a"), 1));
    size_t size = 0;
    uint32_t state = 0;
    WCHAR buffer[1];
    Node parent;
    EXPECT_EQ(Lines{}, Of(AcnGetNodeName, root, NameShort, nullptr, &size));
    EXPECT_EQ(Lines{}, Of(AcnGetNodeName, root, NameShort, nullptr, nullptr));
    EXPECT_EQ(Lines{}, Of(AcnGetNodeType, root, nullptr, &size));
    EXPECT_EQ(Lines{}, Of(AcnSetNodeType, root, W("t")));
    EXPECT_EQ(Lines{}, Of(AcnSetNodeType, root, nullptr));
    EXPECT_EQ(Lines{}, Of(AcnSetModifiedState, root, nullptr, 0));
    EXPECT_EQ(Lines{}, Of(AcnSetModifiedState, root, W("x"), 0));
    EXPECT_EQ(Lines{}, Of(AcnGetModifiedState, root, W("x"), &state));
    size = 1;
    EXPECT_EQ(Lines{}, Of(AcnGetModifiedAttributeNames, root, buffer, &size));
    EXPECT_EQ(Lines{}, Of(AcnGetChildCount, root, &size));
    EXPECT_EQ(Lines{}, Of(AcnGetParent, child, parent.Put()));
    EXPECT_EQ(Lines{}, Of(AcnGetParent, child, nullptr));
}

// --- Attributes ----------------------------------------------------------------------------------

TEST_F(NodeLog, SetAttribute) {
    const Node node = Create(W("n"));
    const char data[4] = {};
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::SetAttribute", "7   Name: a", "7   Type: 260",
                     "7 Exiting: CACNodeImpl::SetAttribute"}),
              Of(AcnSetAttribute, node, W("a"), VtUInt32Array, data, 4));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::SetAttribute", "7   Name: a", "7   Type: 3",
                     "7 EXCEPTION at: CACNodeImpl::SetAttribute",
                     "7 CACNodeImpl::SetAttribute failed: 0x8007000D"}),
              Of(AcnSetAttribute, node, W("a"), VtInt32, data, 1));
}

TEST_F(NodeLog, DeleteAttribute) {
    const Node node = Create(W("n"));
    ASSERT_EQ(S_OK, SetInt(node, W("a"), 1));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::DeleteAttribute", "7   Name: a",
                     "7 Exiting: CACNodeImpl::DeleteAttribute"}),
              Of(AcnDeleteAttribute, node, W("a")));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::DeleteAttribute", "7   Name: a",
                     "6   DeleteAttribute('a') failed: 0x80070490",
                     "7 Exiting: CACNodeImpl::DeleteAttribute"}),
              Of(AcnDeleteAttribute, node, W("a")));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::DeleteAttribute", "7   Name: (null)",
                     "7 Exiting: CACNodeImpl::DeleteAttribute"}),
              Of(AcnDeleteAttribute, node, nullptr));
}

TEST_F(NodeLog, GetAttribute) {
    const Node node = Create(W("n"));
    ASSERT_EQ(S_OK, SetInt(node, W("a"), 1));
    char buffer[4];
    size_t size = 4;
    const std::string entering = "7 Entering: CACNodeImpl::GetAttribute";
    const std::string exiting = "7 Exiting: CACNodeImpl::GetAttribute";
    const std::string exception = "7 EXCEPTION at: CACNodeImpl::GetAttribute";
    EXPECT_EQ((Lines{entering, "7   Name: a", exiting}),
              Of(AcnGetAttribute, node, W("a"), nullptr, buffer, &size, nullptr));
    size = 3;
    EXPECT_EQ((Lines{entering, "7   Name: a", "7   CACNodeImpl::GetAttribute failed: 0x8007007A",
                     exiting}),
              Of(AcnGetAttribute, node, W("a"), nullptr, buffer, &size, nullptr));
    EXPECT_EQ((Lines{entering, "7   Name: x", "6   GetAttribute('x') failed: 0x80070490", exiting}),
              Of(AcnGetAttribute, node, W("x"), nullptr, buffer, &size, nullptr));
    EXPECT_EQ((Lines{entering, "7   Name: (null)", exception,
                     "6 GetAttribute('(null)') failed: 0x80004003"}),
              Of(AcnGetAttribute, node, nullptr, nullptr, buffer, &size, nullptr));
    EXPECT_EQ((Lines{entering, "7   Name: a", exception, "6 GetAttribute('a') failed: 0x80070057"}),
              Of(AcnGetAttribute, node, W("a"), nullptr, buffer, nullptr, nullptr));
    const ValueType wanted = VtGuid;
    EXPECT_EQ((Lines{entering, "7   Name: a", exception, "6 GetAttribute('a') failed: 0x80040204"}),
              Of(AcnGetAttribute, node, W("a"), &wanted, buffer, &size, nullptr));
}

TEST_F(NodeLog, GetAttributeNames) {
    const Node node = Create(W("n"));
    ASSERT_EQ(S_OK, SetInt(node, W("a"), 1));
    WCHAR buffer[1];
    size_t size = 1;
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::GetAttributeNames",
                     "7 Exiting: CACNodeImpl::GetAttributeNames"}),
              Of(AcnGetAttributeNames, node, buffer, &size));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::GetAttributeNames",
                     "7 EXCEPTION at: CACNodeImpl::GetAttributeNames",
                     "7 CACNodeImpl::GetAttributeNames failed: 0x80004003"}),
              Of(AcnGetAttributeNames, node, nullptr, nullptr));
}

TEST_F(NodeLog, MissesLeaveTheRecordAlone) {
    const Node root = Create(W("r")), stranger = Create(W("s"));
    ASSERT_EQ(S_OK, SetInt(root, W("a"), 1));
    char buffer[1];
    size_t size = 1;
    IACNode* child = nullptr;
    Recorder recorder;
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnDeleteAttribute, root, W("x")));
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnGetAttribute, root, W("x"), nullptr, buffer,
                             &size, nullptr));
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_INSUFFICIENT_BUFFER, AcnGetAttribute, root, W("a"),
                             nullptr, buffer, &size, nullptr));
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnRemoveChild, root, stranger));
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnRemoveChildByIndex, root, 0));
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnGetChildByIndex, root, 0, &child));
    EXPECT_TRUE(FailsPlainly(TREEVAULT_E_NOT_FOUND, AcnGetChildByName, root, W("x"), &child));
}

// --- Tree ----------------------------------------------------------------------------------------

TEST_F(NodeLog, AddAndRemoveChild) {
    const Node root = Create(W("r")), child = Create(W("\\x\\c"));
    EXPECT_EQ(
        (Lines{"7 Entering: CACNodeImpl::AddChild", "7   ", "7 Exiting: CACNodeImpl::AddChild"}),
        Of(AcnAddChild, root, child));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::AddChild", "7   ",
                     "7 EXCEPTION at: CACNodeImpl::AddChild"}),
              Of(AcnAddChild, root, child));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::RemoveChild", "7   ",
                     "7 Exiting: CACNodeImpl::RemoveChild"}),
              Of(AcnRemoveChild, root, child));
    EXPECT_EQ(
        (Lines{"7 Entering: CACNodeImpl::RemoveChild", "7   ",
               "6   RemoveChild('c') failed: 0x80070490", "7 Exiting: CACNodeImpl::RemoveChild"}),
        Of(AcnRemoveChild, root, child));
}

TEST_F(NodeLog, RemoveChildByIndex) {
    const Node root = Create(W("r")), child = AddNew(root, W("c"));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::RemoveChildByIndex", "7   Index: 0", "7   ",
                     "7 Exiting: CACNodeImpl::RemoveChildByIndex"}),
              Of(AcnRemoveChildByIndex, root, 0));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::RemoveChildByIndex", "7   Index: 4294967297",
                     "6   RemoveChildByIndex(4294967297) failed: 0x80070490",
                     "7 Exiting: CACNodeImpl::RemoveChildByIndex"}),
              Of(AcnRemoveChildByIndex, root, 4294967297));
}

TEST_F(NodeLog, GetChildByIndex) {
    const Node root = Create(W("r")), child = AddNew(root, W("c"));
    Node out;
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::GetChildByIndex", "7   Index: 0", "7   ",
                     "7 Exiting: CACNodeImpl::GetChildByIndex"}),
              Of(AcnGetChildByIndex, root, 0, out.Put()));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::GetChildByIndex", "7   Index: 1",
                     "6   GetChildByIndex(1) failed: 0x80070490",
                     "7 Exiting: CACNodeImpl::GetChildByIndex"}),
              Of(AcnGetChildByIndex, root, 1, out.Put()));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::GetChildByIndex", "7   Index: 0",
                     "7 EXCEPTION at: CACNodeImpl::GetChildByIndex",
                     "6 GetChildByIndex(0) failed: 0x80004003"}),
              Of(AcnGetChildByIndex, root, 0, nullptr));
}

TEST_F(NodeLog, GetChildByName) {
    const Node root = Create(W("r")), child = AddNew(root, W("c"));
    Node out;
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::GetChildByName", "7   Namec", "7   ",
                     "7 Exiting: CACNodeImpl::GetChildByName"}),
              Of(AcnGetChildByName, root, W("c"), out.Put()));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::GetChildByName", "7   Namex",
                     "6   GetChildByName('x') failed: 0x80070490",
                     "7 Exiting: CACNodeImpl::GetChildByName"}),
              Of(AcnGetChildByName, root, W("x"), out.Put()));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::GetChildByName", "7   Name(null)",
                     "7 EXCEPTION at: CACNodeImpl::GetChildByName",
                     "7 GetChildByName('(null)') failed: 0x80004003"}),
              Of(AcnGetChildByName, root, nullptr, out.Put()));
}

// The address of a child, and the error text of a miss, whole.
TEST_F(NodeLog, LinesInFull) {
    class Whole final : public LogSink {
    public:
        Whole() { GetLoggerConfig().AddSink(this); }
        ~Whole() { GetLoggerConfig().RemoveSink(this); }
        void Write(const WCHAR* text, ptrdiff_t length) override {
            Log += std::string(text, text + length);
        }
        std::string Log;
    };
    const Node root = Create(W("r")), child = AddNew(root, W("c"));
    Whole whole;
    Node(ChildAt(root, 0)).Close();
    AcnRemoveChildByIndex(root, 7);
    const size_t at = whole.Log.find("Child=0x");
    ASSERT_NE(std::string::npos, at);
    EXPECT_EQ(16u, whole.Log.find_first_not_of("0123456789ABCDEF", at + 8) - (at + 8));
    EXPECT_NE(std::string::npos,
              whole.Log.find("RemoveChildByIndex(7) failed: 0x80070490 Element not found"));
}

} // namespace
} // namespace treevault::tests
