// SPDX-License-Identifier: MIT
// New nodes for the storage. Failures are raised; the caller owns the reference.
#ifndef TREEVAULT_STORAGE_NODEMAKING_H
#define TREEVAULT_STORAGE_NODEMAKING_H

#include "common/errorhandling.h"
#include "general/treevault/nodes/acnodeimpl.h"

namespace treevault {

inline Ref<IACNode> CreateNode(const WCHAR* name, const WCHAR* type) {
    return Ref<IACNode>::Attach(MakeComponent<CACNodeImpl>(name, type).Detach());
}

// E_POINTER for a null node.
inline Ref<IACNode> CloneNode(IACNode* node, uint64_t depth) {
    CheckOutPointer(node);
    Ref<IACNode> clone;
    HRES{node->Clone(depth, 0, clone.Put())};
    return clone;
}

} // namespace treevault

#endif
