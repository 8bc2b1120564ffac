// SPDX-License-Identifier: MIT
// How many components live in the process.
#ifndef TREEVAULT_COMMON_COMPONENTS_COMPONENTCOUNT_H
#define TREEVAULT_COMMON_COMPONENTS_COMPONENTCOUNT_H

#include <atomic>
#include <cstdint>

namespace treevault {

// Beside the live components it counts the locks that clients put on the module.
inline constinit std::atomic<int32_t> ComponentCount{0};

} // namespace treevault

#endif
