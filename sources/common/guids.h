// SPDX-License-Identifier: MIT
// Identifiers: new ones, comparison, and their text forms.
#ifndef TREEVAULT_COMMON_GUIDS_H
#define TREEVAULT_COMMON_GUIDS_H

#include "platform/widetext.h"

#include <cstring>

namespace treevault {

inline bool SameGuid(const GUID& left, const GUID& right) noexcept {
    return std::memcmp(&left, &right, sizeof(GUID)) == 0;
}

// Whether an identifier may be used that came with the platform's `status`: also one that is unique
// on this machine only, unless it is all zero.
bool IsUsableGuid(int32_t status, const GUID& guid) noexcept;

// Raises the platform's code when no identifier can be made.
GUID NewGuid();

inline constexpr uint32_t GuidFormBraced = 0; // 38 characters in braces, upper case
inline constexpr uint32_t GuidFormPlain = 3;  // 36 characters, no braces, lower case

// Raises E_FAIL for any other form.
WideText GuidToString(const GUID& guid, uint32_t form);

} // namespace treevault

#endif
