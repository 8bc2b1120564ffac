// SPDX-License-Identifier: MIT
// The log lines of a rename, and what happens to one whose node moves meanwhile: a sink that acts
// at a certain line stands for the other thread. Runs with GS_Logger_MaxSeverity=DBG3.
#include "common/loggerconfig.h"
#include "support/nodes.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace treevault::tests {
namespace {

using Lines = std::vector<std::string>;

// Collects "severity message" of every line, without timings, and runs an action at the first line
// that begins with a certain message.
class ActingSink final : public LogSink, public LogLineFormatter {
public:
    explicit ActingSink(std::string trigger = {}, std::function<void()> action = {})
        : Trigger(std::move(trigger)), Action(std::move(action)) {
        GetLoggerConfig().SetFormatter(this);
        GetLoggerConfig().AddSink(this);
    }
    ~ActingSink() {
        GetLoggerConfig().RemoveSink(this);
        GetLoggerConfig().SetFormatter(nullptr);
    }

    void Format(WideText& line, uint32_t severity, SourcePlace, WideView message, int32_t,
                const uint64_t*) override {
        WideStream stream;
        stream << severity << W(" ") << message;
        line = stream.Str();
    }

    void Write(const WCHAR* text, ptrdiff_t length) override {
        std::string line(text, text + length);
        if (const size_t at = line.find(" ["); at != std::string::npos)
            line.erase(at);
        std::function<void()> action;
        {
            const std::lock_guard guard(Lock);
            if (Muted)
                return;
            Collected.push_back(line);
            if (Action && line.find(Trigger) != std::string::npos)
                action = std::exchange(Action, nullptr);
            Muted = static_cast<bool>(action);
        }
        if (!action)
            return;
        action();
        const std::lock_guard guard(Lock);
        Muted = false;
    }

    Lines Collected;

private:
    std::mutex Lock;
    bool Muted = false; // while the action runs
    std::string Trigger;
    std::function<void()> Action;
};

const char* const EnteringRename = "Entering: CACNodeImpl::PvtRenameChild";
const std::string Retrying = "5 DBG: Retrying to change the name (parent changed)";

class RenameLog : public NodeTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(IsSeverityEnabled(SeverityDbg3)) << "GS_Logger_MaxSeverity must be DBG3";
    }

    // Renames a child of "\x\r" while `meanwhile` runs in the gap without locks.
    void RenameWhile(std::function<void()> meanwhile, HRESULT code, NodeNameKind kind = NameShort,
                     const WCHAR* name = W("new")) {
        ActingSink sink(EnteringRename, std::move(meanwhile));
        EXPECT_EQ(CodeText(code), CodeText(AcnSetNodeName(Child, kind, name)));
        Log = sink.Collected;
    }

    bool Retried() const { return std::find(Log.begin(), Log.end(), Retrying) != Log.end(); }

    const Node Root = Create(W("\\x\\r")), Other = Create(W("o"));
    const Node Child = AddNew(Root, W("c")), Below = AddNew(Child, W("below"));
    Lines Log;
};

TEST_F(RenameLog, RenameOfAChild) {
    RenameWhile({}, S_OK);
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::SetName", "5 Entering: CACNodeImpl::PvtRenameChild",
                     "5 DBG: ParentPath='\\x\\r' OldName='c'' NewName='new'",
                     "5 Exiting: CACNodeImpl::PvtRenameChild", "7 Exiting: CACNodeImpl::SetName"}),
              Log);
}

TEST_F(RenameLog, RenameToATakenName) {
    AddNew(Root, W("taken"));
    RenameWhile({}, TREEVAULT_E_CHILD_EXISTS, NameShort, W("taken"));
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::SetName", "5 Entering: CACNodeImpl::PvtRenameChild",
                     "5 DBG: ParentPath='\\x\\r' OldName='c'' NewName='taken'",
                     "5 EXCEPTION at: CACNodeImpl::PvtRenameChild",
                     "7 EXCEPTION at: CACNodeImpl::SetName"}),
              Log);
}

TEST_F(RenameLog, RenameOfAFreeNodeOrToTheSameName) {
    const Lines expected{"7 Entering: CACNodeImpl::SetName", "7 Exiting: CACNodeImpl::SetName"};
    RenameWhile({}, S_OK, NameShort, W("c"));
    EXPECT_EQ(expected, Log);
    ASSERT_EQ(S_OK, AcnRemoveChild(Root, Child));
    RenameWhile({}, S_OK);
    EXPECT_EQ(expected, Log);
    RenameWhile({}, S_OK, NameShort, nullptr);
    EXPECT_EQ(expected, Log);
}

TEST_F(RenameLog, UnknownKind) {
    RenameWhile({}, E_INVALIDARG, 3);
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::SetName", "7 EXCEPTION at: CACNodeImpl::SetName"}),
              Log);
}

// --- In the gap ----------------------------------------------------------------------------------

TEST_F(RenameLog, NodeRemovedMeanwhileIsRenamedAsAFreeOne) {
    RenameWhile([&] { ASSERT_EQ(S_OK, AcnRemoveChild(Root, Child)); }, S_OK);
    EXPECT_EQ((Lines{"7 Entering: CACNodeImpl::SetName", "5 Entering: CACNodeImpl::PvtRenameChild",
                     "5 Exiting: CACNodeImpl::PvtRenameChild", Retrying,
                     "7 Exiting: CACNodeImpl::SetName"}),
              Log);
    EXPECT_EQ(W("\\x\\r\\new\\below"), Path(Below));
    EXPECT_EQ(0u, ChildCount(Root));
}

TEST_F(RenameLog, NodeMovedMeanwhileIsRenamedInItsNewParent) {
    RenameWhile(
        [&] {
            ASSERT_EQ(S_OK, AcnRemoveChild(Root, Child));
            ASSERT_EQ(S_OK, AcnAddChild(Other, Child));
        },
        S_OK);
    EXPECT_TRUE(Retried());
    EXPECT_EQ(Names{W("new")}, ChildNames(Other));
    EXPECT_EQ(W("\\o\\new\\below"), Path(Below));
    ExpectChildrenInStep(Other);
}

TEST_F(RenameLog, NewParentMayHaveTheNameTaken) {
    AddNew(Other, W("new"));
    RenameWhile(
        [&] {
            ASSERT_EQ(S_OK, AcnRemoveChild(Root, Child));
            ASSERT_EQ(S_OK, AcnAddChild(Other, Child));
        },
        TREEVAULT_E_CHILD_EXISTS);
    EXPECT_TRUE(Retried());
    EXPECT_EQ((Names{W("new"), W("c")}), ChildNames(Other));
    ExpectChildrenInStep(Other);
}

TEST_F(RenameLog, FullPathIsJudgedAnewInTheNewParent) {
    RenameWhile(
        [&] {
            ASSERT_EQ(S_OK, AcnRemoveChild(Root, Child));
            ASSERT_EQ(S_OK, AcnAddChild(Other, Child));
        },
        TREEVAULT_E_PARENT_PATH_FIXED, NameFullPath, W("\\x\\r\\new"));
    EXPECT_TRUE(Retried());
    EXPECT_EQ(W("\\o\\c"), Path(Child));
}

TEST_F(RenameLog, ParentThatDiesMeanwhileIsKeptByTheRename) {
    Node root = Create(W("r2"));
    ASSERT_EQ(S_OK, AcnRemoveChild(Root, Child));
    ASSERT_EQ(S_OK, AcnAddChild(root, Child));
    RenameWhile([&] { root.Close(); }, S_OK);
    EXPECT_FALSE(Retried());
    EXPECT_EQ(W("\\r2\\new\\below"), Path(Below));
    EXPECT_EQ(nullptr, Parent(Child).Get());
}

TEST_F(RenameLog, SameRenameMeanwhileMakesThisOneDone) {
    RenameWhile([&] { ASSERT_EQ(S_OK, AcnSetNodeName(Child, NameShort, W("new"))); }, S_OK);
    EXPECT_FALSE(Retried());
    EXPECT_EQ(Names{W("new")}, ChildNames(Root));
    ExpectChildrenInStep(Root);
}

TEST_F(RenameLog, AnotherRenameMeanwhileLosesToThisOne) {
    RenameWhile([&] { ASSERT_EQ(S_OK, AcnSetNodeName(Child, NameShort, W("lost"))); }, S_OK);
    EXPECT_EQ("5 DBG: ParentPath='\\x\\r' OldName='lost'' NewName='new'", Log.at(2));
    EXPECT_EQ(Names{W("new")}, ChildNames(Root));
    EXPECT_EQ(nullptr, FindChild(Root, W("lost")).Get());
    ExpectChildrenInStep(Root);
}

TEST_F(RenameLog, ParentRenamedMeanwhileShowsInThePath) {
    RenameWhile([&] { ASSERT_EQ(S_OK, AcnSetNodeName(Root, NameShort, W("s"))); }, S_OK);
    EXPECT_EQ(W("\\x\\s\\new\\below"), Path(Below));
}

TEST_F(RenameLog, SameNameDoesNotWaitForTheParent) {
    const Node sibling = AddNew(Root, W("sibling"));
    std::thread other;
    std::mutex lock;
    std::condition_variable changed;
    bool done = false;
    // The line is written with the parent's lock held.
    ActingSink sink("ParentPath=", [&] {
        other = std::thread([&] {
            EXPECT_EQ(S_OK, AcnSetNodeName(Child, NameShort, W("c")));
            const std::lock_guard guard(lock);
            done = true;
            changed.notify_one();
        });
        std::unique_lock guard(lock);
        EXPECT_TRUE(changed.wait_for(guard, std::chrono::seconds(30), [&] { return done; }));
    });
    EXPECT_EQ(S_OK, AcnSetNodeName(sibling, NameShort, W("renamed")));
    other.join();
}

} // namespace
} // namespace treevault::tests
