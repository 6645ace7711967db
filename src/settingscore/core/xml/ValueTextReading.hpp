// The reading rule of settings file value text: how the text of a "value", "min", "max" or
// "choices" element becomes a value of the type its type element names ("int8" ... "string").
#pragma once

#include <string>

namespace settings {
namespace core {
namespace detail {

// The type word of the scalar T in settings files: "int8", "uint8", ..., "bool", "string".
template <class T>
const char* typeWordOf();

// `text` read as a T, for the twelve scalar types of the value layer:
// - integers: the decimal text by lexical cast to T; "int8" and "uint8" are cast to 16 bits
//   and then range checked, and that range check lies outside the failure translation, so an
//   out-of-range number raises boost::numeric::positive_overflow / negative_overflow;
// - "float" and "double": the locale-independent hluStrtod, which reads the longest numeric
//   prefix (so "1.5abc" reads 1.5); only a zero result is checked again by a strict lexical
//   cast, so that "abc" and "0abc" fail while "0" passes;
// - "bool": true for exactly "true" or "1", false for anything else, never a failure;
// - "string": the text as it stands.
// Numeric text is narrowed to UTF-8 first. A failed cast raises the message failure
// XMLParseErrorWrongValueForGivenType with (type word, text, the cast's reason).
template <class T>
T readValueText(const std::wstring& text);

// The length bound of a "string" key's "min" or "max" text: a decimal unsigned 32-bit number,
// failing as readValueText does with the type word "string".
unsigned readLengthBoundText(const std::wstring& text);

}  // namespace detail
}  // namespace core
}  // namespace settings
