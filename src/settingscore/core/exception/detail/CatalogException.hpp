// The frame every class of the failure catalogue shares: a fixed `what` text and a
// clone/rethrow pair that keeps the exact class across a boost::exception_ptr.
#pragma once

#include <platform/hf/except/Exception.hpp>

#include <boost/exception/exception.hpp>

namespace settings {
namespace core {
namespace exception {

// Base of every failure of the library that is not a message-id exception.
using InternalException =
    hf::except::Exception<hf::except::IInternalException, std::exception, void>;

}  // namespace exception

namespace detail {

// Derived names its text in `static constexpr char whatText[]`; Base is InternalException or
// another catalogue class (ValidationException for the validation failures).
template <class Derived, class Base>
class CatalogException : public Base {
public:
    using Base::Base;

    const char* what() const noexcept override { return Derived::whatText; }

    const boost::exception_detail::clone_base* clone() const override {
        return new Derived(static_cast<const Derived&>(*this));
    }
    void rethrow() const override { throw static_cast<const Derived&>(*this); }
};

}  // namespace detail
}  // namespace core
}  // namespace settings
