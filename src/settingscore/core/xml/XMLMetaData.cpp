#include <settingscore/core/xml/XMLMetaData.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/SettingsKeyMetaData.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/xml/ValueTextReading.hpp>
#include <settingscore/core/xml/detail/NodeBuilder.hpp>
#include <settingscore/treestore/boostany/Get.hpp>

#include <type_traits>

namespace settings {
namespace core {

namespace {

// A bound's text in messages: the value layer's number-to-text rule.
template <class B>
std::wstring boundText(const B& bound) {
    return treestore::boostany::get<std::wstring>(boost::any(bound), true);
}

template <class T>
MetaDataBoundOf<T> readBoundText(const std::wstring& text) {
    if constexpr (std::is_same_v<T, std::wstring>) {
        return detail::readLengthBoundText(text);
    } else {
        return detail::readValueText<T>(text);
    }
}

}  // namespace

// --- XMLMetaData<T> ---

template <class T>
XMLMetaData<T>::XMLMetaData(const xercesc::Attributes&, const NodePtr& parent) : XMLNode(parent) {}

template <class T>
std::string XMLMetaData<T>::getTagName() const {
    return "metadata";
}

template <class T>
void XMLMetaData<T>::finish() {
    const auto key = getSettings();
    if (key && (!min_.empty() || !max_.empty() || choices_)) {
        detail::NodeBuilder::setMetaData(buildLock(), *key,
                                         SettingsKeyMetaData<boost::any>(min_, max_, choices_));
    }
}

template <class T>
const XMLNode::ChildFactories& XMLMetaData<T>::getChildFactories() const {
    static const ChildFactories factories{
        {"min", &make<XMLMetaDataMin<T>>},
        {"max", &make<XMLMetaDataMax<T>>},
        {"choices", &make<XMLMetaDataChoice<T>>},
    };
    return factories;
}

template <class T>
void XMLMetaData<T>::setMin(const Bound& value) {
    if (!max_.empty() && value > boost::any_cast<Bound>(max_)) {
        throwMinAboveMax(value, boost::any_cast<Bound>(max_));
    }
    min_ = value;
}

template <class T>
void XMLMetaData<T>::setMax(const Bound& value) {
    if (!min_.empty() && boost::any_cast<Bound>(min_) > value) {
        throwMinAboveMax(boost::any_cast<Bound>(min_), value);
    }
    max_ = value;
}

template <class T>
void XMLMetaData<T>::addChoice(const T& value) {
    if (!choices_) {
        choices_.emplace();
    }
    choices_->push_back(boost::any(value));
}

template <class T>
void XMLMetaData<T>::throwMinAboveMax(const Bound& min, const Bound& max) const {
    throw makeMessageException<TOLVAN::settings::core::XMLMetaDataParserError>(
        settingsFullName(), boundText(min), boundText(max));
}

// --- XMLMetaDataMinMaxBase<T>, XMLMetaDataMin<T>, XMLMetaDataMax<T> ---

template <class T>
XMLMetaDataMinMaxBase<T>::XMLMetaDataMinMaxBase(const xercesc::Attributes&, const NodePtr& parent)
    : XMLLeafNode(parent) {}

template <class T>
void XMLMetaDataMinMaxBase<T>::setText(const std::wstring& text) {
    value_ = readBoundText<T>(text);
}

template <class T>
std::string XMLMetaDataMin<T>::getTagName() const {
    return "min";
}

template <class T>
void XMLMetaDataMin<T>::finish() {
    this->template parentAs<XMLMetaData<T>>().setMin(this->value_);
}

template <class T>
std::string XMLMetaDataMax<T>::getTagName() const {
    return "max";
}

template <class T>
void XMLMetaDataMax<T>::finish() {
    this->template parentAs<XMLMetaData<T>>().setMax(this->value_);
}

// --- XMLMetaDataChoice<T> ---

template <class T>
XMLMetaDataChoice<T>::XMLMetaDataChoice(const xercesc::Attributes&, const NodePtr& parent)
    : XMLLeafNode(parent) {}

template <class T>
void XMLMetaDataChoice<T>::setText(const std::wstring& text) {
    value_ = detail::readValueText<T>(text);
}

template <class T>
std::string XMLMetaDataChoice<T>::getTagName() const {
    return "choices";
}

template <class T>
void XMLMetaDataChoice<T>::finish() {
    parentAs<XMLMetaData<T>>().addChoice(value_);
}

#define SETTINGSCORE_INSTANTIATE_METADATA_ELEMENTS(T) \
    template class XMLMetaData<T>;                    \
    template class XMLMetaDataMinMaxBase<T>;          \
    template class XMLMetaDataMin<T>;                 \
    template class XMLMetaDataMax<T>;                 \
    template class XMLMetaDataChoice<T>;
SETTINGSCORE_FOR_EACH_TYPE_WORD(SETTINGSCORE_INSTANTIATE_METADATA_ELEMENTS)
#undef SETTINGSCORE_INSTANTIATE_METADATA_ELEMENTS

}  // namespace core
}  // namespace settings
