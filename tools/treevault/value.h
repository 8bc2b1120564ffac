// SPDX-License-Identifier: MIT
// Typed values, and the names of their types on the command line and on the screen.
#ifndef TREEVAULT_PROGRAM_VALUE_H
#define TREEVAULT_PROGRAM_VALUE_H

#include "widetext.h"

#include <treevault/treevault.h>

#include <string>
#include <vector>

namespace treevault::program {

struct Value {
    ValueType Type;
    std::string Bytes;
};

// Throws DataFailure with the text of the library's failure.
Value Converted(const Value& value, ValueType type);

inline bool IsArray(ValueType type) {
    return (type & VtArray) != 0;
}

// "Int32", or "Int32[]" for an array.
std::string TypeName(ValueType type);

// Takes "Int32" and "VtInt32", "Int32[]" and "VtInt32Array", in any case of letters. Throws
// UsageFailure.
ValueType ParseTypeName(const std::string& name);

// The value of an attribute, converted. Throws DataFailure.
Value ReadAttribute(IACNode* node, const WideText& name, ValueType wanted);

// The type of an attribute.
ValueType ReadAttributeType(IACNode* node, const WideText& name);

// The text of a VtStringW, or the elements of a VtStringWArray.
std::vector<WideText> Texts(const Value& value);

// Takes apart texts that lie back to back, each with its terminator.
std::vector<WideText> SplitTexts(const WideText& all);

} // namespace treevault::program

#endif
