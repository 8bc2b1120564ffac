// SPDX-License-Identifier: MIT
// The walk over a node and what lies below it, for a visitor.
#ifndef TREEVAULT_XML_NODEWALK_H
#define TREEVAULT_XML_NODEWALK_H

#include "general/treevault/xml/nodevisitor.h"

#include <cstdint>
#include <vector>

namespace treevault {

// How to walk, and the buffers that serve all nodes of a context. Attributes come in the order of
// their names, which is the order in which nodes keep them.
struct NodeWalkOptions {
    NodeWalkOptions() {
        NameBuffer.reserve(256);
        ValueBuffer.reserve(256);
    }

    bool IncludeAttributes = true;
    bool ConvertValues = true;                // attributes come as text
    bool FullPathForRoots = false;            // the node where a walk begins is named by its path
    ValueType TextType = VtStringA;           // what a scalar is converted to
    ValueType TextArrayType = VtStringAArray; // what an array is converted to
    WideText NameBuffer;
    std::vector<uint8_t> ValueBuffer;
};

// Walks `node` and `depth` levels below it; TREEVAULT_ALL_LEVELS is the one depth that is not
// counted down. A node is locked until everything below it is done, the parent before the child.
// Nesting costs heap and no stack. Raises E_NOINTERFACE for a node of another implementation, and
// what the visitor or a conversion raises; all locks are free then.
void WalkNode(NodeWalkOptions& options, INodeVisitor& visitor, IACNode* node, uint64_t depth,
              bool usePath);

} // namespace treevault

#endif
