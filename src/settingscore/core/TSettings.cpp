// The static entry points of the host: making standalone nodes, reaching and resetting the
// root of an instance, the instance's directories and its recorded events.
//
// Locks: the directory entries take stateMgrRegistryMutex around the state's getters and
// setters; reset takes it after the state's own lock has been released.
#include <settingscore/core/TSettings.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/SettingsRootStateMgr.hpp>
#include <settingscore/core/detail/RootStates.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/exception/TreeExceptions.hpp>

#include <platform/hlu/tv_is_valid_name.h>

#include <boost/make_shared.hpp>
#include <boost/thread/locks.hpp>

namespace settings {
namespace core {

using tvutil::contextmgr::AnyInstanceID;
using tvutil::contextmgr::BlessedInstanceID;
using tvutil::contextmgr::InstanceID;

TSettings::TSettings() = default;

boost::shared_ptr<TSettings> TSettings::createSetting(const std::string& name, bool isKey,
                                                      SettingsProperties& properties) {
    return boost::make_shared<SettingsImpl>(
        name, isKey, boost::optional<bool>(!properties.hidden), properties.validator,
        properties.readOnly ? SettingsImpl::ReadOnly : SettingsImpl::Writable,
        boost::shared_ptr<SettingsImpl>());
}

boost::shared_ptr<TSettings> TSettings::createSettingsNode(const std::string& name, bool isKey,
                                                           bool visible,
                                                           const ValidatorVariant& validator,
                                                           bool readOnly) {
    return boost::make_shared<SettingsImpl>(
        name, isKey, boost::optional<bool>(visible), validator,
        readOnly ? SettingsImpl::ReadOnly : SettingsImpl::Writable,
        boost::shared_ptr<SettingsImpl>());
}

boost::shared_ptr<TSettings> TSettings::getTSettingsRoot(const InstanceID& id) {
    return boost::dynamic_pointer_cast<TSettings>(getSettingsRoot(id));
}

bool TSettings::createEmptySettingsFor(const InstanceID& id) {
    return detail::rootStates().insert(id, boost::make_shared<SettingsRootStateMgr>());
}

boost::shared_ptr<TSettings> TSettings::reset(const InstanceID& id) {
    const auto state = detail::findRootState(BlessedInstanceID);
    if (!state) {
        return {};
    }
    boost::shared_ptr<TSettings> old = state->reset();
    if (id == AnyInstanceID) {
        detail::rootStates().clear();
        createEmptySettingsFor(InstanceID(0));
        boost::upgrade_lock<boost::shared_mutex> upgrade(detail::stateMgrRegistryMutex());
        boost::upgrade_to_unique_lock<boost::shared_mutex> exclusive(upgrade);
        detail::setCurrentInstance(InstanceID(0));
    }
    // Nothing is saved: every change was written when it was made. The caller decides when
    // the old tree dies.
    return old;
}

void TSettings::eventQueue(std::queue<boost::shared_ptr<const SettingsEvent>>& queue,
                           const InstanceID& id) {
    const auto root = boost::dynamic_pointer_cast<SettingsImplRoot>(getSettingsRoot(id));
    if (root) {
        root->swapEventQueue(queue);
    }
}

std::wstring TSettings::getFactoryDir(const InstanceID& id) {
    const auto effective = detail::effectiveInstanceId(id);
    if (effective < BlessedInstanceID) {
        return std::wstring();
    }
    const auto state = detail::findRootState(effective);
    if (!state) {
        return std::wstring();
    }
    boost::shared_lock<boost::shared_mutex> registry(detail::stateMgrRegistryMutex());
    return state->getFactoryDir();
}

std::wstring TSettings::getUserDir(const InstanceID& id) {
    const auto state = detail::findRootState(detail::effectiveInstanceId(id));
    if (!state) {
        // An instance without settings has no user directory either.
        throw makeMessageException<TOLVAN::settings::core::SettingsUserDirectoryNotExist>();
    }
    boost::shared_lock<boost::shared_mutex> registry(detail::stateMgrRegistryMutex());
    return state->getUserDir();
}

std::wstring TSettings::getWorkgroupDir(const InstanceID& id) {
    const auto state = detail::findRootState(detail::effectiveInstanceId(id));
    if (!state) {
        return std::wstring();
    }
    boost::shared_lock<boost::shared_mutex> registry(detail::stateMgrRegistryMutex());
    return state->getWorkgroupDir();
}

void TSettings::setSettingsFileLocation(const InstanceID& id,
                                        const boost::optional<std::wstring>& factoryDir,
                                        const boost::optional<std::wstring>& workgroupDir,
                                        const boost::optional<std::wstring>& userDir) {
    const auto effective = detail::effectiveInstanceId(id);
    if (effective < BlessedInstanceID) {
        return;
    }
    const auto state = detail::findRootState(effective);
    if (!state) {
        return;
    }
    boost::upgrade_lock<boost::shared_mutex> upgrade(detail::stateMgrRegistryMutex());
    boost::upgrade_to_unique_lock<boost::shared_mutex> exclusive(upgrade);
    state->setFactoryDir(factoryDir);
    state->setWorkgroupDir(workgroupDir);
    state->setUserDir(userDir);
}

void TSettings::validateSettingOrGroupName(const std::string& name) {
    if (tv_is_valid_name(name.c_str()) != 1) {
        throw exception::InvalidSettingOrGroupName(name);
    }
}

}  // namespace core
}  // namespace settings
