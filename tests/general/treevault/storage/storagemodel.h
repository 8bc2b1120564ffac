// SPDX-License-Identifier: MIT
// A storage as a plain model: what storing, deleting, retrieving and the run of a group are to do,
// written with standard containers and without locks.
#ifndef TREEVAULT_TESTS_STORAGE_STORAGEMODEL_H
#define TREEVAULT_TESTS_STORAGE_STORAGEMODEL_H

#include "storagemodelforest.h"

#include <deque>
#include <optional>

namespace treevault::tests {

// What a filter node says; without a value: the attribute is missing.
struct FilterSpec {
    Text Type = TREEVAULT_FILTER_BY_PATH;
    std::optional<Text> NodePath;
    std::optional<bool> IsParent;
    std::optional<uint32_t> MaxDepth;
};

struct ModelFilter {
    Text NodePath;
    bool IsParent = false;
    int64_t MaxDepth = -1;
    std::deque<NodeRef> Queue;
};

using FilterRef = std::shared_ptr<ModelFilter>;

class ModelStorage : public ModelForest {
public:
    HRESULT Store(ModelGroup* group, StoreMode mode, const std::vector<NodeRef>& nodes) {
        return Outcome([&] {
            ModelGroup own;
            ModelGroup& journal = group ? *group : own;
            const bool cloned = group != nullptr;
            for (const NodeRef& given : nodes) {
                if (cloned && !given)
                    throw Failure{E_POINTER};
                const NodeRef node = cloned ? given->Clone(-1) : given;
                journal.Operations.push_back([this, mode, node, cloned, &journal] {
                    StoreNode(mode, node, cloned, journal);
                });
            }
            if (!group)
                Run(own);
        });
    }

    HRESULT Delete(ModelGroup* group, const FilterSpec& spec) {
        return Outcome([&] {
            ModelGroup own;
            ModelGroup& journal = group ? *group : own;
            const FilterRef filter = MakeFilter(spec);
            journal.Operations.push_back([this, filter] { Prepare(*filter); });
            journal.Operations.push_back(
                [this, filter, &journal] { DeleteFiltered(*filter, journal); });
            if (!group)
                Run(own);
        });
    }

    HRESULT Finalize(ModelGroup& group) {
        return Outcome([&] { Run(group); });
    }

    HRESULT Select(const FilterSpec& spec, FilterRef& context) {
        return Outcome([&] {
            context = MakeFilter(spec);
            Prepare(*context);
        });
    }

    static std::vector<NodeRef> Next(ModelFilter& context, size_t most) {
        std::vector<NodeRef> batch;
        for (; batch.size() < most && !context.Queue.empty(); context.Queue.pop_front())
            batch.push_back(context.Queue.front()->Clone(context.MaxDepth));
        return batch;
    }

private:
    template <class Work>
    static HRESULT Outcome(Work&& work) {
        try {
            work();
            return S_OK;
        } catch (const Failure& failure) {
            return failure.Code;
        }
    }

    // --- Filters ---------------------------------------------------------------------------------

    static FilterRef MakeFilter(const FilterSpec& spec) {
        if (spec.Type != TREEVAULT_FILTER_BY_PATH)
            throw Failure{TREEVAULT_E_STG_BAD_FILTER};
        if (!spec.NodePath)
            throw Failure{TREEVAULT_E_NOT_FOUND};
        const Text& path = *spec.NodePath;
        if (path.empty() || path[0] != W('\\'))
            throw Failure{path.find(W('\\')) == Text::npos ? E_NOTIMPL : TREEVAULT_E_STG_BAD_PATH};
        const auto depth = static_cast<int32_t>(spec.MaxDepth.value_or(0xFFFFFFFF));
        return std::make_shared<ModelFilter>(
            ModelFilter{path, spec.IsParent.value_or(false), depth, {}});
    }

    // A further run selects anew; what an earlier one left over is forgotten.
    void Prepare(ModelFilter& filter) {
        filter.Queue.clear();
        if (filter.NodePath == W("\\")) {
            if (!filter.IsParent)
                throw Failure{TREEVAULT_E_STG_BAD_PATH};
            for (const auto& [name, root] : Roots)
                filter.Queue.push_back(root);
            return;
        }
        const NodeRef node = FindByPath(filter.NodePath, nullptr);
        if (!node)
            return;
        if (!filter.IsParent)
            filter.Queue.push_back(node);
        else
            filter.Queue.insert(filter.Queue.end(), node->Children.begin(), node->Children.end());
    }

    void DeleteFiltered(ModelFilter& filter, ModelGroup& group) {
        while (!filter.Queue.empty()) {
            const NodeRef node = filter.Queue.front();
            filter.Queue.pop_front();
            const NodeRef parent = node->StrongParent();
            ModifyMask flags = 0;
            RemoveNode(parent, node, group, flags);
            SignalChildren(parent, flags);
        }
    }

    // --- Runs ------------------------------------------------------------------------------------

    void TellFinish(bool success) {
        for (const auto& [id, sink] : Sinks)
            sink(Plainly(Call::Finish, success ? "finish(1)" : "finish(0)"));
    }

    void Run(ModelGroup& group) {
        try {
            Tell(Plainly(Call::Start, "start"));
            for (const auto& operation : group.Operations)
                operation();
            if (const HRESULT hr = Tell(Plainly(Call::PreCommit, "precommit")); FAILED(hr))
                throw Failure{hr};
        } catch (const Failure&) {
            Undo(group);
            TellFinish(false);
            throw;
        }
        TellFinish(true);
    }

    // The first step that fails ends it, and its failure is forgotten.
    static void Undo(ModelGroup& group) {
        try {
            for (; !group.UndoList.empty(); group.UndoList.pop_back())
                group.UndoList.back()();
        } catch (const Failure&) {
            group.UndoList.clear();
        }
    }
};

} // namespace treevault::tests

#endif
