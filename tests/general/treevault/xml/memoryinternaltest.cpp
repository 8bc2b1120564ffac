// SPDX-License-Identifier: MIT
// Writing and reading while memory runs out at each step in turn: nothing leaks, no lock stays
// held, and the same call succeeds once there is memory again.
#include "general/treevault/xml/xmlnodedeserializer.h"
#include "general/treevault/xml/xmlnodeserializer.h"
#include "support/failingmemory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace treevault::tests {

namespace {

using Mode = FailingMemory::Mode;

// Keeps the text without asking for memory.
struct Kept {
    Kept() { Text.reserve(1 << 20); }

    static HRESULT TREEVAULT_CALL Receive(const char* text, uint64_t size, void* context) {
        static_cast<Kept*>(context)->Text.assign(text, static_cast<size_t>(size));
        return S_OK;
    }

    std::string Text;
};

HRESULT TREEVAULT_CALL DeliverText(const char** text, uint64_t* size, uint32_t* end,
                                   void* context) {
    const std::string& whole = *static_cast<std::string*>(context);
    *text = whole.data();
    *size = whole.size();
    *end = 1;
    return S_OK;
}

struct Outcome {
    bool RanOut;
    HRESULT Code;
};

// Runs `call` while its `nth` allocation fails. Running out of memory is E_OUTOFMEMORY or
// std::bad_alloc, and counts as the former.
template <class Call>
Outcome RunOut(uint64_t nth, Mode mode, Call&& call) {
    FailingMemory memory(nth, mode);
    HRESULT hr = E_OUTOFMEMORY;
    try {
        hr = call();
    } catch (const std::bad_alloc&) {
    }
    return {memory.Failed(), hr};
}

// Enough for several blocks of a document's pool, and a bit of everything.
constexpr int SampleTrees = 40;

std::string SampleText() {
    std::string text = "<nr>";
    for (int node = 0; node < SampleTrees; ++node) {
        text += "<n n=\"node " + std::to_string(node) + "\" t=\"T\">";
        for (const char* name : {"a", "b", "c", "d"})
            text += "<a n=\"" + std::string(name) + "\" v=\"" + std::string(300, 'x') + "\"/>";
        text += "<a n=\"wide\" t=\"2\" v=\"" + std::string(200, 'w') + "\"/>";
        text += "<a n=\"x\" t=\"259\"><v v=\"1\"/><v v=\"2\"/></a><n n=\"child\"/></n>";
    }
    return text + "</nr>";
}

// Strict, since otherwise a conversion that runs out of memory leaves text, as any other that
// fails.
Ref<CXMLNodeDeserializer> NewReader(std::string& text) {
    const uint32_t flags = NodeDeserializerFlagStrict;
    return MakeComponent<CXMLNodeDeserializer>(&DeliverText, &text, flags);
}

std::vector<Ref<CACNodeImpl>> ReadAll(std::string& text) {
    IACNode* handles[100] = {};
    uint64_t count = 0;
    EXPECT_EQ(S_OK, NewReader(text)->DeserializeNodes(handles, 100, &count));
    std::vector<Ref<CACNodeImpl>> nodes;
    for (size_t index = 0; index < count; ++index) {
        nodes.push_back(CACNodeImpl::GetImpl(handles[index]));
        handles[index]->Release();
    }
    return nodes;
}

std::string WriteAll(const std::vector<Ref<CACNodeImpl>>& nodes) {
    Kept kept;
    const Ref<CXMLNodeSerializer> writer =
        MakeComponent<CXMLNodeSerializer>(&Kept::Receive, &kept, 0u);
    for (const Ref<CACNodeImpl>& node : nodes) {
        IACNode* handle = node.Get();
        EXPECT_EQ(S_OK, writer->SerializeNodes(&handle, 1, TREEVAULT_ALL_LEVELS));
    }
    EXPECT_EQ(S_OK, writer->Finalize());
    return kept.Text;
}

// Once with one failure, once with no memory from there on.
class RunningOutOfMemory : public testing::TestWithParam<Mode> {
protected:
    void SetUp() override {
        Components = ComponentCount.load();
        SetErrorInfo(0, nullptr);
    }
    void TearDown() override { EXPECT_EQ(Components, ComponentCount.load()); }

private:
    int32_t Components = 0;
};

} // namespace

TEST_P(RunningOutOfMemory, WhileStarting) {
    std::string text = SampleText();
    for (uint64_t nth = 1;; ++nth) {
        const int64_t blocks = FailingMemory::LiveBlocks();
        const Outcome outcome = RunOut(nth, GetParam(), [&] {
            NewReader(text);
            return S_OK;
        });
        ASSERT_EQ(blocks, FailingMemory::LiveBlocks()) << nth;
        ASSERT_EQ(outcome.RanOut ? E_OUTOFMEMORY : S_OK, outcome.Code) << nth;
        if (!outcome.RanOut)
            break;
        ASSERT_LT(nth, 1000u);
    }
}

TEST_P(RunningOutOfMemory, WhileReadingLeavesTheTreeToBeReadAgain) {
    std::string text = SampleText();
    const Ref<CXMLNodeDeserializer> reader = NewReader(text);
    std::vector<Ref<CACNodeImpl>> nodes;
    uint64_t failures = 0;
    for (int tree = 0; tree < SampleTrees; ++tree) {
        IACNode* handle = nullptr;
        for (uint64_t nth = 1; !handle; ++nth) {
            const int32_t components = ComponentCount.load();
            const Outcome outcome = RunOut(
                nth, GetParam(), [&] { return reader->DeserializeNodes(&handle, 1, nullptr); });
            ASSERT_EQ(outcome.Code == S_OK, handle != nullptr);
            ASSERT_TRUE(outcome.Code == S_OK || outcome.Code == E_OUTOFMEMORY);
            failures += outcome.RanOut;
            if (!handle) {
                ASSERT_EQ(components, ComponentCount.load());
            }
        }
        nodes.push_back(CACNodeImpl::GetImpl(handle));
        handle->Release();
    }
    EXPECT_GT(failures, 100u);
    EXPECT_TRUE(text == WriteAll(nodes));
}

TEST_P(RunningOutOfMemory, WhileAddingKeepsTheContextUsable) {
    std::string text = SampleText();
    const std::vector<Ref<CACNodeImpl>> nodes = ReadAll(text);
    std::vector<IACNode*> handles;
    for (const Ref<CACNodeImpl>& node : nodes)
        handles.push_back(node.Get());
    Kept kept;
    for (uint64_t nth = 1;; ++nth) {
        const Ref<CXMLNodeSerializer> writer =
            MakeComponent<CXMLNodeSerializer>(&Kept::Receive, &kept, 0u);
        const Outcome outcome = RunOut(nth, GetParam(), [&] {
            return writer->SerializeNodes(handles.data(), handles.size(), TREEVAULT_ALL_LEVELS);
        });
        ASSERT_EQ(outcome.RanOut ? E_OUTOFMEMORY : S_OK, outcome.Code) << nth;
        ASSERT_EQ(S_OK, writer->SerializeNodes(handles.data(), 1, 0));
        ASSERT_EQ(S_OK, writer->Finalize());
        ASSERT_TRUE(kept.Text.ends_with("</nr>"));
        for (const Ref<CACNodeImpl>& node : nodes) {
            node->AddRef();
            ASSERT_EQ(1u, node->Release());
        }
        if (!outcome.RanOut) {
            ASSERT_GT(nth, 2u);
            break;
        }
    }
}

TEST_P(RunningOutOfMemory, WhilePrintingKeepsTheTextForAnotherTry) {
    std::string text = SampleText();
    const std::vector<Ref<CACNodeImpl>> nodes = ReadAll(text);
    Kept kept;
    const Ref<CXMLNodeSerializer> writer =
        MakeComponent<CXMLNodeSerializer>(&Kept::Receive, &kept, 0u);
    for (const Ref<CACNodeImpl>& node : nodes) {
        IACNode* handle = node.Get();
        ASSERT_EQ(S_OK, writer->SerializeNodes(&handle, 1, TREEVAULT_ALL_LEVELS));
    }
    const auto finalize = [&] { return writer->Finalize(); };
    // The text outgrows its first buffer, so that printing asks for memory at once.
    ASSERT_EQ(E_OUTOFMEMORY, RunOut(1, GetParam(), finalize).Code);
    EXPECT_TRUE(kept.Text.empty());
    EXPECT_EQ(S_OK, writer->Finalize());
    EXPECT_TRUE(text == kept.Text);
}

INSTANTIATE_TEST_SUITE_P(Modes, RunningOutOfMemory, testing::Values(Mode::Once, Mode::ForGood));

} // namespace treevault::tests
