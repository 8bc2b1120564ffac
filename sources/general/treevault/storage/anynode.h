// SPDX-License-Identifier: MIT
// A node as the storage holds it, which may be a client's own.
#ifndef TREEVAULT_STORAGE_ANYNODE_H
#define TREEVAULT_STORAGE_ANYNODE_H

#include "general/treevault/nodes/acnodeimpl.h"

namespace treevault {

// A reference to a node, or none. Asks the node but once whether it is one of the library.
class AnyNode {
public:
    AnyNode() noexcept = default;
    explicit AnyNode(Ref<IACNode> node)
        : Node(std::move(node)), Impl(Node ? CACNodeImpl::TryGetImpl(Node.Get()).Get() : nullptr) {}
    explicit AnyNode(Ref<CACNodeImpl> node) noexcept
        : Node(Ref<IACNode>::Attach(node.Get())), Impl(node.Detach()) {}

    // Adds a reference, which a node of the library brings along with its answer. None for null.
    static AnyNode Share(IACNode* node) {
        if (Ref<CACNodeImpl> own = node ? CACNodeImpl::TryGetImpl(node) : Ref<CACNodeImpl>())
            return AnyNode(std::move(own));
        AnyNode foreign;
        foreign.Node = Ref<IACNode>::Share(node);
        return foreign;
    }

    IACNode* Get() const noexcept { return Node.Get(); }
    IACNode* operator->() const noexcept { return Node.Get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(Node); }
    operator const Ref<IACNode>&() const noexcept { return Node; }
    Ref<IACNode> Take() && noexcept {
        Impl = nullptr;
        return std::move(Node);
    }

    // The same node as one of the library, or null.
    CACNodeImpl* Own() const noexcept { return Impl; }

private:
    Ref<IACNode> Node;
    CACNodeImpl* Impl = nullptr;
};

} // namespace treevault

#endif
