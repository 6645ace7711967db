// Settings::addListener: a subscription on the process's event manager to the value changes of
// one node and of everything below it.
#include <settingscore/core/Settings.hpp>

#include <settingscore/core/detail/TreeLock.hpp>
#include <settingscore/core/events/SettingsValueChangeEvent.hpp>
#include <settingscore/core/events/detail/EventTags.hpp>

#include <platform/tvutil/eventmgr/LocalEventMgr.hpp>

#include <typeinfo>

namespace settings {
namespace core {

namespace em = hostsvc::msg_svc::eventmgr;

namespace {

// std::bad_cast carries no text of its own; a listener's caller sees this one.
class BadEventCast : public std::bad_cast {
public:
    const char* what() const noexcept override { return "bad cast"; }
};

// Hands a value-change event to `listener`; anything else reaching it is a fault of whoever
// subscribed it, told by BadEventCast.
class ValueChangeDelivery {
public:
    explicit ValueChangeDelivery(const boost::function1<void, const SettingsEvent&>& listener)
        : listener_(listener) {}

    void operator()(const em::BaseEvent& event) const {
        if (!event.isKindOf(SettingsValueChangeEvent::typeName())) {
            throw BadEventCast();
        }
        // The name on the chain is only a claim; the class must back it.
        const auto* settingsEvent = dynamic_cast<const SettingsEvent*>(&event);
        if (settingsEvent == nullptr) {
            throw BadEventCast();
        }
        listener_(*settingsEvent);
    }

private:
    boost::function1<void, const SettingsEvent&> listener_;
};

}  // namespace

std::unique_ptr<em::Connection> Settings::addListener(
    const boost::function1<void, const SettingsEvent&>& listener) const {
    detail::SharedLock lock(detail::rootMutex());
    // A standalone node raises no events, and attaching it later does not subscribe anything:
    // the caller asks again once the node is on the tree. An empty listener would only fail
    // later, inside some writer's change.
    if (!isOnTree() || listener.empty()) {
        return nullptr;
    }
    return tvutil::eventmgr::createLocalEventMgr()->subscribe(
        ValueChangeDelivery(listener),
        &em::detail::SubscriptionCountByTypedInstance<SettingsValueChangeEvent>::create,
        {detail::eventTag(SettingsValueChangeEvent::typeName(), getNodeId())});
}

}  // namespace core
}  // namespace settings
