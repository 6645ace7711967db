// Translation between a boost::any of the supported types and SupportedVariant, and the two
// visitors that do it.
#pragma once

#include <settingscore/treestore/boostany/SupportedTypes.hpp>

#include <boost/any.hpp>
#include <boost/mpl/void.hpp>
#include <boost/variant/static_visitor.hpp>

namespace treestore {
namespace boostany {

namespace detail {

// Variant to any: void_ (and the call without argument) give an empty boost::any, every other
// alternative a boost::any that holds it.
struct CreateAny : boost::static_visitor<boost::any> {
    boost::any operator()() const { return boost::any(); }
    boost::any operator()(const boost::mpl::void_&) const { return boost::any(); }

    template <class T>
    boost::any operator()(const T& value) const {
        static_assert(isSupportedType<T>, "CreateAny: not one of the 24 supported types");
        return boost::any(value);
    }
};

// Any to variant, applied to the value found in a boost::any: the call without argument (an
// empty value) gives the void_ alternative, a supported value the alternative of its type.
struct CreateVariant {
    SupportedVariant operator()() const { return SupportedVariant(boost::mpl::void_()); }

    template <class T>
    SupportedVariant operator()(const T& value) const {
        static_assert(isSupportedType<T>, "CreateVariant: not one of the 24 supported types");
        return SupportedVariant(value);
    }
};

}  // namespace detail

// Empty gives void_ (which() 0); a supported type the alternative of the same type. Throws
// UnsupportedAnyType for any other held type.
SupportedVariant convertAnyToVariant(const boost::any& value);

// void_ gives an empty boost::any; any other alternative a boost::any holding it.
boost::any convertVariantToAny(const SupportedVariant& value);

}  // namespace boostany
}  // namespace treestore
