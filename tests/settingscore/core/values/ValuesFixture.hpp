// Keys with limits, validators and run-time defaults set directly, for the value tests, on top
// of the tree fixture; Java-kind proxies installed by the test and cleared afterwards.
#pragma once

#include "settingscore/core/tree/TreeFixture.hpp"

#include <settingscore/core/callouts/JRunTimeDefault.hpp>
#include <settingscore/core/callouts/JValidator.hpp>
#include <settingscore/core/events/SettingsEvent.hpp>
#include <settingscore/core/exception/Exceptions.hpp>

#include <queue>

namespace valuestest {

using namespace treetest;
using settings::core::JRunTimeDefault;
using settings::core::JValidator;
using settings::core::SettingsKeyMetaData;

class ValueKey : public TestNode {
public:
    using TestNode::TestNode;
    void limit(const boost::any& min, const boost::any& max,
               const boost::optional<std::vector<boost::any>>& choices) {
        metaData_ = SettingsKeyMetaData<boost::any>(min, max, choices);
    }
    void setArrayBounds(unsigned min, unsigned max) {
        arraySizeBounds_ = settings::core::ArraySizeBounds(shared_from_this(), min, max);
    }
    void setDefault(const std::string& function, const std::string& belongingLevel) {
        JRunTimeDefault runTimeDefault("pkg", function);
        runTimeDefault.setBelongingLevel(belongingLevel);
        runTimeDefault_ = runTimeDefault;
    }
    boost::any stored(const std::string& level) const {
        const auto found = values_.find(level);
        return found == values_.end() ? boost::any() : found->second;
    }
};

inline boost::shared_ptr<ValueKey> makeKey(const std::string& name) {
    return boost::make_shared<ValueKey>(name, true, boost::optional<bool>(true),
                                        settings::core::ValidatorVariant(), SettingsImpl::Writable,
                                        boost::shared_ptr<SettingsImpl>());
}

class ValuesTest : public TreeTest {
protected:
    ValuesTest() {
        // Run-time defaults answer "<function>" as text, or count their calls.
        JRunTimeDefault::setJRuntimeDefaultProxy(
            [this](const std::string&, const std::string& function) -> boost::any {
                ++defaultCalls_;
                return boost::any(std::wstring(function.begin(), function.end()));
            });
    }
    ~ValuesTest() override {
        JRunTimeDefault::setJRuntimeDefaultProxy({});
        JValidator::clearFunctions();
    }

    // A product "p" on the tree with group "g" and the given key in it; events recorded.
    boost::shared_ptr<TestNode> mountUnderProduct(const boost::shared_ptr<SettingsImpl>& key) {
        auto r = root();
        auto product = makeNode("p", false);
        auto group = makeNode("g", false);
        key->setParent(group);
        group->setParent(product);
        product->setParent(r);
        r->setRecordEvents(true);
        drainEvents();
        saves_.clear();
        return group;
    }

    std::vector<std::string> drainEvents() {
        std::queue<boost::shared_ptr<const settings::core::SettingsEvent>> queue;
        TSettings::eventQueue(queue, BlessedInstanceID);
        std::vector<std::string> names;
        for (; !queue.empty(); queue.pop()) {
            names.push_back(queue.front()->getObj()->getFullName());
        }
        return names;
    }

    std::atomic<int> defaultCalls_{0};
};

inline std::wstring text(const boost::any& value) {
    return treestore::boostany::get<std::wstring>(value, true);
}

}  // namespace valuestest
