// Trees built in memory for the writer tests: nodes whose declaration (type, limits, value
// writer), values, validator and run-time default a test sets directly, and the written text of
// a node under a shared hold of the root mutex.
#pragma once

#include "settingscore/core/tree/TreeFixture.hpp"

#include <settingscore/core/callouts/CValidator.hpp>
#include <settingscore/core/callouts/JRunTimeDefault.hpp>
#include <settingscore/core/callouts/JValidator.hpp>
#include <settingscore/core/callouts/TValidator.hpp>
#include <settingscore/core/xml/ValueWriters.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <sstream>

namespace writingtest {

using namespace treetest;
namespace detail = settings::core::detail;
namespace ba = treestore::boostany;

class WNode : public SettingsImpl {
public:
    using SettingsImpl::SettingsImpl;

    // A typed key as a file declares it: type code, conformer, limits and value writer.
    template <class T>
    WNode& declare(unsigned minArraySize = 1, unsigned maxArraySize = 1) {
        typeCode_ = ba::typeCodeOf<T>();
        typeConformer_ = detail::conformerFor(*typeCode_, minArraySize != 1 || maxArraySize != 1);
        arraySizeBounds_ =
            settings::core::ArraySizeBounds(shared_from_this(), minArraySize, maxArraySize);
        valueWriter_ = detail::typedValueWriter<T>();
        return *this;
    }
    WNode& declareAnyType(unsigned minArraySize, unsigned maxArraySize) {
        typeCode_ = ba::VoidTypeCode;
        arraySizeBounds_ =
            settings::core::ArraySizeBounds(shared_from_this(), minArraySize, maxArraySize);
        valueWriter_ = detail::anyTypeValueWriter();
        return *this;
    }
    WNode& put(const std::string& level, const boost::any& value) {
        values_[level] = value;
        return *this;
    }
    WNode& validate(const settings::core::ValidatorVariant& validator) {
        validator_ = validator;
        return *this;
    }
    WNode& runTimeDefault(const std::string& function, const std::string& belongingLevel) {
        settings::core::JRunTimeDefault runTimeDefault("pkg", function);
        runTimeDefault.setBelongingLevel(belongingLevel);
        runTimeDefault_ = runTimeDefault;
        return *this;
    }
};

inline boost::shared_ptr<WNode> makeWNode(const std::string& name, bool isKey,
                                          const boost::shared_ptr<SettingsImpl>& parent = {},
                                          bool visible = false,
                                          int readOnlyState = SettingsImpl::Writable,
                                          boost::optional<unsigned> version = boost::none) {
    auto node = boost::make_shared<WNode>(name, isKey, boost::optional<bool>(visible), version,
                                          settings::core::ValidatorVariant(), readOnlyState,
                                          boost::shared_ptr<SettingsImpl>());
    if (parent) {
        node->setParent(parent);
    }
    return node;
}

// The text writeSettings gives for `node` at `level`.
inline std::string written(const SettingsImpl& node, const std::string& level) {
    std::ostringstream out;
    detail::SharedLock lock(detail::rootMutex());
    node.writeSettings(lock, out, level);
    return out.str();
}

// The declaration line and the document element's opening tag with the namespace attributes:
// `tag` is the tag up to its attributes, e.g. <settings name="p" version="3".
inline std::string documentStart(const std::string& tag) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + tag +
           " xmlns=\"urn:lindqvare.tolvan.settings\""
           " xsi:schemaLocation=\"urn:lindqvare.tolvan.settings settings.xsd\""
           " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">\n";
}

class WritingTest : public TreeTest {
protected:
    // On the tree: product "prod" (visible, version 7, a validator), keys "alpha" and "zeta",
    // an empty group "a", group "beta" with key "k" and group "inner" (its own validator)
    // holding key "deep". Every key has a "user" value.
    void buildProduct() {
        product_ = makeWNode("prod", false, {}, true, SettingsImpl::Writable, 7u);
        product_->setParent(root());
        auto zeta = makeWNode("zeta", true, product_);
        makeWNode("a", false, product_);
        beta_ = makeWNode("beta", false, product_);
        auto alpha = makeWNode("alpha", true, product_);
        auto k = makeWNode("k", true, beta_);
        inner_ = makeWNode("inner", false, beta_);
        deep_ = makeWNode("deep", true, inner_);
        product_->validate(settings::core::TValidator("pv", "check"));
        inner_->validate(settings::core::CValidator("libv", "innerCheck"));
        alpha->declare<std::wstring>().put("user", std::wstring(L"hi"));
        zeta->declare<double>().put("user", 2.5);
        k->declare<int>().put("user", 42);
        deep_->declare<bool>().put("user", true);
    }

    boost::shared_ptr<WNode> product_, beta_, inner_, deep_;
};

}  // namespace writingtest
