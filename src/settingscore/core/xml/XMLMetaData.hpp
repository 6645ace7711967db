// The "metadata" element of a type element and its children: XMLMetaData<T> collects a key's
// limits and stores them in the key, XMLMetaDataMin<T> and XMLMetaDataMax<T> read an inclusive
// bound ("min", "max"), XMLMetaDataChoice<T> one admissible value ("choices", repeated once per
// value). T is the type element's scalar type.
//
// The bounds of a "string" key limit the text's length, so they are read and kept as unsigned
// numbers (MetaDataBoundOf<std::wstring> is unsigned int), which is the form the key's
// validation reads them in; its choices stay texts.
#pragma once

#include <settingscore/core/SettingsKeyMetaData.hpp>
#include <settingscore/core/xml/XMLNode.hpp>
#include <settingscore/core/xml/detail/ForEachTypeWord.hpp>

#include <boost/any.hpp>
#include <boost/optional.hpp>

#include <string>
#include <vector>

namespace settings {
namespace core {

// The type of a "min" or "max" of a key of type T: the bound type of the key's typed metadata.
template <class T>
using MetaDataBoundOf = typename SettingsKeyMetaData<T>::BoundType;

// "metadata". Children: "min", "max", "choices".
template <class T>
class XMLMetaData : public XMLNode {
public:
    using Bound = MetaDataBoundOf<T>;

    XMLMetaData(const xercesc::Attributes& attributes, const NodePtr& parent);

    std::string getTagName() const override;
    // Stores min, max and choices in the key when at least one of them was given.
    void finish() override;
    const ChildFactories& getChildFactories() const override;

    // Each replaces an earlier bound of its kind. The two bounds are compared as soon as both
    // are known, whichever came first: a minimum above the maximum raises
    // XMLMetaDataParserError (key's full name, minimum, maximum); equal bounds pass.
    void setMin(const Bound& value);
    void setMax(const Bound& value);
    // Appends, in document order.
    void addChoice(const T& value);

private:
    [[noreturn]] void throwMinAboveMax(const Bound& min, const Bound& max) const;

    boost::any min_;
    boost::any max_;
    boost::optional<std::vector<boost::any>> choices_;
};

// What "min" and "max" share: the text read as a bound; each run replaces the last.
template <class T>
class XMLMetaDataMinMaxBase : public XMLLeafNode {
public:
    using Bound = MetaDataBoundOf<T>;

    XMLMetaDataMinMaxBase(const xercesc::Attributes& attributes, const NodePtr& parent);

    void setText(const std::wstring& text) override;
    std::string getTagName() const override = 0;
    void finish() override = 0;

protected:
    Bound value_{};
};

template <class T>
class XMLMetaDataMin : public XMLMetaDataMinMaxBase<T> {
public:
    using XMLMetaDataMinMaxBase<T>::XMLMetaDataMinMaxBase;
    std::string getTagName() const override;
    void finish() override;
};

template <class T>
class XMLMetaDataMax : public XMLMetaDataMinMaxBase<T> {
public:
    using XMLMetaDataMinMaxBase<T>::XMLMetaDataMinMaxBase;
    std::string getTagName() const override;
    void finish() override;
};

// "choices": one admissible value, read as a "value" is; each run of text replaces the last,
// for strings too.
template <class T>
class XMLMetaDataChoice : public XMLLeafNode {
public:
    XMLMetaDataChoice(const xercesc::Attributes& attributes, const NodePtr& parent);

    void setText(const std::wstring& text) override;
    std::string getTagName() const override;
    void finish() override;

private:
    T value_{};
};

#define SETTINGSCORE_DECLARE_METADATA_ELEMENTS(T)   \
    extern template class XMLMetaData<T>;           \
    extern template class XMLMetaDataMinMaxBase<T>; \
    extern template class XMLMetaDataMin<T>;        \
    extern template class XMLMetaDataMax<T>;        \
    extern template class XMLMetaDataChoice<T>;
SETTINGSCORE_FOR_EACH_TYPE_WORD(SETTINGSCORE_DECLARE_METADATA_ELEMENTS)
#undef SETTINGSCORE_DECLARE_METADATA_ELEMENTS

}  // namespace core
}  // namespace settings
