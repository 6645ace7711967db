// Settings files written to a temporary folder and read with SettingsFileParser: documents
// built from a body, the values and declarations of the trees they give, the failures they
// raise, and an installation root with a schema of the test's choosing.
#pragma once

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/exception/TreeExceptions.hpp>
#include <settingscore/core/storage/detail/PreferencesDirectoryDetail.hpp>
#include <settingscore/core/xml/SettingsFileParser.hpp>
#include <settingscore/core/xml/detail/NodeBuilder.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>

#include <support/TempDir.hpp>

#include <boost/optional/optional_io.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace readingtest {

namespace sc = settings::core;
namespace ba = treestore::boostany;
using sc::detail::NodeBuilder;
using sc::exception::ErrorReadingSettingsData;
using SettingsPtr = boost::shared_ptr<sc::Settings>;

// A settings document: the declaration, then the document element "settings" named "p" in the
// settings namespace with `attributes`, holding `body`.
inline std::string document(const std::string& body, const std::string& attributes = "") {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<settings name=\"p\" xmlns=\"urn:lindqvare.tolvan.settings\"" +
           attributes + ">\n" + body + "\n</settings>\n";
}

// <key name="name" attributes>content</key>
inline std::string key(const std::string& name, const std::string& content,
                       const std::string& attributes = "") {
    return "<key name=\"" + name + "\"" + attributes + ">" + content + "</key>\n";
}

// The catalogue text of message Key with `args`, as a failed parse reports it.
template <class Key, class... Args>
std::string messageText(const Args&... args) {
    return hf::i18n::to_string(
        hf::i18n::MessageCatalog::get_message(Key(args...), hf::i18n::HfLocale::global()));
}

inline std::string detailText(const ErrorReadingSettingsData& failure) {
    return hf::i18n::to_string(failure.getDetailErrorMsg());
}

inline boost::shared_ptr<sc::SettingsImpl> nodeAt(const SettingsPtr& top, const std::string& path) {
    const auto node = sc::SettingsImpl::implOf(path.empty() ? top : top->getNodeByPath(path));
    if (!node) {
        throw std::runtime_error("no node " + path);
    }
    return node;
}

// What the key at `path` stores at level "user" (where every file is read): none when the key
// stores nothing at all.
inline boost::optional<boost::any> stored(const SettingsPtr& top, const std::string& path) {
    return NodeBuilder::getStoredValue(*nodeAt(top, path), "user");
}

// True when the key at `path` stores a value equal to `expected`.
inline bool storesValue(const SettingsPtr& top, const std::string& path,
                        const boost::any& expected) {
    const auto value = stored(top, path);
    return value && ba::isEqual(*value, expected);
}

// True when the key at `path` holds no value: no entry, or an empty one.
inline bool storesNothing(const SettingsPtr& top, const std::string& path) {
    const auto value = stored(top, path);
    return !value || value->empty();
}

class ReadingTest : public ::testing::Test {
protected:
    // Writes `text` to `file` in the test's folder and parses it with a new parser.
    SettingsPtr parse(const std::string& text, const std::string& file = "test.settings") {
        sc::SettingsFileParser parser;
        return parser.parse(write(text, file));
    }

    std::wstring write(const std::string& text, const std::string& file = "test.settings") {
        return testsupport::writeFile(dir_.path() / file, text).wstring();
    }

    // The failure that parsing `text` raises; a test failure when there is none.
    ErrorReadingSettingsData readError(const std::string& text) {
        try {
            parse(text);
        } catch (const ErrorReadingSettingsData& failure) {
            return failure;
        }
        ADD_FAILURE() << "no ErrorReadingSettingsData for:\n" << text;
        return ErrorReadingSettingsData(ErrorReadingSettingsData::ProductNodeLoadingFailed, L"");
    }

    testsupport::TempDir dir_;
};

// Points the installation root (where the parser finds the schema) at `root` for the guard's
// life.
class InstallRootGuard {
public:
    explicit InstallRootGuard(const std::wstring& root)
        : previous_(sc::detail::setTolvanRootOverride(root)) {}
    ~InstallRootGuard() { sc::detail::setTolvanRootOverride(previous_); }
    InstallRootGuard(const InstallRootGuard&) = delete;
    InstallRootGuard& operator=(const InstallRootGuard&) = delete;

private:
    std::wstring previous_;
};

// The staged schema of the build tree.
inline std::string builtSchema() {
    return testsupport::readFile(std::string(SETTINGSCORE_BUILD_ROOT) +
                                 "/toolbox/tolvan/configtools/settings.xsd");
}

// Places `schema` where the parser looks for it below installation root `root`.
inline void installSchema(const std::filesystem::path& root, const std::string& schema) {
    testsupport::writeFile(root / "toolbox" / "tolvan" / "configtools" / "settings.xsd", schema);
}

// A schema that admits any element below "settings" and any content in "key" in the settings
// namespace, so that only the reader's own checks stand between a file and its tree: text is
// admitted inside keys (and the elements below them), white space between the elements of a
// group stays ignorable. It supplies no attribute defaults.
inline const char* const laxSchema =
    "<?xml version=\"1.0\"?>\n"
    "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"\n"
    "    targetNamespace=\"urn:lindqvare.tolvan.settings\" elementFormDefault=\"qualified\">\n"
    "  <xs:element name=\"settings\"><xs:complexType><xs:sequence>\n"
    "    <xs:any processContents=\"lax\" minOccurs=\"0\" maxOccurs=\"unbounded\"/>\n"
    "  </xs:sequence><xs:anyAttribute processContents=\"lax\"/></xs:complexType></xs:element>\n"
    "  <xs:element name=\"key\" type=\"xs:anyType\"/>\n"
    "</xs:schema>\n";

}  // namespace readingtest
