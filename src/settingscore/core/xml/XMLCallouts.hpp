// The function elements of settings files: XMLValidationFunction ("validationfunc"), which
// installs a validator on the enclosing group or key, and XMLRuntimeDefault<T>
// ("runtimedefault"), which installs a run-time default on the enclosing key. Both do all
// their work when the tag opens.
//
// Attributes of both: "type" selects the callout kind ("C", "JAVA" or "TOLVAN"),
// "packagename" and "functionname" name the function. Any other type word builds nothing and
// raises nothing: the element is silently without effect.
#pragma once

#include <settingscore/core/xml/XMLNode.hpp>

namespace settings {
namespace core {

class XMLValidationFunction : public XMLLeafNode {
public:
    XMLValidationFunction(const xercesc::Attributes& attributes, const NodePtr& parent);
    std::string getTagName() const override;
};

// One class per type element's T, though the work is the same for every T: each type
// element's child table holds its own instance.
template <class T>
class XMLRuntimeDefault : public XMLLeafNode {
public:
    XMLRuntimeDefault(const xercesc::Attributes& attributes, const NodePtr& parent);
    std::string getTagName() const override;
};

namespace detail {

// Installs the run-time default that `attributes` describe on `key`, replacing any earlier
// one; nothing for an unknown type word. `build`: the parse's hold over the tree it builds.
void installRunTimeDefault(UniqueFromUpgrade* build, const xercesc::Attributes& attributes,
                           SettingsImpl& key);

}  // namespace detail

template <class T>
XMLRuntimeDefault<T>::XMLRuntimeDefault(const xercesc::Attributes& attributes,
                                        const NodePtr& parent)
    : XMLLeafNode(parent) {
    // The enclosing key: a type element answers with its key.
    if (const auto key = getSettings()) {
        detail::installRunTimeDefault(buildLock(), attributes, *key);
    }
}

template <class T>
std::string XMLRuntimeDefault<T>::getTagName() const {
    return "runtimedefault";
}

}  // namespace core
}  // namespace settings
