#include <settingscore/core/xml/SettingsFileParser.hpp>

#include <settingscore/core/Settings.hpp>
#include <settingscore/core/exception/TreeExceptions.hpp>
#include <settingscore/core/storage/PreferencesDirectory.hpp>

#include <platform/hf/filesystem/Path.hpp>
#include <platform/hf/i18n/detail/XercesRuntime.hpp>

#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <cctype>
#include <sstream>

namespace settings {
namespace core {

namespace {

using exception::ErrorReadingSettingsData;
namespace xc = xercesc;

// The detail text of a parser error. The stream is not emptied between the two numbers, only
// its state is cleared, so the column field carries the line's digits too: required as is.
std::wstring positionText(const xc::SAXParseException& failure) {
    std::wostringstream stream;
    stream << failure.getLineNumber();
    std::wstring text = L"LineNum=" + stream.str();
    stream.clear();
    stream << failure.getColumnNumber();
    text += L"  ColNum=" + stream.str();
    text += L"  " + detail::toWideText(failure.getMessage());
    return text;
}

std::unique_ptr<xc::SAX2XMLReader> createReader() {
    std::unique_ptr<xc::SAX2XMLReader> reader;
    try {
        reader.reset(xc::XMLReaderFactory::createXMLReader());
    } catch (...) {
        // Whatever the factory throws (its own exceptions are no std::exception), the answer
        // is the same: no reader.
        reader.reset();
    }
    return reader;
}

}  // namespace

std::string SettingsFileParser::schemaLocation() {
    const hf::filesystem::upath schema = hf::filesystem::upath(tolvanRootUStr()) / "toolbox" /
                                         "tolvan" / "configtools" / "settings.xsd";
    std::string location;
    for (const char c : schema.string()) {
        if (std::isspace(static_cast<unsigned char>(c))) {
            location += "%20";
        } else {
            location += c;
        }
    }
    return Settings::settingsXMLNameSpace + " " + location;
}

SettingsFileParser::SettingsFileParser() {
    if (!hf::i18n::detail::ensureXercesInitialized()) {
        throw ErrorReadingSettingsData(ErrorReadingSettingsData::SaxServiceNotFound,
                                       L"Failed to find SAX plug in.");
    }
    schemaLocation_ = detail::toUtf16Buffer(schemaLocation());
    reader_ = createReader();
    if (!reader_) {
        throw ErrorReadingSettingsData(ErrorReadingSettingsData::XmlReaderCreationFailed,
                                       L"Failed to create XMLReader.");
    }
    // In this order. With dynamic validation off every file is validated, also one that names
    // no schema, and a grammar once loaded serves the later parses of this reader.
    reader_->setFeature(xc::XMLUni::fgSAX2CoreNameSpaces, true);
    reader_->setFeature(xc::XMLUni::fgXercesSchema, true);
    reader_->setFeature(xc::XMLUni::fgXercesSchemaFullChecking, true);
    reader_->setFeature(xc::XMLUni::fgSAX2CoreNameSpacePrefixes, true);
    reader_->setFeature(xc::XMLUni::fgSAX2CoreValidation, true);
    reader_->setFeature(xc::XMLUni::fgXercesDynamic, false);
    reader_->setFeature(xc::XMLUni::fgXercesUseCachedGrammarInParse, true);
    reader_->setProperty(xc::XMLUni::fgXercesSchemaExternalSchemaLocation, schemaLocation_.get());
}

SettingsFileParser::~SettingsFileParser() = default;

boost::shared_ptr<Settings> SettingsFileParser::parse(const std::wstring& path) {
    handler_.setResult(nullptr);
    reader_->setContentHandler(&handler_);
    reader_->setErrorHandler(&errorHandler_);
    const detail::Utf16Buffer systemId = detail::toUtf16Buffer(path);
    try {
        reader_->parse(systemId.get());
    } catch (const xc::SAXParseException& failure) {
        throw ErrorReadingSettingsData(ErrorReadingSettingsData::ParseError, positionText(failure));
    } catch (const xc::SAXException& failure) {
        throw ErrorReadingSettingsData(ErrorReadingSettingsData::SaxError,
                                       detail::toWideText(failure.getMessage()));
    } catch (const xc::XMLException& failure) {
        // A failure of the parser library outside the document (a path it cannot turn into
        // a source, say): reported like the other failures of the SAX layer, since it is no
        // std::exception and would otherwise escape every handler above.
        throw ErrorReadingSettingsData(ErrorReadingSettingsData::SaxError,
                                       detail::toWideText(failure.getMessage()));
    }
    return handler_.getResult();
}

bool SettingsFileParser::popAdditionalPath(std::wstring& path) {
    return handler_.popAdditionalPath(path);
}

}  // namespace core
}  // namespace settings
