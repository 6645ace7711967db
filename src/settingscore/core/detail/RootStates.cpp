#include <settingscore/core/detail/RootStates.hpp>

#include <settingscore/core/SettingsRootStateMgr.hpp>

#include <platform/tvutil/contextmgr/ContextRegistry.hpp>

#include <boost/make_shared.hpp>
#include <boost/thread/once.hpp>

namespace settings {
namespace core {
namespace detail {

namespace {

boost::once_flag rootStatesOnce = BOOST_ONCE_INIT;
RootStateMap* rootStatesMap = nullptr;

// Set to UndefinedInstanceID before any code of the library runs: a constant initialiser.
tvutil::contextmgr::InstanceID currentInstance = tvutil::contextmgr::UndefinedInstanceID;

void makeRootStates() {
    // Never destroyed: states may still be asked for from other libraries' static destructors,
    // and a state's destruction must not race the process's exit.
    rootStatesMap = new RootStateMap();
    rootStatesMap->insert(tvutil::contextmgr::BlessedInstanceID,
                          boost::make_shared<SettingsRootStateMgr>());
}

}  // namespace

RootStateMap& rootStates() {
    boost::call_once(rootStatesOnce, &makeRootStates);
    return *rootStatesMap;
}

boost::shared_mutex& stateMgrRegistryMutex() {
    static boost::shared_mutex* const mutex = new boost::shared_mutex();
    return *mutex;
}

tvutil::contextmgr::InstanceID getCurrentInstance() {
    return currentInstance;
}

void setCurrentInstance(const tvutil::contextmgr::InstanceID& id) {
    currentInstance = id;
}

boost::shared_ptr<SettingsRootStateMgr> findRootState(const tvutil::contextmgr::InstanceID& id) {
    boost::shared_ptr<SettingsRootStateMgr> state;
    rootStates().find(id, state);
    return state;
}

tvutil::contextmgr::InstanceID effectiveInstanceId(const tvutil::contextmgr::InstanceID& id) {
    return tvutil::contextmgr::ContextRegistry::getInstance().getEffectiveInstanceID(id);
}

}  // namespace detail
}  // namespace core
}  // namespace settings
