// The type elements of a settings file ("int8" ... "string") and their "value" children:
// XMLValueType<T> declares a key's data type and array limits and collects its values,
// XMLValue<T> reads one value. T is one of the twelve scalar types of the value layer; the
// instances differ only in the type word and the text conversion (ValueTextReading.hpp).
#pragma once

#include <settingscore/core/xml/XMLNode.hpp>
#include <settingscore/core/xml/detail/ForEachTypeWord.hpp>

#include <array>
#include <string>
#include <vector>

namespace settings {
namespace core {

// A type element, child of a key. When the tag opens it reads "minArraySize" and
// "maxArraySize" (decimal unsigned numbers, both 1 by the schema's default; an empty one
// raises boost::bad_lexical_cast) and "undef" (exactly "true"), and sets on the key: the data
// type (T's code, or 25 for an any-type key), the array limits, and the conformer (scalar when
// both limits are 1, array otherwise). Children: "value", "runtimedefault", "metadata".
template <class T>
class XMLValueType : public XMLNode {
public:
    XMLValueType(const xercesc::Attributes& attributes, const NodePtr& parent);

    // The type word.
    std::string getTagName() const override;
    // Gives the key the value writer of T; then, unless undef, applies the count rule to the
    // values and hands the result to the key:
    // - no value: an empty vector when both limits are 0, else nothing and no error;
    // - a count outside minArraySize..maxArraySize (0: unbounded):
    //   XMLParserErrorNumOfValueNotInRange (key name, tag, count, min, max or "unbounded");
    // - exactly one value with maxArraySize 1: that scalar; otherwise the vector of them all.
    void finish() override;
    const ChildFactories& getChildFactories() const override;

    // Appends one value, in document order.
    void addValue(const T& value);

private:
    // From the texts of "minArraySize", "maxArraySize" and "undef", read in one pass.
    XMLValueType(const std::array<std::string, 3>& texts, const NodePtr& parent);

    const unsigned minArraySize_;
    const unsigned maxArraySize_;
    const bool undef_;
    std::vector<T> values_;
};

// "value": one scalar, or one element of an array. A "value" without text holds T's zero (0,
// false, an empty string). For a number or a bool each run of text replaces the last; a string
// joins its runs, so text split over several CDATA sections comes back whole.
template <class T>
class XMLValue : public XMLLeafNode {
public:
    XMLValue(const xercesc::Attributes& attributes, const NodePtr& parent);

    void setText(const std::wstring& text) override;
    std::string getTagName() const override;
    // Adds the value to the enclosing type element.
    void finish() override;

private:
    T value_{};
};

#define SETTINGSCORE_DECLARE_VALUE_ELEMENTS(T) \
    extern template class XMLValueType<T>;     \
    extern template class XMLValue<T>;
SETTINGSCORE_FOR_EACH_TYPE_WORD(SETTINGSCORE_DECLARE_VALUE_ELEMENTS)
#undef SETTINGSCORE_DECLARE_VALUE_ELEMENTS

}  // namespace core
}  // namespace settings
