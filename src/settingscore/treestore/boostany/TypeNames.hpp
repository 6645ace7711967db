// The names of the supported types as messages and settings files spell them: "string",
// "bool", "int8" ... "double" for the scalars, "array of " + name for the vectors, "void" for
// no value.
#pragma once

#include <settingscore/treestore/boostany/SupportedTypes.hpp>

#include <boost/any.hpp>

#include <string>

namespace treestore {
namespace boostany {

namespace detail {

// Indexed by the position in ScalarTypes.
inline constexpr const char* ScalarTypeNames[] = {
    "string", "bool",   "int8",  "uint8",  "int16", "uint16",
    "int32",  "uint32", "int64", "uint64", "float", "double",
};
static_assert(sizeof(ScalarTypeNames) / sizeof(ScalarTypeNames[0]) == ScalarTypes::size,
              "one name per scalar type");

template <class T>
constexpr const char* scalarTypeName() {
    static_assert(isScalarType<T>, "not one of the twelve scalar types");
    return ScalarTypeNames[IndexOf<T, ScalarTypes>::value];
}

}  // namespace detail

// Replaces `out` with the name of the scalar T, e.g. "int32" for int, "string" for wstring.
template <class T>
void writeTypeName(std::string& out) {
    out = detail::scalarTypeName<T>();
}

// Replaces `out` with "array of " and the name of the scalar T, e.g. "array of double".
template <class T>
void writeArrayTypeName(std::string& out) {
    out = "array of ";
    out += detail::scalarTypeName<T>();
}

// The name of the type held by `value`: "void" when empty, the scalar's name, or "array of "
// and the element's name. Throws UnsupportedAnyType for a type outside SupportedTypes.
std::string typeNameOf(const boost::any& value);

// For a settings file, which can only name a scalar type: the scalar's name for each of the
// twelve scalars, "unsupported" for each of the twelve vector types.
template <class T>
std::string fileTypeName() {
    static_assert(isSupportedType<T>, "fileTypeName: not one of the 24 supported types");
    if constexpr (isScalarType<T>) {
        return detail::scalarTypeName<T>();
    } else {
        return "unsupported";
    }
}

}  // namespace boostany
}  // namespace treestore
