#include <settingscore/core/events/SettingsValueChangeEvent.hpp>

#include <boost/make_shared.hpp>

namespace settings {
namespace core {

namespace em = hostsvc::msg_svc::eventmgr;

const std::wstring& SettingsValueChangeEvent::typeName() {
    static const std::wstring name = L"settings::core::SettingsValueChangeEvent";
    return name;
}

SettingsValueChangeEvent::SettingsValueChangeEvent(const boost::shared_ptr<const Settings>& obj,
                                                   const std::vector<std::wstring>& tags,
                                                   const tvutil::contextmgr::InstanceID& instanceId)
    : SettingsEvent(
          boost::make_shared<em::detail::DerivedTypeInformation<SettingsValueChangeEvent>>(tags),
          obj, instanceId) {}

SettingsValueChangeEvent::~SettingsValueChangeEvent() = default;

em::BaseEvent* SettingsValueChangeEvent::clone() const {
    return new SettingsValueChangeEvent(*this);
}

}  // namespace core
}  // namespace settings

template class hostsvc::msg_svc::eventmgr::detail::DerivedTypeInformation<
    settings::core::SettingsValueChangeEvent>;
template class hostsvc::msg_svc::eventmgr::detail::SubscriptionCountOf<
    settings::core::SettingsValueChangeEvent, false>;
template class hostsvc::msg_svc::eventmgr::detail::SubscriptionCountOf<
    settings::core::SettingsValueChangeEvent, true>;
