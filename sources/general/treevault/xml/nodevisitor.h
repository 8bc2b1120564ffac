// SPDX-License-Identifier: MIT
// What a walk over nodes tells about each of them.
#ifndef TREEVAULT_XML_NODEVISITOR_H
#define TREEVAULT_XML_NODEVISITOR_H

#include "general/treevault/values/values.h"
#include "platform/widetext.h"

#include <treevault/nodes.h>

namespace treevault {

// Called with the node's lock held. Texts and values are borrowed for the call. What an operation
// raises ends the walk.
struct INodeVisitor {
    // `name` is the short name or, where the walk was told so, the path.
    virtual void BeginNode(IACNode* node, WideView name, WideView type) = 0;

    // `value` may have been converted; `storedType` is the tag that the node keeps.
    virtual void Attribute(IACNode* node, WideView name, const ValueView& value,
                           ValueType storedType) = 0;

    // Comes behind the node's attributes and children.
    virtual void EndNode(IACNode* node) = 0;

protected:
    ~INodeVisitor() = default;
};

} // namespace treevault

#endif
