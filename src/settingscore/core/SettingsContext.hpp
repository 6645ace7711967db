// settings::core::SettingsContext and its factory: how the host's context registry tells the
// settings core that an instance was created, activated or destroyed. One factory is
// registered with the registry when the library is loaded.
#pragma once

#include <platform/tvutil/contextmgr/ContextBase.hpp>
#include <platform/tvutil/contextmgr/ContextFactoryBase.hpp>

namespace settings {
namespace core {

class SettingsContext : public tvutil::contextmgr::ContextBase {
public:
    explicit SettingsContext(const tvutil::contextmgr::InstanceID& id);
    ~SettingsContext() override;

    // Gives the instance a settings state; false when it had one.
    bool contextCreated() override;
    // Records the instance as the current one.
    void contextActivated() override;
    void contextDeactivated() override;
    // Drops the instance's root; the state of any instance but the blessed one goes too.
    void contextDestroyed() override;
};

template <class Context>
class ContextGenerator : public tvutil::contextmgr::ContextFactoryBase {
public:
    ~ContextGenerator() override = default;
    tvutil::contextmgr::ContextBase* create(const tvutil::contextmgr::InstanceID& id) override {
        return new Context(id);
    }
    void destroy(tvutil::contextmgr::ContextBase* context) override { delete context; }
};

}  // namespace core
}  // namespace settings
