// The elements that build groups: XMLSettings for a "settings" element below another element
// (a group), XMLTopSettingsNode for the document element (the product node, which may also
// name further files to read), and XMLAdditionalPath for such a name.
#pragma once

#include <settingscore/core/xml/XMLNode.hpp>

#include <string>
#include <vector>

namespace settings {
namespace core {

// "settings": a group, built when the tag opens from "name", "readonly" (exactly "true": read
// only, else inherited), "visible" (stated either way: exactly "true" is visible) and
// "version" (a decimal unsigned number; empty or absent: none; other text raises
// boost::bad_lexical_cast). Children: "validationfunc", "key", "settings".
class XMLSettings : public XMLNode {
public:
    XMLSettings(const xercesc::Attributes& attributes, const NodePtr& parent);
    ~XMLSettings() override;

    boost::shared_ptr<SettingsImpl> getSettings() const override;
    std::string getTagName() const override;
    // Attaches the group below the parent element's node (setParent: a sibling of the same name
    // raises ErrorAddingChildNodeOrKey). Without a parent element nothing happens.
    void finish() override;
    const ChildFactories& getChildFactories() const override;

protected:
    // The admissible children of every "settings" element.
    static ChildFactories groupChildFactories();

private:
    const boost::shared_ptr<SettingsImpl> node_;
};

// The document element "settings": the product node of a standalone tree. It admits
// "additionalpath" besides a group's children and keeps the paths they name, in order. Its
// finish is never called: the handler takes the tree and the paths when it closes.
class XMLTopSettingsNode : public XMLSettings {
public:
    XMLTopSettingsNode(const xercesc::Attributes& attributes, const NodePtr& parent);

    const ChildFactories& getChildFactories() const override;

    void addAdditionalPath(const std::wstring& path);
    const std::vector<std::wstring>& getAdditionalPaths() const { return additionalPaths_; }

private:
    std::vector<std::wstring> additionalPaths_;
};

// "additionalpath": the text is the path of another file to read, as it stands (relative
// paths are the reader's business). Runs of text are joined.
class XMLAdditionalPath : public XMLLeafNode {
public:
    XMLAdditionalPath(const xercesc::Attributes& attributes, const NodePtr& parent);

    void setText(const std::wstring& text) override;
    std::string getTagName() const override;
    // Hands the path to the document element.
    void finish() override;

private:
    std::wstring path_;
};

}  // namespace core
}  // namespace settings
