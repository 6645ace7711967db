// Real saves into temporary level folders, with the save's file operations replaceable by the
// test (through the friend the operations grant) and restored afterwards.
#pragma once

#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>
#include <settingscore/core/storage/detail/SaveFileOperations.hpp>

#include "support/EnvVarGuard.hpp"
#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>

namespace settings::core::detail {

// The test's way to the private setters; each returns the operation it replaced.
struct SaveFileOperationsAccess {
    static constexpr auto setWrite = &SaveFileOperations::setWriteSettingsToFile;
    static constexpr auto setTempToTarget = &SaveFileOperations::setRenameTempToTarget;
    static constexpr auto setTargetToPrevious = &SaveFileOperations::setRenameTargetToPrevious;
};

}  // namespace settings::core::detail

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
        sc::turnOffDurableSaving();  // for speed; one test turns it back on
    }
    ~SavingTest() override {
        Access::setWrite(write_);
        Access::setTempToTarget(tempToTarget_);
        Access::setTargetToPrevious(targetToPrevious_);
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

    // How many entries of the user folder are not the product's file: leftovers of a save.
    long leftovers() const {
        const auto entries =
            std::distance(std::filesystem::directory_iterator(dir_.path() / "user"), {});
        return entries - (std::filesystem::exists(userFile()) ? 1 : 0);
    }

    testsupport::TempDir dir_;
    testsupport::EnvVarGuard factoryEnv_;
    testsupport::EnvVarGuard userEnv_;
    sc::detail::WriteSettingsToFile write_;
    sc::detail::RenameFile tempToTarget_;
    sc::detail::RenameFile targetToPrevious_;
};

}  // namespace savingtest
