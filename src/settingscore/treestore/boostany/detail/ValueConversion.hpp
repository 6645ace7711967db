// The conversion from any supported type S to any supported type T: the scalar rule, and the
// shapes that put a scalar into a one-element vector, take the one element out of a vector,
// or convert a vector element by element. Internal to the value layer.
#pragma once

#include <settingscore/treestore/boostany/Exceptions.hpp>
#include <settingscore/treestore/boostany/SupportedTypes.hpp>
#include <settingscore/treestore/boostany/detail/ScalarConversion.hpp>

#include <type_traits>
#include <vector>

namespace treestore {
namespace boostany {
namespace detail {

template <class S, class T>
T convertValue(const S& source, bool allowConversion) {
    static_assert(isSupportedType<S> && isSupportedType<T>);

    if constexpr (std::is_same_v<S, T>) {
        // Same type, vector or not: a copy of any size, whatever allowConversion says.
        return source;
    } else if constexpr (isScalarType<S> && isScalarType<T>) {
        return convertScalar<S, T>(source, allowConversion);
    } else if constexpr (isScalarType<S>) {
        // Scalar into a vector: one element. A text is never split, whatever it holds.
        using Element = typename T::value_type;
        T result;
        result.push_back(convertScalar<S, Element>(source, allowConversion));
        return result;
    } else if constexpr (isScalarType<T>) {
        // The size is tested before allowConversion: a vector of 0 or of 2+ elements read as a
        // scalar always fails the same way.
        using Element = typename S::value_type;
        if (source.size() != 1) {
            throw EmptyVectorCastToScalar();
        }
        const Element element = source.front();  // a copy: vector<bool> yields a proxy
        return convertScalar<Element, T>(element, allowConversion);
    } else {
        // Vector to vector of another element type. Strict reads fail even for an empty
        // source; otherwise any failing element fails the whole read.
        using From = typename S::value_type;
        using To = typename T::value_type;
        if (!allowConversion) {
            throw TypeNotMatch();
        }
        T result;
        result.reserve(source.size());
        for (const auto& element : source) {  // a vector<bool> element converts to bool
            result.push_back(convertCell<From, To>(element));
        }
        return result;
    }
}

}  // namespace detail
}  // namespace boostany
}  // namespace treestore
