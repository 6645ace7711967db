#include <settingscore/treestore/boostany/VariantConversion.hpp>

#include <settingscore/treestore/boostany/detail/VisitAny.hpp>

#include <boost/variant/apply_visitor.hpp>

namespace treestore {
namespace boostany {

SupportedVariant convertAnyToVariant(const boost::any& value) {
    return detail::visitAny(value, detail::CreateVariant());
}

boost::any convertVariantToAny(const SupportedVariant& value) {
    return boost::apply_visitor(detail::CreateAny(), value);
}

}  // namespace boostany
}  // namespace treestore
