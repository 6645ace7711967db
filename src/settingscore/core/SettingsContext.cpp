#include <settingscore/core/SettingsContext.hpp>

#include <settingscore/core/SettingsRootStateMgr.hpp>
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/detail/RootStates.hpp>

#include <platform/tvutil/contextmgr/ContextRegistry.hpp>

#include <boost/shared_ptr.hpp>
#include <boost/thread/locks.hpp>

namespace settings {
namespace core {

using tvutil::contextmgr::BlessedInstanceID;

SettingsContext::SettingsContext(const tvutil::contextmgr::InstanceID& id) : ContextBase(id) {}

SettingsContext::~SettingsContext() = default;

bool SettingsContext::contextCreated() {
    return TSettings::createEmptySettingsFor(instanceID());
}

void SettingsContext::contextActivated() {
    boost::unique_lock<boost::shared_mutex> registry(detail::stateMgrRegistryMutex());
    detail::setCurrentInstance(instanceID());
}

void SettingsContext::contextDeactivated() {}

void SettingsContext::contextDestroyed() {
    if (const auto state = detail::findRootState(instanceID())) {
        // The old root dies here, unless a client still holds it.
        state->reset();
    }
    boost::unique_lock<boost::shared_mutex> registry(detail::stateMgrRegistryMutex());
    detail::setCurrentInstance(BlessedInstanceID);
    if (instanceID() > BlessedInstanceID) {
        detail::rootStates().erase(instanceID());
    }
}

namespace {

// Registered while the library loads. The registry holds it through a shared pointer that
// never deletes: the generator is a static object of this library.
ContextGenerator<SettingsContext> settingsContextGenerator;

const bool settingsContextRegistered = [] {
    tvutil::contextmgr::ContextRegistry::getInstance().registerFactory(
        boost::shared_ptr<tvutil::contextmgr::ContextFactoryBase>(
            &settingsContextGenerator, [](tvutil::contextmgr::ContextFactoryBase*) {}));
    return true;
}();

}  // namespace

}  // namespace core
}  // namespace settings
