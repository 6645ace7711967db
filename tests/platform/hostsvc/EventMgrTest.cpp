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
#include <utility>
#include <vector>

namespace {

using namespace eventtest;
using em::Connection;
using em::EventMgr;
using em::detail::SubscriptionCountByTypedInstance;
using Entries = std::vector<std::string>;
const std::vector<std::wstring> noTags;

// Which handlers ran, in order. note(name, then) notes `name` and then does `then`.
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
    return manager.subscribe(handler, &em::detail::SubscriptionCountByType<E>::create, {});
}

template <class E>
void publishOn(EventMgr& manager, const Node& node) {
    manager.publish(E(node.ancestryTags<E>()), NodeEvent::typeName(), true);
}

// root - group - key, root - other: an event on key reaches the subscriptions of key, group and
// root, each once, and not other's. Subscriptions by type hear every event of their type and of
// the types below it.
TEST(EventMgrTest, SubscriptionsHearTheirSubtreeAndTypeOnce) {
    EventMgr manager;
    Journal journal;
    const Node root;
    const Node group(&root), other(&root), key(&group);
    const auto onRoot = onNode<ValueEvent>(manager, journal.note("root"), root);
    const auto onOther = onNode<ValueEvent>(manager, journal.note("other"), other);
    const auto onKey = onNode<ValueEvent>(manager, journal.note("key"), key);
    const auto onBoth = manager.subscribe(journal.note("both"),
                                          &SubscriptionCountByTypedInstance<ValueEvent>::create,
                                          {group.tag<ValueEvent>(), root.tag<ValueEvent>()});
    const auto rootNodes = onNode<NodeEvent>(manager, journal.note("rootNodes"), root);
    publishOn<ValueEvent>(manager, key);
    EXPECT_EQ((Entries{"root", "key", "both"}), journal.take());
    publishOn<ValueEvent>(manager, other);
    EXPECT_EQ((Entries{"root", "other", "both"}), journal.take());
    publishOn<NodeEvent>(manager, key);
    EXPECT_EQ((Entries{"rootNodes"}), journal.take());

    const auto nodeEvents = onType<NodeEvent>(manager, journal.note("node"));
    const auto valueEvents = onType<ValueEvent>(manager, journal.note("value"));
    const auto allEvents = onType<em::BaseEvent>(manager, journal.note("all"));
    manager.publish(ValueEvent(noTags), ValueEvent::typeName(), true);
    EXPECT_EQ((Entries{"node", "value", "all"}), journal.take());
    manager.publish(NodeEvent(noTags), em::BaseEvent::typeName(), false);
    EXPECT_EQ((Entries{"node", "all"}), journal.take());
    // Not a kind of the type it is published as: refused before anyone hears it.
    EXPECT_THROW(manager.publish(NodeEvent(noTags), ValueEvent::typeName(), true),
                 std::invalid_argument);
    EXPECT_TRUE(journal.take().empty());
}

// Handlers run outside the manager's lock: they may unsubscribe, subscribe, publish and throw.
TEST(EventMgrTest, HandlersMayEndSubscribePublishAndThrow) {
    Journal journal;
    const Node node, other;
    EventMgr manager;
    // Ended from inside its own handler: heard once. An earlier handler ends a later
    // subscription before its turn: that one is not called. A subscription made during a
    // publish hears the next event; a nested publish is delivered at once.
    std::unique_ptr<Connection> self, victim, late;
    bool fail = false;
    const auto killing = [&] {
        victim.reset();
        if (!late) {
            late = onNode<ValueEvent>(manager, journal.note("late"), node);
        }
        publishOn<ValueEvent>(manager, other);
    };
    const auto failing = [&] {
        if (fail) {
            throw std::runtime_error("listener failed");
        }
    };
    self = onNode<ValueEvent>(manager, journal.note("self", [&] { self.reset(); }), node);
    const auto killer = onNode<ValueEvent>(manager, journal.note("killer", killing), node);
    victim = onNode<ValueEvent>(manager, journal.note("victim"), node);
    const auto nested = onNode<ValueEvent>(manager, journal.note("nested", failing), other);
    publishOn<ValueEvent>(manager, node);
    publishOn<ValueEvent>(manager, node);
    EXPECT_EQ((Entries{"self", "killer", "nested", "killer", "nested", "late"}), journal.take());
    // A handler's exception ends the delivery, reaches the publisher and leaves nothing locked.
    fail = true;
    EXPECT_THROW(publishOn<ValueEvent>(manager, node), std::runtime_error);
    EXPECT_EQ((Entries{"killer", "nested"}), journal.take());
    fail = false;
    publishOn<ValueEvent>(manager, node);
    EXPECT_EQ((Entries{"killer", "nested", "late"}), journal.take());

    // An ended subscription lets its handler go.
    const auto token = std::make_shared<int>(0);
    onNode<ValueEvent>(
        manager, [token](const em::BaseEvent&) {}, node)
        .reset();
    EXPECT_EQ(1, token.use_count());
}

// Publishers on several threads while another subscribes and disconnects on the same tag and
// type: the steady subscription hears every event exactly once.
TEST(EventMgrTest, ConcurrentPublishSubscribeAndDisconnect) {
    constexpr int publishers = 4, eventsEach = 20000;
    EventMgr manager;
    const Node root;
    const Node leaf(&root);
    std::atomic<int> heard{0}, done{0};
    const EventMgr::Handler counting = [&](const em::BaseEvent&) { ++heard; };
    const EventMgr::Handler ignoring = [](const em::BaseEvent&) {};
    const auto steady = onNode<ValueEvent>(manager, counting, root);
    hftest::onThreads(publishers + 1, [&](int t) {
        while (t == publishers && done < publishers) {
            onNode<ValueEvent>(manager, ignoring, leaf)->disconnect();
            onType<NodeEvent>(manager, ignoring).reset();
        }
        for (int i = 0; t < publishers && i < eventsEach; ++i) {
            publishOn<ValueEvent>(manager, leaf);
        }
        done += t < publishers ? 1 : 0;
    });
    EXPECT_EQ(publishers * eventsEach, heard.load());
}

}  // namespace
