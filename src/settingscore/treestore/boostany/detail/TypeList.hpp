// A minimal compile-time list of types and the few operations the value layer needs on it:
// concatenation, mapping a template over the members, membership, position, and turning the
// list into a variant. Kept local so the layer's closed type system is spelled out in one place.
#pragma once

#include <cstddef>
#include <type_traits>

namespace treestore {
namespace boostany {
namespace detail {

template <class... Ts>
struct TypeList {
    static constexpr std::size_t size = sizeof...(Ts);
};

// Concat<TypeList<A...>, TypeList<B...>>::type is TypeList<A..., B...>.
template <class First, class Second>
struct Concat;

template <class... As, class... Bs>
struct Concat<TypeList<As...>, TypeList<Bs...>> {
    using type = TypeList<As..., Bs...>;
};

// Map<F, TypeList<Ts...>>::type is TypeList<F<Ts>...>.
template <template <class> class F, class List>
struct Map;

template <template <class> class F, class... Ts>
struct Map<F, TypeList<Ts...>> {
    using type = TypeList<F<Ts>...>;
};

// Apply<V, Prefix, TypeList<Ts...>>::type is V<Prefix, Ts...>, e.g. a variant whose first
// alternative is the "nothing" marker.
template <template <class...> class V, class Prefix, class List>
struct Apply;

template <template <class...> class V, class Prefix, class... Ts>
struct Apply<V, Prefix, TypeList<Ts...>> {
    using type = V<Prefix, Ts...>;
};

template <class T, class List>
struct Contains;

template <class T, class... Ts>
struct Contains<T, TypeList<Ts...>> : std::bool_constant<(std::is_same_v<T, Ts> || ...)> {};

// Zero-based position of T in the list; only valid for a member (checked by the caller).
template <class T, class List>
struct IndexOf;

template <class T, class... Ts>
struct IndexOf<T, TypeList<Ts...>> {
private:
    static constexpr std::size_t find() {
        constexpr bool matches[] = {std::is_same_v<T, Ts>...};
        for (std::size_t i = 0; i < sizeof...(Ts); ++i) {
            if (matches[i]) {
                return i;
            }
        }
        return sizeof...(Ts);
    }

public:
    static_assert(sizeof...(Ts) > 0, "IndexOf on an empty list");
    static constexpr std::size_t value = find();
    static_assert(value < sizeof...(Ts), "IndexOf: the type is not a member of the list");
};

}  // namespace detail
}  // namespace boostany
}  // namespace treestore
