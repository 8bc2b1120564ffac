// SPDX-License-Identifier: MIT
// Nodes against a plain model: random calls, good and bad ones, with the exact result of each, and
// the whole state compared again and again.
//
// TREEVAULT_TEST_STEPS and TREEVAULT_TEST_SEED choose another run.
#include "nodemodel.h"

#include <cstdlib>
#include <iostream>
#include <random>

namespace treevault::tests {
namespace {

constexpr size_t MostNodes = 60;
constexpr int StepsBetweenComparisons = 250;

uint64_t FromEnvironment(const char* name, uint64_t fallback) {
    const char* text = std::getenv(name);
    return text && *text ? std::strtoull(text, nullptr, 0) : fallback;
}

class NodeModel : public NodeTest {
protected:
    // --- Choices ---------------------------------------------------------------------------------

    size_t Below(size_t limit) { return static_cast<size_t>(Random() % limit); }
    bool Chance(size_t of) { return Below(of) == 0; }

    Text AnyName() {
        static const WCHAR* const names[] = {W("a"), W("b"),           W("c"), W("d"),
                                             W("A"), W("longer name"), W("")};
        return names[Below(std::size(names))];
    }

    // A path, good or bad, or what is left of one.
    Text AnyPath() {
        Text path;
        for (size_t i = 0, count = Below(4); i <= count; ++i)
            path += (Chance(8) ? W("\\\\") : W("\\")) + AnyName();
        if (Chance(10))
            path.erase(0, 1);
        return Chance(10) ? Text(W("\\")) : path;
    }

    Text AnyNameOrPath() { return Chance(4) ? AnyPath() : AnyName(); }

    // What SetName is given, often what suits the node.
    Text AnyNewName(const ModelNode& node, NodeNameKind kind) {
        if (kind == NameShort)
            return Chance(10) ? AnyPath() : AnyName();
        if (Chance(2))
            return kind == NameParentPath ? node.ParentPath : node.ParentPath + W("\\") + AnyName();
        return AnyPath();
    }

    // A good value, or one whose bytes don't fit the tag or whose tag is none.
    Value AnyValue(HRESULT& code) {
        code = S_OK;
        switch (Below(8)) {
        case 0:
            return NumberValue<uint64_t>(VtUInt64, Random());
        case 1:
            return TextValue(AnyName());
        case 2:
            return {VtBinary, std::string(Below(90), static_cast<char>(Below(256)))};
        case 3:
            return {VtEmpty, ""};
        case 4:
            code = TREEVAULT_E_INVALID_DATA;
            return {VtInt64, "1234"};
        case 5:
            code = TREEVAULT_E_UNSUPPORTED_TYPE;
            return {static_cast<ValueType>(8 + 0x200 * Below(2)), "1234"};
        default:
            return Int32Value(static_cast<int32_t>(Below(5)));
        }
    }

    ModelNode& AnyNode() {
        for (;;) {
            ModelNode& node = *Nodes[Below(Nodes.size())];
            if (!node.Handles.empty())
                return node;
        }
    }

    // --- Calls -----------------------------------------------------------------------------------

    template <class... Parameters>
    void Expect(HRESULT code, HRESULT(TREEVAULT_CALL* function)(Parameters...),
                std::type_identity_t<Parameters>... arguments) {
        const bool plain = code == S_OK || code == TREEVAULT_E_NOT_FOUND ||
                           code == TREEVAULT_E_INSUFFICIENT_BUFFER;
        EXPECT_TRUE(plain ? Returns<Parameters...>(code, function, arguments...)
                          : FailsWithRecord<Parameters...>(code, function, arguments...));
    }

    ModelNode& Remember(IACNode* handle) {
        Nodes.push_back(std::make_unique<ModelNode>());
        if (handle)
            Nodes.back()->Handles.push_back(handle);
        return *Nodes.back();
    }

    // Drops nodes that nothing holds any more; a parent's death frees its children.
    void Reap(ModelNode& node) {
        if (node.Parent || !node.Handles.empty())
            return;
        for (ModelNode* child : std::exchange(node.Children, {})) {
            child->Parent = nullptr;
            Reap(*child);
        }
        std::erase_if(Nodes, [&](const auto& each) { return each.get() == &node; });
    }

    void CreateOne() {
        const Text name = AnyNameOrPath(), type = AnyName();
        ModelNode model;
        const HRESULT code = ModelCreate(model, name);
        IACNode* handle = Untouched();
        Expect(code, AcnCreateNode, name.c_str(), type.c_str(), &handle);
        if (code != S_OK) {
            EXPECT_EQ(Untouched(), handle);
            return;
        }
        model.TypeName = type;
        model.Handles.push_back(handle);
        Nodes.push_back(std::make_unique<ModelNode>(std::move(model)));
    }

    ModelNode& CloneModel(const ModelNode& source, uint64_t depth, uint32_t flags) {
        ModelNode& clone = Remember(nullptr);
        clone.Name = source.Name;
        clone.ParentPath = source.ParentPath;
        clone.AtTop = source.AtTop;
        clone.TypeName = source.TypeName;
        clone.Table = source.Table;
        if (flags & CloneOwnAttributes)
            clone.OwnTable();
        if (depth != 0)
            for (const ModelNode* child : source.Children) {
                ModelNode& copy =
                    CloneModel(*child, depth == TREEVAULT_ALL_LEVELS ? depth : depth - 1, flags);
                copy.Parent = &clone;
                clone.Children.push_back(&copy);
            }
        return clone;
    }

    void CloneOne(ModelNode& node) {
        static constexpr uint64_t depths[] = {0,          1,           2, TREEVAULT_ALL_LEVELS,
                                              0x80000000, ~uint64_t(0)};
        const uint64_t depth = depths[Below(std::size(depths))];
        const auto flags = static_cast<uint32_t>(Below(4));
        IACNode* handle = Untouched();
        Expect(S_OK, AcnCloneNode, node.Handles[0], depth, flags, &handle);
        CloneModel(node, depth, flags).Handles.push_back(handle);
    }

    void CloseOne(ModelNode& node) {
        AcnCloseNodeHandle(node.Handles.back());
        node.Handles.pop_back();
        Reap(node);
    }

    void Rename(ModelNode& node) {
        const auto kind = static_cast<NodeNameKind>(Below(Chance(20) ? 5 : 3));
        const Text name = AnyNewName(node, kind);
        const bool null = Chance(30);
        const HRESULT code = ModelSetName(node, kind, null ? Text() : name);
        Expect(code, AcnSetNodeName, node.Handles[0], kind, null ? nullptr : name.c_str());
    }

    void Retype(ModelNode& node) {
        const Text type = AnyName();
        Expect(S_OK, AcnSetNodeType, node.Handles[0], type.c_str());
        node.TypeName = type;
    }

    void SetOne(ModelNode& node) {
        HRESULT code;
        const Text name = AnyNameOrPath();
        const Value value = AnyValue(code);
        Expect(code, AcnSetAttribute, node.Handles[0], name.c_str(), value.Tag, value.Bytes.data(),
               value.Bytes.size());
        if (code != S_OK)
            return;
        node.OwnTable();
        (*node.Table)[name] = {value, true};
    }

    void DeleteOne(ModelNode& node) {
        if (Chance(6)) {
            Expect(S_OK, AcnDeleteAttribute, node.Handles[0], nullptr);
            node.Table.reset();
            return;
        }
        const Text name = AnyName();
        node.OwnTable();
        Expect(node.Table->erase(name) ? S_OK : TREEVAULT_E_NOT_FOUND, AcnDeleteAttribute,
               node.Handles[0], name.c_str());
    }

    void ReadOne(ModelNode& node) {
        const Text name = AnyName();
        const auto* found =
            node.Table && node.Table->contains(name) ? &node.Table->at(name) : nullptr;
        const size_t needed = found ? found->Content.Bytes.size() : 0;
        char buffer[100];
        const size_t capacity = Below(sizeof buffer);
        size_t size = capacity;
        ValueType stored = 0x7777;
        const HRESULT code = !found              ? TREEVAULT_E_NOT_FOUND
                             : needed > capacity ? TREEVAULT_E_INSUFFICIENT_BUFFER
                                                 : S_OK;
        Expect(code, AcnGetAttribute, node.Handles[0], name.c_str(), nullptr, buffer, &size,
               &stored);
        EXPECT_EQ(found ? needed : capacity, size);
        EXPECT_EQ(found ? found->Content.Tag : 0x7777, stored);
        if (code == S_OK) {
            EXPECT_EQ(found->Content.Bytes, std::string(buffer, size));
        }
    }

    // The attributes that a name, or null for all, stands for.
    std::vector<ModelAttribute*> Range(ModelNode& node, const Text* name) {
        std::vector<ModelAttribute*> range;
        if (node.Table)
            for (auto& [key, attribute] : *node.Table)
                if (!name || key == *name)
                    range.push_back(&attribute);
        return range;
    }

    void Mark(ModelNode& node) {
        const Text name = AnyName();
        const Text* chosen = Chance(3) ? nullptr : &name;
        const uint32_t state = Below(3) == 0 ? 0 : static_cast<uint32_t>(Random());
        const auto range = Range(node, chosen);
        Expect(node.Table && range.empty() ? TREEVAULT_E_NOT_FOUND : S_OK, AcnSetModifiedState,
               node.Handles[0], chosen ? chosen->c_str() : nullptr, state);
        for (ModelAttribute* attribute : range)
            attribute->Modified = state != 0;
    }

    void AskMark(ModelNode& node) {
        const Text name = AnyName();
        const Text* chosen = Chance(3) ? nullptr : &name;
        const auto range = Range(node, chosen);
        const bool missing = range.empty() && (node.Table || chosen);
        uint32_t state = 77;
        Expect(missing ? TREEVAULT_E_NOT_FOUND : S_OK, AcnGetModifiedState, node.Handles[0],
               chosen ? chosen->c_str() : nullptr, &state);
        const bool any = std::any_of(range.begin(), range.end(),
                                     [](const auto* attribute) { return attribute->Modified; });
        EXPECT_EQ(missing ? 77u : any ? 1u : 0u, state);
    }

    void Add(ModelNode& node) {
        ModelNode& child = AnyNode();
        if (!child.Parent && node.IsBelowOrSame(&child))
            return; // a cycle is a breach of contract
        const HRESULT code = child.Parent            ? TREEVAULT_E_HAS_PARENT
                             : node.Find(child.Name) ? TREEVAULT_E_CHILD_EXISTS
                                                     : S_OK;
        Expect(code, AcnAddChild, node.Handles[0], child.Handles[0]);
        if (code != S_OK)
            return;
        child.Parent = &node;
        node.Children.push_back(&child);
        node.RePathChildren();
    }

    void Remove(ModelNode& node) {
        ModelNode& child = AnyNode();
        ModelNode& parent =
            child.Parent && !child.Parent->Handles.empty() && !Chance(4) ? *child.Parent : node;
        const bool found = child.Parent == &parent;
        Expect(found ? S_OK : TREEVAULT_E_NOT_FOUND, AcnRemoveChild, parent.Handles[0],
               child.Handles[0]);
        if (found)
            child.Detach();
    }

    void RemoveAt(ModelNode& node) {
        const size_t index = Below(node.Children.size() + 1);
        const bool found = index < node.Children.size();
        Expect(found ? S_OK : TREEVAULT_E_NOT_FOUND, AcnRemoveChildByIndex, node.Handles[0], index);
        if (!found)
            return;
        ModelNode& child = *node.Children[index];
        child.Detach();
        Reap(child);
    }

    void Hold(ModelNode* node, IACNode* handle) {
        if (!node) {
            EXPECT_EQ(Untouched(), handle);
            return;
        }
        if (!node->Handles.empty()) {
            EXPECT_EQ(node->Handles[0], handle);
        }
        node->Handles.push_back(handle);
    }

    void FindOne(ModelNode& node) {
        IACNode* handle = Untouched();
        ModelNode* found = nullptr;
        if (Chance(2)) {
            const Text name = AnyName();
            found = node.Find(name);
            Expect(found ? S_OK : TREEVAULT_E_NOT_FOUND, AcnGetChildByName, node.Handles[0],
                   name.c_str(), &handle);
        } else {
            const size_t index = Below(node.Children.size() + 1);
            found = index < node.Children.size() ? node.Children[index] : nullptr;
            Expect(found ? S_OK : TREEVAULT_E_NOT_FOUND, AcnGetChildByIndex, node.Handles[0], index,
                   &handle);
        }
        Hold(found, handle);
    }

    void FindParent(ModelNode& node) {
        IACNode* handle = Untouched();
        Expect(S_OK, AcnGetParent, node.Handles[0], &handle);
        if (node.Parent) {
            Hold(node.Parent, handle);
        } else {
            EXPECT_EQ(nullptr, handle);
        }
    }

    void Step() {
        if (Nodes.empty() || (Nodes.size() < MostNodes && Chance(12)))
            return CreateOne();
        ModelNode& node = AnyNode();
        if (Nodes.size() > MostNodes || node.Handles.size() > 3)
            return CloseOne(node);
        using Action = void (NodeModel::*)(ModelNode&);
        static constexpr Action actions[] = {
            &NodeModel::CloneOne, &NodeModel::CloseOne,  &NodeModel::Rename,
            &NodeModel::Rename,   &NodeModel::Retype,    &NodeModel::SetOne,
            &NodeModel::SetOne,   &NodeModel::SetOne,    &NodeModel::DeleteOne,
            &NodeModel::ReadOne,  &NodeModel::Mark,      &NodeModel::AskMark,
            &NodeModel::Add,      &NodeModel::Add,       &NodeModel::Add,
            &NodeModel::Remove,   &NodeModel::RemoveAt,  &NodeModel::FindOne,
            &NodeModel::FindOne,  &NodeModel::FindParent};
        (this->*actions[Below(std::size(actions))])(node);
    }

    // --- Comparison ------------------------------------------------------------------------------

    void CompareAttributes(const ModelNode& model, IACNode* node) {
        Names names, modified;
        EXPECT_EQ(!model.Table           ? Table::None
                  : model.Table->empty() ? Table::Empty
                                         : Table::Filled,
                  TableOf(node));
        if (model.Table)
            for (const auto& [name, attribute] : *model.Table) {
                names.push_back(name);
                if (attribute.Modified)
                    modified.push_back(name);
                EXPECT_EQ(attribute.Content, Get(node, name.c_str()));
            }
        EXPECT_EQ(names, AttributeNames(node));
        EXPECT_EQ(modified, ModifiedNames(node));
    }

    // Returns the number of nodes of the tree.
    size_t CompareTree(const ModelNode& model, IACNode* node) {
        EXPECT_EQ(model.Name, Name(node));
        EXPECT_EQ(model.ParentPath, ParentPath(node));
        EXPECT_EQ(model.Path(), Path(node));
        EXPECT_EQ(model.TypeName, Type(node));
        CompareAttributes(model, node);
        EXPECT_EQ(model.Children.size(), ChildCount(node));
        size_t count = 1;
        for (size_t i = 0; i < model.Children.size() && !HasFailure(); ++i) {
            const ModelNode& child = *model.Children[i];
            const Node real = ChildAt(node, i);
            for (IACNode* handle : child.Handles)
                EXPECT_EQ(handle, real.Get());
            EXPECT_EQ(real.Get(), FindChild(node, child.Name.c_str()).Get());
            EXPECT_EQ(node, Parent(real).Get());
            count += CompareTree(child, real);
        }
        return count;
    }

    void CompareAll() {
        size_t count = 0;
        for (const auto& node : Nodes)
            if (!node->Parent) {
                EXPECT_EQ(nullptr, Parent(node->Handles.at(0)).Get());
                count += CompareTree(*node, node->Handles.at(0));
            }
        EXPECT_EQ(Nodes.size(), count);
        EXPECT_EQ(Nodes.size(), static_cast<size_t>(Made()));
    }

    void CloseAll() {
        for (const auto& node : Nodes)
            for (IACNode* handle : node->Handles)
                AcnCloseNodeHandle(handle);
        Nodes.clear();
    }

    std::mt19937_64 Random;
    std::vector<std::unique_ptr<ModelNode>> Nodes;
};

TEST_F(NodeModel, RandomCalls) {
    const uint64_t seed = FromEnvironment("TREEVAULT_TEST_SEED", std::random_device()());
    const uint64_t steps = FromEnvironment("TREEVAULT_TEST_STEPS", 100000);
    std::cout << "TREEVAULT_TEST_SEED=" << seed << " TREEVAULT_TEST_STEPS=" << steps << std::endl;
    Random.seed(seed);
    for (uint64_t step = 1; step <= steps && !HasFailure(); ++step) {
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", step " << step);
        Step();
        if (step % StepsBetweenComparisons == 0 || step == steps || HasFailure())
            CompareAll();
    }
    CloseAll();
}

} // namespace
} // namespace treevault::tests
