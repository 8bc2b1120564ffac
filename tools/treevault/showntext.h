// SPDX-License-Identifier: MIT
// Text from a document as a terminal may see it: nothing in it can steer the terminal or pass for
// something else.
#ifndef TREEVAULT_PROGRAM_SHOWNTEXT_H
#define TREEVAULT_PROGRAM_SHOWNTEXT_H

#include "widetext.h"

#include <limits>

namespace treevault::program {

inline constexpr size_t NoLimit = std::numeric_limits<size_t>::max();

// Controls and marks of direction as "\u{1B}", "\n", "\r" or "\t". At most `limit` code units are
// shown, and then "...".
std::string Escaped(WideView text, size_t limit = NoLimit);

// The same in double quotes, with '\' in front of '"' and '\'.
std::string Quoted(WideView text, size_t limit = NoLimit);

// As it is when there is nothing in it to mistake, quoted otherwise.
std::string Plain(WideView text);

} // namespace treevault::program

#endif
