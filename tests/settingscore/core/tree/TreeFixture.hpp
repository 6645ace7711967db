// The tree fixture: fresh factory and user folders named by the environment, the settings
// states reset around each test, and the real loads and saves seen through a recording file
// system.
#pragma once

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/storage/SettingsLevel.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>

#include "support/EnvVarGuard.hpp"
#include "support/FailingFileSystem.hpp"
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
          inUse_(files_) {
        std::filesystem::create_directories(dir_.path() / "factory");
        std::filesystem::create_directories(dir_.path() / "user");
        TSettings::reset(AnyInstanceID);
        settings::core::turnOffDurableSaving();  // for speed: many saves, no power cut
    }

    ~TreeTest() override {
        settings::core::turnOnDurableSaving();
        TSettings::reset(AnyInstanceID);
    }

    boost::shared_ptr<SettingsImplRoot> root() {
        return boost::dynamic_pointer_cast<SettingsImplRoot>(
            Settings::getSettingsRoot(BlessedInstanceID));
    }

    // A product with one settings file at the factory level, holding key "x".
    void shipProduct(const std::string& name) {
        testsupport::writeFile(
            dir_.path() / "factory" / name / (name + ".settings"),
            "<settings name=\"" + name +
                "\" visible=\"true\" xmlns=\"urn:lindqvare.tolvan.settings\"><key "
                "name=\"x\"><int32><value>1</value></int32></key></settings>");
    }

    // How many factory files were read so far.
    int factoryReads() const {
        int reads = 0;
        for (const auto& call : files_.calls()) {
            reads += call.operation == "readFile" &&
                     call.path.find((dir_.path() / "factory").string()) == 0;
        }
        return reads;
    }

    // The files saves put in place since the last call, relative to the test's folder
    // ("user/p.settings"), in order.
    std::vector<std::string> savedFiles() {
        std::vector<std::string> saved;
        for (const auto& call : files_.calls()) {
            if (call.operation == "rename" && call.path.size() > 9 &&
                call.path.compare(call.path.size() - 9, 9, ".settings") == 0) {
                saved.push_back(call.path.substr(dir_.path().string().size() + 1));
            }
        }
        files_.forgetCalls();
        return saved;
    }

    testsupport::TempDir dir_;
    testsupport::EnvVarGuard factoryEnv_;
    testsupport::EnvVarGuard userEnv_;
    testsupport::FailingFileSystem files_;
    testsupport::FileSystemInUse inUse_;
};

}  // namespace treetest
