// The three failures of the value layer. Each derives directly from std::exception and has a
// fixed what() text; numeric and parse failures are the dependency's own exceptions
// (boost::numeric::bad_numeric_cast and its two overflows, boost::bad_lexical_cast).
#pragma once

#include <exception>
#include <typeinfo>

namespace treestore {
namespace boostany {

namespace detail {

// A strict read (allowConversion false) met a held type other than the requested one.
class TypeNotMatch : public std::exception {
public:
    const char* what() const noexcept override;
};

// A vector was read as a scalar and did not hold exactly one element. Thrown for two or more
// elements as well as for none; the name is historical.
class EmptyVectorCastToScalar : public std::exception {
public:
    const char* what() const noexcept override;
};

}  // namespace detail

// A boost::any held a type outside SupportedTypes.
class UnsupportedAnyType : public std::exception {
public:
    explicit UnsupportedAnyType(const std::type_info& heldType) noexcept : heldType_(&heldType) {}

    const char* what() const noexcept override;

    // The type that the boost::any held.
    const std::type_info& getHeldType() const noexcept { return *heldType_; }

private:
    const std::type_info* heldType_;  // type_info objects live for the whole program
};

}  // namespace boostany
}  // namespace treestore
