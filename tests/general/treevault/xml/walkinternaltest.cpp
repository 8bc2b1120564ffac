// SPDX-License-Identifier: MIT
// The walk: what a visitor sees, which locks are held meanwhile, and that they are free afterwards.
#include "common/errorhandling.h"
#include "general/treevault/nodes/acnodeimpl.h"
#include "general/treevault/xml/nodewalk.h"
#include "platform/encoding.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace treevault::tests {

namespace {

using Node = Ref<CACNodeImpl>;

Node Create(const WCHAR* name) {
    return MakeComponent<CACNodeImpl>(name, TV_W("T"));
}

Node AddNew(const Node& parent, const WCHAR* name) {
    Node node = Create(name);
    EXPECT_EQ(S_OK, parent->AddChild(node.Get()));
    return node;
}

// Writes down what it is told, and calls back at each step.
struct RecordingVisitor final : INodeVisitor {
    void BeginNode(IACNode*, WideView name, WideView type) override {
        Tell("begin " + ToUtf8(name) + ":" + ToUtf8(type));
    }
    void Attribute(IACNode*, WideView name, const ValueView& value, ValueType stored) override {
        Tell(ToUtf8(name) + " " + std::to_string(stored) + "->" + std::to_string(value.Type) + " " +
             std::string(static_cast<const char*>(value.Data), value.Size));
    }
    void EndNode(IACNode*) override { Tell("end"); }

    void Tell(std::string step) {
        Steps.push_back(std::move(step));
        if (OnStep)
            OnStep(Steps.back());
    }

    std::vector<std::string> Steps;
    std::function<void(const std::string&)> OnStep;
};

// Uses a node on a thread of its own, which waits for the node's lock.
class OtherThread {
public:
    explicit OtherThread(const Node& node)
        : Runner([this, node] {
              EXPECT_EQ(S_OK, node->SetType(TV_W("touched")));
              Done = true;
          }) {}
    ~OtherThread() { Runner.join(); }

    // Gives the thread time to come through, if it can.
    bool IsDone() const {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return Done;
    }

    std::atomic<bool> Done{false};

private:
    std::thread Runner;
};

} // namespace

TEST(Walk, TellsAttributesBeforeChildrenAndEndsEachNode) {
    const Node root = Create(TV_W("r"));
    AddNew(AddNew(root, TV_W("a")), TV_W("b"));
    AddNew(root, TV_W("c"));
    const int32_t number = 5;
    ASSERT_EQ(S_OK, root->SetAttribute(TV_W("x"), VtInt32, &number, 4));
    ASSERT_EQ(S_OK, root->SetAttribute(TV_W("w"), VtInt32Array, &number, 4));
    NodeWalkOptions options;
    RecordingVisitor visitor;
    WalkNode(options, visitor, root.Get(), TREEVAULT_ALL_LEVELS, false);
    const std::vector<std::string> steps = {"begin r:T",
                                            std::string("w 259->257 5\0", 13),
                                            std::string("x 3->1 5\0", 9),
                                            "begin a:T",
                                            "begin b:T",
                                            "end",
                                            "end",
                                            "begin c:T",
                                            "end",
                                            "end"};
    EXPECT_EQ(steps, visitor.Steps);
}

TEST(Walk, MayLeaveAttributesOutOrAsTheyAre) {
    const Node root = Create(TV_W("r"));
    ASSERT_EQ(S_OK, root->SetAttribute(TV_W("x"), VtBinary, "ab", 2));
    NodeWalkOptions options;
    options.ConvertValues = false;
    RecordingVisitor visitor;
    WalkNode(options, visitor, root.Get(), 0, false);
    EXPECT_EQ((std::vector<std::string>{"begin r:T", "x 12->12 ab", "end"}), visitor.Steps);
    options.IncludeAttributes = false;
    visitor.Steps.clear();
    WalkNode(options, visitor, root.Get(), 0, true);
    EXPECT_EQ((std::vector<std::string>{"begin \\r:T", "end"}), visitor.Steps);
}

TEST(Walk, ConvertsToTheTextTypesOfTheOptions) {
    const Node root = Create(TV_W("r"));
    ASSERT_EQ(S_OK, root->SetAttribute(TV_W("x"), VtStringA, "a", 2));
    NodeWalkOptions options;
    options.TextType = VtStringW;
    RecordingVisitor visitor;
    WalkNode(options, visitor, root.Get(), 0, false);
    EXPECT_EQ(std::string("x 1->2 a\0\0\0", 11), visitor.Steps[1]);
}

TEST(Walk, ADepthOneAboveAllLevelsCountsDownToAllLevels) {
    const Node root = Create(TV_W("0"));
    AddNew(AddNew(AddNew(root, TV_W("1")), TV_W("2")), TV_W("3"));
    NodeWalkOptions options;
    for (const uint64_t depth : {TREEVAULT_ALL_LEVELS, TREEVAULT_ALL_LEVELS + 1, UINT64_MAX}) {
        RecordingVisitor visitor;
        WalkNode(options, visitor, root.Get(), depth, false);
        EXPECT_EQ(8u, visitor.Steps.size());
    }
}

TEST(Walk, ANodeIsLockedUntilItsSubtreeIsDone) {
    const Node root = Create(TV_W("r"));
    const Node child = AddNew(root, TV_W("a"));
    AddNew(root, TV_W("b"));
    NodeWalkOptions options;
    RecordingVisitor visitor;
    std::unique_ptr<OtherThread> onRoot, onChild;
    visitor.OnStep = [&](const std::string& step) {
        if (step == "begin a:T") {
            onRoot = std::make_unique<OtherThread>(root);
            onChild = std::make_unique<OtherThread>(child);
            EXPECT_FALSE(onChild->IsDone());
        } else if (step == "begin b:T") {
            while (!onChild->Done)
                std::this_thread::yield();
            EXPECT_FALSE(onRoot->IsDone());
        }
    };
    WalkNode(options, visitor, root.Get(), 1, false);
    onRoot.reset();
    EXPECT_EQ(6u, visitor.Steps.size());
}

TEST(Walk, AFailureFreesAllLocks) {
    const Node root = Create(TV_W("r"));
    const Node child = AddNew(root, TV_W("a"));
    const Node leaf = AddNew(child, TV_W("b"));
    for (const char* failing : {"begin r", "begin a", "begin b", "end"}) {
        NodeWalkOptions options;
        RecordingVisitor visitor;
        visitor.OnStep = [&](const std::string& step) {
            if (step.starts_with(failing))
                ThrowHr(E_ABORT);
        };
        EXPECT_THROW(WalkNode(options, visitor, root.Get(), 2, false), HRX) << failing;
        OtherThread onRoot(root), onChild(child), onLeaf(leaf);
    }
}

TEST(Walk, KeepsNoReference) {
    const Node root = Create(TV_W("r"));
    NodeWalkOptions options;
    RecordingVisitor visitor;
    WalkNode(options, visitor, root.Get(), 1, false);
    root->AddRef();
    EXPECT_EQ(1u, root->Release());
}

} // namespace treevault::tests
