// SPDX-License-Identifier: MIT
// Nodes without the values that must not be shown.
#ifndef TREEVAULT_PRESENTATION_MASKING_H
#define TREEVAULT_PRESENTATION_MASKING_H

#include "common/ref.h"
#include "general/treevault/presentation/hiddenattributes.h"

#include <treevault/nodes.h>

namespace treevault {

// The node itself if nothing down to `depth` levels below it is to be hidden, else a clone of those
// levels in which the values that `config` names are masked. Each node is locked for single calls
// only. Failures are raised, so that no value is shown because it could not be looked at.
Ref<IACNode> MaskHiddenAttributes(IACNode* node, uint64_t depth, const HiddenAttrsConfig& config);

} // namespace treevault

#endif
