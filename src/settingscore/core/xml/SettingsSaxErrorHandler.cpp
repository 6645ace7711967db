#include <settingscore/core/xml/SettingsSaxErrorHandler.hpp>

#include <xercesc/sax/SAXParseException.hpp>

namespace settings {
namespace core {

void SettingsSaxErrorHandler::warning(const xercesc::SAXParseException&) {}

void SettingsSaxErrorHandler::error(const xercesc::SAXParseException& exception) {
    throw exception;
}

void SettingsSaxErrorHandler::fatalError(const xercesc::SAXParseException& exception) {
    throw exception;
}

void SettingsSaxErrorHandler::resetErrors() {}

}  // namespace core
}  // namespace settings
