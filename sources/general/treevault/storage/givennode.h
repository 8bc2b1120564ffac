// SPDX-License-Identifier: MIT
// What a client gives to be stored.
#ifndef TREEVAULT_STORAGE_GIVENNODE_H
#define TREEVAULT_STORAGE_GIVENNODE_H

#include "general/treevault/storage/anynode.h"
#include "general/treevault/storage/nodemaking.h"

#include <variant>

namespace treevault {

// A node, or in place of the clone of a leaf its content, until a node is needed.
class GivenNode {
public:
    // The node itself, with all that its client does to it until it is stored.
    static GivenNode Share(IACNode* node) { return GivenNode(AnyNode::Share(node), false); }

    // The node with all below it as it is now. Raises E_POINTER for null. The clone of a leaf is
    // told to the log where it is made, so it is not put off while that is listened to.
    static GivenNode Clone(IACNode* node) {
        if (node && !WasSeverityEnabled(SeverityDbg3)) {
            NodeContent leaf;
            const Ref<CACNodeImpl> own = CACNodeImpl::TryGetImpl(node);
            if (own && own->GetLeafContent(leaf))
                return GivenNode(std::move(leaf), true);
        }
        return GivenNode(AnyNode(CloneNode(node, TREEVAULT_ALL_LEVELS)), true);
    }

    // Nobody but the storage knows it.
    bool IsClone() const noexcept { return Cloned; }

    // Null if there is a node.
    const NodeContent* Leaf() const noexcept { return std::get_if<NodeContent>(&Held); }

    // From now on it is this node.
    const AnyNode& Node() {
        if (const NodeContent* const leaf = Leaf())
            Held = AnyNode(MakeComponent<CACNodeImpl>(leaf->Path.Above, leaf->Path.Name,
                                                      leaf->Attributes, leaf->TypeName));
        return *std::get_if<AnyNode>(&Held);
    }

private:
    template <class What>
    GivenNode(What&& what, bool cloned) : Held(std::move(what)), Cloned(cloned) {}

    std::variant<AnyNode, NodeContent> Held;
    bool Cloned;
};

} // namespace treevault

#endif
