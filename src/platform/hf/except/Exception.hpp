// hf::except::Exception<Tag, std::exception, void>: the concrete exception of the host. It joins
// the interface named by Tag with boost::exception's cloning and with std::exception, so that
// every instance crosses a boost::exception_ptr keeping its exact class and fields.
//
// Tag is either an interface (IInternalException, IUserException: the exception is then a
// base for a family of classes that override what, clone and rethrow), or a message class
// derived from hf::resource::BaseMsgID: the exception then implements IMsgIDException and
// carries that message.
#pragma once

#include <platform/hf/except/IException.hpp>
#include <platform/hf/resource/BaseMsgID.hpp>

#include <boost/exception/exception.hpp>

#include <exception>
#include <string>
#include <type_traits>

namespace hf {
namespace except {
namespace detail {

template <class Tag, bool IsMessage = std::is_base_of<hf::resource::BaseMsgID, Tag>::value>
class ExceptionCore;

// Interface tags: nothing to carry.
template <class Tag>
class ExceptionCore<Tag, false> : public Tag {
    static_assert(std::is_base_of<IException, Tag>::value,
                  "hf::except::Exception needs an IException interface or a message class");

protected:
    const char* coreWhat() const noexcept { return "hf::except::Exception"; }
};

// Message tags: the message and the error id that the base library gives it.
template <class Tag>
class ExceptionCore<Tag, true> : public IMsgIDException {
public:
    explicit ExceptionCore(const Tag& message)
        : message_(message), errorId_(IMsgIDException::get_error_id(message_)) {}

    const hf::resource::BaseMsgID& get_message_id() const override { return message_; }
    const std::string& get_error_id_string() const override { return errorId_; }
    const Tag& getMessage() const { return message_; }

protected:
    const char* coreWhat() const noexcept { return errorId_.c_str(); }

private:
    Tag message_;
    std::string errorId_;
};

}  // namespace detail

template <class Tag, class StdBase = std::exception, class Unused = void>
class Exception : public detail::ExceptionCore<Tag>,
                  public boost::exception_detail::clone_base,
                  public boost::exception,
                  public StdBase {
    static_assert(std::is_same<StdBase, std::exception>::value && std::is_void<Unused>::value,
                  "the host's exceptions derive from std::exception");

public:
    using detail::ExceptionCore<Tag>::ExceptionCore;
    Exception() = default;
    Exception(const Exception&) = default;
    ~Exception() noexcept override = default;

    const char* what() const noexcept override { return this->coreWhat(); }

    const boost::exception_detail::clone_base* clone() const override {
        return new Exception(*this);
    }
    void rethrow() const override { throw *this; }
};

}  // namespace except
}  // namespace hf
