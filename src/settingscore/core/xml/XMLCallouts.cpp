#include <settingscore/core/xml/XMLCallouts.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/xml/detail/NodeBuilder.hpp>
#include <settingscore/core/xml/detail/XmlText.hpp>

#include <boost/optional.hpp>

namespace settings {
namespace core {

namespace {

struct FunctionAttributes {
    std::string type;
    std::string packageName;
    std::string functionName;
};

FunctionAttributes readFunctionAttributes(const xercesc::Attributes& attributes) {
    return {detail::attributeText(attributes, u"type"),
            detail::attributeText(attributes, u"packagename"),
            detail::attributeText(attributes, u"functionname")};
}

// The callout of kind `type` from one of the three alternatives, tested in the order C, JAVA,
// TOLVAN; none for another word.
template <class Variant, class C, class J, class T>
boost::optional<Variant> makeCallout(const FunctionAttributes& function) {
    if (function.type == "C") {
        return Variant(C(function.packageName, function.functionName));
    }
    if (function.type == "JAVA") {
        return Variant(J(function.packageName, function.functionName));
    }
    if (function.type == "TOLVAN") {
        return Variant(T(function.packageName, function.functionName));
    }
    return boost::none;
}

}  // namespace

XMLValidationFunction::XMLValidationFunction(const xercesc::Attributes& attributes,
                                             const NodePtr& parent)
    : XMLLeafNode(parent) {
    const auto validator = makeCallout<ValidatorVariant, CValidator, JValidator, TValidator>(
        readFunctionAttributes(attributes));
    const auto node = getSettings();
    if (validator && node) {
        detail::NodeBuilder::setValidator(buildLock(), *node, *validator);
    }
}

std::string XMLValidationFunction::getTagName() const {
    return "validationfunc";
}

namespace detail {

void installRunTimeDefault(UniqueFromUpgrade* build, const xercesc::Attributes& attributes,
                           SettingsImpl& key) {
    const auto runTimeDefault =
        makeCallout<RunTimeDefaultVariant, CRunTimeDefault, JRunTimeDefault, TRunTimeDefault>(
            readFunctionAttributes(attributes));
    if (runTimeDefault) {
        NodeBuilder::setRunTimeDefault(build, key, *runTimeDefault);
    }
}

}  // namespace detail

}  // namespace core
}  // namespace settings
