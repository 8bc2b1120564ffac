// SPDX-License-Identifier: MIT
// Nodes in log lines.
#ifndef TREEVAULT_PRESENTATION_NODELOGVIEW_H
#define TREEVAULT_PRESENTATION_NODELOGVIEW_H

#include "common/logging.h"

#include <treevault/nodes.h>

namespace treevault {

// The XML text of a node and, if `deep`, of its subtree, behind "ACNode[address]:" and without the
// outer element; "ACNode[<null>]" for null. Failures are raised.
WideText NodeToText(IACNode* node, bool deep);

// A line of a label and a node with its subtree.
void LogNode(uint32_t severity, const WCHAR* label, IACNode* node,
             SourcePlace place = SourcePlace::Here());

// A line at SeverityDbg2 of a label and the address of a group or context.
void LogPointer(const WCHAR* label, const void* pointer, SourcePlace place = SourcePlace::Here());

} // namespace treevault

#endif
