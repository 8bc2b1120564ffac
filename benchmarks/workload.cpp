// SPDX-License-Identifier: MIT
// Makes the workloads from a generator that gives the same numbers on every machine.
#include "workload.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string_view>

namespace treevault::benchmarks {

namespace {

// xorshift64*: the standard's generators are fixed too, but not its distributions.
class Generator {
public:
    explicit Generator(uint64_t seed) : State(seed) {}

    uint64_t Next() {
        State ^= State >> 12;
        State ^= State << 25;
        State ^= State >> 27;
        return State * 0x2545F4914F6CDD1Du;
    }

    size_t Below(size_t limit) { return static_cast<size_t>(Next() >> 33) % limit; }

    Text Letters(size_t length) {
        static constexpr char letters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
        Text text;
        for (size_t i = 0; i < length; ++i)
            text += static_cast<WCHAR>(letters[Below(sizeof letters - 1)]);
        return text;
    }

private:
    uint64_t State;
};

std::string Narrowed(const Text& text) {
    std::string narrow;
    for (const WCHAR unit : text)
        narrow += static_cast<char>(unit);
    return narrow;
}

// Apart from the nodes, so that they don't stand between what others read. They stay for good.
void AddNarrowTexts(Workload& workload) {
    static std::deque<NarrowTexts> texts;
    for (NodeData& node : workload.Nodes)
        node.Narrow = &texts.emplace_back(
            NarrowTexts{Narrowed(node.Name), Narrowed(*node.Type), Narrowed(node.Title)});
}

const Text* TypeName(size_t index) {
    static const std::array<Text, 16> types = [] {
        Generator generator(16);
        std::array<Text, 16> made;
        for (Text& type : made)
            type = generator.Letters(4 + generator.Below(9));
        return made;
    }();
    return &types[index];
}

NodeData MakeNode(Generator& generator) {
    NodeData node{};
    node.Name = generator.Letters(8 + generator.Below(9));
    node.Type = TypeName(generator.Below(16));
    node.Number = static_cast<int32_t>(generator.Next() >> 32);
    const uint64_t halves[2] = {generator.Next(), generator.Next()};
    static_assert(sizeof node.Id == sizeof halves);
    std::memcpy(&node.Id, halves, sizeof halves);
    node.Stamp = generator.Next();
    node.Title = generator.Letters(12);
    return node;
}

// No two of them are equal. In one block, as freed memory between the nodes would be where all that
// is measured begins to take its own.
void CheckNames(const Workload& workload) {
    std::vector<std::basic_string_view<WCHAR>> names;
    for (const NodeData& node : workload.Nodes)
        names.push_back(node.Name);
    std::sort(names.begin(), names.end());
    if (std::adjacent_find(names.begin(), names.end()) != names.end())
        std::abort();
}

Workload MakeWorkload(size_t fanOut, size_t count) {
    Generator generator(fanOut * 1000003 + count);
    Workload workload{fanOut, {}};
    workload.Nodes.reserve(count);
    while (workload.Nodes.size() < count)
        workload.Nodes.push_back(MakeNode(generator));
    CheckNames(workload);
    AddNarrowTexts(workload);
    return workload;
}

} // namespace

const Workload& DeepWorkload() {
    static const Workload workload = MakeWorkload(10, 111111);
    return workload;
}

const Workload& FlatWorkload() {
    static const Workload workload = MakeWorkload(100000, 100001);
    return workload;
}

Workload BalancedWorkload(size_t levels) {
    size_t count = 0;
    for (size_t level = 0; level < levels; ++level)
        count = 10 * count + 1;
    const std::vector<NodeData>& nodes = DeepWorkload().Nodes;
    Workload workload{10, {}};
    workload.Nodes.reserve(count);
    for (size_t at = 0; at < count; ++at)
        workload.Nodes.push_back(nodes[at % nodes.size()]);
    return workload;
}

} // namespace treevault::benchmarks
