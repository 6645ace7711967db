// The process-wide register of per-instance settings states and the small state around it:
// rootStates (instance id -> SettingsRootStateMgr), stateMgrRegistryMutex and currentInstance.
#pragma once

#include <platform/hostsvc/msg_svc/threadutil/ConcurrentMap.hpp>
#include <platform/hostsvc/msg_svc/threadutil/ConcurrentTBBHashMap.hpp>
#include <platform/tvutil/contextmgr/InstanceID.hpp>

#include <boost/shared_ptr.hpp>
#include <boost/thread/shared_mutex.hpp>

namespace settings {
namespace core {

class SettingsRootStateMgr;

namespace detail {

using RootStateMap =
    hostsvc::msg_svc::threadutil::ConcurrentTBBHashMap<hostsvc::msg_svc::threadutil::ConcurrentMap<
        const tvutil::contextmgr::InstanceID, boost::shared_ptr<SettingsRootStateMgr>>>;

// Made on first use, with one entry from the start: the blessed instance and a fresh state.
RootStateMap& rootStates();

// Guards currentInstance and the directory overrides; first in the process's lock order.
boost::shared_mutex& stateMgrRegistryMutex();

// The instance that the host activated last. REQUIRES: stateMgrRegistryMutex for both.
tvutil::contextmgr::InstanceID getCurrentInstance();
void setCurrentInstance(const tvutil::contextmgr::InstanceID& id);

// The state of `id`, or null.
boost::shared_ptr<SettingsRootStateMgr> findRootState(const tvutil::contextmgr::InstanceID& id);

// The id that the context registry makes of `id` (the active instance for the wildcards).
tvutil::contextmgr::InstanceID effectiveInstanceId(const tvutil::contextmgr::InstanceID& id);

}  // namespace detail
}  // namespace core
}  // namespace settings
