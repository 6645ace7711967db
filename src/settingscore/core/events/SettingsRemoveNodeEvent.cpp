#include <settingscore/core/events/SettingsRemoveNodeEvent.hpp>

#include <boost/make_shared.hpp>

namespace settings {
namespace core {

namespace em = hostsvc::msg_svc::eventmgr;

const std::wstring& SettingsRemoveNodeEvent::typeName() {
    static const std::wstring name = L"settings::core::SettingsRemoveNodeEvent";
    return name;
}

SettingsRemoveNodeEvent::SettingsRemoveNodeEvent(const boost::shared_ptr<const Settings>& parentObj,
                                                 const boost::shared_ptr<const Settings>& obj,
                                                 const std::vector<std::wstring>& tags,
                                                 const tvutil::contextmgr::InstanceID& instanceId)
    : SettingsEvent(
          boost::make_shared<em::detail::DerivedTypeInformation<SettingsRemoveNodeEvent>>(tags),
          obj, instanceId),
      parentObj_(parentObj) {}

SettingsRemoveNodeEvent::~SettingsRemoveNodeEvent() = default;

em::BaseEvent* SettingsRemoveNodeEvent::clone() const {
    return new SettingsRemoveNodeEvent(*this);
}

}  // namespace core
}  // namespace settings

template class hostsvc::msg_svc::eventmgr::detail::DerivedTypeInformation<
    settings::core::SettingsRemoveNodeEvent>;
