// SPDX-License-Identifier: MIT
// What a client gives to be stored.
#ifndef TREEVAULT_STORAGE_GIVENNODE_H
#define TREEVAULT_STORAGE_GIVENNODE_H

#include "general/treevault/storage/anynode.h"
#include "general/treevault/storage/nodemaking.h"

#include <variant>

namespace treevault {

// A node, or only the content of a leaf until its clone is needed.
class GivenNode {
public:
    // The node itself, with all that its client does to it until it is stored.
    static GivenNode Share(IACNode* node) { return GivenNode(AnyNode::Share(node), false); }

    // The node with all below it as it is now. Raises E_POINTER for null. Where the log or the
    // tracker of live components is told of each node, the clone of a leaf is not put off.
    static GivenNode Clone(IACNode* node) {
        if (node && !WasSeverityEnabled(SeverityDbg3) && !IsAliveObjectsTrackingEnabled()) {
            NodeContent leaf;
            const Ref<CACNodeImpl> own = CACNodeImpl::TryGetImpl(node);
            if (own && own->GetLeafContent(leaf))
                return GivenNode(std::move(leaf), true);
        }
        return GivenNode(AnyNode(CloneNode(node, TREEVAULT_ALL_LEVELS)), true);
    }

    // Made for the storage, which may attach it as it is.
    bool IsClone() const noexcept { return Cloned; }

    // Null if there is a node.
    const NodeContent* Leaf() const noexcept { return std::get_if<NodeContent>(&Held); }

    // Makes the clone of a leaf; Leaf() is null then, and what it pointed to is gone.
    const AnyNode& Node() {
        if (const NodeContent* const leaf = Leaf())
            Held = AnyNode(MakeComponent<CACNodeImpl>(leaf->Path.Above, leaf->Path.Name,
                                                      leaf->Attributes, leaf->TypeName));
        return *std::get_if<AnyNode>(&Held);
    }

private:
    GivenNode(std::variant<AnyNode, NodeContent>&& held, bool cloned)
        : Held(std::move(held)), Cloned(cloned) {}

    std::variant<AnyNode, NodeContent> Held;
    bool Cloned;
};

} // namespace treevault

#endif
