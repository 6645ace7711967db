// settings::core::SettingsValueChangeEvent: the effective value of a key changed. Its tags name
// the key and each of its ancestors, so that a listener on any of them hears it.
#pragma once

#include <settingscore/core/events/SettingsEvent.hpp>

namespace settings {
namespace core {

class SettingsValueChangeEvent : public SettingsEvent {
public:
    using base_type = SettingsEvent;

    // "settings::core::SettingsValueChangeEvent".
    static const std::wstring& typeName();

    // `obj` is the key whose value changed.
    SettingsValueChangeEvent(const boost::shared_ptr<const Settings>& obj,
                             const std::vector<std::wstring>& tags,
                             const tvutil::contextmgr::InstanceID& instanceId);
    ~SettingsValueChangeEvent() override;

    hostsvc::msg_svc::eventmgr::BaseEvent* clone() const override;

private:
    SettingsValueChangeEvent(const SettingsValueChangeEvent&) = default;
    SettingsValueChangeEvent& operator=(const SettingsValueChangeEvent&) = delete;
};

}  // namespace core
}  // namespace settings

// Made once in the library: the type information of the class, and the count objects of a
// subscription to every value change and of one to the changes below one node.
extern template class hostsvc::msg_svc::eventmgr::detail::DerivedTypeInformation<
    settings::core::SettingsValueChangeEvent>;
extern template class hostsvc::msg_svc::eventmgr::detail::SubscriptionCountOf<
    settings::core::SettingsValueChangeEvent, false>;
extern template class hostsvc::msg_svc::eventmgr::detail::SubscriptionCountOf<
    settings::core::SettingsValueChangeEvent, true>;
