// settings::core::SettingsEvent: the common base of the settings tree's change events. An event
// names the node concerned and the host runtime instance whose tree changed; its type
// information carries the tags that address it to the listeners of that node and of every
// ancestor. Events are immutable once built; clone is the way to copy one.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>

#include <platform/hostsvc/msg_svc/eventmgr/BaseEvent.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/TypeInformation.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/detail/DerivedTypeInformation.hpp>
#include <platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionCount.hpp>
#include <platform/tvutil/contextmgr/InstanceID.hpp>

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

namespace settings {
namespace core {

class SettingsEvent : public hostsvc::msg_svc::eventmgr::BaseEvent {
public:
    using base_type = hostsvc::msg_svc::eventmgr::BaseEvent;

    // "settings::core::SettingsEvent".
    static const std::wstring& typeName();

    SettingsEvent(const boost::shared_ptr<const Settings>& obj,
                  const std::vector<std::wstring>& tags,
                  const tvutil::contextmgr::InstanceID& instanceId);
    ~SettingsEvent() override;

    // A new event of the same class with the same node, instance and type information.
    hostsvc::msg_svc::eventmgr::BaseEvent* clone() const override;

    // The node concerned: the key whose value changed, or the node added or removed.
    virtual const boost::shared_ptr<const Settings>& getObj() const;
    // The instance of the root above the node when the event was made.
    virtual const tvutil::contextmgr::InstanceID& getInstanceId() const;

protected:
    // For the classes below: their own type information (the chain names the derived class).
    SettingsEvent(const boost::shared_ptr<hostsvc::msg_svc::eventmgr::TypeInformation>& type,
                  const boost::shared_ptr<const Settings>& obj,
                  const tvutil::contextmgr::InstanceID& instanceId);
    SettingsEvent(const SettingsEvent&) = default;
    SettingsEvent& operator=(const SettingsEvent&) = delete;

private:
    boost::shared_ptr<const Settings> obj_;
    tvutil::contextmgr::InstanceID instanceId_;
};

}  // namespace core
}  // namespace settings

// Made once in the library: the type information of the class, and the count object of a
// subscription that hears every settings event.
extern template class hostsvc::msg_svc::eventmgr::detail::DerivedTypeInformation<
    settings::core::SettingsEvent>;
extern template class hostsvc::msg_svc::eventmgr::detail::SubscriptionCountOf<
    settings::core::SettingsEvent, false>;
