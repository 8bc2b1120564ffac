// SPDX-License-Identifier: MIT
// What a piece of the library raises.
#ifndef TREEVAULT_TESTS_VALUES_RAISETESTING_H
#define TREEVAULT_TESTS_VALUES_RAISETESTING_H

#include "common/errorhandling.h"

namespace treevault::tests {

// The code that `body` raises; S_OK when it raises nothing.
template <class Body>
HRESULT Raised(Body&& body) {
    try {
        body();
    } catch (const HRX& failure) {
        return failure.Code;
    }
    return S_OK;
}

} // namespace treevault::tests

#endif
