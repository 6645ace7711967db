// Real saves into temporary level folders, with the save's file operations replaceable by the
// test (through the friend the operations grant) and restored afterwards.
#pragma once

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>
#include <settingscore/core/storage/detail/SaveFileOperations.hpp>

#include "support/EnvVarGuard.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace settings {
namespace core {
namespace detail {

// The test's way to the private setters.
struct SaveFileOperationsAccess {
    static WriteSettingsToFile setWrite(WriteSettingsToFile op) {
        return SaveFileOperations::setWriteSettingsToFile(op);
    }
    static RenameFile setTempToTarget(RenameFile op) {
        return SaveFileOperations::setRenameTempToTarget(op);
    }
    static RenameFile setTargetToPrevious(RenameFile op) {
        return SaveFileOperations::setRenameTargetToPrevious(op);
    }
};

}  // namespace detail
}  // namespace core
}  // namespace settings

namespace savingtest {

namespace sc = settings::core;
using Access = sc::detail::SaveFileOperationsAccess;
using tvutil::contextmgr::AnyInstanceID;
using tvutil::contextmgr::BlessedInstanceID;

class SavingTest : public ::testing::Test {
protected:
    SavingTest()
        : factoryEnv_("SETTINGS_FACTORYDIR", (dir_.path() / "factory").string()),
          userEnv_("SETTINGS_USERDIR", (dir_.path() / "user").string()),
          write_(sc::detail::SaveFileOperations::writeSettingsToFile()),
          tempToTarget_(sc::detail::SaveFileOperations::renameTempToTarget()),
          targetToPrevious_(sc::detail::SaveFileOperations::renameTargetToPrevious()) {
        std::filesystem::create_directories(dir_.path() / "factory");
        std::filesystem::create_directories(dir_.path() / "user");
        sc::TSettings::reset(AnyInstanceID);
        sc::turnOnSettingsSaving();
        sc::turnOffDurableSaving();  // speed; one test turns it on
    }
    ~SavingTest() override {
        Access::setWrite(write_);
        Access::setTempToTarget(tempToTarget_);
        Access::setTargetToPrevious(targetToPrevious_);
        sc::turnOnSettingsSaving();
        sc::turnOnDurableSaving();
        sc::TSettings::reset(AnyInstanceID);
    }

    boost::shared_ptr<sc::Settings> root() {
        return sc::Settings::getSettingsRoot(BlessedInstanceID);
    }

    static boost::shared_ptr<sc::TSettings> node(const std::string& name, bool isKey) {
        return sc::TSettings::createSettingsNode(name, isKey, true, sc::ValidatorVariant(), false);
    }

    // Product "p" with keys "a" and "b" under group "g", attached (and so saved) under the root.
    boost::shared_ptr<sc::Settings> mountProduct() {
        auto product = node("p", false);
        auto group = node("g", false);
        node("a", true)->setParent(group);
        node("b", true)->setParent(group);
        group->setParent(product);
        product->setParent(root());
        return root()->getNodeByPath("p.g");
    }

    std::filesystem::path userFile() const { return dir_.path() / "user" / "p.settings"; }

    // Names in the user folder other than the product files: leftovers of a save.
    std::vector<std::string> leftovers() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(dir_.path() / "user")) {
            if (entry.path().extension() != ".settings") {
                names.push_back(entry.path().filename().string());
            }
        }
        return names;
    }

    testsupport::TempDir dir_;
    testsupport::EnvVarGuard factoryEnv_;
    testsupport::EnvVarGuard userEnv_;
    sc::detail::WriteSettingsToFile write_;
    sc::detail::RenameFile tempToTarget_;
    sc::detail::RenameFile targetToPrevious_;
};

}  // namespace savingtest
