// settings::core::SettingsSaxErrorHandler: the parser's error handler for settings files.
// Warnings are ignored; errors (schema violations among them) and fatal errors throw the
// xercesc::SAXParseException they are given, so any of them ends the parse at once.
#pragma once

#include <xercesc/sax/ErrorHandler.hpp>

namespace settings {
namespace core {

class SettingsSaxErrorHandler : public xercesc::ErrorHandler {
public:
    void warning(const xercesc::SAXParseException& exception) override;
    void error(const xercesc::SAXParseException& exception) override;
    void fatalError(const xercesc::SAXParseException& exception) override;
    void resetErrors() override;
};

}  // namespace core
}  // namespace settings
