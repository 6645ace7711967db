#include <platform/tvutil/contextmgr/ContextRegistry.hpp>

#include "platform/hf/Threads.hpp"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <atomic>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace tvutil::contextmgr;
using Entries = std::vector<std::string>;

// What the contexts and the factory were told, in order, as "<instance> <call>". Instances
// driven from several threads (1000 and up) are not noted, so only the main thread writes.
Entries journal;
std::atomic<int> liveContexts{0};
InstanceID answerFalseFor = UndefinedInstanceID;  // contextCreated answers false for it

void note(const InstanceID& id, const std::string& call) {
    if (id < InstanceID(1000)) {
        journal.push_back(std::to_string(id.value()) + " " + call);
    }
}

// contextActivated reads the effective id, which it could not if the registry's lock were held.
class LoggingContext : public ContextBase {
public:
    explicit LoggingContext(const InstanceID& id) : ContextBase(id) { ++liveContexts; }
    ~LoggingContext() override { --liveContexts; }
    bool contextCreated() override {
        note(instanceID(), "created");
        return answerFalseFor != instanceID();
    }
    void contextActivated() override {
        const auto effective = ContextRegistry::getInstance().getEffectiveInstanceID(AnyInstanceID);
        note(instanceID(), "activated as " + std::to_string(effective.value()));
    }
    void contextDeactivated() override { note(instanceID(), "deactivated"); }
    void contextDestroyed() override { note(instanceID(), "destroyed"); }
};

class LoggingFactory : public ContextFactoryBase {
public:
    ContextBase* create(const InstanceID& id) override {
        note(id, "create");
        return new LoggingContext(id);
    }
    void destroy(ContextBase* context) override {
        note(context->instanceID(), "destroy");
        delete context;
    }
};

// Registered from a static initialiser, as a library does when it is loaded.
const bool factoryRegistered = [] {
    ContextRegistry::getInstance().registerFactory(boost::make_shared<LoggingFactory>());
    return true;
}();

TEST(ContextRegistryTest, LifecycleCallsTheContextsInOrderAndSetsTheEffectiveId) {
    ASSERT_TRUE(factoryRegistered);
    ContextRegistry& registry = ContextRegistry::getInstance();
    const InstanceID ten(10), eleven(11);
    EXPECT_EQ(UndefinedInstanceID, registry.getEffectiveInstanceID(AnyInstanceID));
    EXPECT_EQ(InstanceID(77), registry.getEffectiveInstanceID(InstanceID(77)));  // not created
    EXPECT_TRUE(registry.createContext(ten));
    EXPECT_THROW(registry.createContext(ten), std::logic_error);
    registry.activateContext(ten);
    answerFalseFor = eleven;
    EXPECT_FALSE(registry.createContext(eleven));  // answered false, created all the same
    EXPECT_EQ(ten, registry.getEffectiveInstanceID(UndefinedInstanceID));
    registry.activateContext(eleven);
    registry.activateContext(eleven);  // already active: nothing more
    // Destroying another instance leaves the active one active; the active one is not
    // deactivated before it is destroyed.
    registry.destroyContext(ten);
    EXPECT_EQ(eleven, registry.getEffectiveInstanceID(AnyInstanceID));
    registry.destroyContext(eleven);
    EXPECT_EQ(UndefinedInstanceID, registry.getEffectiveInstanceID(AnyInstanceID));
    EXPECT_EQ((Entries{"10 create", "10 created", "10 activated as 10", "11 create", "11 created",
                       "10 deactivated", "11 activated as 11", "10 destroyed", "10 destroy",
                       "11 destroyed", "11 destroy"}),
              journal);
    EXPECT_EQ(0, liveContexts.load());
    EXPECT_THROW(registry.activateContext(eleven), std::logic_error);
    EXPECT_THROW(registry.createContext(AnyInstanceID), std::invalid_argument);
}

// Threads drive instances of their own: no driver call fails, and every context made is
// destroyed once.
TEST(ContextRegistryTest, InstancesDrivenFromSeveralThreads) {
    ContextRegistry& registry = ContextRegistry::getInstance();
    constexpr int threadCount = 4, rounds = 200;
    hftest::onThreads(threadCount, [&](int t) {
        for (int i = 0; i < rounds; ++i) {
            const InstanceID id(1000 + t * rounds + i);
            EXPECT_NO_THROW(registry.createContext(id));
            EXPECT_NO_THROW(registry.activateContext(id));
            EXPECT_NO_THROW(registry.destroyContext(id));
        }
    });
    EXPECT_EQ(0, liveContexts.load());
}

}  // namespace
