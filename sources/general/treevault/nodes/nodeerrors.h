// SPDX-License-Identifier: MIT
// Failures that concern a named attribute or child of a node.
#ifndef TREEVAULT_NODES_NODEERRORS_H
#define TREEVAULT_NODES_NODEERRORS_H

#include <treevault/nodes.h>

namespace treevault {

// Sets a record of `hr` with the context " (key='value'; NodePath='path')", of which whatever is
// null or empty is left out; a value without a key stands alone. Returns `hr`, whatever happens.
HRESULT ReportNodeError(HRESULT hr, IACNode* node, const WCHAR* key, const WCHAR* value) noexcept;

} // namespace treevault

#endif
