#include <settingscore/core/xml/XMLNode.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/exception/MessageIds.hpp>

namespace settings {
namespace core {

XMLNode::XMLNode(const NodePtr& parent)
    : parent_(parent),
      buildLock_(parent ? parent->buildLock_ : nullptr),
      pool_(parent ? parent->pool_ : nullptr) {}

XMLNode::~XMLNode() = default;

boost::shared_ptr<SettingsImpl> XMLNode::getSettings() const {
    return parent_ ? parent_->getSettings() : boost::shared_ptr<SettingsImpl>();
}

void XMLNode::setText(const std::wstring&) {
    throw makeMessageException<TOLVAN::settings::core::XMLParserErrorUnexpectedTextContent>(
        settingsFullName(), getTagName());
}

void XMLNode::finish() {}

XMLNode::NodePtr XMLNode::createChild(const std::string& tag,
                                      const xercesc::Attributes& attributes) {
    const ChildFactories& factories = getChildFactories();
    const auto found = factories.find(tag);
    if (found == factories.end()) {
        throw makeMessageException<TOLVAN::settings::core::XMLParserErrorIllegalTagName>(
            settingsFullName(), tag, getTagName());
    }
    return found->second(attributes, shared_from_this());
}

std::string XMLNode::settingsFullName() const {
    const auto node = getSettings();
    return node ? node->getFullName() : std::string();
}

const XMLNode::ChildFactories& XMLLeafNode::getChildFactories() const {
    static const ChildFactories none;
    return none;
}

}  // namespace core
}  // namespace settings
