// The host's exception interfaces. Every failure the host and its libraries raise can be
// caught as hf::except::IException; IInternalException marks program and data failures,
// IUserException those meant for the user, IMsgIDException those whose text lives in a
// message catalogue.
#pragma once

#include <platform/hf/resource/BaseMsgID.hpp>

#include <string>

namespace hf {
namespace except {

class IException {
public:
    virtual ~IException();
    virtual const char* what() const noexcept = 0;
};

class IInternalException : public IException {
public:
    ~IInternalException() override;
};

class IUserException : public IException {
public:
    ~IUserException() override;
};

class IMsgIDException : public IUserException {
public:
    ~IMsgIDException() override;

    // The message (catalogue, key, arguments) whose text describes this failure.
    virtual const hf::resource::BaseMsgID& get_message_id() const = 0;

    // The error identifier stored when the exception was built.
    virtual const std::string& get_error_id_string() const = 0;

    // The base library's error identifier of a message: "<catalogue>:<key>".
    static std::string get_error_id(const hf::resource::BaseMsgID& id);
};

}  // namespace except
}  // namespace hf
