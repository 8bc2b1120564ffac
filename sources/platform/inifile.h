// SPDX-License-Identifier: MIT
// One value of an ini file, read afresh at each call.
#ifndef TREEVAULT_PLATFORM_INIFILE_H
#define TREEVAULT_PLATFORM_INIFILE_H

#include "platform/widetext.h"

namespace treevault {

// Looks `key` of `section` up in the file at `path`. Section and key names are compared without
// regard to case, the first occurrence wins, a pair of quotes around a value is taken off. False,
// with `value` untouched, when the file, the section or the key is missing or the value is empty.
// Files may be UTF-8 or UTF-16 with a byte order mark.
bool ReadIniValue(const WideText& path, const WideText& section, const WideText& key,
                  WideText& value);

} // namespace treevault

#endif
