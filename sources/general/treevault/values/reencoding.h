// SPDX-License-Identifier: MIT
// Text from one encoding to the other, by length, terminators and other NULs included.
#ifndef TREEVAULT_VALUES_REENCODING_H
#define TREEVAULT_VALUES_REENCODING_H

#include "general/treevault/values/outputcursor.h"
#include "platform/widetext.h"

#include <string_view>

namespace treevault {

// Each is one write. Malformed input never fails. Raises 0x80070057 for a result of more than 32
// bits of size and 0x8007000E when memory runs out.
void WriteAsWide(std::string_view utf8, OutputCursor& out);
void WriteAsNarrow(WideView wide, OutputCursor& out);

} // namespace treevault

#endif
