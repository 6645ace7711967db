// hostsvc::msg_svc::eventmgr::EventMgr: an in-process event manager. Listeners subscribe with
// a filter (a subscription count object) and publishers hand it events; delivery happens
// inside publish, on the publishing thread.
#pragma once

#include <platform/hostsvc/msg_svc/eventmgr/BaseEvent.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/Connection.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/TypeInformation.hpp>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {

namespace detail {
class SubscriptionIndex;
}  // namespace detail

// Subscriptions are filed by event type name and by tag, so publishing costs one lookup per
// step of the event's type chain (and per tag where tag-counted subscriptions to that type
// exist), however many subscriptions there are.
//
// Handlers run outside the manager's lock: a handler may subscribe, end connections (its own
// too) or publish again. A publish delivers to the subscriptions that existed when it started,
// minus those ended before their turn came. All operations may be called from any thread.
class EventMgr {
public:
    using Handler = boost::function<void(const BaseEvent&)>;
    using CountFactory =
        boost::function<boost::shared_ptr<TypeInformation>(const std::vector<std::wstring>& tags)>;

    EventMgr();
    ~EventMgr();
    EventMgr(const EventMgr&) = delete;
    EventMgr& operator=(const EventMgr&) = delete;

    // Subscribes `handler`. `countFactory(tags)` makes the subscription's count object, which
    // decides what the handler hears: detail::SubscriptionCountByType<T> every event of kind T,
    // detail::SubscriptionCountByTypedInstance<T> the events of kind T that carry one of the
    // tags. Throws std::invalid_argument for an empty handler or factory, or a count object of
    // neither shape. The subscription lasts as long as the returned connection.
    std::unique_ptr<Connection> subscribe(const Handler& handler, const CountFactory& countFactory,
                                          const std::vector<std::wstring>& tags);

    // Calls the handler of every subscription that hears `event`, in order of subscription.
    // `event` must be a kind of `publishedAsType` (std::invalid_argument otherwise). This
    // manager always delivers before returning, on the calling thread; `synchronous` is
    // accepted for either value and changes nothing. An exception from a handler ends the
    // delivery and passes to the caller; the handlers after it are not called.
    void publish(const BaseEvent& event, const std::wstring& publishedAsType, bool synchronous);

private:
    boost::shared_ptr<detail::SubscriptionIndex> index_;
};

}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc
