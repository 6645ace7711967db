#include <settingscore/core/xml/XMLValueType.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/xml/ValueTextReading.hpp>
#include <settingscore/core/xml/XMLCallouts.hpp>
#include <settingscore/core/xml/XMLKey.hpp>
#include <settingscore/core/xml/XMLMetaData.hpp>
#include <settingscore/core/xml/detail/NodeBuilder.hpp>
#include <settingscore/core/xml/detail/XmlText.hpp>
#include <settingscore/treestore/boostany/SupportedTypes.hpp>

#include <boost/lexical_cast.hpp>

#include <type_traits>
#include <utility>

namespace settings {
namespace core {

namespace {

// An array size attribute. The schema supplies 1 for an absent one, so nothing here looks for
// absence: text that is empty (or not a number) raises boost::bad_lexical_cast.
unsigned arraySize(const std::string& text) {
    return boost::lexical_cast<unsigned>(text);
}

}  // namespace

// --- XMLValueType<T> ---

template <class T>
XMLValueType<T>::XMLValueType(const xercesc::Attributes& attributes, const NodePtr& parent)
    : XMLValueType(
          detail::attributeTexts<3>(attributes, {u"minArraySize", u"maxArraySize", u"undef"}),
          parent) {}

template <class T>
XMLValueType<T>::XMLValueType(const std::array<std::string, 3>& texts, const NodePtr& parent)
    : XMLNode(parent),
      minArraySize_(arraySize(texts[0])),
      maxArraySize_(arraySize(texts[1])),
      undef_(texts[2] == "true") {
    using detail::NodeBuilder;
    const XMLKey& key = parentAs<XMLKey>();
    SettingsImpl& node = *key.getSettings();
    constexpr int typeCode = treestore::boostany::typeCodeOf<T>();
    const bool isArray = !(minArraySize_ == 1 && maxArraySize_ == 1);
    NodeBuilder::declareType(buildLock(), node,
                             key.isAnyType() ? treestore::boostany::VoidTypeCode : typeCode,
                             ArraySizeBounds(key.getSettings(), minArraySize_, maxArraySize_),
                             detail::conformerFor(typeCode, isArray));
}

template <class T>
std::string XMLValueType<T>::getTagName() const {
    return detail::typeWordOf<T>();
}

template <class T>
void XMLValueType<T>::finish() {
    XMLKey& key = parentAs<XMLKey>();
    key.setValueWriter(detail::typedValueWriter<T>());
    if (undef_) {
        return;  // values, if any, are dropped
    }
    const std::size_t count = values_.size();
    if (count == 0) {
        if (minArraySize_ == 0 && maxArraySize_ == 0) {
            key.setParsedValue(boost::any(std::vector<T>()));
        }
        return;
    }
    if (count < minArraySize_ || (maxArraySize_ != 0 && count > maxArraySize_)) {
        throw makeMessageException<TOLVAN::settings::core::XMLParserErrorNumOfValueNotInRange>(
            key.getSettings()->getName(), getTagName(), count, minArraySize_,
            maxArraySize_ == 0 ? std::string("unbounded") : std::to_string(maxArraySize_));
    }
    if (count == 1 && maxArraySize_ == 1) {
        // T(...): for bool the element is a proxy, not a bool
        key.setParsedValue(boost::any(T(std::move(values_.front()))));
    } else {
        key.setParsedValue(boost::any(std::move(values_)));
    }
}

template <class T>
const XMLNode::ChildFactories& XMLValueType<T>::getChildFactories() const {
    static const ChildFactories factories{
        {"value", &make<XMLValue<T>>},
        {"runtimedefault", &make<XMLRuntimeDefault<T>>},
        {"metadata", &make<XMLMetaData<T>>},
    };
    return factories;
}

template <class T>
void XMLValueType<T>::addValue(const T& value) {
    values_.push_back(value);
}

// --- XMLValue<T> ---

template <class T>
XMLValue<T>::XMLValue(const xercesc::Attributes&, const NodePtr& parent) : XMLLeafNode(parent) {}

template <class T>
void XMLValue<T>::setText(const std::wstring& text) {
    if constexpr (std::is_same_v<T, std::wstring>) {
        value_ += text;
    } else {
        value_ = detail::readValueText<T>(text);
    }
}

template <class T>
std::string XMLValue<T>::getTagName() const {
    return "value";
}

template <class T>
void XMLValue<T>::finish() {
    parentAs<XMLValueType<T>>().addValue(value_);
}

#define SETTINGSCORE_INSTANTIATE_VALUE_ELEMENTS(T) \
    template class XMLValueType<T>;                \
    template class XMLValue<T>;
SETTINGSCORE_FOR_EACH_TYPE_WORD(SETTINGSCORE_INSTANTIATE_VALUE_ELEMENTS)
#undef SETTINGSCORE_INSTANTIATE_VALUE_ELEMENTS

}  // namespace core
}  // namespace settings
