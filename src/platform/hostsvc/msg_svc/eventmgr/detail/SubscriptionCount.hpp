// hostsvc::msg_svc::eventmgr::detail::SubscriptionCount and its two shapes,
// SubscriptionCountByType<T> and SubscriptionCountByTypedInstance<T>: the count objects that an
// EventMgr reads to file a subscription.
#pragma once

#include <platform/hostsvc/msg_svc/eventmgr/detail/DerivedTypeInformation.hpp>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <string>
#include <utility>
#include <vector>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {
namespace detail {

// A subscription's count object is a TypeInformation (its type name, step 0, is the kind of
// event the subscription hears; its tags are the subscription's tags) that also derives from
// SubscriptionCount. The manager keeps one count of subscriptions per type name, and for
// tag-counted subscriptions one per (type name, tag), so that an event nobody listens to costs
// a lookup.
class SubscriptionCount {
public:
    virtual ~SubscriptionCount() = default;

    // true: the subscription hears events of its kind that carry at least one of its tags;
    // false: it hears every event of its kind, whatever the tags.
    virtual bool countsByTag() const = 0;
};

// The count object of a subscription to events of kind T (T or a class derived from it),
// narrowed by tag when ByTag is true.
template <class T, bool ByTag>
class SubscriptionCountOf final : public DerivedTypeInformation<T>, public SubscriptionCount {
public:
    explicit SubscriptionCountOf(std::vector<std::wstring> tags = {})
        : DerivedTypeInformation<T>(std::move(tags)) {}

    bool countsByTag() const override { return ByTag; }

    // A count factory for EventMgr::subscribe.
    static boost::shared_ptr<TypeInformation> create(const std::vector<std::wstring>& tags) {
        return boost::make_shared<SubscriptionCountOf>(tags);
    }
};

// Hears every event of kind T. The tags given are kept (they take part in equals) but do not
// narrow delivery.
template <class T>
using SubscriptionCountByType = SubscriptionCountOf<T, false>;

// Hears events of kind T carrying at least one of its tags (a tag names one instance, such as
// one node of a tree). With no tags the subscription hears nothing.
template <class T>
using SubscriptionCountByTypedInstance = SubscriptionCountOf<T, true>;

}  // namespace detail
}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc
