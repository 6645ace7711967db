// settings::core::XMLKey: the "key" element of a settings file, which builds one key.
#pragma once

#include <settingscore/core/xml/ValueWriters.hpp>
#include <settingscore/core/xml/XMLNode.hpp>

#include <boost/any.hpp>

#include <array>
#include <string>

namespace settings {
namespace core {

// "key": a key built when the tag opens from "name", "readonly" (exactly "true": read only,
// else writable) and "visible" (stated either way: exactly "true" is visible); "anytype"
// (exactly "true") makes it a key of any type. Children: "validationfunc", "key" (an inner key
// becomes a child of this key's node) and the twelve type elements, which declare the data
// type and supply the parsed value; with several type elements the last one wins.
class XMLKey : public XMLNode {
public:
    XMLKey(const xercesc::Attributes& attributes, const NodePtr& parent);
    ~XMLKey() override;

    boost::shared_ptr<SettingsImpl> getSettings() const override;
    std::string getTagName() const override;
    // Settles the key and attaches it below the parent element's node:
    // 1. no data type and not any-type: TypeNotSpecifiedForNoneAnyType (key name);
    // 2. any-type: data type 25 and the writer that picks the type element from the value;
    // 3. stores the value writer;
    // 4. without a run-time default, stores the parsed value, empty or not, at level "user"
    //    (every file reads into "user"; merging moves values to their true level);
    // 5. setParent below the parent element's node (ErrorAddingChildNodeOrKey for a sibling of
    //    the same name).
    void finish() override;
    const ChildFactories& getChildFactories() const override;

    bool isAnyType() const { return anyType_; }
    // The value a type element read; replaces an earlier one.
    void setParsedValue(const boost::any& value);
    void setParsedValue(boost::any&& value);
    void setValueWriter(detail::ValueWriter writer);

private:
    // From the texts of "readonly", "visible", "name" and "anytype", read in one pass.
    XMLKey(const std::array<std::string, 4>& texts, const NodePtr& parent);

    const boost::shared_ptr<SettingsImpl> key_;
    boost::any parsedValue_;
    detail::ValueWriter valueWriter_ = nullptr;
    const bool anyType_;
};

}  // namespace core
}  // namespace settings
