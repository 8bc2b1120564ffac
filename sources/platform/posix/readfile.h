// SPDX-License-Identifier: MIT
// Small files, read as a whole.
#ifndef TREEVAULT_PLATFORM_POSIX_READFILE_H
#define TREEVAULT_PLATFORM_POSIX_READFILE_H

#include <cstddef>
#include <string>

namespace treevault {

// Appends the bytes of an ordinary file that has at most `limit` of them. False for anything else,
// such as a pipe or a device, for which it never waits.
bool ReadOrdinaryFile(const char* path, size_t limit, std::string& content);

} // namespace treevault

#endif
