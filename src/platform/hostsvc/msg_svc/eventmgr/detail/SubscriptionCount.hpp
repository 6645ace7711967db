// hostsvc::msg_svc::eventmgr::detail::SubscriptionCount: what an EventMgr reads from a
// subscription's count object to file the subscription.
#pragma once

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {
namespace detail {

// A subscription's count object is a TypeInformation (its type name, step 0, is the kind of
// event the subscription hears; its tags are the subscription's tags) that also derives from
// SubscriptionCount. The manager keeps one count of subscriptions per type name, and for
// tag-counted subscriptions one per (type name, tag), so that an event nobody listens to costs
// a lookup. The two shapes are SubscriptionCountByType<T> and
// SubscriptionCountByTypedInstance<T>.
class SubscriptionCount {
public:
    virtual ~SubscriptionCount() = default;

    // true: the subscription hears events of its kind that carry at least one of its tags;
    // false: it hears every event of its kind, whatever the tags.
    virtual bool countsByTag() const = 0;
};

}  // namespace detail
}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc
