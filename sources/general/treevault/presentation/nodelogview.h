// SPDX-License-Identifier: MIT
// Nodes as readable text, for log lines and for clients, less what must not be shown.
#ifndef TREEVAULT_PRESENTATION_NODELOGVIEW_H
#define TREEVAULT_PRESENTATION_NODELOGVIEW_H

#include "common/logging.h"
#include "common/ref.h"

#include <treevault/nodes.h>

#include <cstdint>

namespace treevault {

// One showing of a node, and of its subtree if `deep`. It shows the node itself, or a clone whose
// hidden attributes are masked if there are any; the node is never changed. Failures are raised.
class NodeLogView {
public:
    // The node may be null.
    NodeLogView(IACNode* node, bool deep);

    // The XML text of the node, named by its path, behind "ACNode[address]:" and without the outer
    // element; "ACNode[<null>]" for null. More than `most` bytes of XML raise std::bad_alloc.
    WideText ToText(size_t most = SIZE_MAX) const;

private:
    Ref<IACNode> Node;
    uint32_t Depth;
};

// A line of a label and a node with its subtree. A node that cannot be shown leaves the label.
void LogNode(uint32_t severity, const WCHAR* label, IACNode* node,
             SourcePlace place = SourcePlace::Here());

// A line at SeverityDbg2 of a label and the address of a group or context.
void LogPointer(const WCHAR* label, const void* pointer, SourcePlace place = SourcePlace::Here());

} // namespace treevault

#endif
