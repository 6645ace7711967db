// hostsvc::msg_svc::eventmgr::detail::SubscriptionCountByTypedInstance<T>: the count object of
// a subscription that hears events of kind T carrying at least one of its tags (a tag names
// one instance, such as one node of a tree).
#pragma once

#include <platform/hostsvc/msg_svc/eventmgr/detail/DerivedTypeInformation.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionCount.hpp>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <string>
#include <utility>
#include <vector>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {
namespace detail {

// With no tags the subscription hears nothing.
template <class T>
class SubscriptionCountByTypedInstance final : public DerivedTypeInformation<T>,
                                               public SubscriptionCount {
public:
    explicit SubscriptionCountByTypedInstance(std::vector<std::wstring> tags)
        : DerivedTypeInformation<T>(std::move(tags)) {}

    bool countsByTag() const override { return true; }

    // A count factory for EventMgr::subscribe.
    static boost::shared_ptr<TypeInformation> create(const std::vector<std::wstring>& tags) {
        return boost::make_shared<SubscriptionCountByTypedInstance>(tags);
    }
};

}  // namespace detail
}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc
