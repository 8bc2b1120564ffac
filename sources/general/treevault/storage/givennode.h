// SPDX-License-Identifier: MIT
// What a client gives to be stored.
#ifndef TREEVAULT_STORAGE_GIVENNODE_H
#define TREEVAULT_STORAGE_GIVENNODE_H

#include "general/treevault/storage/anynode.h"
#include "general/treevault/storage/nodemaking.h"

namespace treevault {

// A node, or in place of the clone of a leaf its content, until a node is needed.
class GivenNode {
public:
    // The node itself, with all that its client does to it until it is stored.
    static GivenNode Share(IACNode* node) {
        GivenNode given;
        given.Whole = AnyNode::Share(node);
        return given;
    }

    // The node with all below it as it is now. Raises E_POINTER for null. The clone of a leaf is
    // told to the log where it is made, so it is not put off while that is listened to.
    static GivenNode Clone(IACNode* node) {
        GivenNode given;
        given.Cloned = true;
        if (node && !WasSeverityEnabled(SeverityDbg3)) {
            const Ref<CACNodeImpl> own = CACNodeImpl::TryGetImpl(node);
            if (own && own->GetLeafContent(given.Content))
                return given;
        }
        given.Whole = AnyNode(CloneNode(node, TREEVAULT_ALL_LEVELS));
        return given;
    }

    // Nobody but the storage knows it.
    bool IsClone() const noexcept { return Cloned; }

    // Null if there is a node.
    const NodeContent* Leaf() const noexcept { return Content.Path ? &Content : nullptr; }

    // From now on it is this node.
    const AnyNode& Node() {
        if (Leaf())
            Whole = AnyNode(MakeComponent<CACNodeImpl>(std::exchange(Content, NodeContent())));
        return Whole;
    }

private:
    GivenNode() = default;

    AnyNode Whole;
    NodeContent Content;
    bool Cloned = false;
};

} // namespace treevault

#endif
