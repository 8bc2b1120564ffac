// SPDX-License-Identifier: MIT
// The walk keeps the nodes that it is inside of on a stack of its own.
#include "general/treevault/xml/nodewalk.h"

#include "common/errorhandling.h"
#include "general/treevault/nodes/acnodeimpl.h"
#include "general/treevault/values/conversion.h"

namespace treevault {

namespace {

void WalkAttributes(NodeWalkOptions& options, INodeVisitor& visitor, CACNodeImpl& node) {
    const AttributeTable& attributes = node.AttributesUnderLock();
    for (const AttributeEntry& entry : attributes.Entries()) {
        const ValueType storedType = entry.Type;
        ValueView value{storedType, entry.Value.Data(), entry.Value.Size()};
        if (options.ConvertValues && storedType != options.TextType &&
            storedType != options.TextArrayType)
            ConvertValueInPlace(value,
                                IsArray(storedType) ? options.TextArrayType : options.TextType,
                                options.ValueBuffer);
        visitor.Attribute(&node, attributes.Name(entry), value, storedType);
    }
}

// The nodes from where the walk began down to where it is, each locked. They are unlocked in
// reverse order, also when the walk fails. A locked node keeps its children alive.
class LockedNodes {
public:
    LockedNodes() = default;
    LockedNodes(const LockedNodes&) = delete;
    LockedNodes& operator=(const LockedNodes&) = delete;
    ~LockedNodes() {
        while (!Nodes.empty())
            Pop();
    }

    struct Entry {
        CACNodeImpl* Node;
        uint64_t Depth; // levels to go below the node
        size_t NextChild;
    };

    void Push(CACNodeImpl* node, uint64_t depth) {
        Nodes.push_back({node, depth, 0});
        node->Lock.Enter();
    }

    void Pop() noexcept {
        CACNodeImpl* const node = Nodes.back().Node;
        Nodes.pop_back();
        node->Lock.Leave();
    }

    bool Empty() const noexcept { return Nodes.empty(); }
    Entry& Top() noexcept { return Nodes.back(); }

private:
    std::vector<Entry> Nodes;
};

void BeginNode(NodeWalkOptions& options, INodeVisitor& visitor, CACNodeImpl& node, bool usePath) {
    if (usePath)
        options.NameBuffer = node.FullPathUnderLock();
    visitor.BeginNode(&node, usePath ? WideView(options.NameBuffer) : node.ShortName(),
                      node.TypeUnderLock());
    if (options.IncludeAttributes)
        WalkAttributes(options, visitor, node);
}

} // namespace

void WalkNode(NodeWalkOptions& options, INodeVisitor& visitor, IACNode* node, uint64_t depth,
              bool usePath) {
    const Ref<CACNodeImpl> root = CACNodeImpl::GetImpl(node);
    LockedNodes inside;
    inside.Push(root.Get(), depth);
    BeginNode(options, visitor, *root, usePath);
    while (!inside.Empty()) {
        LockedNodes::Entry& top = inside.Top();
        const std::span<CACNodeImpl* const> children = top.Node->ChildrenUnderLock();
        if (top.Depth == 0 || top.NextChild == children.size()) {
            visitor.EndNode(top.Node);
            inside.Pop();
            continue;
        }
        CACNodeImpl* const child = children[top.NextChild++];
        inside.Push(child, top.Depth == TREEVAULT_ALL_LEVELS ? top.Depth : top.Depth - 1);
        BeginNode(options, visitor, *child, false);
    }
}

} // namespace treevault
