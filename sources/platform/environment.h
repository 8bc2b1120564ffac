// SPDX-License-Identifier: MIT
// Environment variables of the process.
#ifndef TREEVAULT_PLATFORM_ENVIRONMENT_H
#define TREEVAULT_PLATFORM_ENVIRONMENT_H

#include "platform/widetext.h"

namespace treevault {

// True and the value if the variable is set, also when it is set to nothing. Otherwise false, and
// `value` is untouched.
bool ReadEnvironment(const WideText& name, WideText& value);

// Replaces each "%NAME%" by the value of the variable; that of an unknown one stays as it stands.
WideText ExpandEnvironment(const WideText& text);

} // namespace treevault

#endif
