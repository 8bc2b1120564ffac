// SPDX-License-Identifier: MIT
// The text form of binaries: "HEX:" and lower-case digits; "HEX:" and "B64:" are read.
#ifndef TREEVAULT_VALUES_VTCONVBLOB_H
#define TREEVAULT_VALUES_VTCONVBLOB_H

#include "general/treevault/values/outputcursor.h"

#include <treevault/platform.h>

namespace treevault {

// Writes the text with its terminator in one write. Raises 0x80070057 when it has more than 32 bits
// of size.
template <class Char>
void BinaryToString(const void* data, uint64_t size, OutputCursor& out);

// Writes the bytes that a zero-terminated text stands for.
//
// Under "HEX:" pairs of digits of either case, with ASCII white space between the pairs and at the
// ends. Under "B64:" groups of four characters, padded where needed, with white space anywhere, and
// with or without a "-----BEGIN ...-----" line and its "-----END ...-----".
//
// Raises 0x80040204 for anything else, and logs why at severity ERR.
template <class Char>
void StringToBinary(const Char* text, OutputCursor& out);

extern template void BinaryToString<char>(const void*, uint64_t, OutputCursor&);
extern template void BinaryToString<WCHAR>(const void*, uint64_t, OutputCursor&);
extern template void StringToBinary(const char*, OutputCursor&);
extern template void StringToBinary(const WCHAR*, OutputCursor&);

} // namespace treevault

#endif
