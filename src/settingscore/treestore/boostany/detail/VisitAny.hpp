// The one dispatch of the layer from a boost::any to the static type it holds. Internal: the
// public operations (get, isEqual, isSupported, the variant and name conversions) are built
// on it.
#pragma once

#include <settingscore/treestore/boostany/Exceptions.hpp>
#include <settingscore/treestore/boostany/SupportedTypes.hpp>

#include <boost/any.hpp>

#include <cstddef>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace treestore {
namespace boostany {
namespace detail {

// Calls the visitor with the value as the index-th type of the list.
template <class R, class Visitor, class T, class... Rest>
R visitAtIndex(std::size_t index, const boost::any& value, Visitor& visitor) {
    if constexpr (sizeof...(Rest) > 0) {
        if (index != 0) {
            return visitAtIndex<R, Visitor, Rest...>(index - 1, value, visitor);
        }
    }
    return visitor(*boost::unsafe_any_cast<T>(&value));
}

template <class R, class Visitor, class... Ts>
R visitAt(TypeList<Ts...>, std::size_t index, const boost::any& value, Visitor& visitor) {
    return visitAtIndex<R, Visitor, Ts...>(index, value, visitor);
}

// Compares the held type with each member of the list in order and calls the visitor with the
// first match. The first pass compares type_info objects by address: the dynamic linker
// normally makes each type's type_info one object in the process, so this finds the type
// without comparing names. Only when that fails (a type_info duplicated across shared objects,
// or a type outside the list) does the second pass compare with ==, which may compare names.
// Both passes walk the list in the same order and the types are distinct, so the match is the
// same one either way.
template <class R, class Visitor, class... Ts>
R visitSupported(TypeList<Ts...>, const std::type_info& held, const boost::any& value,
                 Visitor& visitor) {
    std::size_t index = 0;
    const bool found = ((&held == &typeid(Ts) ? true : (++index, false)) || ...) ||
                       (index = 0, ((held == typeid(Ts) ? true : (++index, false)) || ...));
    if (!found) {
        throw UnsupportedAnyType(held);
    }
    return visitAt<R>(TypeList<Ts...>{}, index, value, visitor);
}

// Calls visitor() for an empty value and visitor(const S&) for a held supported type S;
// throws UnsupportedAnyType for anything else. The result type is that of visitor(), which
// every overload must share. The value is only read.
template <class Visitor>
auto visitAny(const boost::any& value, Visitor&& visitor) -> decltype(visitor()) {
    using Result = decltype(visitor());
    const std::type_info& held = value.type();
    if (held == typeid(void)) {
        return visitor();
    }
    return visitSupported<Result>(SupportedTypes{}, held, value, visitor);
}

}  // namespace detail
}  // namespace boostany
}  // namespace treestore
