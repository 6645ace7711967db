// Listeners and the root's queue: who hears a change, how long a subscription lasts, what the
// queue records and hands over, and what happens once the instance's state is gone.
#include "EventsFixture.hpp"
#include "platform/hf/Threads.hpp"

#include <platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionCount.hpp>
#include <platform/tvutil/eventmgr/LocalEventMgr.hpp>

#include <boost/make_shared.hpp>

#include <atomic>
#include <map>
#include <typeinfo>

namespace eventstest {
namespace {

namespace em = hostsvc::msg_svc::eventmgr;

TEST_F(EventsTest, AListenerHearsEachChangeOfItsSubtreeOnce) {
    Ear onProduct, onSibling, onKey, onRoot;
    const auto c1 = product_->addListener(onProduct.listener());
    const auto c2 = sibling_->addListener(onSibling.listener());
    const auto c3 = key_->addListener(onKey.listener());
    const auto c4 = r_->addListener(onRoot.listener());
    ASSERT_TRUE(c1 && c2 && c3 && c4);

    announceChange(key_);  // three levels below the product
    ASSERT_EQ(1u, onProduct.heard.size());
    EXPECT_EQ(0u, onSibling.heard.size());
    ASSERT_EQ(1u, onKey.heard.size());
    ASSERT_EQ(1u, onRoot.heard.size());
    // One event, handed to each listener: the same object every time (compared as addresses
    // only: the event is gone once published).
    EXPECT_EQ(onKey.heard[0], onRoot.heard[0]);
    EXPECT_EQ(onKey.heard[0], onProduct.heard[0]);
    EXPECT_EQ(key_, onRoot.nodes[0]);

    announceChange(sibling_);
    EXPECT_EQ(1u, onSibling.heard.size());
    EXPECT_EQ(2u, onProduct.heard.size());
    EXPECT_EQ(1u, onKey.heard.size());
}

TEST_F(EventsTest, AStandaloneNodeCannotBeListenedToEvenOnceAttached) {
    Ear ear;
    const auto loose = node("loose", false);
    const auto looseKey = attach(loose, "k", true);
    EXPECT_FALSE(loose->addListener(ear.listener()));
    EXPECT_FALSE(looseKey->addListener(ear.listener()));
    loose->setParent(product_);
    announceChange(looseKey);
    EXPECT_TRUE(ear.heard.empty());
    // Asked again on the tree it works; an empty listener subscribes nothing.
    const auto connection = loose->addListener(ear.listener());
    EXPECT_FALSE(loose->addListener(boost::function1<void, const SettingsEvent&>()));
    announceChange(looseKey);
    EXPECT_EQ(1u, ear.heard.size());
}

TEST_F(EventsTest, TheSubscriptionLastsAsLongAsTheConnection) {
    Ear kept, dropped, ended;
    const auto keep = product_->addListener(kept.listener());
    auto drop = product_->addListener(dropped.listener());
    const auto end = product_->addListener(ended.listener());
    announceChange(key_);
    drop.reset();
    end->disconnect();
    announceChange(key_);
    EXPECT_EQ(2u, kept.heard.size());
    EXPECT_EQ(1u, dropped.heard.size());
    EXPECT_EQ(1u, ended.heard.size());
}

TEST_F(EventsTest, AttachAndRemoveQueueTheirEventsAndReachTypeSubscribersNotListeners) {
    Ear onRoot;
    const auto listening = r_->addListener(onRoot.listener());
    std::vector<std::wstring> kinds;
    const auto all = tvutil::eventmgr::createLocalEventMgr()->subscribe(
        [&kinds](const em::BaseEvent& event) {
            kinds.push_back(event.getTypeInformation()->getTypeName(0));
        },
        &em::detail::SubscriptionCountByType<SettingsEvent>::create, {});
    r_->setRecordEvents(true);

    const auto group = attach(b_, "group");
    const auto loose = node("loose", false);
    attach(loose, "quiet", true);  // under a standalone parent: silent
    b_->removeKey("key");          // the key is off the tree, its parent is not
    b_->removeNode("group");
    EXPECT_TRUE(onRoot.heard.empty());
    EXPECT_EQ((std::vector<std::wstring>{SettingsAddNodeEvent::typeName(),
                                         SettingsRemoveNodeEvent::typeName(),
                                         SettingsRemoveNodeEvent::typeName()}),
              kinds);
    auto queue = drain();
    ASSERT_EQ(3u, queue.size());
    const auto* added = dynamic_cast<const SettingsAddNodeEvent*>(queue.front().get());
    ASSERT_TRUE(added);
    EXPECT_EQ(b_, added->getParentObj());
    EXPECT_EQ(group, added->getObj());
    queue.pop();
    const auto* removed = dynamic_cast<const SettingsRemoveNodeEvent*>(queue.front().get());
    ASSERT_TRUE(removed);
    EXPECT_EQ(b_, removed->getParentObj());
    EXPECT_EQ(key_, removed->getObj());
    EXPECT_EQ(BlessedInstanceID, removed->getInstanceId());
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
        EXPECT_EQ(key_, queue.front()->getObj());
        EXPECT_EQ(typeid(SettingsValueChangeEvent), typeid(*queue.front()));
        EXPECT_EQ(sibling_, queue.back()->getObj());
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
    EXPECT_EQ(1u, ear.heard.size());
    oldRoot->swapEventQueue(fromOld);
    EXPECT_EQ(1u, fromOld.size());

    // Resetting all instances replaces the state itself: from then on nothing goes out.
    TSettings::reset(AnyInstanceID);
    announceChange(key_);
    b_->removeKey("key");
    EXPECT_EQ(1u, ear.heard.size());
    oldRoot->swapEventQueue(fromOld);
    EXPECT_TRUE(fromOld.empty());
    EXPECT_TRUE(drain().empty());
}

// A settings event in name only: its chain claims a value change, its class is no settings
// event.
class ImpostorChain : public em::TypeInformation {
public:
    explicit ImpostorChain(std::vector<std::wstring> tags) : TypeInformation(std::move(tags)) {}
    std::wstring getTypeName(std::size_t step) const override {
        static const std::wstring chain[] = {SettingsValueChangeEvent::typeName(),
                                             SettingsEvent::typeName(), em::BaseEvent::typeName()};
        return chain[step];
    }
};

TEST_F(EventsTest, AnImpostorReachingAListenerIsABadCast) {
    Ear ear;
    const auto listening = key_->addListener(ear.listener());
    std::vector<std::wstring> tags;
    {
        detail::SharedLock lock(detail::rootMutex());
        tags = detail::collectEventTags(lock, impl(key_), SettingsValueChangeEvent::typeName());
    }
    const em::BaseEvent impostor(boost::make_shared<ImpostorChain>(tags));
    try {
        tvutil::eventmgr::createLocalEventMgr()->publish(impostor, SettingsEvent::typeName(), true);
        FAIL() << "the listener was handed an event that is not a settings event";
    } catch (const std::bad_cast& e) {
        EXPECT_STREQ("bad cast", e.what());
    }
    EXPECT_TRUE(ear.heard.empty());
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
    std::map<const Settings*, int> queued;
    for (auto queue = drain(); !queue.empty(); queue.pop()) {
        ++queued[queue.front()->getObj().get()];
    }
    EXPECT_EQ(static_cast<std::size_t>(writers), queued.size());
    for (int i = 0; i < writers; ++i) {
        EXPECT_EQ(std::vector<ConstSettingsPtr>(changes, keys[i]), ears[i].nodes);
        EXPECT_EQ(changes, queued[keys[i].get()]);
    }
}

}  // namespace
}  // namespace eventstest
