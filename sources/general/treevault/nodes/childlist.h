// SPDX-License-Identifier: MIT
// The children of a node: in the order of their adding, and by name. A node without children pays
// one pointer for it.
#ifndef TREEVAULT_NODES_CHILDLIST_H
#define TREEVAULT_NODES_CHILDLIST_H

#include "general/treevault/nodes/childindex.h"

#include <algorithm>
#include <span>
#include <vector>

namespace treevault {

// Guarded by the lock of the parent. It holds two references to each child, one for each list, and
// leaves their counting to the parent.
class ChildList {
public:
    size_t Size() const noexcept { return Lists ? Lists->Children.size() : 0; }
    std::span<CACNodeImpl* const> InOrder() const noexcept {
        return Lists ? std::span<CACNodeImpl* const>(Lists->Children)
                     : std::span<CACNodeImpl* const>();
    }
    CACNodeImpl* operator[](size_t index) const noexcept { return Lists->Children[index]; }

    // Null when there is no child of that name.
    CACNodeImpl* Find(WideView name) const noexcept {
        return Lists ? Lists->ChildrenByName.Find(name) : nullptr;
    }

    // Makes room for so many more, so that Append cannot fail.
    void Reserve(size_t more) {
        if (!Lists)
            Lists = std::make_unique<Both>();
        std::vector<CACNodeImpl*>& children = Lists->Children;
        if (children.capacity() - children.size() < more)
            children.reserve(std::max({children.size() + more, 2 * children.size(), size_t{4}}));
        Lists->ChildrenByName.Reserve(more);
    }

    // There must be room, and no child of that name.
    void Append(WideView name, CACNodeImpl* child) noexcept {
        Lists->ChildrenByName.Insert(name, child);
        Lists->Children.push_back(child);
    }

    void Erase(size_t index, WideView name) noexcept {
        Lists->ChildrenByName.Erase(name, Lists->Children[index]);
        Lists->Children.erase(Lists->Children.begin() + static_cast<ptrdiff_t>(index));
    }

    // There must be room for one more.
    void Rename(WideView oldName, WideView newName, CACNodeImpl* child) noexcept {
        Lists->ChildrenByName.Insert(newName, child);
        Lists->ChildrenByName.Erase(oldName, child);
    }

    void Clear() noexcept { Lists.reset(); }

private:
    struct Both {
        std::vector<CACNodeImpl*> Children;
        ChildIndex ChildrenByName;
    };

    std::unique_ptr<Both> Lists; // null before the first child
};

} // namespace treevault

#endif
