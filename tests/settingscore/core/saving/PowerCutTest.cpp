// Power cuts during a save, simulated in memory: the power goes after the k-th file operation of
// the save, and only what was synced survives (a file's unsynced data lost, halved or whole; a
// folder's unsynced entries undone or kept). For every k of a first save (which also makes the
// user folder) and of a replace, and every kind of survival, the product must load afterwards
// with all its old user values or all its new ones, never fewer. With durable saving off the
// same cuts lose data; how often is printed.
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>

#include "support/EnvVarGuard.hpp"
#include "support/FailingFileSystem.hpp"
#include "support/PowerCutFileSystem.hpp"

#include <gtest/gtest.h>

#include <iostream>

namespace savingtest {
namespace {

namespace sc = settings::core;
using testsupport::PowerCutFileSystem;
using tvutil::contextmgr::AnyInstanceID;
using tvutil::contextmgr::BlessedInstanceID;
using Survival = PowerCutFileSystem::UnsyncedData;

const std::string productText =
    "<settings name=\"p\" visible=\"true\" xmlns=\"urn:lindqvare.tolvan.settings\">"
    "<key name=\"a\"><int32><value>0</value></int32></key>"
    "<key name=\"b\"><int32><value>0</value></int32></key></settings>";

class PowerCutTest : public ::testing::Test {
protected:
    PowerCutTest() {
        hf::filesystem::makeFolders(sim_, "/sim/factory/p", false);
        sim_.writeFile("/sim/factory/p/p.settings", productText, true);
        sim_.restart(Survival::whole, true);  // the factory as shipped: all on the disk
        shipped_ = sim_.snapshot();
    }
    ~PowerCutTest() override {
        sc::turnOnDurableSaving();
        sc::TSettings::reset(AnyInstanceID);
    }

    boost::shared_ptr<sc::Settings> product() {
        return sc::Settings::getSettingsRoot(BlessedInstanceID)->getChild("p");
    }
    // The user values of "a" and "b" a fresh start reads, -1 for none; "broken" when the
    // product cannot be read without a complaint.
    std::string userValues() {
        sc::TSettings::reset(AnyInstanceID);
        try {
            const auto p = product();
            const auto at = [&](const char* key) {
                const boost::any value = p->getAny(key, "user");
                return value.empty() ? -1 : boost::any_cast<int>(value);
            };
            return std::to_string(at("a")) + "," + std::to_string(at("b"));
        } catch (...) {
            return "broken";
        }
    }

    PowerCutFileSystem sim_;
    PowerCutFileSystem::Image shipped_;
    testsupport::FileSystemInUse inUse_{sim_};
    testsupport::EnvVarGuard factoryEnv_{"SETTINGS_FACTORYDIR", "/sim/factory"};
    testsupport::EnvVarGuard userEnv_{"SETTINGS_USERDIR", "/sim/user"};
};

TEST_F(PowerCutTest, EveryCutOfADurableSaveLeavesAllOldOrAllNewValues) {
    for (const bool durable : {true, false}) {
        int cuts = 0, losses = 0;
        for (const bool replace : {false, true}) {
            // Before: no user file at all, or a = 1 and b = 2 saved durably.
            sim_.restore(shipped_);
            sc::TSettings::reset(AnyInstanceID);
            sc::turnOnDurableSaving();
            if (replace) {
                product()->setAny("a", 1, "user");
                product()->setAny("b", 2, "user");
            }
            const auto before = sim_.snapshot();
            const std::string oldValues = replace ? "1,2" : "-1,-1";
            const std::string newValues = replace ? "3,2" : "3,-1";
            durable ? sc::turnOnDurableSaving() : sc::turnOffDurableSaving();
            // The save's calls, counted once without a cut.
            product()->getChildren();
            const int start = sim_.calls();
            product()->setAny("a", 3, "user");
            const int calls = sim_.calls() - start;
            ASSERT_EQ(newValues, userValues());
            for (int k = 0; k <= calls; ++k) {
                for (const Survival data : {Survival::lost, Survival::halved, Survival::whole}) {
                    for (const bool renamesKept : {false, true}) {
                        sim_.restore(before);
                        sc::TSettings::reset(AnyInstanceID);
                        product()->getChildren();
                        sim_.cutAfter(k);
                        try {
                            product()->setAny("a", 3, "user");
                        } catch (...) {  // the power went: whatever the save says
                        }
                        sim_.restart(data, renamesKept);
                        const std::string after = userValues();
                        ++cuts;
                        losses += after != oldValues && after != newValues;
                        EXPECT_TRUE(!durable || after == oldValues || after == newValues)
                            << (replace ? "replace" : "first save") << ", cut after call " << k
                            << " of " << calls << ", unsynced data "
                            << static_cast<int>(data) << (renamesKept ? ", renames kept" : "")
                            << ": " << after;
                    }
                }
            }
        }
        std::cout << "power cuts with durable saving " << (durable ? "on" : "off") << ": " << cuts
                  << " cuts, " << losses << " lost user values" << std::endl;
        EXPECT_TRUE(durable || losses > 0) << "the simulation lost nothing without the syncs";
    }
}

}  // namespace
}  // namespace savingtest
