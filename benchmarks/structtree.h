// SPDX-License-Identifier: MIT
// The plain reference for nodes: a tree of structs of the standard library, without locks, shared
// ownership, paths or modification state. It comes with its attributes in a vector or in a map.
#ifndef TREEVAULT_BENCHMARKS_STRUCTTREE_H
#define TREEVAULT_BENCHMARKS_STRUCTTREE_H

#include "workload.h"

#include <map>
#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace treevault::benchmarks {

using PlainValue = std::variant<int32_t, uint64_t, GUID, Text>;

class VectorAttributes {
public:
    PlainValue* Find(const Text& name) {
        for (Attribute& attribute : Entries)
            if (attribute.Name == name)
                return &attribute.Value;
        return nullptr;
    }
    void Set(const Text& name, PlainValue value) {
        if (PlainValue* place = Find(name))
            *place = std::move(value);
        else
            Entries.push_back({name, std::move(value)});
    }

private:
    struct Attribute {
        Text Name;
        PlainValue Value;
    };
    std::vector<Attribute> Entries;
};

class MapAttributes {
public:
    PlainValue* Find(const Text& name) {
        const auto entry = Entries.find(name);
        return entry == Entries.end() ? nullptr : &entry->second;
    }
    void Set(const Text& name, PlainValue value) {
        Entries.insert_or_assign(name, std::move(value));
    }

private:
    std::map<Text, PlainValue> Entries;
};

template <class AttributeSet>
struct PlainNode {
    Text Name;
    Text Type;
    AttributeSet Attributes;
    std::vector<std::unique_ptr<PlainNode>> Children;

    std::unique_ptr<PlainNode> Clone() const {
        auto copy = std::make_unique<PlainNode>();
        copy->Name = Name;
        copy->Type = Type;
        copy->Attributes = Attributes;
        copy->Children.reserve(Children.size());
        for (const auto& child : Children)
            copy->Children.push_back(child->Clone());
        return copy;
    }
};

// A whole tree, built as the tree of TreeVault is: every node by itself, then added to its parent.
template <class AttributeSet>
class StructTree {
public:
    using Node = PlainNode<AttributeSet>;

    explicit StructTree(const Workload& workload) : Root(Build(workload, 0)) {}
    explicit StructTree(std::unique_ptr<Node> root) : Root(std::move(root)) {}

    StructTree Clone() const { return StructTree(Root->Clone()); }

    std::unique_ptr<Node> Root;

private:
    static std::unique_ptr<Node> Build(const Workload& workload, size_t index) {
        const NodeData& data = workload.Nodes[index];
        auto node = std::make_unique<Node>();
        node->Name = data.Name;
        node->Type = *data.Type;
        node->Attributes.Set(NumberName, data.Number);
        node->Attributes.Set(TitleName, data.Title);
        node->Attributes.Set(GuidName, data.Id);
        node->Attributes.Set(StampName, data.Stamp);
        const size_t first = workload.FirstChild(index);
        for (size_t child = first; child < first + workload.ChildCount(index); ++child)
            node->Children.push_back(Build(workload, child));
        return node;
    }
};

using VectorTree = StructTree<VectorAttributes>;
using MapTree = StructTree<MapAttributes>;

} // namespace treevault::benchmarks

#endif
