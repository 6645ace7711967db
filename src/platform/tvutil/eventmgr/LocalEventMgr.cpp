#include <platform/tvutil/eventmgr/LocalEventMgr.hpp>

#include <boost/make_shared.hpp>

namespace tvutil {
namespace eventmgr {

boost::shared_ptr<hostsvc::msg_svc::eventmgr::EventMgr> createLocalEventMgr() {
    static const auto* const manager = new boost::shared_ptr<hostsvc::msg_svc::eventmgr::EventMgr>(
        boost::make_shared<hostsvc::msg_svc::eventmgr::EventMgr>());
    return *manager;
}

}  // namespace eventmgr
}  // namespace tvutil
