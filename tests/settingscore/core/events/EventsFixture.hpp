// A real settings tree for the event tests, root - prod - a - b - key and prod - sibling, in an
// instance whose factory and user folders are empty temporary ones; the process's settings
// states are reset before and after. Value changes are announced by calling the event maker
// under the tree lock, as the value layer does.
#pragma once

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/events/SettingsAddNodeEvent.hpp>
#include <settingscore/core/events/SettingsRemoveNodeEvent.hpp>
#include <settingscore/core/events/SettingsValueChangeEvent.hpp>
#include <settingscore/core/events/detail/EventPublishing.hpp>
#include <settingscore/core/events/detail/EventTags.hpp>

#include "support/EnvVarGuard.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <mutex>
#include <queue>
#include <string>
#include <vector>

namespace eventstest {

using namespace settings::core;
using tvutil::contextmgr::AnyInstanceID;
using tvutil::contextmgr::BlessedInstanceID;
using EventQueue = std::queue<boost::shared_ptr<const SettingsEvent>>;
using NodePtr = boost::shared_ptr<TSettings>;

// What one listener was handed, in order. Safe to fill from several threads.
struct Ear {
    boost::function1<void, const SettingsEvent&> listener() {
        return [this](const SettingsEvent& event) {
            std::lock_guard<std::mutex> guard(mutex);
            heard.push_back(&event);
            nodes.push_back(event.getObj());
        };
    }
    std::mutex mutex;
    std::vector<const SettingsEvent*> heard;
    std::vector<ConstSettingsPtr> nodes;
};

// Resets every instance's settings when made and when dropped.
struct StatesReset {
    StatesReset() { TSettings::reset(AnyInstanceID); }
    ~StatesReset() { TSettings::reset(AnyInstanceID); }
};

class EventsTest : public ::testing::Test {
protected:
    EventsTest()
        : factoryEnv_("SETTINGS_FACTORYDIR", factoryDir_.path().string()),
          userEnv_("SETTINGS_USERDIR", userDir_.path().string()),
          r_(TSettings::getTSettingsRoot(BlessedInstanceID)),
          product_(attach(r_, "prod")),
          sibling_(attach(product_, "sibling")),
          a_(attach(product_, "a")),
          b_(attach(a_, "b")),
          key_(attach(b_, "key", true)) {}

    static NodePtr node(const std::string& name, bool isKey) {
        return TSettings::createSettingsNode(name, isKey, true, ValidatorVariant(), false);
    }
    static NodePtr attach(const SettingsPtr& parent, const std::string& name, bool isKey = false) {
        auto child = node(name, isKey);
        child->setParent(parent);
        return child;
    }
    static SettingsImpl& impl(const SettingsPtr& node) { return *SettingsImpl::implOf(node); }
    static void announceChange(const SettingsPtr& key) {
        detail::UpgradeLock lock(detail::rootMutex());
        detail::publishValueChange(lock, impl(key));
    }
    static EventQueue drain() {
        EventQueue queue;
        TSettings::eventQueue(queue, BlessedInstanceID);
        return queue;
    }

    testsupport::TempDir factoryDir_, userDir_;
    testsupport::EnvVarGuard factoryEnv_, userEnv_;
    StatesReset reset_;
    NodePtr r_, product_, sibling_, a_, b_, key_;
};

}  // namespace eventstest
