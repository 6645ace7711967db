// Real saves into temporary level folders, through a file system that records every call and
// fails the calls a test asks it to.
#pragma once

#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>
#include "support/EnvVarGuard.hpp"
#include "support/FailingFileSystem.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>

namespace savingtest {

namespace sc = settings::core;
using tvutil::contextmgr::AnyInstanceID;
using tvutil::contextmgr::BlessedInstanceID;

class SavingTest : public ::testing::Test {
protected:
    SavingTest()
        : factoryEnv_("SETTINGS_FACTORYDIR", (dir_.path() / "factory").string()),
          userEnv_("SETTINGS_USERDIR", (dir_.path() / "user").string()),
          inUse_(files_) {
        std::filesystem::create_directories(dir_.path() / "factory");
        std::filesystem::create_directories(dir_.path() / "user");
        sc::TSettings::reset(AnyInstanceID);
        sc::turnOnSettingsSaving();
        sc::turnOffDurableSaving();  // for speed; one test turns it back on
    }
    ~SavingTest() override {
        sc::turnOnSettingsSaving();
        sc::turnOnDurableSaving();
        sc::TSettings::reset(AnyInstanceID);
    }

    boost::shared_ptr<sc::TSettings> root() {
        return boost::dynamic_pointer_cast<sc::TSettings>(
            sc::Settings::getSettingsRoot(BlessedInstanceID));
    }

    // A visible writable node, attached below `parent` when one is given.
    static boost::shared_ptr<sc::TSettings> node(
        const std::string& name, bool isKey, const boost::shared_ptr<sc::Settings>& parent = {}) {
        auto made =
            sc::TSettings::createSettingsNode(name, isKey, true, sc::ValidatorVariant(), false);
        if (parent) {
            made->setParent(parent);
        }
        return made;
    }

    // Product "p" with keys "a" and "b" under group "g", attached (and so saved) under the root.
    boost::shared_ptr<sc::TSettings> mountProduct() {
        auto product = node("p", false);
        auto group = node("g", false, product);
        node("a", true, group);
        node("b", true, group);
        product->setParent(root());
        return group;
    }

    std::filesystem::path userFile() const { return dir_.path() / "user" / "p.settings"; }

    // The temporary folders in the user folder: leftovers of a save.
    long leftovers() const {
        long found = 0;
        for (const auto& entry : std::filesystem::directory_iterator(dir_.path() / "user")) {
            found += entry.path().filename().string().rfind("temp", 0) == 0;
        }
        return found;
    }

    // How many calls of `operation` the file system saw since the last forgetCalls.
    int callsOf(const std::string& operation) const {
        int counted = 0;
        for (const auto& call : files_.calls()) {
            counted += call.operation == operation;
        }
        return counted;
    }

    // The last failed save of product `product` at "user", if any: "<step>: <error>".
    std::string saveFailure(const std::string& product = "p") {
        const auto status = root()->getChild(product)->getProductFileStatus();
        return status.saveFailures.empty()
                   ? std::string()
                   : status.saveFailures[0].step + ": " + status.saveFailures[0].error;
    }

    testsupport::TempDir dir_;
    testsupport::EnvVarGuard factoryEnv_;
    testsupport::EnvVarGuard userEnv_;
    testsupport::FailingFileSystem files_;
    testsupport::FileSystemInUse inUse_;
};

}  // namespace savingtest
