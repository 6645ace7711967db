// Settings events on a real tree, root - prod - a - b - key and prod - sibling, in an instance
// with empty temporary factory and user folders: the event classes, tags up the ancestry, who
// hears a change and for how long, the root's queue, and events once the instance is gone.
#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/events/SettingsAddNodeEvent.hpp>
#include <settingscore/core/events/SettingsRemoveNodeEvent.hpp>
#include <settingscore/core/events/SettingsValueChangeEvent.hpp>
#include <settingscore/core/events/detail/EventPublishing.hpp>
#include <settingscore/core/events/detail/EventTags.hpp>

#include "platform/hf/Threads.hpp"
#include "support/EnvVarGuard.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <queue>
#include <sstream>
#include <string>
#include <typeinfo>
#include <vector>

namespace eventstest {
namespace {

using namespace settings::core;
using tvutil::contextmgr::AnyInstanceID;
using tvutil::contextmgr::BlessedInstanceID;
using EventQueue = std::queue<boost::shared_ptr<const SettingsEvent>>;
using NodePtr = boost::shared_ptr<TSettings>;
namespace em = hostsvc::msg_svc::eventmgr;

// What one listener was handed, in order. Safe to fill from several threads.
struct Ear {
    boost::function1<void, const SettingsEvent&> listener() {
        return [this](const SettingsEvent& event) {
            std::lock_guard<std::mutex> guard(mutex);
            heard.push_back(&event);
            nodes.push_back(event.getObj());
        };
    }
    std::mutex mutex;
    std::vector<const SettingsEvent*> heard;
    std::vector<ConstSettingsPtr> nodes;
};

// Resets every instance's settings when made and when dropped.
struct StatesReset {
    StatesReset() { TSettings::reset(AnyInstanceID); }
    ~StatesReset() { TSettings::reset(AnyInstanceID); }
};

NodePtr node(const std::string& name, bool isKey) {
    return TSettings::createSettingsNode(name, isKey, true, ValidatorVariant(), false);
}
NodePtr attach(const SettingsPtr& parent, const std::string& name, bool isKey = false) {
    auto child = node(name, isKey);
    child->setParent(parent);
    return child;
}
// Announced as the value layer does: the event maker under the tree lock.
void announceChange(const SettingsPtr& key) {
    detail::UpgradeLock lock(detail::rootMutex());
    detail::publishValueChange(lock, *SettingsImpl::implOf(key));
}
EventQueue drain() {
    EventQueue queue;
    TSettings::eventQueue(queue, BlessedInstanceID);
    return queue;
}
// The tag of `node` for events named `typeName`, spelled out from its parts.
std::wstring tagOf(const std::wstring& typeName, const SettingsPtr& node) {
    const std::string id = node->getNodeId().toString();
    return typeName + std::wstring(id.begin(), id.end());
}

class EventsTest : public ::testing::Test {
protected:
    testsupport::TempDir factoryDir_, userDir_;
    testsupport::EnvVarGuard factoryEnv_{"SETTINGS_FACTORYDIR", factoryDir_.path().string()},
        userEnv_{"SETTINGS_USERDIR", userDir_.path().string()};
    StatesReset reset_;
    NodePtr r_ = TSettings::getTSettingsRoot(BlessedInstanceID), product_ = attach(r_, "prod"),
            sibling_ = attach(product_, "sibling"), a_ = attach(product_, "a"),
            b_ = attach(a_, "b"), key_ = attach(b_, "key", true);
};

TEST_F(EventsTest, CloneKeepsClassNodeInstanceAndTagsAndTheTypeChainEndsInBaseEvent) {
    const std::vector<std::wstring> tags{L"first", L"second"};
    const tvutil::contextmgr::InstanceID instance(3);
    const SettingsValueChangeEvent change(key_, tags, instance);
    const SettingsRemoveNodeEvent removal(b_, key_, tags, instance);
    const SettingsAddNodeEvent addition(a_, b_, tags, instance);
    const std::pair<const SettingsEvent*, const wchar_t*> cases[] = {
        {&change, L"settings::core::SettingsValueChangeEvent"},
        {&removal, L"settings::core::SettingsRemoveNodeEvent"},
        {&addition, L"settings::core::SettingsAddNodeEvent"}};
    for (const auto& [event, name] : cases) {
        const std::unique_ptr<em::BaseEvent> copy(event->clone());
        const auto& settingsCopy = dynamic_cast<const SettingsEvent&>(*copy);
        EXPECT_EQ(typeid(*event), typeid(*copy));
        EXPECT_TRUE(&settingsCopy != event && settingsCopy == *event);
        EXPECT_TRUE(settingsCopy.getObj() == event->getObj() &&
                    settingsCopy.getInstanceId() == instance);
        EXPECT_EQ(tags, copy->getTypeInformation()->getTags());
        const auto& chain = *event->getTypeInformation();
        EXPECT_EQ(name, chain.getTypeName(0));
        EXPECT_EQ(SettingsEvent::typeName(), chain.getTypeName(1));
        EXPECT_EQ(L"hostsvc::msg_svc::eventmgr::BaseEvent", chain.getTypeName(2));
        std::wostringstream text;  // the inherited writer names the event's own class
        event->fillStream(text);
        EXPECT_EQ(name, text.str());
    }
    EXPECT_FALSE(removal.isKindOf(SettingsValueChangeEvent::typeName()));
    const std::unique_ptr<em::BaseEvent> added(addition.clone());
    EXPECT_EQ(a_, dynamic_cast<const SettingsAddNodeEvent&>(*added).getParentObj());
    // Same tags but another class, or same class but other tags: not equal.
    EXPECT_FALSE(addition == removal ||
                 change == SettingsValueChangeEvent(key_, {L"first"}, instance));
}

TEST_F(EventsTest, TagsNameTheStartNodeAndEachAncestorNearestFirst) {
    // A value change is addressed from the key, a removal from the parent.
    r_->setRecordEvents(true);
    announceChange(key_);
    a_->removeNode("b");
    auto queue = drain();
    ASSERT_EQ(2u, queue.size());
    const std::wstring change = SettingsValueChangeEvent::typeName();
    EXPECT_EQ((std::vector<std::wstring>{tagOf(change, key_), tagOf(change, b_), tagOf(change, a_),
                                         tagOf(change, product_), tagOf(change, r_)}),
              queue.front()->getTypeInformation()->getTags());
    queue.pop();
    const std::wstring removal = SettingsRemoveNodeEvent::typeName();
    EXPECT_EQ((std::vector<std::wstring>{tagOf(removal, a_), tagOf(removal, product_),
                                         tagOf(removal, r_)}),
              queue.front()->getTypeInformation()->getTags());
    // A standalone tree ends at its own top.
    const auto top = node("top", false);
    const auto below = attach(top, "below", true);
    detail::SharedLock lock(detail::rootMutex());
    EXPECT_EQ((std::vector<std::wstring>{tagOf(L"t", below), tagOf(L"t", top)}),
              detail::collectEventTags(lock, *SettingsImpl::implOf(SettingsPtr(below)), L"t"));
}

TEST_F(EventsTest, AListenerHearsEachChangeOfItsSubtreeOnceWhileConnected) {
    Ear onProduct, onSibling, onKey, onRoot;
    const auto c1 = product_->addListener(onProduct.listener());
    const auto c2 = sibling_->addListener(onSibling.listener());
    const auto c3 = key_->addListener(onKey.listener());
    const auto c4 = r_->addListener(onRoot.listener());
    ASSERT_TRUE(c1 && c2 && c3 && c4);
    announceChange(key_);  // three levels below the product
    ASSERT_TRUE(onProduct.heard.size() == 1 && onKey.heard.size() == 1 && onRoot.heard.size() == 1);
    EXPECT_EQ(0u, onSibling.heard.size());
    // One event handed to each listener (addresses only: it is gone once published).
    EXPECT_TRUE(onKey.heard[0] == onRoot.heard[0] && onKey.heard[0] == onProduct.heard[0]);
    EXPECT_EQ(key_, onRoot.nodes[0]);
    announceChange(sibling_);
    EXPECT_TRUE(onSibling.heard.size() == 1 && onProduct.heard.size() == 2 &&
                onKey.heard.size() == 1);

    // A standalone node cannot be listened to, even once attached; asked again on the tree it
    // can; an empty listener subscribes nothing.
    Ear ear;
    const auto loose = node("loose", false);
    const auto looseKey = attach(loose, "k", true);
    EXPECT_FALSE(loose->addListener(ear.listener()) || looseKey->addListener(ear.listener()));
    loose->setParent(product_);
    announceChange(looseKey);
    EXPECT_TRUE(ear.heard.empty());
    const auto connection = loose->addListener(ear.listener());
    EXPECT_FALSE(loose->addListener(boost::function1<void, const SettingsEvent&>()));
    announceChange(looseKey);
    EXPECT_EQ(1u, ear.heard.size());

    // The subscription lasts as long as the connection.
    Ear dropped, ended;
    auto drop = product_->addListener(dropped.listener());
    const auto end = product_->addListener(ended.listener());
    announceChange(key_);
    drop.reset();
    end->disconnect();
    announceChange(key_);
    EXPECT_TRUE(dropped.heard.size() == 1 && ended.heard.size() == 1 && onKey.heard.size() == 3);
}

TEST_F(EventsTest, AttachAndRemoveQueueTheirEventsButListenersDoNotHearThem) {
    Ear onRoot;
    const auto listening = r_->addListener(onRoot.listener());
    r_->setRecordEvents(true);

    const auto group = attach(b_, "group");
    attach(node("loose", false), "quiet", true);  // under a standalone parent: silent
    b_->removeKey("key");                         // the key is off the tree, its parent is not
    b_->removeNode("group");
    EXPECT_TRUE(onRoot.heard.empty());  // listeners hear value changes only
    auto queue = drain();
    ASSERT_EQ(3u, queue.size());
    const auto* added = dynamic_cast<const SettingsAddNodeEvent*>(queue.front().get());
    EXPECT_TRUE(added && added->getParentObj() == b_ && added->getObj() == group);
    queue.pop();
    const auto* removed = dynamic_cast<const SettingsRemoveNodeEvent*>(queue.front().get());
    EXPECT_TRUE(removed && removed->getParentObj() == b_ && removed->getObj() == key_ &&
                removed->getInstanceId() == BlessedInstanceID);
}

TEST_F(EventsTest, TheQueueRecordsWhileAskedAndADrainTakesEverythingOnce) {
    announceChange(key_);  // not recording
    EXPECT_TRUE(drain().empty());
    r_->setRecordEvents(true);
    announceChange(key_);
    announceChange(sibling_);
    r_->setRecordEvents(false);  // stops recording, keeps what was recorded
    announceChange(a_);
    {
        const EventQueue queue = drain();
        ASSERT_EQ(2u, queue.size());
        EXPECT_TRUE(queue.front()->getObj() == key_ && queue.back()->getObj() == sibling_);
        EXPECT_TRUE(drain().empty());
    }
    // A recorded event keeps a removed node alive until it is drained.
    r_->setRecordEvents(true);
    boost::weak_ptr<TSettings> watched = key_;
    announceChange(key_);
    b_->removeKey("key");
    key_.reset();
    EXPECT_FALSE(watched.expired());
    drain();
    EXPECT_TRUE(watched.expired());
}

TEST_F(EventsTest, EventsAreDroppedOnceTheInstanceStateIsGone) {
    Ear ear;
    const auto listening = r_->addListener(ear.listener());
    r_->setRecordEvents(true);
    const auto oldRoot = boost::dynamic_pointer_cast<SettingsImplRoot>(r_);
    EventQueue fromOld;
    // Resetting the instance drops its root but not its state: the old root still speaks
    // for it, though eventQueue no longer reaches it.
    ASSERT_EQ(r_, TSettings::reset(BlessedInstanceID));
    announceChange(key_);
    oldRoot->swapEventQueue(fromOld);
    EXPECT_TRUE(ear.heard.size() == 1 && fromOld.size() == 1);
    // Resetting all instances replaces the state itself: from then on nothing goes out.
    TSettings::reset(AnyInstanceID);
    announceChange(key_);
    b_->removeKey("key");
    oldRoot->swapEventQueue(fromOld);
    EXPECT_TRUE(ear.heard.size() == 1 && fromOld.empty() && drain().empty());
}

TEST_F(EventsTest, ConcurrentWritersEachHearTheirOwnKeyAndTheRootHearsAll) {
    constexpr int writers = 4, changes = 50;
    std::vector<NodePtr> keys;
    for (int i = 0; i < writers; ++i) {
        keys.push_back(attach(sibling_, "k" + std::to_string(i), true));
    }
    std::atomic<int> heardByRoot{0};
    const auto onRoot = r_->addListener([&heardByRoot](const SettingsEvent&) { ++heardByRoot; });
    r_->setRecordEvents(true);
    std::vector<Ear> ears(writers);
    hftest::onThreads(writers, [&](int i) {
        const auto mine = keys[i]->addListener(ears[i].listener());
        for (int n = 0; n < changes; ++n) {
            announceChange(keys[i]);
        }
    });
    EXPECT_EQ(writers * changes, heardByRoot.load());
    EXPECT_EQ(static_cast<std::size_t>(writers * changes), drain().size());
    for (int i = 0; i < writers; ++i) {
        EXPECT_EQ(std::vector<ConstSettingsPtr>(changes, keys[i]), ears[i].nodes);
    }
}

}  // namespace
}  // namespace eventstest
