// SPDX-License-Identifier: MIT
// New identifiers.
#ifndef TREEVAULT_PLATFORM_GUIDSOURCE_H
#define TREEVAULT_PLATFORM_GUIDSOURCE_H

#include <treevault/platform.h>

namespace treevault {

// Fills `guid` with a fresh value. Returns the platform's status, 0 for success; statuses that tell
// that the value is unique on this machine only are left to the caller.
int32_t GenerateGuid(GUID& guid) noexcept;

} // namespace treevault

#endif
