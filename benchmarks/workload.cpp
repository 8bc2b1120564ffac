// SPDX-License-Identifier: MIT
// Makes the workloads from a generator that gives the same numbers on every machine.
#include "workload.h"

#include <array>
#include <cstring>
#include <unordered_set>

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
    NodeData node;
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

Workload MakeWorkload(size_t fanOut, size_t count) {
    Generator generator(fanOut * 1000003 + count);
    std::unordered_set<Text> names;
    Workload workload{fanOut, {}};
    workload.Nodes.reserve(count);
    while (workload.Nodes.size() < count) {
        NodeData node = MakeNode(generator);
        if (names.insert(node.Name).second)
            workload.Nodes.push_back(std::move(node));
    }
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

} // namespace treevault::benchmarks
