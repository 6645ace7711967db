#include <platform/hf/i18n/detail/CatalogFile.hpp>

#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/detail/XercesRuntime.hpp>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <fstream>
#include <iterator>
#include <sstream>

namespace hf {
namespace i18n {
namespace detail {
namespace {

namespace xc = xercesc;

std::wstring toWide(const XMLCh* text, std::size_t length) {
    return utf16_to_ustring(text, length);
}

std::string toUtf8(const XMLCh* text) {
    return text ? to_string(toWide(text, xc::XMLString::stringLen(text))) : std::string();
}

std::string attributeValue(const xc::Attributes& attributes, const char* name) {
    XMLCh* xmlName = xc::XMLString::transcode(name);
    const XMLCh* value = attributes.getValue(xmlName);
    xc::XMLString::release(&xmlName);
    return value ? toUtf8(value) : std::string();
}

bool attributePresent(const xc::Attributes& attributes, const char* name) {
    XMLCh* xmlName = xc::XMLString::transcode(name);
    const bool present = attributes.getIndex(xmlName) >= 0;
    xc::XMLString::release(&xmlName);
    return present;
}

// Builds the entries while the parser reads; any departure from the format throws a
// SAXException, which ends the parse and makes the whole file unusable.
class CatalogHandler : public xc::DefaultHandler {
public:
    explicit CatalogHandler(std::string catalogName) : catalogName_(std::move(catalogName)) {}

    CatalogEntries takeEntries() { return std::move(entries_); }

    void startElement(const XMLCh* const, const XMLCh* const, const XMLCh* const qname,
                      const xc::Attributes& attributes) override {
        const std::string name = toUtf8(qname);
        ++depth_;
        if (depth_ == 1) {
            if (name != "catalog") {
                fail("the document element is not <catalog>");
            }
            if (attributePresent(attributes, "name") &&
                attributeValue(attributes, "name") != catalogName_) {
                fail("the catalogue names another catalogue");
            }
        } else if (depth_ == 2 && name == "message") {
            if (!attributePresent(attributes, "key")) {
                fail("a <message> has no key");
            }
            key_ = attributeValue(attributes, "key");
            text_.clear();
        } else {
            fail("unexpected element");
        }
    }

    void endElement(const XMLCh* const, const XMLCh* const, const XMLCh* const) override {
        if (depth_ == 2) {
            // The first entry of a key wins; a later duplicate is ignored.
            entries_.emplace(key_, text_);
        }
        --depth_;
    }

    void characters(const XMLCh* const chars, const XMLSize_t length) override {
        if (depth_ == 2) {
            text_ += toWide(chars, length);
        }
    }

    // No document type at all: it is never needed, and refusing it rules out entity bombs.
    void startDTD(const XMLCh* const, const XMLCh* const, const XMLCh* const) override {
        fail("a catalogue has no document type");
    }

    void error(const xc::SAXParseException& exc) override { throw exc; }
    void fatalError(const xc::SAXParseException& exc) override { throw exc; }

private:
    [[noreturn]] static void fail(const char* reason) { throw xc::SAXException(reason); }

    std::string catalogName_;
    int depth_ = 0;
    std::string key_;
    std::wstring text_;
    CatalogEntries entries_;
};

bool validPart(const std::string& part) {
    return !part.empty() && part != "." && part != ".." && part.find('/') == std::string::npos;
}

}  // namespace

hf::filesystem::upath catalogFilePath(const hf::filesystem::upath& root,
                                      const std::string& catalogName) {
    hf::filesystem::upath file = root / "resources" / "messages";
    std::size_t start = 0;
    while (true) {
        const std::size_t colon = catalogName.find(':', start);
        const std::string part = catalogName.substr(start, colon - start);
        if (!validPart(part)) {
            return hf::filesystem::upath();
        }
        if (colon == std::string::npos) {
            return file / (part + ".xml");
        }
        file /= part;
        start = colon + 1;
    }
}

std::shared_ptr<const CatalogEntries> readCatalogFile(const hf::filesystem::upath& file,
                                                      const std::string& catalogName) noexcept {
    try {
        if (file.empty() || !ensureXercesInitialized()) {
            return nullptr;
        }
        std::ifstream in(file.string(), std::ios::binary);
        if (!in) {
            return nullptr;
        }
        const std::string content((std::istreambuf_iterator<char>(in)),
                                  std::istreambuf_iterator<char>());
        if (in.bad()) {
            return nullptr;
        }

        std::unique_ptr<xc::SAX2XMLReader> reader(xc::XMLReaderFactory::createXMLReader());
        reader->setFeature(xc::XMLUni::fgSAX2CoreNameSpaces, false);
        reader->setFeature(xc::XMLUni::fgSAX2CoreValidation, false);
        reader->setFeature(xc::XMLUni::fgXercesLoadExternalDTD, false);
        reader->setFeature(xc::XMLUni::fgXercesDisableDefaultEntityResolution, true);
        CatalogHandler handler(catalogName);
        reader->setContentHandler(&handler);
        reader->setErrorHandler(&handler);
        reader->setLexicalHandler(&handler);

        xc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(content.data()),
                                     content.size(), file.string().c_str());
        reader->parse(source);
        return std::make_shared<const CatalogEntries>(handler.takeEntries());
    } catch (...) {
        // The contract is a null answer for any failure: parser exceptions (not derived from
        // std::exception), a lost file, memory.
        return nullptr;
    }
}

}  // namespace detail
}  // namespace i18n
}  // namespace hf
