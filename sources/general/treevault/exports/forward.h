// SPDX-License-Identifier: MIT
// The form of a thin export.
#ifndef TREEVAULT_EXPORTS_FORWARD_H
#define TREEVAULT_EXPORTS_FORWARD_H

#include <treevault/platform.h>

namespace treevault {

// Calls an operation of the object behind a handle; E_POINTER for a null one, and nothing else.
template <class Interface, class... Parameters, class... Arguments>
HRESULT Forward(Interface* handle, HRESULT (TREEVAULT_CALL Interface::*operation)(Parameters...),
                Arguments... arguments) {
    return handle ? (handle->*operation)(arguments...) : E_POINTER;
}

} // namespace treevault

#endif
