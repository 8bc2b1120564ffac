// SPDX-License-Identifier: MIT
// Reading of trees. Depth costs memory and no stack.
#ifndef TREEVAULT_PROGRAM_TREEWALK_H
#define TREEVAULT_PROGRAM_TREEWALK_H

#include "handles.h"
#include "widetext.h"

#include <functional>
#include <vector>

namespace treevault::program {

// Called for each node before its children, with the level below the root (0: the root) and the
// number of its children.
using NodeVisitor = std::function<void(IACNode* node, uint64_t level, uint64_t childCount)>;

// Goes down to `depth` levels below the root. Throws DataFailure.
void WalkTree(NodeHandle root, uint64_t depth, const NodeVisitor& visit);

// Each throws DataFailure.
WideText NodeName(IACNode* node, NodeNameKind kind);
WideText NodeType(IACNode* node);
std::vector<WideText> AttributeNames(IACNode* node);

} // namespace treevault::program

#endif
