// hostsvc::msg_svc::eventmgr::Connection: the caller's handle on one subscription of an
// EventMgr. The subscription lasts as long as the connection, or until disconnect().
#pragma once

#include <boost/weak_ptr.hpp>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {

class EventMgr;

namespace detail {
class Subscription;
class SubscriptionIndex;
}  // namespace detail

// The connection refers to its manager weakly: it may outlive the manager, and then ending it
// does nothing. It may be ended on any thread, and from inside any handler, its own included.
// Once disconnect() has returned, no delivery to the subscription starts; a delivery already
// running on another thread is not waited for.
class Connection {
public:
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Ends the subscription; later calls do nothing.
    void disconnect();

private:
    friend class EventMgr;
    Connection(const boost::weak_ptr<detail::SubscriptionIndex>& index,
               const boost::weak_ptr<detail::Subscription>& subscription);

    boost::weak_ptr<detail::SubscriptionIndex> index_;
    boost::weak_ptr<detail::Subscription> subscription_;
};

}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc
