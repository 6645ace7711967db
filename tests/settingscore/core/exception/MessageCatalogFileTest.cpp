// The staged catalogue file of the settings core: one entry per message key, each using
// exactly the placeholders {0}..{N-1} of its N arguments. Read with the XML parser directly,
// so that a fault here is the file's and not a catalogue reader's.
#include "MessageKeys.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace exceptiontest {
namespace {

namespace xml = xercesc;

std::string narrow(const XMLCh* text) {
    char* raw = xml::XMLString::transcode(text);
    std::string result(raw);
    xml::XMLString::release(&raw);
    return result;
}

std::string attribute(const xml::DOMElement& element, const char* name) {
    XMLCh* wideName = xml::XMLString::transcode(name);
    std::string value = narrow(element.getAttribute(wideName));
    xml::XMLString::release(&wideName);
    return value;
}

std::set<std::size_t> placeholders(const std::string& text) {
    static const std::regex placeholder(R"(\{(\d+)\})");
    std::set<std::size_t> found;
    for (auto it = std::sregex_iterator(text.begin(), text.end(), placeholder);
         it != std::sregex_iterator(); ++it) {
        found.insert(std::stoul((*it)[1].str()));
    }
    return found;
}

TEST(MessageCatalogFileTest, HasOneEntryPerKeyUsingEveryArgument) {
    const std::filesystem::path file =
        SETTINGSCORE_BUILD_ROOT "/resources/messages/TOLVAN/settings/core.xml";
    ASSERT_TRUE(std::filesystem::is_regular_file(file)) << file << " was not staged";

    xml::XMLPlatformUtils::Initialize();
    std::multimap<std::string, std::string> messages;  // key -> text; a repeated key shows
    {
        xml::XercesDOMParser parser;
        xml::HandlerBase errors;  // throws SAXParseException on errors and fatal errors
        parser.setErrorHandler(&errors);
        try {
            parser.parse(file.c_str());
        } catch (const xml::SAXParseException& e) {
            ADD_FAILURE() << "line " << e.getLineNumber() << ": " << narrow(e.getMessage());
        }
        const xml::DOMElement* root =
            parser.getDocument() ? parser.getDocument()->getDocumentElement() : nullptr;
        if (root) {
            EXPECT_EQ(narrow(root->getTagName()), "catalog");
            EXPECT_EQ(attribute(*root, "name"), "TOLVAN:settings:core");
            for (const xml::DOMElement* child = root->getFirstElementChild(); child != nullptr;
                 child = child->getNextElementSibling()) {
                EXPECT_EQ(narrow(child->getTagName()), "message");
                messages.emplace(attribute(*child, "key"), narrow(child->getTextContent()));
            }
        }
    }
    xml::XMLPlatformUtils::Terminate();

    const std::map<std::string, std::size_t> keys = keyArgCounts();
    ASSERT_EQ(keys.size(), 21u);
    for (const auto& [key, argCount] : keys) {
        SCOPED_TRACE(key);
        ASSERT_EQ(messages.count(key), 1u);
        std::set<std::size_t> wanted;
        for (std::size_t i = 0; i < argCount; ++i) {
            wanted.insert(i);
        }
        const std::string& text = messages.find(key)->second;
        EXPECT_EQ(placeholders(text), wanted) << text;
    }
    for (const auto& [key, text] : messages) {
        EXPECT_EQ(keys.count(key), 1u) << "entry for an unknown key " << key;
    }
}

}  // namespace
}  // namespace exceptiontest
