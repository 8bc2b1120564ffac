// SPDX-License-Identifier: MIT
// The same forms with vector instructions, checked as the library must check them: digits must be
// digits, and ASCII must be ASCII. For x86-64 processors, which all have SSSE3 by now.
#ifndef TREEVAULT_BENCHMARKS_VECTORFORMS_H
#define TREEVAULT_BENCHMARKS_VECTORFORMS_H

#include "plainforms.h"

#include <cstddef>
#include <cstdint>

namespace treevault::benchmarks {

// Lower-case digits.
void FormatHexByVectors(const uint8_t* bytes, size_t size, char* text);

// False for what is no pair of digits.
bool ParseHexByVectors(const char* text, size_t size, uint8_t* bytes);

// False, with an unspecified target, for text that is not ASCII.
bool WidenByVectors(const char* text, size_t length, WCHAR* wide);
bool NarrowByVectors(const WCHAR* wide, size_t length, char* text);

} // namespace treevault::benchmarks

#endif
