// X(T) for each of the 24 supported types, in the order of SupportedTypes. Explicit
// instantiation cannot be expanded from a type pack, so the per-type instantiations of the
// layer use this list; the static_assert below ties it to SupportedTypes.
#pragma once

#include <settingscore/treestore/boostany/SupportedTypes.hpp>

#include <string>
#include <type_traits>
#include <vector>

#define TREESTORE_BOOSTANY_FOR_EACH_SUPPORTED_TYPE(X) \
    X(std::wstring)                                   \
    X(bool)                                           \
    X(signed char)                                    \
    X(unsigned char)                                  \
    X(short)                                          \
    X(unsigned short)                                 \
    X(int)                                            \
    X(unsigned int)                                   \
    X(long long)                                      \
    X(unsigned long long)                             \
    X(float)                                          \
    X(double)                                         \
    X(std::vector<std::wstring>)                      \
    X(std::vector<bool>)                              \
    X(std::vector<signed char>)                       \
    X(std::vector<unsigned char>)                     \
    X(std::vector<short>)                             \
    X(std::vector<unsigned short>)                    \
    X(std::vector<int>)                               \
    X(std::vector<unsigned int>)                      \
    X(std::vector<long long>)                         \
    X(std::vector<unsigned long long>)                \
    X(std::vector<float>)                             \
    X(std::vector<double>)

namespace treestore {
namespace boostany {
namespace detail {

#define TREESTORE_BOOSTANY_DETAIL_LIST_ENTRY(T) , T
using MacroListedTypes = TypeList<boost::mpl::void_ TREESTORE_BOOSTANY_FOR_EACH_SUPPORTED_TYPE(
    TREESTORE_BOOSTANY_DETAIL_LIST_ENTRY)>;
#undef TREESTORE_BOOSTANY_DETAIL_LIST_ENTRY

static_assert(
    std::is_same_v<MacroListedTypes, Concat<TypeList<boost::mpl::void_>, SupportedTypes>::type>,
    "TREESTORE_BOOSTANY_FOR_EACH_SUPPORTED_TYPE must list SupportedTypes in order");

}  // namespace detail
}  // namespace boostany
}  // namespace treestore
