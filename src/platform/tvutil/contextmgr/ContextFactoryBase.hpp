// tvutil::contextmgr::ContextFactoryBase: makes and destroys one library's contexts, one per
// host instance, for the ContextRegistry.
#pragma once

#include <platform/tvutil/contextmgr/ContextBase.hpp>
#include <platform/tvutil/contextmgr/InstanceID.hpp>

namespace tvutil {
namespace contextmgr {

class ContextFactoryBase {
public:
    virtual ~ContextFactoryBase();

    // A new context for instance `id`; the registry owns it until it hands it to destroy.
    virtual ContextBase* create(const InstanceID& id) = 0;

    // Ends a context that create made.
    virtual void destroy(ContextBase* context) = 0;

protected:
    ContextFactoryBase() = default;
    ContextFactoryBase(const ContextFactoryBase&) = default;
    ContextFactoryBase& operator=(const ContextFactoryBase&) = default;
};

}  // namespace contextmgr
}  // namespace tvutil
