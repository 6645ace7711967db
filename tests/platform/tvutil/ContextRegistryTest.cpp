#include <platform/tvutil/contextmgr/ContextBase.hpp>
#include <platform/tvutil/contextmgr/ContextFactoryBase.hpp>
#include <platform/tvutil/contextmgr/ContextRegistry.hpp>
#include <platform/tvutil/contextmgr/InstanceID.hpp>

#include "platform/hf/Threads.hpp"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <atomic>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace tvutil::contextmgr;
using Entries = std::vector<std::string>;

static_assert(AnyInstanceID < UndefinedInstanceID && UndefinedInstanceID < BlessedInstanceID &&
                  InstanceID(1) > BlessedInstanceID,
              "the special ids lie below every valid one");

// What the contexts and factories of this program were told, per instance, in order.
class Log {
public:
    void add(const InstanceID& id, const std::string& entry) {
        std::lock_guard<std::mutex> lock(mutex_);
        entries_[id.value()].push_back(entry);
    }
    Entries take(const InstanceID& id) {
        std::lock_guard<std::mutex> lock(mutex_);
        return std::exchange(entries_[id.value()], Entries());
    }

private:
    std::mutex mutex_;
    std::map<long long, Entries> entries_;
};
Log journal;
std::atomic<int> liveContexts{0};
// contextCreated answers false for this instance; the "runtime" one throws for the other.
InstanceID answerFalseFor = UndefinedInstanceID;
InstanceID throwFor = UndefinedInstanceID;

// Logs each call under its factory's name. contextActivated reads the effective id, which it
// could not if the registry's lock were held around it.
class LoggingContext : public ContextBase {
public:
    LoggingContext(const InstanceID& id, std::string owner)
        : ContextBase(id), owner_(std::move(owner)) {
        ++liveContexts;
    }
    ~LoggingContext() override { --liveContexts; }
    bool contextCreated() override {
        journal.add(instanceID(), owner_ + " created");
        if (owner_ == "runtime" && throwFor == instanceID()) {
            throw std::runtime_error("context refused");
        }
        return answerFalseFor != instanceID();
    }
    void contextActivated() override {
        const auto effective = ContextRegistry::getInstance().getEffectiveInstanceID(AnyInstanceID);
        journal.add(instanceID(), owner_ + " activated as " + std::to_string(effective.value()));
    }
    void contextDeactivated() override { journal.add(instanceID(), owner_ + " deactivated"); }
    void contextDestroyed() override { journal.add(instanceID(), owner_ + " destroyed"); }

private:
    std::string owner_;
};

class LoggingFactory : public ContextFactoryBase {
public:
    explicit LoggingFactory(std::string name) : name_(std::move(name)) {}
    ContextBase* create(const InstanceID& id) override {
        journal.add(id, name_ + " create");
        return new LoggingContext(id, name_);
    }
    void destroy(ContextBase* context) override {
        journal.add(context->instanceID(), name_ + " destroy");
        delete context;
    }

private:
    std::string name_;
};

// Registered from a static initialiser, as a library does when it is loaded: a static factory
// in a shared pointer that does not delete it, then one the registry owns.
LoggingFactory staticFactory("static");
const bool factoriesRegistered = [] {
    ContextRegistry& registry = ContextRegistry::getInstance();
    registry.registerFactory(
        boost::shared_ptr<ContextFactoryBase>(&staticFactory, [](ContextFactoryBase*) {}));
    registry.registerFactory(boost::make_shared<LoggingFactory>("runtime"));
    return true;
}();

// The registry is the process's own: each test uses ids of its own and destroys them again.
TEST(ContextRegistryTest, LifecycleCallsEachContextInOrderAndSetsTheEffectiveId) {
    ASSERT_TRUE(factoriesRegistered);
    ContextRegistry& registry = ContextRegistry::getInstance();
    const InstanceID ten(10), eleven(11);
    EXPECT_EQ(UndefinedInstanceID, registry.getEffectiveInstanceID(AnyInstanceID));
    EXPECT_EQ(BlessedInstanceID, registry.getEffectiveInstanceID(BlessedInstanceID));
    EXPECT_EQ(InstanceID(77), registry.getEffectiveInstanceID(InstanceID(77)));  // not created

    EXPECT_TRUE(registry.createContext(ten));
    EXPECT_EQ((Entries{"static create", "static created", "runtime create", "runtime created"}),
              journal.take(ten));
    EXPECT_THROW(registry.createContext(ten), std::logic_error);
    registry.activateContext(ten);
    EXPECT_EQ((Entries{"static activated as 10", "runtime activated as 10"}), journal.take(ten));
    EXPECT_EQ(ten, registry.getEffectiveInstanceID(UndefinedInstanceID));

    answerFalseFor = eleven;
    EXPECT_FALSE(registry.createContext(eleven));  // answered false, created all the same
    answerFalseFor = UndefinedInstanceID;
    journal.take(eleven);
    EXPECT_EQ(eleven, registry.getEffectiveInstanceID(eleven));
    EXPECT_EQ(ten, registry.getEffectiveInstanceID(AnyInstanceID));
    registry.activateContext(eleven);
    registry.activateContext(eleven);  // already active: nothing more
    EXPECT_EQ((Entries{"static deactivated", "runtime deactivated"}), journal.take(ten));
    EXPECT_EQ((Entries{"static activated as 11", "runtime activated as 11"}), journal.take(eleven));

    // Last made, first ended; destroying another instance leaves the active one active, and
    // the active one is not deactivated before it is destroyed.
    const Entries destroyed{"runtime destroyed", "runtime destroy", "static destroyed",
                            "static destroy"};
    registry.destroyContext(ten);
    EXPECT_EQ(destroyed, journal.take(ten));
    EXPECT_EQ(eleven, registry.getEffectiveInstanceID(AnyInstanceID));
    registry.destroyContext(eleven);
    EXPECT_EQ(destroyed, journal.take(eleven));
    EXPECT_EQ(UndefinedInstanceID, registry.getEffectiveInstanceID(AnyInstanceID));
    EXPECT_EQ(0, liveContexts.load());

    EXPECT_THROW(registry.activateContext(eleven), std::logic_error);
    EXPECT_THROW(registry.destroyContext(eleven), std::logic_error);
    EXPECT_THROW(registry.createContext(UndefinedInstanceID), std::invalid_argument);
    EXPECT_THROW(registry.createContext(AnyInstanceID), std::invalid_argument);
    EXPECT_THROW(registry.registerFactory(nullptr), std::invalid_argument);
}

TEST(ContextRegistryTest, FailedCreationLeavesNoInstance) {
    ContextRegistry& registry = ContextRegistry::getInstance();
    const InstanceID twenty(20);
    throwFor = twenty;
    EXPECT_THROW(registry.createContext(twenty), std::runtime_error);
    throwFor = UndefinedInstanceID;
    // The static context was fully created and is ended; the runtime one never was, so it is
    // only handed back.
    EXPECT_EQ((Entries{"static create", "static created", "runtime create", "runtime created",
                       "runtime destroy", "static destroyed", "static destroy"}),
              journal.take(twenty));
    EXPECT_EQ(0, liveContexts.load());
    EXPECT_THROW(registry.activateContext(twenty), std::logic_error);
    EXPECT_TRUE(registry.createContext(twenty));  // the id is free again
    registry.destroyContext(twenty);
    EXPECT_EQ(0, liveContexts.load());
}

// Threads drive instances of their own while another reads the effective id; every context
// made is destroyed once, and no driver call fails.
TEST(ContextRegistryTest, InstancesDrivenFromSeveralThreads) {
    ContextRegistry& registry = ContextRegistry::getInstance();
    constexpr int threadCount = 4, rounds = 200;
    std::atomic<int> failures{0};
    std::atomic<int> driversDone{0};
    hftest::onThreads(threadCount + 1, [&](int t) {
        if (t == threadCount) {  // the reader
            while (driversDone.load() < threadCount) {
                const InstanceID effective = registry.getEffectiveInstanceID(UndefinedInstanceID);
                failures += effective != UndefinedInstanceID && effective < InstanceID(1000);
            }
            return;
        }
        for (int i = 0; i < rounds; ++i) {
            const InstanceID id(1000 + t * rounds + i);
            try {
                registry.createContext(id);
                registry.activateContext(id);
                registry.destroyContext(id);
            } catch (...) {
                ++failures;
            }
        }
        ++driversDone;
    });
    EXPECT_EQ(0, failures.load());
    EXPECT_EQ(0, liveContexts.load());
}

}  // namespace
