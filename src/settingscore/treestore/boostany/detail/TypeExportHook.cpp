#include <settingscore/treestore/boostany/detail/TypeExportHook.hpp>

namespace treestore {
namespace boostany {
namespace detail {

void assertIfTypeNotExported(const std::type_info& /*heldType*/) noexcept {}

}  // namespace detail
}  // namespace boostany
}  // namespace treestore
