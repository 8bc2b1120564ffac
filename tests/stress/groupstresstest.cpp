// SPDX-License-Identifier: MIT
// Groups of several changes: who selects beside them finds what was before or after a whole group.
#include "stresssink.h"

namespace treevault::tests {
namespace {

// Refuses the group that makes "/refused" when it does so, and the group that makes "/late" at its
// very end.
class Refuser final : public StressSink {
public:
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification* told) override {
        if (told->Mask == ModifyNodeCreated && Plain(told->Path) == "/late")
            RefusesEnd = true;
        return told->Mask == ModifyNodeCreated && Plain(told->Path) == "/refused" ? Refusal : S_OK;
    }
    HRESULT TREEVAULT_CALL OnPreCommit() override {
        return std::exchange(RefusesEnd, false) ? Refusal : S_OK;
    }

private:
    bool RefusesEnd = false;
};

// What a writer makes of the forest, and how it looks to those who select. A rollback does not
// restore the order of children, so theirs are sorted.
struct State {
    const char* Children;
    const char* Roots;
};
const State LegalStates[] = {{"a1 a2 a3 a4 a5 a6 a7 a8", "mark-a r"}, {"b1 b2 b3", "mark-b r"}};

std::string NamesFound(INodeStorage* storage, const char* path) {
    const Nodes found = Retrieve(storage, FilterToDepth(path, 0, Select::Children));
    std::vector<std::string> names;
    for (const Node& node : found)
        names.push_back(Plain(Name(node)));
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : " ") + name;
    return text;
}

class GroupStress : public NodeTest {
protected:
    GroupStress() { EXPECT_EQ(S_OK, Replace(false)); }

    // All children and the mark of one state give way to those of the other.
    HRESULT Replace(bool second) {
        Group group(Subject);
        group.Delete("/r", Select::Children).Delete("/mark-a").Delete("/mark-b");
        group.Store(StoreMergeAll, std::string("r(") + LegalStates[second].Children + ")");
        group.Store(StoreMergeAll, second ? "mark-b" : "mark-a");
        return group.Finish();
    }

    // The same in one tree, by the mode that removes what is not mentioned.
    HRESULT ReplaceInOneTree(bool second) {
        Group group(Subject);
        group.Store(StoreReplaceAll, std::string("r(") + LegalStates[second].Children + ")");
        group.Store(StoreMergeAll, second ? "mark-b" : "mark-a");
        group.Delete(second ? "/mark-a" : "/mark-b");
        return group.Finish();
    }

    // Deletes and makes a lot, and comes to nothing.
    HRESULT Fail(const char* refused) {
        Group group(Subject);
        group.Delete("/r/a1").Delete("/mark-a").Delete("/r", Select::Children);
        group.Store(StoreMergeAll, "r(x1 x2) x(y)").Store(StoreMergeAll, refused);
        group.Delete("/r");
        return group.Finish();
    }

    void ExpectLegalChildren() {
        const std::string names = NamesFound(Subject, "/r");
        EXPECT_TRUE(names == LegalStates[0].Children || names == LegalStates[1].Children) << names;
    }

    void ExpectLegalRoots() {
        const std::string names = NamesFound(Subject, "/");
        EXPECT_TRUE(names == LegalStates[0].Roots || names == LegalStates[1].Roots) << names;
    }

    Storage Subject;
};

TEST_F(GroupStress, SelectionsFindTheForestBeforeOrAfterAGroup) {
    const Work write = [&](Choices& choices) {
        EXPECT_EQ(S_OK, Replace(choices.Below(2)));
        EXPECT_EQ(S_OK, ReplaceInOneTree(choices.Below(2)));
    };
    const Work readChildren = [&](Choices&) { ExpectLegalChildren(); };
    const Work readRoots = [&](Choices&) { ExpectLegalRoots(); };
    WorkTogether({write, write, readChildren, readRoots});
}

TEST_F(GroupStress, RefusedGroupsAreNeverFound) {
    Refuser refuser;
    const Registration registered(Subject, refuser);
    const Work write = [&](Choices& choices) { EXPECT_EQ(S_OK, Replace(choices.Below(2))); };
    const Work fail = [&](Choices& choices) {
        EXPECT_EQ(CodeText(Refusal), CodeText(Fail(choices.Below(2) ? "refused" : "late")));
    };
    const Work readChildren = [&](Choices&) { ExpectLegalChildren(); };
    const Work readRoots = [&](Choices&) { ExpectLegalRoots(); };
    WorkTogether({write, fail, readChildren, readRoots});
    ExpectLegalChildren();
    ExpectLegalRoots();
}

// A reader may look a node up by its path in the middle of everything. Only what every group leaves
// there is always found.
TEST_F(GroupStress, NodeOfEachStateIsAlwaysFoundByItsPath) {
    Refuser refuser;
    const Registration registered(Subject, refuser);
    const auto replace = [&] {
        Group group(Subject);
        group.Delete("/r").Store(StoreMergeAll, "/r/steady changing");
        return group.Finish();
    };
    EXPECT_EQ(S_OK, replace());
    const Work write = [&](Choices&) { EXPECT_EQ(S_OK, replace()); };
    const Work fail = [&](Choices&) { EXPECT_EQ(CodeText(Refusal), CodeText(Fail("refused"))); };
    const Work read = [&](Choices&) {
        EXPECT_EQ("steady", Show(Retrieve(Subject, FilterToDepth("/r/steady", 0))));
        EXPECT_EQ("", Show(Retrieve(Subject, Filter("/r/x1"))));
        EXPECT_EQ("", Show(Retrieve(Subject, Filter("/x/y"))));
    };
    WorkTogether({write, fail, read, read});
}

// Fills groups at the same time from the same given nodes.
TEST_F(GroupStress, TwoGroupsFilledAndRunAtOnceBothApplyWhole) {
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        Storage storage("p(old) q s");
        const Nodes shared = Trees("t u");
        const auto run = [&](const char* first, const char* second) {
            Group group(storage);
            group.Store(StoreMergeAll, first).Delete("/p", Select::Children);
            EXPECT_EQ(S_OK, StoreNodes(storage, group.Get(), StoreMergeAll, shared));
            group.Store(StoreMergeAll, second);
            EXPECT_EQ(S_OK, group.Finish());
        };
        RaceOnce({[&] { run("p{g=1}(1)", "/p/left q{g=1} s{g=1}(1)"); },
                  [&] { run("p{g=2}", "/p/right q{g=2} s{g=2}(2)"); }});
        const std::string forest = Forest(storage);
        EXPECT_TRUE(forest == "p{g=1}(left) q{g=1} s{g=1}(2 1) t u" ||
                    forest == "p{g=2}(right) q{g=2} s{g=2}(1 2) t u")
            << forest;
    }
}

} // namespace
} // namespace treevault::tests
