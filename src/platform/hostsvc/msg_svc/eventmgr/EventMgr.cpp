#include <platform/hostsvc/msg_svc/eventmgr/EventMgr.hpp>

#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionIndex.hpp>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <stdexcept>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {

namespace {

// The names of the event's type chain, its own first and BaseEvent's last.
std::vector<std::wstring> typeChainOf(const TypeInformation& type) {
    const std::wstring& last = BaseEvent::typeName();
    std::vector<std::wstring> chain;
    for (std::size_t step = 0;; ++step) {
        chain.push_back(type.getTypeName(step));
        if (chain.back() == last) {
            return chain;
        }
    }
}

}  // namespace

EventMgr::EventMgr() : index_(boost::make_shared<detail::SubscriptionIndex>()) {}

// Connections still out hold the index weakly; they find it gone and do nothing.
EventMgr::~EventMgr() = default;

std::unique_ptr<Connection> EventMgr::subscribe(const Handler& handler,
                                                const CountFactory& countFactory,
                                                const std::vector<std::wstring>& tags) {
    if (handler.empty()) {
        throw std::invalid_argument("eventmgr::EventMgr::subscribe: the handler is empty.");
    }
    if (countFactory.empty()) {
        throw std::invalid_argument("eventmgr::EventMgr::subscribe: the count factory is empty.");
    }
    const boost::shared_ptr<TypeInformation> count = countFactory(tags);
    const boost::shared_ptr<detail::Subscription> subscription = index_->add(handler, count);
    return std::unique_ptr<Connection>(new Connection(index_, subscription));
}

// After the first handler runs, only locals are used: a handler may drop the last owner of
// this manager, and `index` keeps the subscriptions alive until the delivery ends.
void EventMgr::publish(const BaseEvent& event, const std::wstring& publishedAsType,
                       bool /*synchronous: delivery is always inside this call*/) {
    const TypeInformation& type = *event.getTypeInformation();
    const std::vector<std::wstring> chain = typeChainOf(type);
    if (std::find(chain.begin(), chain.end(), publishedAsType) == chain.end()) {
        throw std::invalid_argument("eventmgr::EventMgr::publish: an event of type " +
                                    hf::i18n::to_string(chain.front()) + " is not a kind of " +
                                    hf::i18n::to_string(publishedAsType) + ".");
    }
    const boost::shared_ptr<detail::SubscriptionIndex> index = index_;
    const std::vector<boost::shared_ptr<detail::Subscription>> receivers =
        index->match(chain, type.getTags());
    for (const boost::shared_ptr<detail::Subscription>& receiver : receivers) {
        if (receiver->isConnected()) {
            receiver->handler()(event);
        }
    }
}

}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc
