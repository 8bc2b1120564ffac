// SPDX-License-Identifier: MIT
// The plain reference for stored nodes: a map from path to struct, and a vector of what undoes the
// current group. No locks, no tree, no types of values but the four that there are.
#ifndef TREEVAULT_BENCHMARKS_UNDOLOGSTORE_H
#define TREEVAULT_BENCHMARKS_UNDOLOGSTORE_H

#include "measure.h"
#include "storednodes.h"

#include <functional>
#include <map>
#include <utility>

namespace treevault::benchmarks {

class UndoLogStore {
public:
    UndoLogStore() {
        for (const StoredNode& node : StoredNodes())
            Nodes.emplace(node.Path, MakeNode(node, node));
    }

    void Observe(size_t sinks) {
        Observers.clear();
        Counts.assign(sinks, 0);
        for (size_t at = 0; at < sinks; ++at)
            Observers.emplace_back(
                [this, at](const Text&, const Node&, const Node&) { ++Counts[at]; });
    }

    void Upsert(const StoredNode& place, const StoredNode& values) {
        Begin();
        Add(place, values);
        Commit();
    }

    void Begin() {}

    void Add(const StoredNode& place, const StoredNode& values) {
        const auto found = Nodes.find(place.Path);
        Node& node = found->second;
        UndoLog.push_back({found, std::exchange(node, MakeNode(place, values))});
        for (const auto& observer : Observers)
            observer(found->first, UndoLog.back().Old, node);
    }

    void Commit() { UndoLog.clear(); }

    void Rollback() {
        for (; !UndoLog.empty(); UndoLog.pop_back())
            UndoLog.back().Place->second = std::move(UndoLog.back().Old);
    }

    double TimedRollback() {
        const Stopwatch watch;
        Rollback();
        return watch.Seconds();
    }

    int32_t NumberAt(const StoredNode& place) { return Nodes.at(place.Path).Number; }

    uint64_t Told() const {
        uint64_t told = 0;
        for (const uint64_t count : Counts)
            told += count;
        return told;
    }

private:
    struct Node {
        Text Type;
        int32_t Number;
        Text Title;
        GUID Id;
        uint64_t Stamp;
    };

    struct UndoRecord {
        std::map<Text, Node>::iterator Place;
        Node Old;
    };

    static Node MakeNode(const StoredNode& place, const StoredNode& values) {
        const NodeData& data = *values.Data;
        return {*place.Data->Type, data.Number, data.Title, data.Id, data.Stamp};
    }

    std::map<Text, Node> Nodes;
    std::vector<UndoRecord> UndoLog;
    std::vector<std::function<void(const Text&, const Node&, const Node&)>> Observers;
    std::vector<uint64_t> Counts;
};

} // namespace treevault::benchmarks

#endif
