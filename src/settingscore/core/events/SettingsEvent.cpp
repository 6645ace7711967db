#include <settingscore/core/events/SettingsEvent.hpp>

#include <boost/make_shared.hpp>

namespace settings {
namespace core {

namespace em = hostsvc::msg_svc::eventmgr;

const std::wstring& SettingsEvent::typeName() {
    static const std::wstring name = L"settings::core::SettingsEvent";
    return name;
}

SettingsEvent::SettingsEvent(const boost::shared_ptr<const Settings>& obj,
                             const std::vector<std::wstring>& tags,
                             const tvutil::contextmgr::InstanceID& instanceId)
    : SettingsEvent(boost::make_shared<em::detail::DerivedTypeInformation<SettingsEvent>>(tags),
                    obj, instanceId) {}

SettingsEvent::SettingsEvent(const boost::shared_ptr<em::TypeInformation>& type,
                             const boost::shared_ptr<const Settings>& obj,
                             const tvutil::contextmgr::InstanceID& instanceId)
    : BaseEvent(type), obj_(obj), instanceId_(instanceId) {}

SettingsEvent::~SettingsEvent() = default;

em::BaseEvent* SettingsEvent::clone() const {
    return new SettingsEvent(*this);
}

const boost::shared_ptr<const Settings>& SettingsEvent::getObj() const {
    return obj_;
}

const tvutil::contextmgr::InstanceID& SettingsEvent::getInstanceId() const {
    return instanceId_;
}

}  // namespace core
}  // namespace settings

template class hostsvc::msg_svc::eventmgr::detail::DerivedTypeInformation<
    settings::core::SettingsEvent>;
template class hostsvc::msg_svc::eventmgr::detail::SubscriptionCountOf<
    settings::core::SettingsEvent, false>;
