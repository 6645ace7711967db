// hostsvc::msg_svc::eventmgr::detail::SubscriptionIndex: the subscriptions of one EventMgr,
// filed by event type name and, for tag-counted ones, by tag. Internal to the event manager.
#pragma once

#include <platform/hostsvc/msg_svc/eventmgr/BaseEvent.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/TypeInformation.hpp>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/thread/shared_mutex.hpp>

#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {
namespace detail {

// One subscription. Everything but the connected flag is fixed at construction, so a
// publisher may read it without the index's lock.
class Subscription {
public:
    using Handler = boost::function<void(const BaseEvent&)>;

    Subscription(std::uint64_t sequence, Handler handler, boost::shared_ptr<TypeInformation> count,
                 bool countsByTag, std::vector<std::wstring> tags);
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;

    // Order of subscription; delivery follows it.
    std::uint64_t sequence() const { return sequence_; }
    const Handler& handler() const { return handler_; }
    // The kind of event heard: the count object's own type name.
    const std::wstring& typeName() const { return typeName_; }
    bool countsByTag() const { return countsByTag_; }
    // Distinct tags, sorted; empty unless countsByTag().
    const std::vector<std::wstring>& tags() const { return tags_; }

    bool isConnected() const { return connected_.load(std::memory_order_acquire); }
    void markDisconnected() { connected_.store(false, std::memory_order_release); }

private:
    const std::uint64_t sequence_;
    const Handler handler_;
    const boost::shared_ptr<TypeInformation> count_;
    const std::wstring typeName_;
    const bool countsByTag_;
    const std::vector<std::wstring> tags_;
    std::atomic<bool> connected_{true};
};

// Locks: `mutex_` only, a leaf. Held exclusive to file or unfile a subscription, shared to
// match an event. No handler runs and no subscription is destroyed under it: matching returns
// shared pointers for the caller to call outside, and unfiling leaves the last reference with
// the caller.
class SubscriptionIndex {
public:
    SubscriptionIndex() = default;
    SubscriptionIndex(const SubscriptionIndex&) = delete;
    SubscriptionIndex& operator=(const SubscriptionIndex&) = delete;

    // Files a subscription of `handler`, shaped by `count`, which must be a non-null
    // TypeInformation that is also a SubscriptionCount (std::invalid_argument otherwise).
    boost::shared_ptr<Subscription> add(const Subscription::Handler& handler,
                                        const boost::shared_ptr<TypeInformation>& count);

    // Unfiles `subscription`; nothing if it is not filed.
    void remove(const Subscription& subscription);

    // The subscriptions that hear an event whose type chain is `typeChain` and whose tags are
    // `tags`, each once, in order of subscription.
    std::vector<boost::shared_ptr<Subscription>> match(const std::vector<std::wstring>& typeChain,
                                                       const std::vector<std::wstring>& tags) const;

private:
    // Keyed by sequence, so that a bucket lists in subscription order.
    using Bucket = std::map<std::uint64_t, boost::shared_ptr<Subscription>>;

    // The subscriptions to one type name. An entry with both parts empty is removed, so a type
    // nobody listens to has no entry.
    struct TypeEntry {
        Bucket everyEvent;
        std::unordered_map<std::wstring, Bucket> byTag;
    };

    mutable boost::shared_mutex mutex_;
    std::unordered_map<std::wstring, TypeEntry> byType_;
    std::atomic<std::uint64_t> nextSequence_{0};
};

}  // namespace detail
}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc
