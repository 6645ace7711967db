// Trees for the writer tests, read from a file or built in memory from nodes whose
// declaration, values, validator and run-time default a test sets directly; and the text
// writeSettings gives for a node.
#pragma once

#include "settingscore/core/tree/TreeFixture.hpp"

#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/callouts/CValidator.hpp>
#include <settingscore/core/callouts/JRunTimeDefault.hpp>
#include <settingscore/core/callouts/JValidator.hpp>
#include <settingscore/core/xml/SettingsFileParser.hpp>
#include <settingscore/core/xml/ValueWriters.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <sstream>

namespace writingtest {

using namespace treetest;
namespace sc = settings::core;
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
        arraySizeBounds_ = sc::ArraySizeBounds(shared_from_this(), minArraySize, maxArraySize);
        valueWriter_ = detail::typedValueWriter<T>();
        return *this;
    }
    WNode& declareAnyType(unsigned minArraySize, unsigned maxArraySize) {
        typeCode_ = ba::VoidTypeCode;
        arraySizeBounds_ = sc::ArraySizeBounds(shared_from_this(), minArraySize, maxArraySize);
        valueWriter_ = detail::anyTypeValueWriter();
        return *this;
    }
    WNode& put(const std::string& level, const boost::any& value) {
        values_[level] = value;
        return *this;
    }
    WNode& validate(const sc::ValidatorVariant& validator) {
        validator_ = validator;
        return *this;
    }
    WNode& runTimeDefault(const std::string& function, const std::string& belongingLevel) {
        sc::JRunTimeDefault runTimeDefault("pkg", function);
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
                                          sc::ValidatorVariant(), readOnlyState,
                                          boost::shared_ptr<SettingsImpl>());
    if (parent) {
        node->setParent(parent);
    }
    return node;
}

inline std::string written(const SettingsImpl& node, const std::string& level) {
    std::ostringstream out;
    detail::SharedLock lock(detail::rootMutex());
    node.writeSettings(lock, out, level);
    return out.str();
}

// The declaration and the document element's start tag, given up to its attributes
// (e.g. <settings name="p"), with the namespace attributes.
inline std::string documentStart(const std::string& tag) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + tag +
           " xmlns=\"urn:lindqvare.tolvan.settings\""
           " xsi:schemaLocation=\"urn:lindqvare.tolvan.settings settings.xsd\""
           " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">\n";
}

class WritingTest : public TreeTest {
protected:
    // The standalone tree that settings file `text` gives.
    boost::shared_ptr<SettingsImpl> parse(const std::string& text) {
        const auto file = testsupport::writeFile(dir_.path() / "parsed.settings", text);
        return SettingsImpl::implOf(sc::SettingsFileParser().parse(file.wstring()));
    }
};

}  // namespace writingtest
