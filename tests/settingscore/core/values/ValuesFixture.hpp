// Keys with limits, validators and run-time defaults set directly, on top of the tree fixture;
// the Java-kind proxies are installed by the test and cleared afterwards.
#pragma once

#include "settingscore/core/tree/TreeFixture.hpp"

#include <settingscore/core/callouts/JRunTimeDefault.hpp>
#include <settingscore/core/callouts/JValidator.hpp>
#include <settingscore/core/events/SettingsEvent.hpp>
#include <settingscore/core/exception/Exceptions.hpp>

#include <queue>

namespace valuestest {

using namespace treetest;
using namespace settings::core::exception;
using settings::core::JRunTimeDefault;
using settings::core::JValidator;

class ValueKey : public TestNode {
public:
    using TestNode::TestNode;
    void limit(const boost::any& min, const boost::any& max,
               const boost::optional<std::vector<boost::any>>& choices = boost::none) {
        metaData_ = settings::core::SettingsKeyMetaData<boost::any>(min, max, choices);
    }
    void setArrayBounds(unsigned min, unsigned max) {
        arraySizeBounds_ = settings::core::ArraySizeBounds(shared_from_this(), min, max);
    }
    void setDefault(const std::string& function, const std::string& belongingLevel) {
        JRunTimeDefault runTimeDefault("pkg", function);
        runTimeDefault.setBelongingLevel(belongingLevel);
        runTimeDefault_ = runTimeDefault;
    }
};

// A writable key, attached below `parent` when one is given.
inline boost::shared_ptr<ValueKey> makeKey(const std::string& name,
                                           const boost::shared_ptr<Settings>& parent = {}) {
    auto key = boost::make_shared<ValueKey>(
        name, true, boost::optional<bool>(true), settings::core::ValidatorVariant(),
        SettingsImpl::Writable, boost::shared_ptr<SettingsImpl>());
    if (parent) {
        key->setParent(parent);
    }
    return key;
}

class ValuesTest : public TreeTest {
protected:
    ValuesTest() {
        // Run-time defaults answer their function's name as text.
        JRunTimeDefault::setJRuntimeDefaultProxy([](const std::string&, const std::string& f) {
            return boost::any(std::wstring(f.begin(), f.end()));
        });
    }
    ~ValuesTest() override {
        JRunTimeDefault::setJRuntimeDefaultProxy({});
        JValidator::clearFunctions();
    }

    // Product "p" on the tree with group "g" holding `keys`; events recorded, records cleared.
    boost::shared_ptr<TestNode> mountUnderProduct(
        std::initializer_list<boost::shared_ptr<ValueKey>> keys) {
        auto product = makeNode("p", false);
        auto group = makeNode("g", false, product);
        for (const auto& key : keys) {
            key->setParent(group);
        }
        product->setParent(root());
        root()->setRecordEvents(true);
        drainEvents();
        savedFiles();
        return group;
    }

    // The full names of the nodes of the events recorded since the last call.
    std::vector<std::string> drainEvents() {
        std::queue<boost::shared_ptr<const settings::core::SettingsEvent>> queue;
        TSettings::eventQueue(queue, BlessedInstanceID);
        std::vector<std::string> names;
        for (; !queue.empty(); queue.pop()) {
            names.push_back(queue.front()->getObj()->getFullName());
        }
        return names;
    }
};

inline std::wstring text(const boost::any& value) {
    return treestore::boostany::get<std::wstring>(value, true);
}

}  // namespace valuestest
