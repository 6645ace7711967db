// Values between the command line and the tree: the words a user typed read as a value of a
// key's declared type, and a stored value shown as JSON or as text.
#pragma once

#include <boost/any.hpp>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace tvsettings {

// The declared type code of an any-type key.
inline constexpr int anyTypeCode = 25;

// "string", "bool", "int8" ... "double" for codes 1 to 12, "any" for 25, "unknown" otherwise.
std::string typeNameOfCode(int typeCode);

// `words` as a value of declared type `typeCode`: a vector of that type when `asArray`, else
// the scalar of the one word. An any-type key takes text: one word is a string, several (or
// `asArray`) a vector of strings. A bool is "true", "false", "1" or "0". Throws ToolFailure
// (Refused) naming the word that is no value of the type and why.
boost::any parseValue(int typeCode, const std::vector<std::string>& words, bool asArray);

// null for no value; strings as UTF-8 text; bool; integers exact; float and double as the
// shortest decimal that reads back as the same number, non-finite ones as the strings "nan",
// "inf", "-inf"; vectors as arrays.
nlohmann::ordered_json valueToJson(const boost::any& value);

// For listings: strings quoted and escaped, arrays as "[a, b]", no value as "(undefined)".
std::string displayText(const nlohmann::ordered_json& value);

// For `get`: strings bare, one element per line for arrays, nothing for no value.
std::vector<std::string> plainLines(const nlohmann::ordered_json& value);

}  // namespace tvsettings
