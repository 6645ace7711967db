// Sample values of every supported type and a loop over type lists, shared by the value layer's
// tests.
#pragma once

#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <string>
#include <type_traits>
#include <vector>

namespace boostanytest {

using treestore::boostany::detail::TypeList;

template <class T>
struct Tag {
    using type = T;
};

// Calls f(Tag<T>{}) for each T of the list, in order.
template <class... Ts, class F>
void forEachType(TypeList<Ts...>, F&& f) {
    (f(Tag<Ts>{}), ...);
}

template <class T>
inline constexpr bool isVector = treestore::boostany::isVectorType<T>;

// The number `n` in type T: decimal text for wstring, n != 0 for bool, a one-element vector
// for the vector types.
template <class T>
T number(int n) {
    if constexpr (isVector<T>) {
        return T{number<typename T::value_type>(n)};
    } else if constexpr (std::is_same_v<T, std::wstring>) {
        return std::to_wstring(n);
    } else {
        return static_cast<T>(n);
    }
}

// A value of T that differs from the default-constructed one; vectors get two elements.
template <class T>
T sample() {
    if constexpr (isVector<T>) {
        return T(2, sample<typename T::value_type>());
    } else if constexpr (std::is_same_v<T, std::wstring>) {
        return L"Gr\u00fc\u00dfe, 1,2";
    } else if constexpr (std::is_same_v<T, bool>) {
        return true;
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(-2.25);
    } else {
        return static_cast<T>(42);
    }
}

}  // namespace boostanytest
