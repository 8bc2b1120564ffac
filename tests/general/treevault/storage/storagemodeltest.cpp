// SPDX-License-Identifier: MIT
// A storage against a plain model: random stores, deletes, retrievals and groups, with vetoing,
// failing and storing sinks. Every step compares the results, all that the sinks were told and the
// whole forest.
//
// TREEVAULT_TEST_STEPS and TREEVAULT_TEST_SEED choose another run.
#include "storagemodelsinks.h"

#include <cstdlib>
#include <iostream>
#include <list>

namespace treevault::tests {
namespace {

constexpr size_t MostSources = 8;
constexpr size_t MostGroups = 3;
constexpr size_t MostContexts = 3;
constexpr size_t StepsOfAnEpisode = 500;

uint64_t FromEnvironment(const char* name, uint64_t fallback) {
    const char* text = std::getenv(name);
    return text && *text ? std::strtoull(text, nullptr, 0) : fallback;
}

struct OpenGroup {
    explicit OpenGroup(INodeStorage* storage) : Real(storage) {}
    Group Real;
    ModelGroup Model;
};

struct OpenContext {
    explicit OpenContext(IRetrievalContext* real, FilterRef model)
        : Real(real), Model(std::move(model)) {}
    ~OpenContext() { StgCloseRetrivalContext(nullptr, Real); }
    OpenContext(const OpenContext&) = delete;
    OpenContext& operator=(const OpenContext&) = delete;

    IRetrievalContext* Real;
    FilterRef Model;
};

// How often the kinds of steps are taken, in parts of their sum.
struct Mix {
    size_t Store, Delete, FillGroup, FinishGroup, CloseGroup, Retrieve, Batch, Configure, Sinks;
    size_t Trouble; // one in so many runs has a sink that fails or comes back
};

// A storage, its model, and what is open of them.
class Episode {
public:
    Episode(Choices& choices, const Mix& mix) : Any(choices), Weights(mix) {}

    void Step() {
        using Action = void (Episode::*)();
        const std::pair<size_t, Action> actions[] = {
            {Weights.Store, &Episode::StoreSome},     {Weights.Delete, &Episode::DeleteSome},
            {Weights.FillGroup, &Episode::FillGroup}, {Weights.FinishGroup, &Episode::FinishGroup},
            {Weights.CloseGroup, &Episode::CloseOne}, {Weights.Retrieve, &Episode::RetrieveSome},
            {Weights.Batch, &Episode::TakeBatch},     {Weights.Configure, &Episode::Configure},
            {Weights.Sinks, &Episode::ChangeSinks}};
        size_t sum = 0;
        for (const auto& [weight, action] : actions)
            sum += weight;
        size_t choice = Any.Below(sum);
        for (const auto& [weight, action] : actions) {
            if (choice < weight)
                return (this->*action)();
            choice -= weight;
        }
    }

    void Compare() {
        EXPECT_EQ(Told.Expected, Told.Seen);
        EXPECT_EQ(Model.Forest(), RealForest(Subject));
        Told = {};
    }

private:
    // --- Choices ---------------------------------------------------------------------------------

    template <class Item>
    Item& AnyOf(std::list<Item>& items) {
        return *std::next(items.begin(), static_cast<std::ptrdiff_t>(Any.Below(items.size())));
    }

    void Keep(Given tree) {
        if (Sources.size() < MostSources)
            Sources.push_back(std::move(tree));
        else
            Sources[Any.Below(MostSources)] = std::move(tree);
    }

    // A new tree, or a node of one that was used before and may have changed.
    Given AnyGiven() {
        if (Sources.empty() || Any.Chance(2)) {
            const Given tree = Any.AnyTree();
            Keep(tree);
            return Any.Within(tree);
        }
        const Given node = Any.Within(Sources[Any.Below(Sources.size())]);
        for (size_t left = Any.Below(4); left != 0; --left)
            Any.Change(node);
        return node;
    }

    Plan AnyPlan() {
        static constexpr HRESULT codes[] = {Refusal, TREEVAULT_E_STG_PARENT_MISSING,
                                            TREEVAULT_E_NOT_FOUND, S_FALSE};
        Plan plan;
        plan.AtPreCommit = Any.Chance(3);
        plan.AtCall = plan.AtPreCommit ? 0 : 1 + Any.Below(8);
        if (!Any.Chance(3))
            plan.Code = codes[Any.Below(std::size(codes))];
        if (plan.Code == S_OK || Any.Chance(5)) {
            Deed& deed = plan.Inside;
            deed.What = Any.Chance(3) ? Deed::Look : Any.Chance(3) ? Deed::Delete : Deed::Store;
            deed.Mode = Any.AnyMode();
            deed.Subject = AnyGiven();
            deed.Spec = Any.AnyFilter();
            deed.Filter = Any.Make(deed.Spec);
        }
        return plan;
    }

    void PlanTrouble() {
        char letter = 'A';
        for (const auto& sink : Sinks)
            sink->Follow(letter++, Any.Chance(Weights.Trouble) ? AnyPlan() : Plan());
    }

    // --- Steps -----------------------------------------------------------------------------------

    // The model goes first: it tells whether the library is allowed to.
    void StoreInto(OpenGroup* group) {
        std::vector<Given> given(Any.Chance(30) ? 0 : 1 + Any.Below(3));
        for (Given& each : given)
            if (!Any.Chance(60))
                each = AnyGiven();
        std::vector<NodeRef> models;
        std::vector<IACNode*> handles;
        for (const Given& each : given) {
            models.push_back(each.Model);
            handles.push_back(each.Real);
        }
        handles.push_back(nullptr); // an array of no nodes is an array all the same
        const StoreMode mode = Any.AnyMode();
        const HRESULT expected = Model.Store(group ? &group->Model : nullptr, mode, models);
        EXPECT_EQ(CodeText(expected),
                  CodeText(StgStoreData(Subject, group ? group->Real.Get() : nullptr, mode,
                                        handles.data(), given.size())));
    }

    void DeleteInto(OpenGroup* group) {
        const FilterSpec spec = Any.AnyFilter();
        const HRESULT expected = Model.Delete(group ? &group->Model : nullptr, spec);
        EXPECT_EQ(
            CodeText(expected),
            CodeText(StgDeleteData(Subject, group ? group->Real.Get() : nullptr, Any.Make(spec))));
    }

    void StoreSome() {
        PlanTrouble();
        StoreInto(nullptr);
    }

    void DeleteSome() {
        PlanTrouble();
        DeleteInto(nullptr);
    }

    void FillGroup() {
        if (Groups.size() < MostGroups && Any.Chance(3))
            Groups.emplace_back(Subject);
        if (Groups.empty())
            return;
        OpenGroup& group = AnyOf(Groups);
        Any.Chance(3) ? DeleteInto(&group) : StoreInto(&group);
    }

    // The group stays open, often to run again.
    void FinishGroup() {
        if (Groups.empty())
            return;
        OpenGroup& group = AnyOf(Groups);
        PlanTrouble();
        const HRESULT expected = Model.Finalize(group.Model);
        EXPECT_EQ(CodeText(expected), CodeText(group.Real.Finish()));
    }

    // Closes a group, run or not, or a context.
    void CloseOne() {
        if (!Groups.empty() && Any.Chance(2))
            Groups.erase(
                std::next(Groups.begin(), static_cast<std::ptrdiff_t>(Any.Below(Groups.size()))));
        else if (!Contexts.empty())
            Contexts.erase(std::next(Contexts.begin(),
                                     static_cast<std::ptrdiff_t>(Any.Below(Contexts.size()))));
    }

    // Compares a batch and keeps some of its nodes, to change them and store them back.
    void Take(const std::vector<NodeRef>& expected, IACNode* const* handles, uint64_t count) {
        ASSERT_EQ(expected.size(), count);
        for (size_t at = 0; at < count; ++at) {
            const Given clone{Node(handles[at]), expected[at]};
            std::string expectedText, text;
            Show(expectedText, *clone.Model);
            Show(text, clone.Real.Get());
            EXPECT_EQ(expectedText, text);
            if (Any.Chance(4))
                Keep(clone);
        }
    }

    void RetrieveSome() {
        const FilterSpec spec = Any.AnyFilter();
        const size_t most = Any.Chance(3) ? 64 : Any.Below(4);
        const bool keep = Contexts.size() < MostContexts && Any.Chance(2);
        FilterRef model;
        const HRESULT expected = Model.Select(spec, model);
        IRetrievalContext* context = nullptr;
        IACNode* handles[64];
        uint64_t count = 777777;
        ASSERT_EQ(CodeText(expected),
                  CodeText(StgRetrieveData(Subject, Any.Make(spec), keep ? &context : nullptr,
                                           handles, most, &count)));
        if (expected != S_OK) {
            EXPECT_EQ(777777u, count);
            EXPECT_EQ(nullptr, context);
            return;
        }
        Take(ModelStorage::Next(*model, most), handles, count);
        if (keep)
            Contexts.emplace_back(context, model);
    }

    void TakeBatch() {
        if (Contexts.empty())
            return;
        const OpenContext& context = AnyOf(Contexts);
        const size_t most = Any.Below(3);
        IACNode* handles[3];
        uint64_t count = 777777;
        ASSERT_EQ(S_OK, StgRetrieveNextData(Subject, context.Real, handles, most, &count));
        Take(ModelStorage::Next(*context.Model, most), handles, count);
    }

    void Configure() {
        std::optional<bool> buildParents, atomicity;
        if (!Any.Chance(3))
            buildParents = Any.Chance(2);
        if (!Any.Chance(3))
            atomicity = Any.Chance(2);
        const Node node = Create(W("config"));
        Any.SetOptional(node, W("BuildParentNodesIfMissing"), buildParents, VtBool);
        Any.SetOptional(node, W("MaintainAtomicity"), atomicity, VtBool);
        EXPECT_EQ(S_OK, Query<IStorageConfig>(Subject, IID_IStorageConfig)->Configure(node));
        Model.BuildParents = buildParents.value_or(true);
        Model.Atomicity = atomicity.value_or(true);
    }

    void ChangeSinks() {
        if (Sinks.size() < 3 && !Any.Chance(3)) {
            Sinks.push_back(std::make_unique<DoubleSink>(Subject, Model, Told));
            std::sort(Sinks.begin(), Sinks.end(),
                      [](const auto& a, const auto& b) { return a->StandsBefore(*b); });
        } else if (!Sinks.empty()) {
            Sinks.erase(Sinks.begin() + static_cast<std::ptrdiff_t>(Any.Below(Sinks.size())));
        }
    }

    Choices& Any;
    const Mix& Weights;
    Storage Subject;
    ModelStorage Model;
    Stories Told;
    std::vector<std::unique_ptr<DoubleSink>> Sinks; // in the order in which they are told
    std::list<OpenGroup> Groups;
    std::list<OpenContext> Contexts;
    std::vector<Given> Sources;
};

class StorageModel : public NodeTest {
protected:
    // The suite takes 100,000 steps, shared out among its mixes.
    static void Play(const Mix& mix, uint64_t percent) {
        const uint64_t seed = FromEnvironment("TREEVAULT_TEST_SEED", std::random_device()());
        const uint64_t all = FromEnvironment("TREEVAULT_TEST_STEPS", 100000);
        const uint64_t steps = all * percent / 100;
        std::cout << "TREEVAULT_TEST_SEED=" << seed << " TREEVAULT_TEST_STEPS=" << all << std::endl;
        Choices choices(seed);
        uint64_t circles = 0;
        auto episode = std::make_unique<Episode>(choices, mix);
        for (uint64_t step = 1; step <= steps && !HasFailure(); ++step) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", step " << step);
            try {
                episode->Step();
                episode->Compare();
            } catch (const Circle&) {
                // Undone deletions can make a root of a node that was none, and groups that run
                // again can then come to put a node below itself, which a caller must not do: the
                // library is not asked to, and another storage goes on.
                ++circles;
                episode = std::make_unique<Episode>(choices, mix);
            }
            if (step % StepsOfAnEpisode == 0)
                episode = std::make_unique<Episode>(choices, mix);
        }
        std::cout << circles << " of " << steps << " steps left out" << std::endl;
        EXPECT_LE(circles, 1 + steps / 1000);
    }
};

TEST_F(StorageModel, StoresAndDeletes) {
    Play({.Store = 20,
          .Delete = 5,
          .FillGroup = 3,
          .FinishGroup = 2,
          .CloseGroup = 1,
          .Retrieve = 4,
          .Batch = 2,
          .Configure = 1,
          .Sinks = 2,
          .Trouble = 4},
         40);
}

TEST_F(StorageModel, GroupsThatRunAgain) {
    Play({.Store = 6,
          .Delete = 2,
          .FillGroup = 12,
          .FinishGroup = 10,
          .CloseGroup = 2,
          .Retrieve = 2,
          .Batch = 1,
          .Configure = 1,
          .Sinks = 1,
          .Trouble = 6},
         40);
}

TEST_F(StorageModel, SinksThatFailAndComeBack) {
    Play({.Store = 12,
          .Delete = 3,
          .FillGroup = 4,
          .FinishGroup = 4,
          .CloseGroup = 1,
          .Retrieve = 1,
          .Batch = 1,
          .Configure = 1,
          .Sinks = 3,
          .Trouble = 1},
         20);
}

} // namespace
} // namespace treevault::tests
