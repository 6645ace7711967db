#include <platform/tvutil/contextmgr/ContextBase.hpp>

namespace tvutil {
namespace contextmgr {

ContextBase::ContextBase(const InstanceID& id) : instanceID_(id) {}

ContextBase::~ContextBase() = default;

bool ContextBase::contextCreated() {
    return true;
}

void ContextBase::contextActivated() {}

void ContextBase::contextDeactivated() {}

void ContextBase::contextDestroyed() {}

}  // namespace contextmgr
}  // namespace tvutil
