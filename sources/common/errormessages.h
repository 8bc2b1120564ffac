// SPDX-License-Identifier: MIT
// Readable texts of bare codes.
#ifndef TREEVAULT_COMMON_ERRORMESSAGES_H
#define TREEVAULT_COMMON_ERRORMESSAGES_H

#include "platform/widetext.h"

namespace treevault {

// The platform's text for the code, without the full stop and line break at its end, or
// "<no description>". Never empty.
WideText GetErrorMessage(HRESULT code);

} // namespace treevault

#endif
