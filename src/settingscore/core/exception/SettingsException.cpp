#include <settingscore/core/exception/SettingsException.hpp>

namespace settings {
namespace core {

SettingsException::SettingsException(const std::string& msgId, const std::string& message,
                                     const std::string& exceptionKey)
    : msgId_(msgId), message_(message), exceptionKey_(exceptionKey) {}
SettingsException::~SettingsException() = default;

const char* SettingsException::what() const noexcept {
    return message_.c_str();
}
std::string SettingsException::msgId() const {
    return msgId_;
}
std::string SettingsException::exceptionKey() const {
    return exceptionKey_;
}

const boost::exception_detail::clone_base* SettingsException::clone() const {
    return new SettingsException(*this);
}
void SettingsException::rethrow() const {
    throw *this;
}

}  // namespace core
}  // namespace settings
