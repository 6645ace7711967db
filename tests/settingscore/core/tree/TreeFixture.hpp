// The tree fixture: fresh factory and user folders named by the environment, the settings
// states reset around each test, and the file hooks replaced by recorders (restored after).
#pragma once

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/detail/FileLayerHooks.hpp>
#include <settingscore/core/storage/SettingsLevel.hpp>

#include "support/EnvVarGuard.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>

#include <atomic>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace treetest {

using settings::core::Settings;
using settings::core::SettingsImpl;
using settings::core::SettingsImplRoot;
using settings::core::TSettings;
using tvutil::contextmgr::AnyInstanceID;
using tvutil::contextmgr::BlessedInstanceID;

// A node whose values a test sets directly, without the value layer's checks.
class TestNode : public SettingsImpl {
public:
    using SettingsImpl::SettingsImpl;
    void putValue(const std::string& level, const boost::any& value) { values_[level] = value; }
};

inline boost::shared_ptr<TestNode> makeNode(const std::string& name, bool isKey,
                                            int readOnlyState = SettingsImpl::Writable) {
    return boost::make_shared<TestNode>(name, isKey, boost::optional<bool>(true),
                                        settings::core::ValidatorVariant(), readOnlyState,
                                        boost::shared_ptr<SettingsImpl>());
}

// The same, attached below `parent`.
inline boost::shared_ptr<TestNode> makeNode(const std::string& name, bool isKey,
                                            const boost::shared_ptr<Settings>& parent,
                                            int readOnlyState = SettingsImpl::Writable) {
    auto node = makeNode(name, isKey, readOnlyState);
    node->setParent(parent);
    return node;
}

class TreeTest : public ::testing::Test {
protected:
    TreeTest()
        : factoryEnv_("SETTINGS_FACTORYDIR", (dir_.path() / "factory").string()),
          userEnv_("SETTINGS_USERDIR", (dir_.path() / "user").string()),
          oldLoader_(settings::core::productLoader),
          oldSaver_(settings::core::levelSaver) {
        std::filesystem::create_directories(dir_.path() / "factory");
        std::filesystem::create_directories(dir_.path() / "user");
        TSettings::reset(AnyInstanceID);
        settings::core::productLoader = [this](SettingsImpl& node, std::wstring&) {
            loads_ += node.isProductNode();  // as the real loader: files for product nodes only
        };
        settings::core::levelSaver = [this](const settings::core::SettingsLevel* level,
                                            settings::core::SettingsPtr node,
                                            const settings::core::detail::ReadAccess&) {
            if (level->canHaveFile()) {  // as the real save: a level without files writes nothing
                std::lock_guard<std::mutex> guard(savesMutex_);
                saves_.emplace_back(level->levelName(), node->getFullName());
            }
        };
    }

    ~TreeTest() override {
        TSettings::reset(AnyInstanceID);
        settings::core::productLoader = oldLoader_;
        settings::core::levelSaver = oldSaver_;
    }

    boost::shared_ptr<SettingsImplRoot> root() {
        return boost::dynamic_pointer_cast<SettingsImplRoot>(
            Settings::getSettingsRoot(BlessedInstanceID));
    }

    // A product with one settings file at the factory level.
    void shipProduct(const std::string& name) {
        testsupport::writeFile(dir_.path() / "factory" / name / (name + ".settings"), "<x/>");
    }

    testsupport::TempDir dir_;
    testsupport::EnvVarGuard factoryEnv_;
    testsupport::EnvVarGuard userEnv_;
    settings::core::detail::ProductLoader oldLoader_;
    settings::core::detail::LevelSaver oldSaver_;
    std::atomic<int> loads_{0};
    std::mutex savesMutex_;
    std::vector<std::pair<std::string, std::string>> saves_;  // (level, node full name)
};

}  // namespace treetest
