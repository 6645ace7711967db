#include <settingscore/core/events/SettingsAddNodeEvent.hpp>

#include <boost/make_shared.hpp>

namespace settings {
namespace core {

namespace em = hostsvc::msg_svc::eventmgr;

const std::wstring& SettingsAddNodeEvent::typeName() {
    static const std::wstring name = L"settings::core::SettingsAddNodeEvent";
    return name;
}

SettingsAddNodeEvent::SettingsAddNodeEvent(const boost::shared_ptr<const Settings>& parentObj,
                                           const boost::shared_ptr<const Settings>& obj,
                                           const std::vector<std::wstring>& tags,
                                           const tvutil::contextmgr::InstanceID& instanceId)
    : SettingsEvent(
          boost::make_shared<em::detail::DerivedTypeInformation<SettingsAddNodeEvent>>(tags), obj,
          instanceId),
      parentObj_(parentObj) {}

SettingsAddNodeEvent::~SettingsAddNodeEvent() = default;

em::BaseEvent* SettingsAddNodeEvent::clone() const {
    return new SettingsAddNodeEvent(*this);
}

}  // namespace core
}  // namespace settings

template class hostsvc::msg_svc::eventmgr::detail::DerivedTypeInformation<
    settings::core::SettingsAddNodeEvent>;
