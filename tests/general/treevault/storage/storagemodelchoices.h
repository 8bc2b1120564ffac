// SPDX-License-Identifier: MIT
// Random subjects for the plain model of a storage and for the library at once: names, values,
// filters, and trees of nodes that are made and changed on both sides.
#ifndef TREEVAULT_TESTS_STORAGE_STORAGEMODELCHOICES_H
#define TREEVAULT_TESTS_STORAGE_STORAGEMODELCHOICES_H

#include "storagemodel.h"

#include <random>

namespace treevault::tests {

inline constexpr size_t MostLevels = 3;

// One node on both sides, or none on either.
struct Given {
    Node Real;
    NodeRef Model;
};

// Everything is drawn from few choices, for nodes to meet and values to be equal.
class Choices {
public:
    explicit Choices(uint64_t seed) : Random(seed) {}

    size_t Below(size_t limit) { return static_cast<size_t>(Random() % limit); }
    bool Chance(size_t of) { return Below(of) == 0; }

    Text AnyName() {
        static const WCHAR* const names[] = {W("a"), W("b"), W("c"), W("A")};
        return names[Below(Chance(4) ? 4 : 3)];
    }

    Text AnyType() {
        static const WCHAR* const types[] = {W(""), W(""), W("T"), W("U")};
        return types[Below(4)];
    }

    Text AnyAttributeName() {
        static const Text names[] = {W("x"), W("y"), W("z"), W("X"), Text(130, W('n')), Text()};
        return names[Chance(8) ? 3 + Below(3) : Below(3)];
    }

    Value AnyValue() {
        switch (Below(8)) {
        case 0:
            return {VtEmpty, ""};
        case 1:
            return TextValue(Chance(2) ? W("") : W("text"));
        case 2:
            return {VtBinary, std::string(Below(3) * 9, 'b')};
        case 3:
            return NumberValue<uint32_t>(VtUInt32, 1); // the bytes of a VtInt32
        case 4:
            return {VtBool, std::string(1, static_cast<char>(Below(3)))};
        default:
            return Int32Value(static_cast<int32_t>(Below(3)));
        }
    }

    StoreMode AnyMode() {
        static constexpr StoreMode others[] = {7, -1, 4, INT32_MIN};
        return Chance(10) ? others[Below(std::size(others))] : static_cast<StoreMode>(Below(4));
    }

    // A path of one to three names.
    Text AnyPath() {
        Text path;
        for (size_t left = 1 + Below(MostLevels); left != 0; --left)
            path += W("\\") + AnyName();
        return path;
    }

    FilterSpec AnyFilter() {
        FilterSpec filter;
        filter.NodePath = AnyFilterPath();
        if (!Chance(3) || *filter.NodePath == W("\\"))
            filter.IsParent = !Chance(3);
        static constexpr uint32_t depths[] = {0, 1, 2, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
        if (Chance(2))
            filter.MaxDepth = depths[Below(std::size(depths))];
        if (Chance(40))
            filter.Type = Chance(2) ? W("filterbypath") : W("");
        if (Chance(40))
            filter.NodePath.reset();
        return filter;
    }

    Node Make(const FilterSpec& spec) {
        Node filter = Create(W("f"), spec.Type.c_str());
        if (spec.NodePath) {
            EXPECT_EQ(S_OK, Set(filter, W("NodePath"), TextValue(*spec.NodePath)));
        }
        SetOptional(filter, W("IsParent"), spec.IsParent, VtBool);
        SetOptional(filter, W("MaxDepth"), spec.MaxDepth, VtUInt32);
        return filter;
    }

    // An attribute; without a value it is missing, or empty, which is the same.
    template <class Number>
    void SetOptional(IACNode* node, const WCHAR* name, std::optional<Number> number,
                     ValueType tag) {
        if (number) {
            EXPECT_EQ(S_OK, Set(node, name, NumberValue(tag, *number)));
        } else if (Chance(3)) {
            EXPECT_EQ(S_OK, Set(node, name, {VtEmpty, ""}));
        }
    }

    // --- Trees -----------------------------------------------------------------------------------

    // A tree for some place of the forest.
    Given AnyTree() {
        const size_t above = Chance(2) ? 0 : Below(MostLevels);
        Text path;
        for (size_t left = above; left != 0; --left)
            path += W("\\") + AnyName();
        const Text name = Chance(30) ? Text() : AnyName();
        Given tree{{}, std::make_shared<ModelNode>()};
        tree.Model->Name = name;
        // A path can't end in an empty name, but a node can be moved to one.
        const Text plain = above != 0 && !name.empty() ? path + W("\\") + name : name;
        tree.Real = Create(plain.c_str());
        if (above != 0) {
            tree.Model->ParentPath = path;
            EXPECT_EQ(S_OK, AcnSetNodeName(tree.Real, NameParentPath, path.c_str()));
        }
        Fill(tree, name.empty() ? 0 : MostLevels - 1 - above);
        return tree;
    }

    // A node of the tree.
    Given Within(const Given& tree) {
        Given node = tree;
        while (!node.Model->Children.empty() && Chance(2)) {
            const size_t at = Below(node.Model->Children.size());
            node = {ChildAt(node.Real, at), node.Model->Children[at]};
        }
        return node;
    }

    // Changes a node of a tree that is not stored.
    void Change(const Given& node) {
        switch (Below(8)) {
        case 0:
            return EraseOne(node);
        case 1:
            return SetType(node, AnyType());
        case 2:
            return Mark(node, nullptr, 0);
        case 3:
            return Mark(node, Chance(2) ? nullptr : W("x"), static_cast<uint32_t>(Below(3)));
        case 4:
            return RemoveChild(node);
        case 5:
            if (LevelOf(node) < MostLevels && !node.Model->Name.empty())
                AddChild(node, 0);
            return;
        default:
            return SetOne(node);
        }
    }

private:
    Text AnyFilterPath() {
        static const WCHAR* const odd[] = {W("\\\\"),     W("\\\\a"), W("\\a\\\\b"), W("\\a\\"),
                                           W("\\a\\b\\"), W("a"),     W("a\\b"),     W("")};
        if (Chance(10))
            return odd[Below(std::size(odd))];
        return Chance(6) ? Text(W("\\")) : AnyPath();
    }

    static size_t LevelOf(const Given& node) {
        const Text path = node.Model->Path();
        return static_cast<size_t>(std::count(path.begin(), path.end(), W('\\')));
    }

    void Fill(const Given& node, size_t levels) {
        SetType(node, AnyType());
        for (size_t left = Below(4); left != 0; --left)
            SetOne(node);
        if (Chance(2))
            Mark(node, nullptr, 0);
        if (Chance(3))
            SetOne(node);
        if (levels != 0)
            for (size_t left = Below(4); left != 0; --left)
                AddChild(node, levels - 1);
    }

    void AddChild(const Given& node, size_t levels) {
        const Text name = Chance(30) ? Text() : AnyName();
        if (node.Model->Find(name))
            return;
        Given child{Create(name.c_str()), std::make_shared<ModelNode>()};
        child.Model->Name = name;
        Fill(child, name.empty() ? 0 : levels);
        EXPECT_EQ(S_OK, AcnAddChild(node.Real, child.Real));
        node.Model->AddChild(child.Model);
    }

    void RemoveChild(const Given& node) {
        if (node.Model->Children.empty())
            return;
        const size_t at = Below(node.Model->Children.size());
        EXPECT_EQ(S_OK, AcnRemoveChildByIndex(node.Real, at));
        node.Model->RemoveChild(NodeRef(node.Model->Children[at]));
    }

    void SetOne(const Given& node) {
        const Text name = AnyAttributeName();
        const Value value = AnyValue();
        EXPECT_EQ(S_OK, Set(node.Real, name.c_str(), value));
        node.Model->Set(name, value);
    }

    void EraseOne(const Given& node) {
        const Text name = AnyAttributeName();
        EXPECT_EQ(node.Model->Attribute(name) ? S_OK : TREEVAULT_E_NOT_FOUND,
                  AcnDeleteAttribute(node.Real, name.c_str()));
        node.Model->Erase(name);
    }

    static void SetType(const Given& node, const Text& type) {
        EXPECT_EQ(S_OK, AcnSetNodeType(node.Real, type.c_str()));
        node.Model->TypeName = type;
    }

    // Shows on all nodes that share the table.
    static void Mark(const Given& node, const WCHAR* name, uint32_t state) {
        AcnSetModifiedState(node.Real, name, state); // a miss where there is nothing to mark
        for (auto& [key, attribute] : *node.Model->Table)
            if (!name || key == name)
                attribute.Modified = state != 0;
    }

    std::mt19937_64 Random;
};

} // namespace treevault::tests

#endif
