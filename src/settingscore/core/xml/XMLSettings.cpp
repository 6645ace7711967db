#include <settingscore/core/xml/XMLSettings.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/xml/XMLCallouts.hpp>
#include <settingscore/core/xml/XMLKey.hpp>
#include <settingscore/core/xml/detail/NodeBuilder.hpp>
#include <settingscore/core/xml/detail/XmlText.hpp>

#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

namespace settings {
namespace core {

namespace {

boost::shared_ptr<SettingsImpl> makeGroup(const xercesc::Attributes& attributes) {
    const auto texts =
        detail::attributeTexts<4>(attributes, {u"readonly", u"visible", u"version", u"name"});
    const bool readOnly = texts[0] == "true";
    // Stated even when false: "visible" counts as said whenever the element is read.
    const boost::optional<bool> visible = texts[1] == "true";
    boost::optional<unsigned> version;
    if (!texts[2].empty()) {
        version = boost::lexical_cast<unsigned>(texts[2]);
    }
    return boost::make_shared<SettingsImpl>(
        texts[3], false, visible, version, ValidatorVariant(),
        readOnly ? SettingsImpl::ReadOnly : SettingsImpl::InheritReadOnly, nullptr);
}

}  // namespace

// --- XMLSettings ---

XMLSettings::XMLSettings(const xercesc::Attributes& attributes, const NodePtr& parent)
    : XMLNode(parent), node_(makeGroup(attributes)) {}

XMLSettings::~XMLSettings() = default;

boost::shared_ptr<SettingsImpl> XMLSettings::getSettings() const {
    return node_;
}

std::string XMLSettings::getTagName() const {
    return "settings";
}

void XMLSettings::finish() {
    if (getParent()) {
        detail::NodeBuilder::attach(buildLock(), *node_, getParent()->getSettings());
    }
}

XMLNode::ChildFactories XMLSettings::groupChildFactories() {
    return {
        {"validationfunc", &make<XMLValidationFunction>},
        {"key", &make<XMLKey>},
        {"settings", &make<XMLSettings>},
    };
}

const XMLNode::ChildFactories& XMLSettings::getChildFactories() const {
    static const ChildFactories factories = groupChildFactories();
    return factories;
}

// --- XMLTopSettingsNode ---

XMLTopSettingsNode::XMLTopSettingsNode(const xercesc::Attributes& attributes, const NodePtr& parent)
    : XMLSettings(attributes, parent) {}

const XMLNode::ChildFactories& XMLTopSettingsNode::getChildFactories() const {
    static const ChildFactories factories = [] {
        ChildFactories table = groupChildFactories();
        table.emplace("additionalpath", &make<XMLAdditionalPath>);
        return table;
    }();
    return factories;
}

void XMLTopSettingsNode::addAdditionalPath(const std::wstring& path) {
    additionalPaths_.push_back(path);
}

// --- XMLAdditionalPath ---

XMLAdditionalPath::XMLAdditionalPath(const xercesc::Attributes&, const NodePtr& parent)
    : XMLLeafNode(parent) {}

void XMLAdditionalPath::setText(const std::wstring& text) {
    // The parser may deliver one text in several runs (around an entity, say).
    path_ += text;
}

std::string XMLAdditionalPath::getTagName() const {
    return "additionalpath";
}

void XMLAdditionalPath::finish() {
    parentAs<XMLTopSettingsNode>().addAdditionalPath(path_);
}

}  // namespace core
}  // namespace settings
