// SPDX-License-Identifier: MIT
// What the test program has open, and how the system appends.
#ifndef TREEVAULT_TESTS_SUPPORT_OPENFILES_H
#define TREEVAULT_TESTS_SUPPORT_OPENFILES_H

#include <filesystem>

namespace treevault::tests {

bool IsOpen(const std::filesystem::path& file);

// Whether the system finds the end of a file and writes there in one step. An emulated Windows may
// take two, between which another writer fits.
bool AppendsWhole();

} // namespace treevault::tests

#endif
