// SPDX-License-Identifier: MIT
// Setting of variables on Linux.
#include "support/environment.h"

#include <cstdlib>

namespace treevault::tests {

void SetVariable(const char* name, const char* value) {
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

} // namespace treevault::tests
