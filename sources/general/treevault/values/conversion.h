// SPDX-License-Identifier: MIT
// The conversion engine: a matrix of small conversions selected by source and target tag, and a way
// through narrow text for pairs that have none. It keeps no state and runs on any thread.
//
// Raised are 0x80070057 (size above 32 bits), 0x80040203 (unsupported tag), 0x8007000D (bytes that
// don't fit their tag) and 0x80040204 (text that doesn't parse, or no way from source to target). A
// buffer may then hold a part of the result.
#ifndef TREEVAULT_VALUES_CONVERSION_H
#define TREEVAULT_VALUES_CONVERSION_H

#include "general/treevault/values/outputcursor.h"
#include "general/treevault/values/values.h"

#include <vector>

namespace treevault {

// Writes what fits into `buffer` (null counts only). `*needed`, if given, receives the size of the
// whole result, also where that is above `capacity`, which is no failure here.
void ConvertValue(const ValueView& source, ValueType target, void* buffer, uint64_t capacity,
                  uint64_t* needed);

// Converts into `buffer`, which grows as needed and is never shrunk, and binds `value` to it. The
// bytes of `value` are not to lie in `buffer`. A failure leaves `value` as it was.
void ConvertValueInPlace(ValueView& value, ValueType target, std::vector<uint8_t>& buffer);

// Directly, or else through narrow text. False when neither way exists. The cursor is touched only
// by the conversion that answers.
bool ConvertWithFallback(const ValueView& source, ValueType target, OutputCursor& out);

// One cell of the matrix. False when the pair has no conversion of its own.
bool ConvertDirect(const ValueView& source, ValueType target, OutputCursor& out);

} // namespace treevault

#endif
