// SPDX-License-Identifier: MIT
// Retrievals while the selected nodes, and the ways that lead to them, change and go.
#include "stresssink.h"

#include "support/foreignnode.h"

namespace treevault::tests {
namespace {

// A retrieval whose nodes come in batches.
class Batches {
public:
    Batches(INodeStorage* storage, IACNode* filter) {
        IACNode* none[1] = {};
        EXPECT_TRUE(Succeeds(StgRetrieveData, storage, filter, &Context, none, 0, nullptr));
    }
    ~Batches() { StgCloseRetrivalContext(nullptr, Context); }
    Batches(const Batches&) = delete;
    Batches& operator=(const Batches&) = delete;

    Nodes Next(INodeStorage* storage, size_t most) {
        std::vector<IACNode*> handles(most);
        uint64_t count = 0;
        EXPECT_EQ(CodeText(S_OK),
                  CodeText(StgRetrieveNextData(storage, Context, handles.data(), most, &count)));
        Nodes nodes;
        for (size_t at = 0; at < count; ++at)
            nodes.emplace_back(handles[at]);
        return nodes;
    }

private:
    IRetrievalContext* Context = nullptr;
};

constexpr size_t NodeCount = 8;

// Each node has one attribute, of letters that are all the same, and some children.
std::string NodeText(const std::string& name, char letter, size_t length) {
    std::string text = name + "{t='" + std::string(length, letter) + "'}(";
    for (size_t at = 0; at < length; ++at)
        text += letter + std::to_string(at) + ' ';
    text.back() = ')';
    return text;
}

std::string RandomForest(Choices& choices) {
    std::string text = "r(";
    for (size_t at = 0; at < NodeCount; ++at)
        text += NodeText("c" + std::to_string(at), static_cast<char>('a' + choices.Below(3)),
                         1 + choices.Below(9)) +
                ' ';
    text.back() = ')';
    return text;
}

void ExpectWhole(IACNode* clone) {
    ExpectChildrenInStep(clone);
    EXPECT_EQ(nullptr, Parent(clone).Get());
    const std::string text = ShowValue(Get(clone, W("t")));
    ASSERT_LT(2u, text.size());
    EXPECT_EQ(text, '\'' + std::string(text.size() - 2, text[1]) + '\'');
}

class RetrievalStress : public NodeTest {
protected:
    RetrievalStress() {
        Choices choices(99);
        EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, RandomForest(choices)));
    }

    // Selects, and takes all in batches of a random size.
    void ReadInBatches(Choices& choices) {
        const Node filter = choices.Below(2) ? Filter("/r", Select::Children)
                                             : FilterToDepth("/r", 1, Select::Children);
        Batches batches(Subject, filter);
        std::vector<std::string> names;
        const size_t most = 1 + choices.Below(4);
        for (;;) {
            const Nodes batch = batches.Next(Subject, most);
            for (const Node& node : batch) {
                ExpectWhole(node);
                names.push_back(Plain(Name(node)));
            }
            if (batch.size() < most)
                break;
        }
        std::sort(names.begin(), names.end());
        EXPECT_EQ((std::vector<std::string>{"c0", "c1", "c2", "c3", "c4", "c5", "c6", "c7"}),
                  names);
        EXPECT_EQ(0u, batches.Next(Subject, most).size());
    }

    Storage Subject;
};

TEST_F(RetrievalStress, SelectedNodesAreMerged) {
    const Work write = [&](Choices& choices) {
        EXPECT_EQ(S_OK, Subject.Store(choices.Below(2) ? StoreReplaceAll : StoreMergeAll,
                                      RandomForest(choices)));
    };
    const Work read = [&](Choices& choices) { ReadInBatches(choices); };
    WorkTogether({write, write, read, read});
}

TEST_F(RetrievalStress, SelectedNodesAreDeletedAndMadeAnew) {
    const Work write = [&](Choices& choices) {
        Group group(Subject);
        if (choices.Below(2))
            group.Delete("/r", Select::Children);
        else
            group.Delete("/r");
        EXPECT_EQ(S_OK, group.Store(StoreMergeAll, RandomForest(choices)).Finish());
    };
    const Work read = [&](Choices& choices) { ReadInBatches(choices); };
    WorkTogether({write, write, read, read});
}

TEST_F(RetrievalStress, ChildrenOfSelectedNodesComeAndGo) {
    const Work write = [&](Choices& choices) {
        const std::string child = "/r/c" + std::to_string(choices.Below(NodeCount)) + "/d";
        EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, child + "(e(f g) h)"));
        EXPECT_EQ(S_OK, Subject.Delete(choices.Below(2) ? child : child + "/e"));
    };
    const Work read = [&](Choices& choices) { ReadInBatches(choices); };
    WorkTogether({write, write, read, read});
}

// The selected nodes live on in the context; any storage hands them out.
TEST_F(RetrievalStress, StorageDiesWhileItsNodesAreHandedOut) {
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    Choices choices(1);
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        Storage dying(RandomForest(choices));
        Batches batches(dying, Filter("/r", Select::Children));
        RaceOnce({[&] { dying.Close(); },
                  [&] {
                      for (size_t taken = 0; taken < NodeCount; taken += 2) {
                          const Nodes batch = batches.Next(Subject, 2);
                          ASSERT_EQ(2u, batch.size());
                          for (const Node& node : batch)
                              ExpectWhole(node);
                      }
                  }});
        EXPECT_EQ(0u, batches.Next(Subject, 2).size());
    }
}

// Keeps the root that comes into the storage, which is the stored one.
class RootSink final : public StressSink {
public:
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification* told) override {
        told->NewNode->AddRef();
        Root = Node(told->NewNode);
        return S_OK;
    }

    Node Root;
};

// A storage of one root, and the stored root itself.
struct OpenStorage {
    explicit OpenStorage(std::string_view tree) {
        RootSink sink;
        const Registration registration(Held, sink);
        EXPECT_EQ(S_OK, Held.Store(StoreMergeAll, tree));
        Root = sink.Root;
    }

    Storage Held;
    Node Root;
};

// Whoever got hold of a stored node takes the ways away on which others come down: the last
// references to a part of the tree go while readers are inside of it.
TEST_F(RetrievalStress, WaysVanishUnderThoseWhoGoThem) {
    const std::string names = "abcdef";
    const OpenStorage walked("r(a(b(c(d(e(f))))))");
    const Work change = [&](Choices& choices) {
        const size_t depth = choices.Below(names.size());
        Node parent = walked.Root;
        for (size_t at = 0; at < depth; ++at)
            parent = FindChild(parent, Text(1, static_cast<WCHAR>(names[at])).c_str());
        EXPECT_EQ(S_OK, AcnRemoveChild(parent, ChildAt(parent, 0)));
        std::string fresh = names.substr(depth, 1);
        for (size_t at = depth + 1; at < names.size(); ++at)
            fresh += std::string("(") + names[at];
        fresh += std::string(names.size() - depth - 1, ')');
        EXPECT_EQ(S_OK, AcnAddChild(parent, Trees(fresh)[0]));
    };
    std::atomic<size_t> found{0};
    const Work read = [&](Choices&) {
        const Nodes ends = Retrieve(walked.Held, Filter("/r/a/b/c/d/e/f"));
        ASSERT_GE(1u, ends.size());
        for (const Node& end : ends)
            EXPECT_EQ(W("f"), Name(end));
        found += ends.size();
    };
    WorkTogether({change, read, read});
    EXPECT_NE(0u, found);
}

// A client's node is asked for its interfaces with the new parent's lock held, and takes its time.
// A reader on the way through that parent waits, but not with a lock that readers of other nodes
// need.
TEST_F(RetrievalStress, WaitingForABusyNodeKeepsNobodyElseAway) {
    const OpenStorage storage("r(busy(x) other)");
    const Node busy = FindChild(storage.Root, W("busy"));
    std::atomic<bool> isBusy{false}, isServed{false}, hasGivenUp{false};
    ForeignNode slow;
    slow.WhenAsked = [&] {
        isBusy = true;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!isServed && !hasGivenUp) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            hasGivenUp = std::chrono::steady_clock::now() > end;
        }
    };
    std::thread adding([&] { EXPECT_EQ(E_NOINTERFACE, AcnAddChild(busy, &slow)); });
    while (!isBusy)
        std::this_thread::yield();
    std::thread waiting([&] { EXPECT_EQ(1u, Retrieve(storage.Held, Filter("/r/busy/x")).size()); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100)); // until it waits
    EXPECT_EQ(1u, Retrieve(storage.Held, Filter("/r/other")).size());
    isServed = true;
    adding.join();
    waiting.join();
    EXPECT_FALSE(hasGivenUp);
}

} // namespace
} // namespace treevault::tests
