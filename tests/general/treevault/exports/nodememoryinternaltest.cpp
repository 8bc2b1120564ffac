// SPDX-License-Identifier: MIT
// Node functions when memory runs out at each of their allocations: they fail with E_OUTOFMEMORY or
// std::bad_alloc, change nothing, leak nothing, and succeed once there is memory again.
#include "support/failingmemory.h"
#include "support/leakcheck.h"
#include "support/logcapture.h"
#include "support/nodes.h"

#include <functional>

namespace treevault::tests {
namespace {

constexpr int MostAllocations = 10000;

// One call on nodes that are made for it.
struct Scenario {
    virtual ~Scenario() = default;
    virtual HRESULT Act() = 0;

    // Sees that nothing has changed, or that the call has done its work.
    virtual void ExpectUnchanged() = 0;
    virtual void ExpectDone() = 0;

    HRESULT Expected = S_OK; // with memory
};

enum class Outcome { Done, NoMemory, NotReached };

class Memory : public NodeTest {
protected:
    template <class S>
    void Sweep() {
        ExpectNoLeak([this] { RunEach<S>(); });
    }

    int Allocations = 0; // that a call makes, of the last sweep
    bool SawOutOfMemory = false;

private:
    template <class S>
    void RunEach() {
        for (const auto mode : {FailingMemory::Mode::Once, FailingMemory::Mode::ForGood}) {
            int nth = 1;
            while (nth < MostAllocations && RunOnce<S>(nth, mode) != Outcome::NotReached &&
                   !HasFailure())
                ++nth;
            EXPECT_LT(nth, MostAllocations);
            Allocations = nth - 1;
        }
    }

    template <class S>
    Outcome RunOnce(int nth, FailingMemory::Mode mode) {
        SCOPED_TRACE(testing::Message() << "allocation " << nth);
        S scenario;
        const Outcome outcome = ActWithout(scenario, nth, mode);
        if (outcome == Outcome::NoMemory || scenario.Expected != S_OK)
            scenario.ExpectUnchanged();
        if (outcome == Outcome::NoMemory) {
            EXPECT_EQ(CodeText(scenario.Expected), CodeText(scenario.Act())) << "again";
        }
        if (scenario.Expected == S_OK)
            scenario.ExpectDone();
        ClearRecord();
        return outcome;
    }

    Outcome ActWithout(Scenario& scenario, int nth, FailingMemory::Mode mode) {
        HRESULT hr = E_OUTOFMEMORY;
        bool thrown = false, failed = false;
        {
            const FailingMemory memory(static_cast<uint64_t>(nth), mode);
            try {
                hr = scenario.Act();
            } catch (const std::bad_alloc&) {
                thrown = true;
            }
            failed = memory.Failed();
        }
        if (!thrown && hr == scenario.Expected)
            return failed ? Outcome::Done : Outcome::NotReached;
        EXPECT_TRUE(failed);
        EXPECT_EQ(CodeText(E_OUTOFMEMORY), CodeText(hr));
        SawOutOfMemory |= !thrown;
        return Outcome::NoMemory;
    }
};

// --- Creation and cloning ------------------------------------------------------------------------

// A type and a name that do not lie inside the node.
const WCHAR* const LongType = W("a type of many units");
const WCHAR* const LongPath = W("\\path\\to\\a node of a long name");

struct CreateScenario : Scenario {
    HRESULT Act() override { return AcnCreateNode(LongPath, LongType, &Out); }
    void ExpectUnchanged() override { EXPECT_EQ(Untouched(), Out); }
    void ExpectDone() override {
        const Node node(Out);
        EXPECT_EQ(LongPath, Path(node));
        EXPECT_EQ(LongType, Type(node));
    }
    IACNode* Out = Untouched();
};

TEST_F(Memory, Creation) {
    Sweep<CreateScenario>();
    EXPECT_LE(4, Allocations);
}

struct UnnamedScenario : CreateScenario {
    HRESULT Act() override { return AcnCreateNode(nullptr, nullptr, &Out); }
    void ExpectDone() override { EXPECT_EQ(36u, Name(Node(Out)).size()); }
};

TEST_F(Memory, CreationWithAGuid) {
    Sweep<UnnamedScenario>();
}

struct RefusedCreation : CreateScenario {
    RefusedCreation() { Expected = TREEVAULT_E_INVALID_NAME; }
    HRESULT Act() override { return AcnCreateNode(W("a name with \\"), W("type"), &Out); }
};

TEST_F(Memory, RefusedCreationKeepsItsCode) {
    Sweep<RefusedCreation>();
}

struct CloneScenario : Scenario {
    CloneScenario() {
        const Node child = AddNew(Root, W("child"), W("type"));
        AddNew(Root, W("other"));
        AddNew(child, W("below"));
        EXPECT_EQ(S_OK, Set(child, W("a"), TextValue(W("a value on the heap"))));
    }
    HRESULT Act() override {
        return AcnCloneNode(Root, TREEVAULT_ALL_LEVELS, CloneOwnAttributes, &Out);
    }
    void ExpectUnchanged() override {
        EXPECT_EQ(Untouched(), Out);
        EXPECT_EQ(1u, References(Root));
        EXPECT_EQ((Names{W("child"), W("other")}), ChildNames(Root));
    }
    void ExpectDone() override {
        const Node clone(Out);
        EXPECT_EQ((Names{W("child"), W("other")}), ChildNames(clone));
        ExpectChildrenInStep(clone);
        EXPECT_EQ(TextValue(W("a value on the heap")), Get(ChildAt(clone, 0), W("a")));
    }
    const Node Root = Create(W("root"));
    IACNode* Out = Untouched();
};

TEST_F(Memory, CloningOfATree) {
    const int32_t before = LiveComponents();
    Sweep<CloneScenario>();
    EXPECT_EQ(before, LiveComponents());
    EXPECT_LE(4, Allocations);
}

// --- Attributes ----------------------------------------------------------------------------------

// A node and a clone that shares its attributes.
struct SharedScenario : Scenario {
    SharedScenario() {
        for (const WCHAR* name : {W("a"), W("b"), W("c"), W("d")})
            EXPECT_EQ(S_OK, Set(Subject, name, Old));
        EXPECT_EQ(S_OK, AcnSetModifiedState(Subject, nullptr, 0));
        Sharer = Clone(Subject);
    }
    void ExpectUnchanged() override { ExpectOld(Subject); }
    void ExpectOld(IACNode* node) {
        EXPECT_EQ((Names{W("a"), W("b"), W("c"), W("d")}), AttributeNames(node));
        for (const WCHAR* name : {W("a"), W("b"), W("c"), W("d")})
            EXPECT_EQ(Old, Get(node, name));
        EXPECT_EQ(0u, ModifiedState(node, nullptr));
        ExpectSharerOld();
    }
    void ExpectSharerOld() {
        EXPECT_EQ((Names{W("a"), W("b"), W("c"), W("d")}), AttributeNames(Sharer));
        EXPECT_EQ(Old, Get(Sharer, W("b")));
        EXPECT_EQ(0u, ModifiedState(Sharer, nullptr));
    }
    // Too long for the block of a table.
    const Value Old = TextValue(W("an old value on the heap, where each has a block of its own"));
    const Value New = TextValue(W("a new value on the heap, where each has a block of its own"));
    const Node Subject = Create(W("n"));
    Node Sharer;
};

struct ReplaceScenario : SharedScenario {
    HRESULT Act() override { return Set(Subject, W("b"), New); }
    void ExpectDone() override {
        EXPECT_EQ(New, Get(Subject, W("b")));
        EXPECT_EQ(Old, Get(Subject, W("a")));
        ExpectSharerOld();
    }
};

TEST_F(Memory, ReplacingAnAttributeOfASharedTable) {
    Sweep<ReplaceScenario>();
    EXPECT_TRUE(SawOutOfMemory);
    EXPECT_LE(6, Allocations); // the table, its four values and the new one
}

struct InsertScenario : SharedScenario {
    HRESULT Act() override { return Set(Subject, W("a name that needs room of its own"), New); }
    void ExpectDone() override {
        EXPECT_EQ(5u, AttributeNames(Subject).size());
        EXPECT_EQ(New, Get(Subject, W("a name that needs room of its own")));
        ExpectSharerOld();
    }
};

TEST_F(Memory, InsertingAnAttributeIntoASharedTable) {
    Sweep<InsertScenario>();
    EXPECT_TRUE(SawOutOfMemory);
}

struct DeleteScenario : SharedScenario {
    HRESULT Act() override { return AcnDeleteAttribute(Subject, W("c")); }
    void ExpectDone() override {
        EXPECT_EQ((Names{W("a"), W("b"), W("d")}), AttributeNames(Subject));
        ExpectSharerOld();
    }
};

TEST_F(Memory, DeletingAnAttributeOfASharedTable) {
    Sweep<DeleteScenario>();
    EXPECT_LE(5, Allocations);
}

struct FirstAttributeScenario : Scenario {
    HRESULT Act() override { return SetInt(Subject, W("a"), 1); }
    void ExpectUnchanged() override { EXPECT_NE(Table::Filled, TableOf(Subject)); }
    void ExpectDone() override { EXPECT_EQ(Int32Value(1), Get(Subject, W("a"))); }
    const Node Subject = Create(W("n"));
};

TEST_F(Memory, FirstAttribute) {
    Sweep<FirstAttributeScenario>();
    EXPECT_LE(1, Allocations);
}

struct TypeScenario : Scenario {
    HRESULT Act() override { return AcnSetNodeType(Subject, LongType); }
    void ExpectUnchanged() override { EXPECT_EQ(W("an old type of many units"), Type(Subject)); }
    void ExpectDone() override { EXPECT_EQ(LongType, Type(Subject)); }
    const Node Subject = Create(W("n"), W("an old type of many units"));
};

TEST_F(Memory, Type) {
    Sweep<TypeScenario>();
    EXPECT_LE(1, Allocations);
}

// --- Trees ---------------------------------------------------------------------------------------

// A parent with `Siblings` children, and a free tree.
template <int Siblings>
struct AddScenario : Scenario {
    AddScenario() {
        for (int i = 0; i < Siblings; ++i) {
            const std::string name = "sibling " + std::to_string(i);
            AddNew(Root, Text(name.begin(), name.end()).c_str());
        }
        const Node middle = AddNew(Top, W("middle"));
        Leaf = AddNew(middle, W("leaf"));
        AddNew(Top, W("other"));
    }
    HRESULT Act() override { return AcnAddChild(Root, Top); }
    void ExpectUnchanged() override {
        EXPECT_EQ(size_t(Siblings), ChildCount(Root));
        ExpectChildrenInStep(Root);
        EXPECT_EQ(nullptr, FindChild(Root, W("top")).Get());
        EXPECT_EQ(nullptr, Parent(Top).Get());
        EXPECT_EQ(1u, References(Top));
        EXPECT_EQ(W("\\old\\top\\middle\\leaf"), Path(Leaf));
        ExpectChildrenInStep(Top);
    }
    void ExpectDone() override {
        EXPECT_EQ(Siblings + size_t(1), ChildCount(Root));
        EXPECT_EQ(Top.Get(), ChildAt(Root, Siblings).Get());
        EXPECT_EQ(W("\\root\\top\\middle\\leaf"), Path(Leaf));
        ExpectChildrenInStep(Root);
        ExpectChildrenInStep(Top);
    }
    const Node Root = Create(W("root")), Top = Create(W("\\old\\top"));
    Node Leaf;
};

TEST_F(Memory, AddingTheFirstChild) {
    Sweep<AddScenario<0>>();
    EXPECT_LE(6, Allocations); // four links and both lists at least
}

TEST_F(Memory, AddingToManySiblings) {
    Sweep<AddScenario<128>>();
    Sweep<AddScenario<256>>();
}

struct TakenNameScenario : AddScenario<3> {
    TakenNameScenario() {
        Expected = TREEVAULT_E_CHILD_EXISTS;
        EXPECT_EQ(S_OK, AcnSetNodeName(ChildAt(Root, 1), NameShort, W("top")));
    }
    void ExpectUnchanged() override {
        EXPECT_EQ(3u, ChildCount(Root));
        EXPECT_EQ(ChildAt(Root, 1).Get(), FindChild(Root, W("top")).Get());
        EXPECT_EQ(nullptr, Parent(Top).Get());
        EXPECT_EQ(1u, References(Top));
        EXPECT_EQ(W("\\old\\top\\middle\\leaf"), Path(Leaf));
    }
};

TEST_F(Memory, AddingUnderATakenName) {
    Sweep<TakenNameScenario>();
}

struct RemoveScenario : AddScenario<3> {
    RemoveScenario() { EXPECT_EQ(S_OK, AcnAddChild(Root, Top)); }
    HRESULT Act() override { return AcnRemoveChild(Root, Top); }
    void ExpectUnchanged() override { AddScenario<3>::ExpectDone(); }
    void ExpectDone() override {
        EXPECT_EQ(3u, ChildCount(Root));
        ExpectChildrenInStep(Root);
        EXPECT_EQ(nullptr, Parent(Top).Get());
        EXPECT_EQ(W("\\root\\top\\middle\\leaf"), Path(Leaf));
    }
};

TEST_F(Memory, Removing) {
    Sweep<RemoveScenario>();
}

struct RenameRootScenario : AddScenario<0> {
    HRESULT Act() override { return AcnSetNodeName(Top, NameFullPath, W("\\new\\place\\top2")); }
    void ExpectDone() override {
        EXPECT_EQ(W("\\new\\place\\top2\\middle\\leaf"), Path(Leaf));
        ExpectChildrenInStep(Top);
    }
};

TEST_F(Memory, RenamingAFreeTree) {
    Sweep<RenameRootScenario>();
    EXPECT_LE(6, Allocations);
}

struct RenameChildScenario : AddScenario<128> {
    RenameChildScenario() { EXPECT_EQ(S_OK, AcnAddChild(Root, Top)); }
    HRESULT Act() override { return AcnSetNodeName(Top, NameShort, W("a new name")); }
    void ExpectUnchanged() override {
        EXPECT_EQ(nullptr, FindChild(Root, W("a new name")).Get());
        AddScenario<128>::ExpectDone();
    }
    void ExpectDone() override {
        EXPECT_EQ(nullptr, FindChild(Root, W("top")).Get());
        EXPECT_EQ(Top.Get(), ChildAt(Root, 128).Get());
        EXPECT_EQ(W("\\root\\a new name\\middle\\leaf"), Path(Leaf));
        ExpectChildrenInStep(Root);
    }
};

TEST_F(Memory, RenamingAChild) {
    Sweep<RenameChildScenario>();
}

TEST_F(Memory, ClosingATreeNeedsNone) {
    const SeverityInForce quiet(SeverityNone); // a line needs some
    const int64_t blocks = FailingMemory::LiveBlocks();
    bool failed = true;
    {
        Node root = Create(W("root"));
        const Node held = AddNew(AddNew(root, W("child")), W("held"));
        for (const WCHAR* name : {W("a"), W("b"), W("c")})
            ASSERT_EQ(S_OK, SetInt(AddNew(root, name), name, 1));
        IACNode* const last = root.Detach();
        {
            const FailingMemory memory(1, FailingMemory::Mode::ForGood);
            AcnCloseNodeHandle(last);
            failed = memory.Failed();
        }
        EXPECT_FALSE(failed);
        EXPECT_EQ(W("\\root\\child\\held"), Path(held));
        EXPECT_EQ(1, Made());
    }
    EXPECT_EQ(blocks, FailingMemory::LiveBlocks());
}

// --- Aliases -------------------------------------------------------------------------------------

// Read through a volatile place, so that the compiler does not decide the comparison by itself.
template <class Function>
void* Address(Function* function) {
    Function* volatile place = function;
    return reinterpret_cast<void*>(place);
}

TEST(Aliases, AreOneFunction) {
    EXPECT_EQ(Address(AcnCloseNodeHandle), Address(AcnCloseSerializationContext));
    EXPECT_EQ(Address(AcnCloseNodeHandle), Address(AcnCloseDeserializationContext));
    EXPECT_EQ(Address(AcnSerializeNodes), Address(AcnDeserializeNodes));
}

} // namespace
} // namespace treevault::tests
