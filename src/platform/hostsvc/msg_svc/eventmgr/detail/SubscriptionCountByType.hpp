// hostsvc::msg_svc::eventmgr::detail::SubscriptionCountByType<T>: the count object of a
// subscription that hears every event of kind T (T or a class derived from it).
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

// The tags given are kept (they take part in equals) but do not narrow delivery.
template <class T>
class SubscriptionCountByType final : public DerivedTypeInformation<T>, public SubscriptionCount {
public:
    explicit SubscriptionCountByType(std::vector<std::wstring> tags = {})
        : DerivedTypeInformation<T>(std::move(tags)) {}

    bool countsByTag() const override { return false; }

    // A count factory for EventMgr::subscribe.
    static boost::shared_ptr<TypeInformation> create(const std::vector<std::wstring>& tags) {
        return boost::make_shared<SubscriptionCountByType>(tags);
    }
};

}  // namespace detail
}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc
