// SPDX-License-Identifier: MIT
// Readable texts of bare codes.
#ifndef TREEVAULT_COMMON_ERRORMESSAGES_H
#define TREEVAULT_COMMON_ERRORMESSAGES_H

#include "platform/widetext.h"

namespace treevault {

// The text of the code, without full stops and line breaks at its end: for a code in the range of
// the library's own from the message modules, for any other from the system or else from the
// fallback modules; "<no description>" when nobody knows it. Never empty. The first answer of the
// process is kept. May be called at any moment, also while the library is loaded or unloaded.
WideText GetErrorMessage(HRESULT code);

} // namespace treevault

#endif
