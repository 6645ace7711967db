#include "TestEvents.hpp"

#include <platform/hostsvc/msg_svc/eventmgr/EventMgr.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionCount.hpp>

#include "platform/hf/Threads.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace eventtest;
using em::Connection;
using em::EventMgr;
using em::detail::SubscriptionCountByType;
using em::detail::SubscriptionCountByTypedInstance;
using Entries = std::vector<std::string>;
const std::vector<std::wstring> noTags;

// Which handlers ran, in order. note(name, then) is a handler that notes its name and then
// does `then`.
class Journal {
public:
    EventMgr::Handler note(const std::string& name, std::function<void()> then = {}) {
        return [this, name, then](const em::BaseEvent&) {
            entries_.push_back(name);
            if (then) {
                then();
            }
        };
    }
    Entries take() { return std::exchange(entries_, Entries()); }

private:
    Entries entries_;
};

template <class E>
std::unique_ptr<Connection> onNode(EventMgr& manager, const EventMgr::Handler& handler,
                                   const Node& node) {
    return manager.subscribe(handler, &SubscriptionCountByTypedInstance<E>::create,
                             {node.tag<E>()});
}

template <class E>
std::unique_ptr<Connection> onType(EventMgr& manager, const EventMgr::Handler& handler) {
    return manager.subscribe(handler, &SubscriptionCountByType<E>::create, {});
}

template <class E>
void publishOn(EventMgr& manager, const Node& node) {
    manager.publish(E(node.ancestryTags<E>()), NodeEvent::typeName(), true);
}

// root - groupA - keyA1, root - groupB: an event on keyA1 reaches the subscriptions of keyA1,
// groupA and root, each once, and not groupB's. Subscriptions by type hear every event of their
// type and of the types below it.
TEST(EventMgrTest, SubscriptionsHearTheirSubtreeAndTypeOnce) {
    EventMgr manager;
    Journal journal;
    const Node root;
    const Node groupA(&root), groupB(&root), keyA1(&groupA);
    const auto onRoot = onNode<ValueEvent>(manager, journal.note("root"), root);
    const auto onGroupA = onNode<ValueEvent>(manager, journal.note("groupA"), groupA);
    const auto onGroupB = onNode<ValueEvent>(manager, journal.note("groupB"), groupB);
    const auto onKey = onNode<ValueEvent>(manager, journal.note("keyA1"), keyA1);
    const auto onBoth = manager.subscribe(journal.note("both"),
                                          &SubscriptionCountByTypedInstance<ValueEvent>::create,
                                          {groupA.tag<ValueEvent>(), root.tag<ValueEvent>()});
    const auto onRootRemovals = onNode<RemoveEvent>(manager, journal.note("rootRemovals"), root);
    const auto untagged = manager.subscribe(
        journal.note("untagged"), &SubscriptionCountByTypedInstance<ValueEvent>::create, {});
    publishOn<ValueEvent>(manager, keyA1);
    EXPECT_EQ((Entries{"root", "groupA", "keyA1", "both"}), journal.take());
    publishOn<ValueEvent>(manager, groupB);
    EXPECT_EQ((Entries{"root", "groupB", "both"}), journal.take());
    publishOn<RemoveEvent>(manager, keyA1);
    EXPECT_EQ((Entries{"rootRemovals"}), journal.take());
    publishOn<ValueEvent>(manager, Node());
    EXPECT_TRUE(journal.take().empty());

    const auto nodeEvents = onType<NodeEvent>(manager, journal.note("node"));
    const auto valueEvents = onType<ValueEvent>(manager, journal.note("value"));
    const auto allEvents = onType<em::BaseEvent>(manager, journal.note("all"));
    // Kind NodeEvent, tagged with a value tag: a ValueEvent carrying the tag matches.
    const auto nodeTagged = manager.subscribe(journal.note("nodeTagged"),
                                              &SubscriptionCountByTypedInstance<NodeEvent>::create,
                                              {groupB.tag<ValueEvent>()});
    publishOn<ValueEvent>(manager, groupB);
    EXPECT_EQ((Entries{"root", "groupB", "both", "node", "value", "all", "nodeTagged"}),
              journal.take());
    manager.publish(RemoveEvent(noTags), em::BaseEvent::typeName(), false);
    EXPECT_EQ((Entries{"node", "all"}), journal.take());

    // Not a kind of the type it is published as, or a subscription the manager cannot file:
    // refused before anyone hears it, and not filed.
    EXPECT_THROW(manager.publish(RemoveEvent(noTags), ValueEvent::typeName(), true),
                 std::invalid_argument);
    const EventMgr::CountFactory plainType = [](const std::vector<std::wstring>& tags) {
        return boost::make_shared<em::detail::DerivedTypeInformation<ValueEvent>>(tags);
    };
    EXPECT_THROW(manager.subscribe(journal.note("x"), plainType, {}), std::invalid_argument);
    EXPECT_THROW(manager.subscribe({}, &SubscriptionCountByType<NodeEvent>::create, {}),
                 std::invalid_argument);
    EXPECT_THROW(manager.subscribe(journal.note("x"), {}, {}), std::invalid_argument);
    EXPECT_TRUE(journal.take().empty());
    manager.publish(ValueEvent(noTags), ValueEvent::typeName(), true);
    EXPECT_EQ((Entries{"node", "value", "all"}), journal.take());
}

TEST(EventMgrTest, EndingAConnectionEndsDelivery) {
    Journal journal;
    const Node node;
    auto manager = std::make_unique<EventMgr>();
    auto destroyed = onNode<ValueEvent>(*manager, journal.note("destroyed"), node);
    auto disconnected = onNode<ValueEvent>(*manager, journal.note("disconnected"), node);
    destroyed.reset();
    disconnected->disconnect();
    disconnected->disconnect();
    // Ended from inside its own handler: heard once. An earlier handler ends a later
    // subscription before its turn: that one is not called.
    std::unique_ptr<Connection> self, victim;
    self = onNode<ValueEvent>(*manager, journal.note("self", [&] { self.reset(); }), node);
    const auto killer =
        onNode<ValueEvent>(*manager, journal.note("killer", [&] { victim.reset(); }), node);
    victim = onNode<ValueEvent>(*manager, journal.note("victim"), node);
    publishOn<ValueEvent>(*manager, node);
    publishOn<ValueEvent>(*manager, node);
    EXPECT_EQ((Entries{"self", "killer", "killer"}), journal.take());

    // An ended subscription lets its handler go; so do all when the manager goes, while their
    // connections live on and can still be ended.
    const auto token = std::make_shared<int>(0);
    auto ended = onNode<ValueEvent>(
        *manager, [token](const em::BaseEvent&) {}, node);
    auto outliving = onNode<ValueEvent>(
        *manager, [token](const em::BaseEvent&) {}, node);
    ended.reset();
    EXPECT_EQ(2, token.use_count());
    manager.reset();
    EXPECT_EQ(1, token.use_count());
    outliving->disconnect();
    outliving.reset();
}

TEST(EventMgrTest, HandlersMayReenterTheManager) {
    Journal journal;
    const Node node;
    auto manager = std::make_shared<EventMgr>();
    // Subscribing during a publish: the new subscription hears the next event, not this one.
    // Publishing during a publish: the nested delivery runs at once.
    std::unique_ptr<Connection> late;
    const auto subscriber = onNode<ValueEvent>(
        *manager,
        journal.note("subscriber",
                     [&] {
                         if (!late) {
                             late = onNode<ValueEvent>(*manager, journal.note("late"), node);
                         }
                     }),
        node);
    const auto republisher = onNode<ValueEvent>(
        *manager,
        journal.note("republisher",
                     [&] {
                         manager->publish(RemoveEvent(node.ancestryTags<RemoveEvent>()),
                                          RemoveEvent::typeName(), true);
                     }),
        node);
    const auto removals = onType<RemoveEvent>(*manager, journal.note("removal"));
    publishOn<ValueEvent>(*manager, node);
    EXPECT_EQ((Entries{"subscriber", "republisher", "removal"}), journal.take());
    publishOn<ValueEvent>(*manager, node);
    EXPECT_EQ((Entries{"subscriber", "republisher", "removal", "late"}), journal.take());

    // A handler that drops the last owner of the manager: the delivery still completes.
    EventMgr& raw = *manager;
    const auto dropper = onType<ValueEvent>(raw, journal.note("dropper", [&] { manager.reset(); }));
    const auto after = onType<ValueEvent>(raw, journal.note("after"));
    raw.publish(ValueEvent(noTags), ValueEvent::typeName(), true);
    EXPECT_EQ((Entries{"dropper", "after"}), journal.take());
}

TEST(EventMgrTest, HandlerExceptionReachesThePublisherAndLeavesNothingLocked) {
    EventMgr manager;
    Journal journal;
    bool fail = true;
    const auto before = onType<ValueEvent>(manager, journal.note("before"));
    const auto thrower = onType<ValueEvent>(manager, journal.note("thrower", [&] {
        if (fail) {
            throw std::runtime_error("listener failed");
        }
    }));
    const auto afterwards = onType<ValueEvent>(manager, journal.note("after"));
    try {
        manager.publish(ValueEvent(noTags), ValueEvent::typeName(), true);
        ADD_FAILURE() << "the handler's exception should reach the publisher";
    } catch (const std::runtime_error& e) {
        EXPECT_STREQ("listener failed", e.what());
    }
    EXPECT_EQ((Entries{"before", "thrower"}), journal.take());
    fail = false;
    const auto added = onType<ValueEvent>(manager, journal.note("added"));
    manager.publish(ValueEvent(noTags), ValueEvent::typeName(), true);
    EXPECT_EQ((Entries{"before", "thrower", "after", "added"}), journal.take());
}

// Publishers on several threads while another subscribes and disconnects on the same tag and
// types: the steady subscriptions hear every event exactly once.
TEST(EventMgrTest, ConcurrentPublishSubscribeAndDisconnect) {
    constexpr int publisherCount = 4, eventsEach = 20000;
    EventMgr manager;
    const Node root;
    const Node leaf(&root);
    std::atomic<int> byTag{0}, byType{0}, churnHeard{0}, churnRounds{0};
    const auto steadyByTag = onNode<ValueEvent>(
        manager, [&](const em::BaseEvent&) { ++byTag; }, root);
    const auto steadyByType = onType<NodeEvent>(manager, [&](const em::BaseEvent&) { ++byType; });
    std::atomic<int> publishersDone{0};
    hftest::onThreads(publisherCount + 1, [&](int t) {
        if (t == publisherCount) {  // the churner
            const EventMgr::Handler churn = [&](const em::BaseEvent&) { ++churnHeard; };
            for (; publishersDone.load() < publisherCount; ++churnRounds) {
                auto a = onNode<ValueEvent>(manager, churn, churnRounds % 2 ? root : leaf);
                auto b = onType<ValueEvent>(manager, churn);
                a->disconnect();
            }
            return;
        }
        while (churnRounds.load() == 0) {
            std::this_thread::yield();
        }
        for (int i = 0; i < eventsEach; ++i) {
            publishOn<ValueEvent>(manager, leaf);
        }
        ++publishersDone;
    });
    EXPECT_EQ(publisherCount * eventsEach, byTag.load());
    EXPECT_EQ(publisherCount * eventsEach, byType.load());
    const int churnBefore = churnHeard.load();  // every churning subscription has ended
    publishOn<ValueEvent>(manager, leaf);
    EXPECT_EQ(churnBefore, churnHeard.load());
}

}  // namespace
