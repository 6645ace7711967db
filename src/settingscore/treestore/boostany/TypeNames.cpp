#include <settingscore/treestore/boostany/TypeNames.hpp>

#include <settingscore/treestore/boostany/detail/VisitAny.hpp>

namespace treestore {
namespace boostany {

namespace {

struct NameOfHeld {
    std::string operator()() const { return "void"; }

    template <class S>
    std::string operator()(const S&) const {
        std::string name;
        if constexpr (isScalarType<S>) {
            writeTypeName<S>(name);
        } else {
            writeArrayTypeName<ScalarOf<S>>(name);
        }
        return name;
    }
};

}  // namespace

std::string typeNameOf(const boost::any& value) {
    return detail::visitAny(value, NameOfHeld());
}

}  // namespace boostany
}  // namespace treestore
