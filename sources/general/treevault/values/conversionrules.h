// SPDX-License-Identifier: MIT
// The rules by which one element becomes an element of another kind. Each overload of Convert is
// one rule; a pair without an overload has no direct conversion. Scalars and arrays share the
// rules.
//
// Numbers are never range-checked. What cannot be done is raised as 0x80040204.
#ifndef TREEVAULT_VALUES_CONVERSIONRULES_H
#define TREEVAULT_VALUES_CONVERSIONRULES_H

#include "common/errorhandling.h"
#include "common/guids.h"
#include "general/treevault/values/elements.h"
#include "general/treevault/values/reencoding.h"
#include "general/treevault/values/textforms.h"
#include "general/treevault/values/vtconvblob.h"

namespace treevault {

// Names the target of a rule.
template <class Target>
struct Into {};

// Raises unless what a rule needs is there.
inline void Require(bool convertible) {
    if (!convertible)
        ThrowHr(TREEVAULT_E_CANNOT_CONVERT);
}

// Nothing to something: the zero value of the target.

template <class To>
void Convert(Empty, Into<To>, OutputCursor& out) {
    out.WriteObject(To{});
}

template <class Char>
void Convert(Empty, Into<TextElement<Char>>, OutputCursor& out) {
    out.WriteObject(Char{});
}

inline void Convert(Empty, Into<BinaryElement>, OutputCursor&) {}

template <class Element>
void Convert(Empty, Into<ArrayOf<Element>>, OutputCursor&) {}

// Something to nothing: only the zero value goes, and nothing is written.

template <NumberElement From>
void Convert(From value, Into<Empty>, OutputCursor&) {
    Require(value == 0);
}

inline void Convert(BoolByte value, Into<Empty>, OutputCursor&) {
    Require(value.Value == 0);
}

inline void Convert(const GUID& value, Into<Empty>, OutputCursor&) {
    Require(SameGuid(value, GUID{}));
}

inline void Convert(BinaryElement value, Into<Empty>, OutputCursor&) {
    Require(value.Size == 0);
}

template <class Char>
void Convert(TextElement<Char> text, Into<Empty>, OutputCursor&) {
    Require(text.Size == 1);
}

// Numbers and booleans.

// Cut to the low bits, or extended by the sign of the source.
template <NumberElement From, NumberElement To>
void Convert(From value, Into<To>, OutputCursor& out) {
    out.WriteObject(static_cast<To>(value));
}

template <NumberElement From>
void Convert(From value, Into<BoolByte>, OutputCursor& out) {
    out.WriteObject(BoolByte{value != 0});
}

inline void Convert(BoolByte value, Into<int32_t>, OutputCursor& out) {
    out.WriteObject(int32_t{value.Value != 0});
}

// The other three are inverted. Callers may see and keep this, so it stays.
template <NumberElement To>
void Convert(BoolByte value, Into<To>, OutputCursor& out) {
    out.WriteObject(To{value.Value == 0});
}

// To text.

template <NumberElement From, class Char>
void Convert(From value, Into<TextElement<Char>>, OutputCursor& out) {
    WriteNumber<Char>(value, out);
}

template <class Char>
void Convert(BoolByte value, Into<TextElement<Char>>, OutputCursor& out) {
    WriteBool<Char>(value.Value != 0, out);
}

template <class Char>
void Convert(BinaryElement value, Into<TextElement<Char>>, OutputCursor& out) {
    BinaryToString<Char>(value.Data, value.Size, out);
}

template <class Char>
void Convert(const GUID& value, Into<TextElement<Char>>, OutputCursor& out) {
    WriteGuid<Char>(value, out);
}

inline void Convert(NarrowElement text, Into<WideElement>, OutputCursor& out) {
    WriteAsWide({text.Units, text.Size}, out);
}

inline void Convert(WideElement text, Into<NarrowElement>, OutputCursor& out) {
    WriteAsNarrow({text.Units, text.Size}, out);
}

// From text, up to its first NUL.

template <class Char, NumberElement To>
void Convert(TextElement<Char> text, Into<To>, OutputCursor& out) {
    To value;
    Require(ParseNumber(text.Units, value));
    out.WriteObject(value);
}

template <class Char>
void Convert(TextElement<Char> text, Into<BoolByte>, OutputCursor& out) {
    bool value;
    Require(ParseBool(text.Units, value));
    out.WriteObject(BoolByte{value});
}

template <class Char>
void Convert(TextElement<Char> text, Into<BinaryElement>, OutputCursor& out) {
    StringToBinary(text.Units, out);
}

template <class Char>
void Convert(TextElement<Char> text, Into<GUID>, OutputCursor& out) {
    GUID value;
    Require(SUCCEEDED(StringToGuid(text.Units, text.Size, value)));
    out.WriteObject(value);
}

} // namespace treevault

#endif
