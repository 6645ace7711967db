#include <settingscore/core/Settings.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/SettingsRootStateMgr.hpp>
#include <settingscore/core/detail/RootStates.hpp>
#include <settingscore/core/exception/TreeExceptions.hpp>

namespace settings {
namespace core {

namespace detail {

struct RootMutexAccess {
    static boost::shared_mutex& get() { return Settings::getTheRootMutex(); }
};

RootMutex& rootMutex() {
    return RootMutexAccess::get();
}

}  // namespace detail

Settings::~Settings() = default;

boost::shared_mutex& Settings::getTheRootMutex() {
    // Never destroyed: nodes that clients keep in static objects may still lock it while the
    // process exits.
    static boost::shared_mutex* const mutex = new boost::shared_mutex();
    return *mutex;
}

void Settings::setAny(const std::string& name, const boost::any& value, const std::string& level) {
    const boost::shared_ptr<Settings> key = getChild(name);
    if (!key) {
        throw exception::NoSuchKey(getSharedThis(), name);
    }
    const KeyValuePair pair(key, value);
    setValues(&pair, &pair + 1, level, true);
}

void Settings::validateAny(const std::string& name, const boost::any& value) const {
    const boost::shared_ptr<const Settings> key = getChild(name);
    if (!key) {
        throw exception::NoSuchKey(getSharedThis(), name);
    }
    const KeyValuePair pair(boost::const_pointer_cast<Settings>(key), value);
    validateValues(&pair, &pair + 1, true);
}

boost::shared_ptr<Settings> Settings::getSettingsRoot(const tvutil::contextmgr::InstanceID& id) {
    const auto effective = detail::effectiveInstanceId(id);
    if (effective < tvutil::contextmgr::BlessedInstanceID) {
        return {};
    }
    const auto state = detail::findRootState(effective);
    if (!state) {
        return {};
    }
    return state->getRoot(effective);
}

}  // namespace core
}  // namespace settings
