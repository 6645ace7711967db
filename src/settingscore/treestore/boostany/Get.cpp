#include <settingscore/treestore/boostany/Get.hpp>

#include <settingscore/treestore/boostany/detail/TypeExportHook.hpp>
#include <settingscore/treestore/boostany/detail/ValueConversion.hpp>
#include <settingscore/treestore/boostany/detail/VisitAny.hpp>

#include <exception>

namespace treestore {
namespace boostany {
namespace detail {

namespace {

// Converts whatever supported type the dispatch finds into T.
template <class T>
struct ConvertTo {
    bool allowConversion;

    // Reading an empty value gives a plain std::exception and nothing more specific.
    [[noreturn]] T operator()() const { throw std::exception(); }

    template <class S>
    T operator()(const S& source) const {
        return convertValue<S, T>(source, allowConversion);
    }
};

}  // namespace

template <class T>
T getConverted(const boost::any& value, bool allowConversion) {
    assertIfTypeNotExported(value.type());
    return visitAny(value, ConvertTo<T>{allowConversion});
}

#define TREESTORE_BOOSTANY_DETAIL_INSTANTIATE_GET(T) \
    template T getConverted<T>(const boost::any&, bool);
TREESTORE_BOOSTANY_FOR_EACH_SUPPORTED_TYPE(TREESTORE_BOOSTANY_DETAIL_INSTANTIATE_GET)
#undef TREESTORE_BOOSTANY_DETAIL_INSTANTIATE_GET

}  // namespace detail
}  // namespace boostany
}  // namespace treestore
