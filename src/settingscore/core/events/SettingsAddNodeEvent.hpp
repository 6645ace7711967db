// settings::core::SettingsAddNodeEvent: a node was attached under a parent. Its tags name the
// parent and each of the parent's ancestors. No listener of addListener hears it: the host reaches
// it through the root's queue or by subscribing to the type on the event manager.
#pragma once

#include <settingscore/core/events/SettingsEvent.hpp>

namespace settings {
namespace core {

class SettingsAddNodeEvent : public SettingsEvent {
public:
    using base_type = SettingsEvent;

    // "settings::core::SettingsAddNodeEvent".
    static const std::wstring& typeName();

    // `obj` is the node added, `parentObj` the parent under which the node was added.
    SettingsAddNodeEvent(const boost::shared_ptr<const Settings>& parentObj,
                         const boost::shared_ptr<const Settings>& obj,
                         const std::vector<std::wstring>& tags,
                         const tvutil::contextmgr::InstanceID& instanceId);
    ~SettingsAddNodeEvent() override;

    hostsvc::msg_svc::eventmgr::BaseEvent* clone() const override;

    const boost::shared_ptr<const Settings>& getParentObj() const { return parentObj_; }

private:
    SettingsAddNodeEvent(const SettingsAddNodeEvent&) = default;
    SettingsAddNodeEvent& operator=(const SettingsAddNodeEvent&) = delete;

    boost::shared_ptr<const Settings> parentObj_;
};

}  // namespace core
}  // namespace settings

// Made once in the library: the type information of the class.
extern template class hostsvc::msg_svc::eventmgr::detail::DerivedTypeInformation<
    settings::core::SettingsAddNodeEvent>;
