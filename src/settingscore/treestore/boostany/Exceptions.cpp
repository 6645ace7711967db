// what() is defined here, out of line, so that each class's vtable and type_info are emitted
// once, in the library: a catch in a client or in a dlopen'ed module then matches the thrown
// object by identity.
#include <settingscore/treestore/boostany/Exceptions.hpp>

namespace treestore {
namespace boostany {

namespace detail {

const char* TypeNotMatch::what() const noexcept {
    return "The desired type does not match the current type.";
}

const char* EmptyVectorCastToScalar::what() const noexcept {
    return "empty vector cannot be used to initialize a scalar.";
}

}  // namespace detail

const char* UnsupportedAnyType::what() const noexcept {
    return "The type contained within the boost::any is not listed in "
           "treestore::boostany::SupportedTypes.";
}

}  // namespace boostany
}  // namespace treestore
