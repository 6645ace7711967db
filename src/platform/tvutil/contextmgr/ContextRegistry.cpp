#include <platform/tvutil/contextmgr/ContextRegistry.hpp>

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

namespace tvutil {
namespace contextmgr {

namespace {

std::string describe(const InstanceID& id) {
    return "instance " + std::to_string(id.value());
}

void requireSingleInstance(const InstanceID& id) {
    if (id < BlessedInstanceID) {
        throw std::invalid_argument("contextmgr::ContextRegistry: " + describe(id) +
                                    " names no single instance.");
    }
}

// Hands a context back to the factory that made it. A shared pointer's deleter must not throw,
// and a failing destroy leaves nothing for the registry to repair.
class FactoryDestroy {
public:
    explicit FactoryDestroy(boost::shared_ptr<ContextFactoryBase> factory)
        : factory_(std::move(factory)) {}

    void operator()(ContextBase* context) const noexcept {
        try {
            factory_->destroy(context);
        } catch (...) {
        }
    }

private:
    boost::shared_ptr<ContextFactoryBase> factory_;
};

// contextDestroyed on each context, last first, releasing each right after; every context is
// told even if one throws, and the first exception is handed back.
std::exception_ptr endContexts(std::vector<boost::shared_ptr<ContextBase>> contexts) {
    std::exception_ptr first;
    while (!contexts.empty()) {
        try {
            contexts.back()->contextDestroyed();
        } catch (...) {
            if (!first) {
                first = std::current_exception();
            }
        }
        contexts.pop_back();
    }
    return first;
}

}  // namespace

ContextRegistry& ContextRegistry::getInstance() {
    static ContextRegistry* const instance = new ContextRegistry();
    return *instance;
}

ContextRegistry::ContextRegistry() : active_(UndefinedInstanceID) {}

void ContextRegistry::registerFactory(const boost::shared_ptr<ContextFactoryBase>& factory) {
    if (!factory) {
        throw std::invalid_argument("contextmgr::ContextRegistry: a null factory.");
    }
    std::lock_guard<std::mutex> lock(mutex_);
    if (std::find(factories_.begin(), factories_.end(), factory) == factories_.end()) {
        factories_.push_back(factory);
    }
}

InstanceID ContextRegistry::getEffectiveInstanceID(const InstanceID& id) const {
    if (id != UndefinedInstanceID && id != AnyInstanceID) {
        return id;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    return active_;
}

ContextRegistry::Instance& ContextRegistry::findReady(const InstanceID& id) {
    const auto found = instances_.find(id);
    if (found == instances_.end() || !found->second.ready) {
        throw std::logic_error("contextmgr::ContextRegistry: " + describe(id) +
                               " was not created.");
    }
    return found->second;
}

bool ContextRegistry::createContext(const InstanceID& id) {
    requireSingleInstance(id);
    std::vector<boost::shared_ptr<ContextFactoryBase>> factories;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (!instances_.emplace(id, Instance()).second) {
            throw std::logic_error("contextmgr::ContextRegistry: " + describe(id) +
                                   " was created already.");
        }
        factories = factories_;
    }

    std::vector<ContextHandle> created;  // contextCreated has returned
    bool allReady = true;
    try {
        for (const boost::shared_ptr<ContextFactoryBase>& factory : factories) {
            ContextBase* const raw = factory->create(id);
            if (raw == nullptr) {
                throw std::logic_error(
                    "contextmgr::ContextRegistry: a factory made no context "
                    "for " +
                    describe(id) + ".");
            }
            // The handle owns the context from here: if anything below throws, the factory
            // gets it back without a contextDestroyed, as it was never fully created.
            ContextHandle context(raw, FactoryDestroy(factory));
            created.reserve(created.size() + 1);
            allReady = context->contextCreated() && allReady;
            created.push_back(std::move(context));
        }
    } catch (...) {
        endContexts(std::move(created));
        std::lock_guard<std::mutex> lock(mutex_);
        instances_.erase(id);
        throw;
    }

    std::lock_guard<std::mutex> lock(mutex_);
    Instance& instance = instances_.at(id);
    instance.contexts = std::move(created);
    instance.ready = true;
    return allReady;
}

void ContextRegistry::activateContext(const InstanceID& id) {
    requireSingleInstance(id);
    std::vector<ContextHandle> leaving;
    std::vector<ContextHandle> entering;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        Instance& instance = findReady(id);
        if (active_ == id) {
            return;
        }
        const auto previous = instances_.find(active_);
        if (previous != instances_.end()) {
            leaving = previous->second.contexts;
        }
        entering = instance.contexts;
        active_ = id;
    }
    for (const ContextHandle& context : leaving) {
        context->contextDeactivated();
    }
    for (const ContextHandle& context : entering) {
        context->contextActivated();
    }
}

void ContextRegistry::destroyContext(const InstanceID& id) {
    requireSingleInstance(id);
    std::vector<ContextHandle> dying;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        dying = std::move(findReady(id).contexts);
        instances_.erase(id);
        if (active_ == id) {
            active_ = UndefinedInstanceID;
        }
    }
    if (const std::exception_ptr failure = endContexts(std::move(dying))) {
        std::rethrow_exception(failure);
    }
}

}  // namespace contextmgr
}  // namespace tvutil
