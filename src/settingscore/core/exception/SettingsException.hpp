// settings::core::SettingsException: the open failure class with which validator libraries
// report their own failures. Unlike the catalogue classes, its `what` is the message it was
// given.
#pragma once

#include <settingscore/core/exception/detail/CatalogException.hpp>

#include <string>

namespace settings {
namespace core {

class SettingsException : public exception::InternalException {
public:
    SettingsException(const std::string& msgId, const std::string& message,
                      const std::string& exceptionKey);
    SettingsException(const SettingsException&) = default;
    ~SettingsException() override;

    const char* what() const noexcept override;
    std::string msgId() const;
    std::string exceptionKey() const;

    const boost::exception_detail::clone_base* clone() const override;
    void rethrow() const override;

private:
    std::string msgId_;
    std::string message_;
    std::string exceptionKey_;
};

}  // namespace core
}  // namespace settings
