#include <platform/hostsvc/msg_svc/eventmgr/Connection.hpp>

#include <platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionIndex.hpp>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {

Connection::Connection(const boost::weak_ptr<detail::SubscriptionIndex>& index,
                       const boost::weak_ptr<detail::Subscription>& subscription)
    : index_(index), subscription_(subscription) {}

Connection::~Connection() {
    disconnect();
}

// The flag goes first, so that a publisher that has already matched the subscription skips
// it; unfiling follows. `subscription` holds the last reference when the index lets go, so the
// handler dies here, after the index's lock is released.
void Connection::disconnect() {
    if (const boost::shared_ptr<detail::Subscription> subscription = subscription_.lock()) {
        subscription->markDisconnected();
        if (const boost::shared_ptr<detail::SubscriptionIndex> index = index_.lock()) {
            index->remove(*subscription);
        }
    }
    subscription_.reset();
    index_.reset();
}

}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc
