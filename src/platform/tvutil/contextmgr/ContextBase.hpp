// tvutil::contextmgr::ContextBase: the base of a per-instance context that a library hands to
// the ContextRegistry (through a ContextFactoryBase) to hear of its instance's life.
#pragma once

#include <platform/tvutil/contextmgr/InstanceID.hpp>

namespace tvutil {
namespace contextmgr {

// The registry calls, on one context: contextCreated once after the factory made it, then
// contextActivated / contextDeactivated as its instance becomes or stops being the active one,
// then contextDestroyed once before the factory destroys it. The registry's lock is not held
// during these calls.
class ContextBase {
public:
    explicit ContextBase(const InstanceID& id);
    virtual ~ContextBase();
    ContextBase(const ContextBase&) = delete;
    ContextBase& operator=(const ContextBase&) = delete;

    // Whether the context is ready for its instance. The answer is reported by
    // ContextRegistry::createContext; a context answering false is still kept and hears the
    // later calls. Default: true.
    virtual bool contextCreated();
    virtual void contextActivated();
    virtual void contextDeactivated();
    virtual void contextDestroyed();

    const InstanceID& instanceID() const { return instanceID_; }

private:
    const InstanceID instanceID_;
};

}  // namespace contextmgr
}  // namespace tvutil
