#include <settingscore/core/storage/LevelDirectories.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>

#include "StorageTestSupport.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace settings::core;
using storagetest::StorageTest;
using testsupport::EnvVarGuard;

TEST(SettingsLevelTable, NamesFlagsAndLookUpRules) {
    const auto manager = SettingsLevelManager::getSettingsLevelManagerInstance();
    EXPECT_EQ((std::vector<std::string>{"session", "user", "factory"}),
              manager->getAllLevelNames());
    EXPECT_EQ("factory", SettingsLevelManager::getLastLevelName());

    // canBeModified, canHaveFile, factory, workgroup, user
    const bool expected[3][5] = {{true, false, false, false, false},
                                 {true, true, false, false, true},
                                 {false, true, true, false, false}};
    const auto& levels = SettingsLevelManager::getSettingsLevelObjs();
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const SettingsLevel& level = levels[i];
        SCOPED_TRACE(level.levelName());
        EXPECT_EQ(&level, manager->getSettingsLevelByName(level.levelName()));
        const bool actual[5] = {level.canBeModified(), level.canHaveFile(), level.isFactoryLevel(),
                                level.isWorkgroupLevel(), level.isUserLevel()};
        EXPECT_TRUE(std::equal(actual, actual + 5, expected[i]));
    }
    EXPECT_TRUE(levels[0].levelRootPath().empty());

    // "factory" answers writable although nothing can be changed there.
    EXPECT_FALSE(manager->isWritableLevel("session"));
    EXPECT_TRUE(manager->isWritableLevel("user") && manager->isWritableLevel("factory"));
    for (const char* unknown : {"workgroup", "User", "user ", "", "sessions"}) {
        EXPECT_FALSE(manager->isValidLevel(unknown) || manager->isWritableLevel(unknown) ||
                     manager->getSettingsLevelByName(unknown))
            << unknown;
    }
}

TEST_F(StorageTest, LevelRootPathsFollowTheEnvironment) {
    const SettingsLevel& user = SettingsLevelManager::getSettingsLevelObjs()[1];
    const SettingsLevel& factory = SettingsLevelManager::getSettingsLevelObjs()[2];

    // While SETTINGS_USERDIR is set the preference directory is left alone: the override
    // below would otherwise be made and filled from the previous directory.
    testsupport::writeFile(at("previous/p.settings"), "<x/>");
    setUnitTestPreviousPrefDir(wat("previous"));
    setPreferencesDirectoryUStr(wat("prefs"));
    {
        EnvVarGuard userDir("SETTINGS_USERDIR", at("one").string());
        EXPECT_EQ(wat("one"), user.levelRootPath());
    }
    EXPECT_FALSE(std::filesystem::exists(at("prefs")));
    // Unset: the preference directory, made and migrated on the way.
    EXPECT_EQ(wat("prefs"), user.levelRootPath());
    EXPECT_EQ("<x/>", testsupport::readFile(at("prefs/p.settings")));

    // SETTINGS_FACTORYDIR as it stands, else "toolbox" below the root; empty counts as unset.
    detail::setTolvanRootOverride(wat("root/"));
    EXPECT_EQ(wat("root/toolbox"), factory.levelRootPath());
    {
        EnvVarGuard empty("SETTINGS_FACTORYDIR", std::string());
        EXPECT_EQ(wat("root/toolbox"), factoryLevelRootPath());
        EnvVarGuard set("SETTINGS_FACTORYDIR", "relative/as/it/stands/");
        EXPECT_EQ(L"relative/as/it/stands/", factory.levelRootPath());
    }
    EXPECT_EQ(L"", workgroupLevelRootPath());  // no fallback
}
