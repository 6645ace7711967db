// The closed set of value types that a boost::any may carry through the settings core: the
// twelve scalars, the twelve vectors of them, and the variant over "nothing" plus those 24.
// Every conversion, comparison and name of the layer is generated from ScalarTypes.
#pragma once

#include <settingscore/treestore/boostany/detail/TypeList.hpp>

#include <boost/mpl/vector/vector30.hpp>
#include <boost/mpl/void.hpp>
#include <boost/variant/variant.hpp>

#include <string>
#include <type_traits>
#include <vector>

namespace treestore {
namespace boostany {

// The scalars in type-code order: the position plus one is the code (1 wstring ... 12 double).
// Text is always wide; there is deliberately no narrow std::string here.
using ScalarTypes =
    detail::TypeList<std::wstring, bool, signed char, unsigned char, short, unsigned short, int,
                     unsigned int, long long, unsigned long long, float, double>;

namespace detail {
template <class T>
using VectorOf = std::vector<T>;
}  // namespace detail

// The vectors, in the same order as their scalars.
using VectorTypes = detail::Map<detail::VectorOf, ScalarTypes>::type;

// The 24 value types: the scalars, then the vectors.
using SupportedTypes = detail::Concat<ScalarTypes, VectorTypes>::type;

// boost::mpl::void_ (no value) and the 24 types; which() is the index in that order, so a
// scalar's which() equals its type code.
//
// The variant is made over an MPL sequence rather than spelled boost::variant<void_, ...>:
// the variadic spelling goes through mpl::list, which takes at most 20 types unless every
// translation unit of the process raises the MPL limits identically before any Boost include.
// The result is the same boost::variant, with the same alternatives, which() and visitation.
using SupportedVariant = boost::make_variant_over<
    detail::Apply<boost::mpl::vector25, boost::mpl::void_, SupportedTypes>::type>::type;

template <class T>
inline constexpr bool isSupportedType = detail::Contains<T, SupportedTypes>::value;

template <class T>
inline constexpr bool isScalarType = detail::Contains<T, ScalarTypes>::value;

template <class T>
inline constexpr bool isVectorType = detail::Contains<T, VectorTypes>::value;

namespace detail {

// The scalar behind a supported type: T itself for a scalar, the element for a vector.
template <class T>
struct ScalarOf {
    using type = T;
};

template <class E>
struct ScalarOf<std::vector<E>> {
    using type = E;
};

}  // namespace detail

template <class T>
using ScalarOf = typename detail::ScalarOf<T>::type;

// The type code of a key that holds no data.
inline constexpr int VoidTypeCode = 25;

// The type code of a supported type: the scalar's position in the table (1..12), the same for
// a vector and its scalar, since arrayness is not part of the code. boost::mpl::void_ has 25.
template <class T>
constexpr int typeCodeOf() {
    if constexpr (std::is_same_v<T, boost::mpl::void_>) {
        return VoidTypeCode;
    } else {
        static_assert(isSupportedType<T>, "typeCodeOf: not one of the 24 supported types");
        return static_cast<int>(detail::IndexOf<ScalarOf<T>, ScalarTypes>::value) + 1;
    }
}

}  // namespace boostany
}  // namespace treestore
