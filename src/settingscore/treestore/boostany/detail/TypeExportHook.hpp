// The hook that every dispatch of get<T> calls with the held type before looking at it.
#pragma once

#include <typeinfo>

namespace treestore {
namespace boostany {
namespace detail {

// A seam for builds that need to watch which types cross the interface. In this library it
// does nothing: it must not throw and must not become a real check, since get<T> relies on
// reaching its own dispatch and failures for every held type.
void assertIfTypeNotExported(const std::type_info& heldType) noexcept;

}  // namespace detail
}  // namespace boostany
}  // namespace treestore
