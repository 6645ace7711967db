// Settings files written to a temporary folder and read with SettingsFileParser: documents,
// what their trees store and declare, their failures, and an installation root with a schema.
#pragma once

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/exception/TreeExceptions.hpp>
#include <settingscore/core/storage/detail/PreferencesDirectoryDetail.hpp>
#include <settingscore/core/xml/SettingsFileParser.hpp>
#include <settingscore/core/xml/detail/NodeBuilder.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>
#include <settingscore/treestore/boostany/TypeNames.hpp>

#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>

#include <support/TempDir.hpp>

#include <boost/optional/optional_io.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace readingtest {

namespace sc = settings::core;
namespace ba = treestore::boostany;
using sc::detail::NodeBuilder;
using sc::exception::ErrorReadingSettingsData;
using SettingsPtr = boost::shared_ptr<sc::Settings>;
using NodePtr = boost::shared_ptr<sc::SettingsImpl>;

// The document element "settings" named "p" in the settings namespace, holding `body`.
inline std::string document(const std::string& body, const std::string& attributes = "") {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<settings name=\"p\" xmlns=\"urn:lindqvare.tolvan.settings\"" +
           attributes + ">\n" + body + "\n</settings>\n";
}

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

inline NodePtr nodeAt(const SettingsPtr& top, const std::string& path) {
    const auto node = sc::SettingsImpl::implOf(path.empty() ? top : top->getNodeByPath(path));
    if (!node) {
        throw std::runtime_error("no node " + path);
    }
    return node;
}

// What the key at `path` stores at level "user", where every file is read.
inline boost::optional<boost::any> stored(const SettingsPtr& top, const std::string& path) {
    return NodeBuilder::getStoredValue(*nodeAt(top, path), "user");
}

inline bool storesValue(const SettingsPtr& top, const std::string& path,
                        const boost::any& expected) {
    const auto value = stored(top, path);
    return value && ba::isEqual(*value, expected);
}

// "<which>:<package>/<function>" of a callout, and "@<level>" for a run-time default.
template <class Variant>
std::string describe(const Variant& callout) {
    return std::to_string(callout.which()) +
           boost::apply_visitor(
               [](const auto& c) {
                   using C = std::decay_t<decltype(c)>;
                   if constexpr (std::is_same_v<C, boost::mpl::void_>) {
                       return std::string();
                   } else if constexpr (std::is_same_v<Variant, sc::RunTimeDefaultVariant>) {
                       return ":" + c.getPackageName() + "/" + c.getFunctionName() + "@" +
                              c.getBelongingLevel();
                   } else {
                       return ":" + c.getPackageName() + "/" + c.getFunctionName();
                   }
               },
               callout);
}

// The kind of a stored value; sameValues compares the values themselves.
inline std::string describe(const boost::optional<boost::any>& value) {
    return !value ? "no entry" : value->empty() ? "empty" : ba::typeNameOf(*value);
}

// Every field a file can set, of `node` and all below it; children must name `node` as parent.
inline std::string describeTree(const NodePtr& node) {
    std::string text = node->getFullName() + (node->isKey() ? " key" : " group") +
                       " visible=" + std::to_string(node->isVisible()) +
                       " readonly=" + std::to_string(node->isReadOnly()) +
                       " version=" + std::to_string(node->getProductVersion().value_or(0)) +
                       " validator=" + describe(node->getValidator());
    if (node->isKey()) {
        const auto bounds = NodeBuilder::getArraySizeBounds(*node);
        const auto metaData = NodeBuilder::getMetaData(*node);
        text += " type=" + std::to_string(NodeBuilder::getTypeCode(*node).value_or(-1)) +
                " bounds=" +
                (bounds ? std::to_string(bounds->getMinArraySize()) + ".." +
                              std::to_string(bounds->getMaxArraySize())
                        : "none") +
                " min=" + describe(boost::make_optional(metaData.getMin())) +
                " max=" + describe(boost::make_optional(metaData.getMax())) +
                " default=" + describe(NodeBuilder::getRunTimeDefault(*node)) +
                " writer=" + std::to_string(NodeBuilder::getValueWriter(*node) != nullptr) +
                " conformer=" + std::to_string(NodeBuilder::getTypeConformer(*node) != nullptr);
        for (const char* level : {"session", "user", "factory"}) {
            text += std::string(" ") + level + "=" +
                    describe(NodeBuilder::getStoredValue(*node, level));
        }
    }
    text += "\n";
    for (const auto& child : node->getChildren()) {
        text +=
            child->getParent() != node ? "(" + child->getName() + " names another parent)\n" : "";
        text += describeTree(sc::SettingsImpl::implOf(child));
    }
    return text;
}

// The stored values and the metadata bounds of both trees, key by key, level by level.
inline bool sameValues(const NodePtr& a, const NodePtr& b) {
    bool same = true;
    for (const char* level : {"session", "user", "factory"}) {
        const auto x = NodeBuilder::getStoredValue(*a, level);
        const auto y = NodeBuilder::getStoredValue(*b, level);
        same = same && bool(x) == bool(y) && (!x || ba::isEqual(*x, *y));
    }
    const auto metaA = NodeBuilder::getMetaData(*a);
    const auto metaB = NodeBuilder::getMetaData(*b);
    same = same && ba::isEqual(metaA.getMin(), metaB.getMin()) &&
           ba::isEqual(metaA.getMax(), metaB.getMax());
    for (const auto& child : a->getChildren()) {
        const auto other = b->getChild(child->getName());
        same = same && other &&
               sameValues(sc::SettingsImpl::implOf(child), sc::SettingsImpl::implOf(other));
    }
    return same;
}

inline bool sameTree(const SettingsPtr& a, const SettingsPtr& b) {
    const auto x = sc::SettingsImpl::implOf(a);
    const auto y = sc::SettingsImpl::implOf(b);
    return describeTree(x) == describeTree(y) && sameValues(x, y);
}

class ReadingTest : public ::testing::Test {
protected:
    // Writes `text` to `file` in the test's folder and parses it with a new parser.
    SettingsPtr parse(const std::string& text, const std::string& file = "test.settings") {
        return sc::SettingsFileParser().parse(write(text, file));
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

    // Parsing `text` fails with code 5 and `expected` as its detail.
    void expectCodeFive(const std::string& text, const std::string& expected) {
        const auto error = readError(text);
        EXPECT_EQ(error.getErrorCode(), ErrorReadingSettingsData::SaxError) << text;
        EXPECT_EQ(detailText(error), expected) << text;
    }

    testsupport::TempDir dir_;
};

// Points the installation root (where the parser finds the schema) at `root` for its life.
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

inline std::string builtSchema() {
    return testsupport::readFile(std::string(SETTINGSCORE_BUILD_ROOT) +
                                 "/toolbox/tolvan/configtools/settings.xsd");
}

// Places `schema` where the parser looks for it below `root`, in one step as an installer does.
inline void installSchema(const std::filesystem::path& root, const std::string& schema) {
    const auto folder = root / "toolbox" / "tolvan" / "configtools";
    std::filesystem::rename(testsupport::writeFile(folder / "next.xsd", schema),
                            folder / "settings.xsd");
}

// Admits anything below "settings" and in "key", with no defaults: only the reader checks.
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
