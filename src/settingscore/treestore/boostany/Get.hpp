// get<T>: the typed read of a boost::any holding one of the supported types, strict or
// converting.
#pragma once

#include <settingscore/treestore/boostany/SupportedTypes.hpp>
#include <settingscore/treestore/boostany/detail/ForEachSupportedType.hpp>

#include <boost/any.hpp>

#include <typeinfo>

namespace treestore {
namespace boostany {

namespace detail {

// Everything after the exact-type test: the hook, the empty value, the dispatch over
// SupportedTypes and the conversion. Instantiated in the library for the 24 types.
template <class T>
T getConverted(const boost::any& value, bool allowConversion);

#define TREESTORE_BOOSTANY_DETAIL_EXTERN_GET(T) \
    extern template T getConverted<T>(const boost::any&, bool);
TREESTORE_BOOSTANY_FOR_EACH_SUPPORTED_TYPE(TREESTORE_BOOSTANY_DETAIL_EXTERN_GET)
#undef TREESTORE_BOOSTANY_DETAIL_EXTERN_GET

}  // namespace detail

// The value as a T.
//
// A value that holds exactly T is copied out, whatever allowConversion says; this test is
// inline so that reading a key's declared type costs what a boost::any_cast copy costs.
// Otherwise, with allowConversion false, only a one-element std::vector<T> read as T and a T
// read as a one-element std::vector<T> succeed; with true every pair of supported types
// converts by the rules of the layer.
//
// Throws: std::exception (plain) for an empty value; UnsupportedAnyType for a held type outside
// SupportedTypes; detail::TypeNotMatch for a strict read of another type;
// detail::EmptyVectorCastToScalar for a vector of size other than 1 read as a scalar;
// boost::numeric::bad_numeric_cast (or its positive_overflow / negative_overflow) for a number
// out of range; boost::bad_lexical_cast for text that does not parse. The value is never
// changed.
template <class T>
T get(const boost::any& value, bool allowConversion) {
    static_assert(isSupportedType<T>, "get<T>: T must be one of the 24 types of SupportedTypes");
    if (value.type() == typeid(T)) {
        return *boost::unsafe_any_cast<T>(&value);
    }
    return detail::getConverted<T>(value, allowConversion);
}

}  // namespace boostany
}  // namespace treestore
