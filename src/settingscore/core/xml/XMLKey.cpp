#include <settingscore/core/xml/XMLKey.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/xml/ValueTextReading.hpp>
#include <settingscore/core/xml/XMLCallouts.hpp>
#include <settingscore/core/xml/XMLValueType.hpp>
#include <settingscore/core/xml/detail/NodeBuilder.hpp>
#include <settingscore/core/xml/detail/XmlText.hpp>
#include <settingscore/treestore/boostany/SupportedTypes.hpp>

#include <boost/make_shared.hpp>

namespace settings {
namespace core {

namespace {

// Every file is read into this level of a standalone tree.
constexpr char readLevel[] = "user";

enum KeyAttribute { ReadOnlyText, VisibleText, NameText, AnyTypeText };

std::array<std::string, 4> keyAttributes(const xercesc::Attributes& attributes) {
    return detail::attributeTexts<4>(attributes, {u"readonly", u"visible", u"name", u"anytype"});
}

boost::shared_ptr<SettingsImpl> makeKey(const std::array<std::string, 4>& texts) {
    const bool readOnly = texts[ReadOnlyText] == "true";
    const boost::optional<bool> visible = texts[VisibleText] == "true";
    return boost::make_shared<SettingsImpl>(
        texts[NameText], true, visible, ValidatorVariant(),
        readOnly ? SettingsImpl::ReadOnly : SettingsImpl::Writable, nullptr);
}

}  // namespace

XMLKey::XMLKey(const xercesc::Attributes& attributes, const NodePtr& parent)
    : XMLKey(keyAttributes(attributes), parent) {}

XMLKey::XMLKey(const std::array<std::string, 4>& texts, const NodePtr& parent)
    : XMLNode(parent), key_(makeKey(texts)), anyType_(texts[AnyTypeText] == "true") {}

XMLKey::~XMLKey() = default;

boost::shared_ptr<SettingsImpl> XMLKey::getSettings() const {
    return key_;
}

std::string XMLKey::getTagName() const {
    return "key";
}

void XMLKey::setParsedValue(const boost::any& value) {
    parsedValue_ = value;
}

void XMLKey::setParsedValue(boost::any&& value) {
    parsedValue_ = std::move(value);
}

void XMLKey::setValueWriter(detail::ValueWriter writer) {
    valueWriter_ = writer;
}

void XMLKey::finish() {
    if (anyType_) {
        valueWriter_ = detail::anyTypeValueWriter();
    }
    if (!detail::NodeBuilder::settleKey(buildLock(), *key_, anyType_, valueWriter_, parsedValue_,
                                        readLevel)) {
        throw makeMessageException<TOLVAN::settings::core::TypeNotSpecifiedForNoneAnyType>(
            key_->getName());
    }
    const auto parentNode = getParent() ? getParent()->getSettings() : nullptr;
    if (parentNode) {
        detail::NodeBuilder::attach(buildLock(), *key_, parentNode);
    }
}

const XMLNode::ChildFactories& XMLKey::getChildFactories() const {
    static const ChildFactories factories = [] {
        ChildFactories table{
            {"validationfunc", &make<XMLValidationFunction>},
            {"key", &make<XMLKey>},
        };
#define SETTINGSCORE_TYPE_ELEMENT_FACTORY(T) \
    table.emplace(detail::typeWordOf<T>(), &make<XMLValueType<T>>);
        SETTINGSCORE_FOR_EACH_TYPE_WORD(SETTINGSCORE_TYPE_ELEMENT_FACTORY)
#undef SETTINGSCORE_TYPE_ELEMENT_FACTORY
        return table;
    }();
    return factories;
}

}  // namespace core
}  // namespace settings
