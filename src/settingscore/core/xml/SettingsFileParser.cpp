#include <settingscore/core/xml/SettingsFileParser.hpp>

#include <settingscore/core/Settings.hpp>
#include <settingscore/core/exception/TreeExceptions.hpp>
#include <settingscore/core/storage/PreferencesDirectory.hpp>
#include <settingscore/core/xml/detail/SchemaGrammarCache.hpp>

#include <platform/hf/filesystem/FileSystem.hpp>
#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/filesystem/Path.hpp>
#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/detail/XercesRuntime.hpp>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
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

// Settings files declare no entities, so any expansion at all is suspect; the document type
// declaration that could declare one is refused before this could matter.
constexpr XMLSize_t entityExpansionLimit = 16;

// The schema file below the installation root, as a local path.
std::string schemaFile() {
    return (hf::filesystem::upath(tolvanRootUStr()) / "toolbox" / "tolvan" / "configtools" /
            "settings.xsd")
        .string();
}

// The external schema location naming `schema`.
std::string locationOf(const std::string& schema) {
    std::string location;
    for (const char c : schema) {
        if (std::isspace(static_cast<unsigned char>(c))) {
            location += "%20";
        } else {
            location += c;
        }
    }
    return Settings::settingsXMLNameSpace + " " + location;
}

}  // namespace

std::string SettingsFileParser::schemaLocation() {
    return locationOf(schemaFile());
}

SettingsFileParser::SettingsFileParser() {
    if (!hf::i18n::detail::ensureXercesInitialized()) {
        throw ErrorReadingSettingsData(ErrorReadingSettingsData::SaxServiceNotFound,
                                       L"Failed to find SAX plug in.");
    }
    // One reading of the root, which tests may change at any time: the pool and the location
    // name the same file.
    const std::string schema = schemaFile();
    schemaLocation_ = detail::toUtf16Buffer(locationOf(schema));
    securityManager_.setEntityExpansionLimit(entityExpansionLimit);
    grammarPool_ = detail::sharedSchemaGrammar(schema);
    createReader();
}

SettingsFileParser::~SettingsFileParser() = default;

void SettingsFileParser::createReader() {
    reader_.reset();
    memory_ = std::make_unique<detail::ParserMemoryBudget>(readerMemoryLimit);
    try {
        reader_.reset(xc::XMLReaderFactory::createXMLReader(memory_.get(), grammarPool_.get()));
    } catch (...) {
        // Whatever the factory throws (its own exceptions are no std::exception), the answer
        // is the same: no reader.
        reader_.reset();
    }
    if (!reader_) {
        throw ErrorReadingSettingsData(ErrorReadingSettingsData::XmlReaderCreationFailed,
                                       L"Failed to create XMLReader.");
    }
    // In this order. With dynamic validation off every file is validated, also one that names
    // no schema; the grammar comes from the shared pool when there is one, else the reader
    // loads it from the external location.
    reader_->setFeature(xc::XMLUni::fgSAX2CoreNameSpaces, true);
    reader_->setFeature(xc::XMLUni::fgXercesSchema, true);
    reader_->setFeature(xc::XMLUni::fgXercesSchemaFullChecking, true);
    reader_->setFeature(xc::XMLUni::fgSAX2CoreNameSpacePrefixes, true);
    reader_->setFeature(xc::XMLUni::fgSAX2CoreValidation, true);
    reader_->setFeature(xc::XMLUni::fgXercesDynamic, false);
    reader_->setFeature(xc::XMLUni::fgXercesUseCachedGrammarInParse, true);
    reader_->setProperty(xc::XMLUni::fgXercesSchemaExternalSchemaLocation, schemaLocation_.get());
    // Added to the above, not in place of any of it: limits for hostile files.
    reader_->setProperty(xc::XMLUni::fgXercesSecurityManager, &securityManager_);
}

boost::shared_ptr<Settings> SettingsFileParser::parse(const std::wstring& path) {
    std::string content;
    try {
        content = hf::filesystem::FileSystem::current().readFile(path, nullptr, maxFileSize);
    } catch (const hf::filesystem::FsysExceptionBase& failure) {
        // As the parser itself reports a file it cannot open: a failure at no position.
        throw ErrorReadingSettingsData(ErrorReadingSettingsData::ParseError,
                                       L"LineNum=0  ColNum=00  " +
                                           hf::i18n::to_ustring(failure.what()) +
                                           (failure.code() == std::errc::file_too_large
                                                ? L" (a settings file has at most " +
                                                      std::to_wstring(maxFileSize >> 20) + L" MiB)"
                                                : std::wstring()));
    }
    return parse(path, content);
}

boost::shared_ptr<Settings> SettingsFileParser::parse(const std::wstring& path,
                                                      const std::string& content) {
    if (!reader_) {
        createReader();
    }
    handler_.setResult(nullptr);
    reader_->setContentHandler(&handler_);
    reader_->setErrorHandler(&errorHandler_);
    // Only to refuse a document type declaration the moment it starts.
    reader_->setLexicalHandler(&handler_);
    const detail::Utf16Buffer systemId = detail::toUtf16Buffer(path);
    xc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(content.data()), content.size(),
                                 systemId.get(), false);
    try {
        reader_->parse(source);
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
    } catch (const xc::OutOfMemoryException&) {
        // The reader's memory budget ran out (or memory itself did). The library skips its
        // clean-up on this exception, so the reader is spent: the budget's destructor frees
        // what it left, and the next parse gets a new reader.
        reader_.reset();
        memory_.reset();
        throw ErrorReadingSettingsData(
            ErrorReadingSettingsData::SaxError,
            L"The file needs more than " + std::to_wstring(readerMemoryLimit >> 20) +
                L" MiB of parser memory: an attribute, a tag or a text in it is far too long");
    }
    return handler_.getResult();
}

bool SettingsFileParser::popAdditionalPath(std::wstring& path) {
    return handler_.popAdditionalPath(path);
}

}  // namespace core
}  // namespace settings
