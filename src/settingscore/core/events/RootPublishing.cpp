// SettingsImplRoot::publishEvent: the one way out of the tree for every change event, to the
// root's queue when it records and to the process's event manager.
//
// Locks: called with the root mutex held by the change; eventQueueMutex_ is taken for the
// append alone and is a leaf, released before any listener runs.
#include <settingscore/core/SettingsImplRoot.hpp>

#include <settingscore/core/events/SettingsEvent.hpp>

#include <platform/tvutil/eventmgr/LocalEventMgr.hpp>

#include <boost/thread/lock_guard.hpp>

namespace settings {
namespace core {

void SettingsImplRoot::publishEvent(const boost::shared_ptr<const SettingsEvent>& event) {
    // A root whose instance was reset still works as an object for whoever holds it, but it
    // no longer speaks for the instance: its events go nowhere.
    const auto state = stateMgr_.lock();
    if (!state || !event) {
        return;
    }
    if (isRecordingEvents()) {
        boost::lock_guard<boost::mutex> guard(eventQueueMutex_);
        eventQueue_.push_back(event);
    }
    // Every event goes out as a SettingsEvent: subscribers by type on any of the settings
    // classes, and the tag-counted listeners of addListener, all match on that chain.
    tvutil::eventmgr::createLocalEventMgr()->publish(*event, SettingsEvent::typeName(), true);
}

}  // namespace core
}  // namespace settings
