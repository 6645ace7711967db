// tvutil::contextmgr::ContextRegistry: the process's register of host instances. Libraries
// register a context factory; the host drives the life of each instance (create, activate,
// destroy) and every registered library's context for that instance hears of it.
#pragma once

#include <platform/tvutil/contextmgr/ContextBase.hpp>
#include <platform/tvutil/contextmgr/ContextFactoryBase.hpp>
#include <platform/tvutil/contextmgr/InstanceID.hpp>

#include <boost/shared_ptr.hpp>

#include <map>
#include <mutex>
#include <vector>

namespace tvutil {
namespace contextmgr {

// Thread-safe. Locks: `mutex_` only, a leaf; no context or factory operation runs under it.
// Calls on different instances may run at once; racing calls on one instance are the host's
// to avoid, but never leave a context used after its destruction.
class ContextRegistry {
public:
    // The one registry of the process. Usable from any library's static initialisers and
    // destructors: it is made on first use and never destroyed.
    static ContextRegistry& getInstance();

    ContextRegistry(const ContextRegistry&) = delete;
    ContextRegistry& operator=(const ContextRegistry&) = delete;

    // Adds a factory whose contexts take part in every instance created from now on; instances
    // that exist already are not given one. A factory already registered is not added again.
    // A null factory throws std::invalid_argument.
    void registerFactory(const boost::shared_ptr<ContextFactoryBase>& factory);

    // UndefinedInstanceID and AnyInstanceID: the active instance (the one last activated and
    // not destroyed since), or UndefinedInstanceID when there is none. Any other id: itself.
    InstanceID getEffectiveInstanceID(const InstanceID& id) const;

    // --- Driving the instances (the embedding program) ---

    // Creates instance `id` (BlessedInstanceID or above, std::invalid_argument otherwise):
    // each registered factory, in order of registration, makes its context, and the context's
    // contextCreated runs. An id that exists already throws std::logic_error. If a factory or a
    // contextCreated throws, the contexts made so far are destroyed (contextDestroyed for those
    // whose contextCreated returned), the instance is not created, and the exception passes.
    // Returns whether every contextCreated answered true.
    bool createContext(const InstanceID& id);

    // Makes `id` the active instance: contextDeactivated on the contexts of the instance that
    // was active, then contextActivated on those of `id`. Activating the active instance does
    // nothing. An instance that was not created throws std::logic_error.
    void activateContext(const InstanceID& id);

    // Destroys instance `id`: for each of its contexts, last made first, contextDestroyed and
    // then the factory's destroy. If `id` was active, no instance is active afterwards. An
    // instance that was not created throws std::logic_error. An exception from a
    // contextDestroyed does not stop the others; the first one passes to the caller.
    void destroyContext(const InstanceID& id);

private:
    ContextRegistry();

    // A context, handed back to its factory's destroy when the last holder lets go: a driver
    // call running outside the lock on another thread keeps it alive.
    using ContextHandle = boost::shared_ptr<ContextBase>;

    struct Instance {
        bool ready = false;  // false while createContext is still making the contexts
        std::vector<ContextHandle> contexts;
    };

    // Validates `id` and finds its ready instance. REQUIRES: mutex_ held.
    Instance& findReady(const InstanceID& id);

    mutable std::mutex mutex_;
    std::vector<boost::shared_ptr<ContextFactoryBase>> factories_;
    std::map<InstanceID, Instance> instances_;
    InstanceID active_;
};

}  // namespace contextmgr
}  // namespace tvutil
