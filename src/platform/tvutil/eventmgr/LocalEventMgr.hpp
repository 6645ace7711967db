// tvutil::eventmgr::createLocalEventMgr: the process's one in-process event manager.
#pragma once

#include <platform/hostsvc/msg_svc/eventmgr/EventMgr.hpp>

#include <boost/shared_ptr.hpp>

namespace tvutil {
namespace eventmgr {

// The same manager at every call, made on first use (thread-safe) and never destroyed, so
// that static destructors of other libraries may still end their connections through it.
// It delivers inside publish, on the publishing thread.
boost::shared_ptr<hostsvc::msg_svc::eventmgr::EventMgr> createLocalEventMgr();

}  // namespace eventmgr
}  // namespace tvutil
